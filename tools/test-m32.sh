#!/usr/bin/env bash
# Builds for 32-bit x86 (-m32: pointers of 32 bits, as in the library's home
# process) with warnings as errors and the checked memory blocks, and runs
# every test.  Installs the multilib compilers when they are missing.  Where
# the kernel runs no 32-bit programs (IA-32 emulation off), the tests run
# under qemu-i386 (Debian: qemu-user), installed when needed.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh gcc-multilib g++-multilib
dir=build/m32
mkdir -p "$dir"

# Can this machine run a 32-bit program?
probe="$dir/probe32"
printf 'int main(void) { return sizeof(void *) == 4 ? 0 : 1; }\n' > "$probe.c"
gcc -m32 "$probe.c" -o "$probe"
emulator=()
if ! "$probe" 2>/dev/null; then
  echo "this kernel runs no 32-bit programs: the tests run under qemu-i386"
  tools/deps.sh qemu-user
  "$(command -v qemu-i386)" "$probe"
  emulator=(-DCMAKE_CROSSCOMPILING_EMULATOR="$(command -v qemu-i386)")
fi

cmake -S . -B "$dir" -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchain-m32.cmake" \
  -DVORN_GTEST_FROM_SOURCE=ON -DVORN_WERROR=ON -DVORN_MM_CHECKED=ON \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo "${emulator[@]}" >/dev/null
cmake --build "$dir" -j"$(nproc)"
readelf -h "$dir"/libvorn_container.so | grep -q 'Class: *ELF32' ||
  { echo "libvorn_container.so is not a 32-bit library" >&2; exit 1; }
ctest --test-dir "$dir" --output-on-failure -j"$(nproc)"
echo "== 32-bit build: all tests passed"
