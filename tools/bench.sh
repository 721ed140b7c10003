#!/usr/bin/env bash
# Runs the benchmark suite the way bench/results.md was made, and writes the
# table and plot from it.  Two Release builds: build/bench serves our blocks
# from the stand-in's slabs, build/bench-sys from malloc (VORN_MM_SYSTEM=ON,
# what a host that links its own base library gets).  Each pass runs the
# whole suite on the slab build (all contenders of a workload in one
# process) and then our list, tree, hash and array contenders on the malloc
# build; every benchmark runs 5 times, and the report takes medians.
#
#   tools/bench.sh              two passes (the README quotes what holds in both)
#   tools/bench.sh --passes 1   one pass
#   tools/bench.sh --report     only rebuild bench/results.md and .svg
# Further arguments go to both benchmark binaries (e.g. --benchmark_filter=Tree).
# The load average at the start of each pass is kept in build/bench/passes.txt.
# Installs the peers' packages when missing.
set -euo pipefail
cd "$(dirname "$0")/.."
passes=2
report_only=0
args=()
while [ $# -gt 0 ]; do
  case "$1" in
    --passes) passes="$2"; shift 2 ;;
    --report) report_only=1; shift ;;
    *) args+=("$1"); shift ;;
  esac
done
out=build/bench
if [ "$report_only" -eq 0 ]; then
  tools/deps.sh libbenchmark-dev libglib2.0-dev libbsd-dev uthash-dev libcjson-dev libjson-c-dev \
    pkg-config python3 valgrind
  for kind in slabs sys; do
    dir=$out; flags=()
    [ "$kind" = sys ] && { dir=$out-sys; flags=(-DVORN_MM_SYSTEM=ON); }
    cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Release -DVORN_BUILD_BENCH=ON -DVORN_BUILD_TESTS=OFF \
      -DVORN_BUILD_EXAMPLES=OFF "${flags[@]}" >/dev/null
    cmake --build "$dir" --target vorn_bench -j"$(nproc)"
  done
  # Higher priority where allowed, so that the machine's other work
  # interrupts the runs less.
  run=()
  nice -n -5 true 2>/dev/null && run=(nice -n -5)
  common=(--benchmark_repetitions=5 --benchmark_min_time=0.05 --benchmark_out_format=json)
  rm -f "$out"/pass*.json
  : >"$out/passes.txt"
  for p in $(seq 1 "$passes"); do
    echo "pass $p $(date -u +%FT%TZ) load: $(cut -d' ' -f1-3 /proc/loadavg)" | tee -a "$out/passes.txt"
    "${run[@]}" "$out/bench/vorn_bench" "${common[@]}" --benchmark_out="$out/pass$p-slabs.json" \
      "${args[@]}" >/dev/null
    "${run[@]}" "$out-sys/bench/vorn_bench" "${common[@]}" --benchmark_out="$out/pass$p-sys.json" \
      --benchmark_filter='^(GL|EL|GT|HSH|DA|DAstep1024)_[^D]' "${args[@]}" >/dev/null
  done
fi
python3 tools/bench_report.py "$out" bench/results.md bench/results.svg
