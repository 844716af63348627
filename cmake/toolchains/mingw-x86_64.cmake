# Cross build for 64-bit Windows with MinGW-w64 (Debian: g++-mingw-w64-x86-64).
set(TESSEL_MINGW_ARCH x86_64)
set(TESSEL_MINGW_TRIPLET x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
