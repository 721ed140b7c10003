#!/usr/bin/env bash
# Builds with every MM_ block from malloc (so memcheck sees each one) into
# build/valgrind and runs the test binary under valgrind memcheck.  The
# death tests (the default raise handler's abort, the checked mode's size
# aborts) fork a child that dies on purpose: they are left out.  Extra gtest
# arguments pass through, e.g. tools/valgrind.sh --gtest_filter='Hsh*'.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh valgrind
cmake -S . -B build/valgrind -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVORN_MM_SYSTEM=ON \
  -DVORN_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build/valgrind -j2 --target vorn_tests
time valgrind --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=definite,possible \
  build/valgrind/tests/vorn_tests --gtest_filter='-Base.RaiseHandlerAndDefaultMessage:BaseChecked.*' "$@"
