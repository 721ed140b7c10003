# Cross build for 32-bit Windows with mingw-w64 (Debian: g++-mingw-w64-i686,
# whose posix flavour has the C++ threads the base library uses):
#   cmake -S . -B build/windows -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-mingw32.cmake \
#         -DVORN_GTEST_FROM_SOURCE=ON
# gives VornBaseShared.dll and vorn_container.dll.  The tests need a program
# that runs 32-bit Windows code: -DCMAKE_CROSSCOMPILING_EMULATOR=wine where
# wine's 32-bit half works (tools/build-windows.sh finds out).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(_triple i686-w64-mingw32)

find_program(CMAKE_C_COMPILER NAMES ${_triple}-gcc-posix ${_triple}-gcc REQUIRED)
find_program(CMAKE_CXX_COMPILER NAMES ${_triple}-g++-posix ${_triple}-g++ REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${_triple}-windres)
# Doubles in SSE2 registers, as MSVC computes them for 32-bit Windows and
# as the 64-bit builds do: the x87 unit's excess precision would change the
# rounding of intermediate results.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_FIND_ROOT_PATH /usr/${_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
