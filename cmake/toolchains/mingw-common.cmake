# Shared part of the MinGW-w64 cross toolchains; the per-architecture files set
# TESSEL_MINGW_TRIPLET and include this one.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${TESSEL_MINGW_ARCH})

# The "-posix" compilers: their libstdc++ has std::thread, std::mutex and
# std::condition_variable (on winpthreads); the "-win32" ones of GCC 12 lack
# them.
set(CMAKE_C_COMPILER ${TESSEL_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TESSEL_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${TESSEL_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TESSEL_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Test programs (and GoogleTest's discovery of their cases) run under Wine,
# through a launcher that finds the compiler's runtime DLLs and the library.
find_program(TESSEL_WINE wine)
if(TESSEL_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR
      ${CMAKE_CURRENT_LIST_DIR}/wine-run ${TESSEL_MINGW_TRIPLET})
endif()
