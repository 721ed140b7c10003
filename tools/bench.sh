#!/usr/bin/env bash
# Runs the whole benchmark suite (all contenders of a workload in one
# process) and writes build/bench/results.json, then the results table and
# plot (bench/results.md, bench/results.svg).  Installs the peers' packages
# when missing.  Extra arguments go to the benchmark binary.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh libbenchmark-dev libglib2.0-dev libbsd-dev uthash-dev libcjson-dev libjson-c-dev \
  pkg-config python3
cmake -S . -B build/bench -DCMAKE_BUILD_TYPE=Release -DVORN_BUILD_BENCH=ON -DVORN_BUILD_TESTS=OFF \
  -DVORN_BUILD_EXAMPLES=OFF >/dev/null
cmake --build build/bench --target vorn_bench -j"$(nproc)"
build/bench/bench/vorn_bench --benchmark_min_time=0.3 \
  --benchmark_out=build/bench/results.json --benchmark_out_format=json "$@"
python3 tools/bench_report.py build/bench/results.json bench/results.md bench/results.svg
