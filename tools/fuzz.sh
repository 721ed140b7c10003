#!/usr/bin/env bash
# Builds the libFuzzer targets with AddressSanitizer and
# UndefinedBehaviorSanitizer (clang; the library instrumented for coverage
# too) and runs each for SECONDS seconds (default 6: the smoke run of the
# test command) from its corpus, printing what each reached: runs, edges
# (cov) and features (ft).  For a campaign:
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
targets=$(cd fuzz && ls fuzz_*.cpp | sed 's/\.cpp$//')
# shellcheck disable=SC2086
cmake --build "$dir" -j"$(nproc)" --target $targets
for t in $targets; do
  short=${t#fuzz_}
  work="$dir"/fuzz/corpus-$short
  mkdir -p "$work"
  log="$dir"/fuzz/$t.log
  if ! "$dir"/fuzz/"$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
      -print_final_stats=1 "$work" "fuzz/corpus/$short" >"$log" 2>&1; then
    tail -n 40 "$log"
    echo "$t: FAILED (log: $log)"
    exit 1
  fi
  stats=$(grep -E '^#[0-9]+.*(DONE|cov:)' "$log" | tail -n 1 || true)
  echo "$t: runs ${stats%%[[:space:]]*} $(grep -oE 'cov: [0-9]+ ft: [0-9]+' <<<"$stats")"
done
