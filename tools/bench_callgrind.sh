#!/usr/bin/env bash
# Instruction counts of the main workloads under callgrind, which repeat
# exactly on a busy machine where times do not.  Each benchmark runs once in
# a process of its own, at 1/20 of its benchmark size (VORN_BENCH_SCALE=20;
# the dictionaries keep their size), and only its timed region is counted
# (bench_common.hpp switches callgrind's collection with the clock).  Writes build/bench/callgrind-slabs.tsv
# and callgrind-sys.tsv (benchmark, instructions, items); tools/bench_report.py
# puts them beside the times.  Uses the builds of tools/bench.sh (made here
# if missing).  Takes some minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh valgrind
scale=20
out=build/bench
main_ops='(TreeInsert|TreeLookup|TreeRemoveAt|Set(Ptr|Rand)|GetHit(Ptr|Rand)|GetMiss(Ptr|Rand)|Remove(Ptr|Rand)|Append|Walk|InsertAfterHeld|RemoveFront|ArrayAppend|ArrayAppendReuse|TextWrite|TextRead|TopicAdd)'
for kind in slabs sys; do
  dir=$out; flags=()
  [ "$kind" = sys ] && { dir=$out-sys; flags=(-DVORN_MM_SYSTEM=ON); }
  if [ ! -x "$dir/bench/vorn_bench" ]; then
    cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE=Release -DVORN_BUILD_BENCH=ON -DVORN_BUILD_TESTS=OFF \
      -DVORN_BUILD_EXAMPLES=OFF "${flags[@]}" >/dev/null
    cmake --build "$dir" --target vorn_bench -j"$(nproc)"
  fi
  ours='.*'
  [ "$kind" = sys ] && ours='(GL|EL|GT|HSH|DA|DAstep1024)'
  tmp=$(mktemp -d)
  tsv=$out/callgrind-$kind.tsv
  : >"$tsv"
  "$dir/bench/vorn_bench" --benchmark_list_tests | grep -E "^${ours}_${main_ops}\$" | while read -r name; do
    VORN_BENCH_SCALE=$scale valgrind --tool=callgrind --collect-atstart=no \
      --callgrind-out-file="$tmp/cg.out" "$dir/bench/vorn_bench" --benchmark_filter="^$name\$" \
      --benchmark_min_time=0 --benchmark_out="$tmp/b.json" --benchmark_out_format=json \
      >/dev/null 2>&1
    ir=$(sed -n 's/^summary: *\([0-9]*\).*/\1/p' "$tmp/cg.out")
    # Items (or bytes, for the text form) of the counted iterations.
    units=$(python3 -c '
import json, sys
b = json.load(open(sys.argv[1]))["benchmarks"][0]
rate = b.get("items_per_second") or b.get("bytes_per_second")
unit = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[b["time_unit"]]
print(round(rate * b["cpu_time"] * unit * b["iterations"]))' "$tmp/b.json")
    printf '%s\t%s\t%s\n' "$name" "$ir" "$units" | tee -a "$tsv"
    rm -f "$tmp"/cg.out*
  done
  rm -rf "$tmp"
done
