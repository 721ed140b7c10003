#!/usr/bin/env bash
# Builds with ThreadSanitizer into build/tsan and runs the thread tests
# under it.  Unlike the address and undefined-behaviour builds, which give
# every block to the system allocator, this build keeps the slabs of the
# normal build, so that their own locking is checked as well as the
# containers.  CXX=clang++ CC=clang picks clang.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build/tsan -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORN_SANITIZE=thread \
  -DVORN_GTEST_FROM_SOURCE=ON -DVORN_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build/tsan -j2 --target vorn_tests
TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 ${TSAN_OPTIONS:-}" \
  build/tsan/tests/vorn_tests --gtest_filter='Threads.*'
