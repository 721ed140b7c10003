# 32-bit build on a 64-bit x86 Linux host with the multilib compilers
# (Debian: gcc-multilib g++-multilib), so that a pointer has 32 bits as in
# the library's home process.  GoogleTest must then be built from source:
#   cmake -S . -B build/m32 -DCMAKE_TOOLCHAIN_FILE=cmake/toolchain-m32.cmake \
#         -DVORN_GTEST_FROM_SOURCE=ON
# The programs run natively, so this is no cross build for CMake; CMake finds
# the 32-bit library directories (lib32) itself once it sees 4-byte pointers.
# Doubles are computed in SSE2 registers, as a compiler for 32-bit Windows
# does by default, not in the x87 unit, whose excess precision changes the
# rounding of intermediate results (0.49999999999999994 + 0.5 gives 1.0 in
# double arithmetic, just below 1.0 in x87's).
set(CMAKE_C_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-m32")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-m32")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-m32")
