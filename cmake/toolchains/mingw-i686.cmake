# Cross build for 32-bit Windows with MinGW-w64 (Debian: g++-mingw-w64-i686).
set(TESSEL_MINGW_ARCH x86)
set(TESSEL_MINGW_TRIPLET i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
