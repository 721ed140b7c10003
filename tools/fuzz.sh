#!/usr/bin/env bash
# Builds the libFuzzer targets with AddressSanitizer and
# UndefinedBehaviorSanitizer (clang) and runs each for SECONDS seconds
# (default 6: the smoke run of the test command).  For a long run:
#   tools/fuzz.sh 3600
# and against the checked build: tools/fuzz.sh 6 -DVORN_CHECKED=ON
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-6}
shift || true
dir=build/fuzz  # further arguments go to CMake: -DVORN_CHECKED=ON builds in build/fuzz-checked
[[ " $* " == *" -DVORN_CHECKED=ON "* ]] && dir=build/fuzz-checked
tools/deps.sh clang libclang-rt-dev
CC=clang CXX=clang++ cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DVORN_BUILD_FUZZ=ON -DVORN_SANITIZE=address,undefined -DVORN_GTEST_FROM_SOURCE=ON \
  -DVORN_BUILD_EXAMPLES=OFF -DVORN_FUZZ_SECONDS="$seconds" "$@" >/dev/null
cmake --build "$dir" -j"$(nproc)"
ctest --test-dir "$dir" -L fuzz --output-on-failure -j"$(nproc)"
