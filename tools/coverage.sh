#!/usr/bin/env bash
# Line and branch coverage of the library's sources (frame/, sequences/,
# tree/, arrays/, lookup/, colour/, dictionary/) by the GoogleTest suite:
# a --coverage build (counters updated atomically, for the thread tests) in
# build/cov, every CTest test run, then gcovr's summary.  The figures
# compare suites: run it on two checkouts with the same library.  Prints the
# line and branch figures, counting all branches and then without those the
# compiler adds for unreachable code and exceptions.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh gcovr
dir=build/cov
flags="--coverage -fprofile-update=atomic -O0"
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Debug -DVORN_BUILD_EXAMPLES=OFF \
  -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" \
  -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
cmake --build "$dir" -j"$(nproc)" >/dev/null
find "$dir" -name '*.gcda' -delete
ctest --test-dir "$dir" -j"$(nproc)" -E 'install|consumer|external_base|debugger|exports' >/dev/null
filters=()
for d in frame sequences tree arrays lookup colour dictionary; do filters+=(--filter "$PWD/$d/"); done
summary() { gcovr -r . "${filters[@]}" "$dir" --print-summary -o /dev/null "$@" 2>/dev/null | grep -E '^(lines|branches):'; }
echo "all branches:"
summary
echo "without unreachable and exception branches:"
summary --exclude-unreachable-branches --exclude-throw-branches
