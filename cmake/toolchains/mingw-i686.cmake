# Cross build for 32-bit Windows with MinGW-w64 (Debian: g++-mingw-w64-i686).
set(TESSEL_MINGW_ARCH x86)
set(TESSEL_MINGW_TRIPLET i686-w64-mingw32)
# Doubles computed in SSE2 registers, rounded to 64 bits at every step as on
# x86_64, instead of the x87 unit's 80-bit intermediates (the 32-bit Linux
# build checks this data model under emulation). Every processor that runs a
# supported 32-bit Windows has SSE2.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
