#!/usr/bin/env bash
# The whole check, as CI runs it: builds with warnings as errors and runs
# every test (the install, consumer and external-base tests among them), then
# the checked build (VORN_CHECKED) with every test, then AddressSanitizer and
# UndefinedBehaviorSanitizer with every test; then a short smoke run of each
# fuzz target, the thread tests under ThreadSanitizer, the suite under
# valgrind memcheck, the public headers as an MSVC host sees them (clang for
# i686-pc-windows-msvc), and the API reference with Doxygen, warnings as
# errors.  Installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh
jobs="$(nproc)"

run() {  # run <build dir> <cmake args...>
  local dir=$1
  shift
  cmake -S . -B "$dir" -DVORN_WERROR=ON "$@" >/dev/null
  cmake --build "$dir" -j"$jobs"
  ctest --test-dir "$dir" --output-on-failure -j"$jobs"
}

echo "== build with warnings as errors, all tests"
run build/test -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORN_MM_CHECKED=ON
echo "== checked build (VORN_CHECKED), all tests: no false alarm"
run build/checked -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORN_CHECKED=ON
echo "== AddressSanitizer + UndefinedBehaviorSanitizer, all tests"
ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  run build/asan -DCMAKE_BUILD_TYPE=Debug -DVORN_SANITIZE=address,undefined -DVORN_GTEST_FROM_SOURCE=ON
echo "== fuzz targets, a short smoke run each (clang, AddressSanitizer + UndefinedBehaviorSanitizer)"
tools/fuzz.sh 6
echo "== fuzz targets against the checked build, a short smoke run each"
tools/fuzz.sh 6 -DVORN_CHECKED=ON
echo "== ThreadSanitizer: containers of several threads, blocks freed on other threads"
tools/tsan.sh
echo "== valgrind memcheck: the whole test binary, every block from malloc"
tools/valgrind.sh
echo "== public headers for MSVC hosts (C and C++, warnings as errors)"
tools/msvc-headers.sh
echo "== API reference, Doxygen warnings as errors"
tools/docs.sh
echo "== all tests passed"
