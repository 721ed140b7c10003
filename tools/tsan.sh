#!/usr/bin/env bash
# Builds with ThreadSanitizer into build/tsan and runs the thread tests
# under it.  Sanitizer builds give every block to the system allocator, so
# the slabs of the normal build are exercised by the same tests run in the
# ordinary build (tools/test.sh).  CXX=clang++ CC=clang picks clang.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build/tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORN_SANITIZE=thread \
  -DVORN_GTEST_FROM_SOURCE=ON -DVORN_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build/tsan -j2 --target vorn_tests
TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 ${TSAN_OPTIONS:-}" \
  build/tsan/tests/vorn_tests --gtest_filter='Threads.*'
