# 32-bit (i686) Linux build on an x86_64 Debian machine with g++-multilib: the
# 32-bit data model of the Windows target (32-bit size_t, pointers and long)
# exercised by running the test programs under qemu-i386, since the kernel of
# the build machine may not execute 32-bit programs itself.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
# Floating point in SSE2 registers, as for the Windows DLL (mingw-i686.cmake):
# the x87 unit's 80-bit intermediates would round doubles differently from
# every other build (a long long near 2^53 converted twice, a parsed number
# that no longer equals its own dump).
# 64-bit time_t and file offsets, as the Windows target has (_localtime64_s,
# 64-bit file sizes); the library's interface carries neither type, so
# programs built against it need not follow.
set(CMAKE_C_FLAGS_INIT "-m32 -msse2 -mfpmath=sse -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64")
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64")
set(CMAKE_EXE_LINKER_FLAGS_INIT -m32)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -m32)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -m32)

# The multilib libraries live in the 32-bit library directories; the host's
# 64-bit ones must never be picked.
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
set(FIND_LIBRARY_USE_LIB32_PATHS ON)
set_property(GLOBAL PROPERTY FIND_LIBRARY_USE_LIB64_PATHS OFF)
set_property(GLOBAL PROPERTY FIND_LIBRARY_USE_LIB32_PATHS ON)

# Test programs and GoogleTest's discovery of their cases run under the user
# mode emulator, which finds the 32-bit C library in the usual place.
find_program(TESSEL_QEMU_I386 qemu-i386)
if(TESSEL_QEMU_I386)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${TESSEL_QEMU_I386})
endif()
