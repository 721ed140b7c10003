// What the benchmarks share: the workload size, deterministic keys, the
// measure of heap bytes per item, and the timed regions (the clock, page
// faults and callgrind's instruction counts all cover the same code).
#pragma once

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>
#include <valgrind/callgrind.h>

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "vorn_base.h"

namespace vorn_bench {

// A workload of `n` items, divided by VORN_BENCH_SCALE when it is set
// (tools/bench_callgrind.sh runs small workloads under callgrind).
inline int64_t scaled(int64_t n) {
    const char *d = std::getenv("VORN_BENCH_SCALE");
    const int64_t div = d ? std::atoll(d) : 1;
    return div > 1 ? n / div : n;
}

// ---- timed regions ----
// Page faults taken and callgrind's collection follow the clock: on while
// the loop body runs, off between pause() and resume().
struct Meter {
    bool on = false;
    long started = 0;
    long faults = 0;
};
inline Meter &meter() {
    static Meter m;
    return m;
}
inline long faults_now() {
    struct rusage r;
    getrusage(RUSAGE_SELF, &r);
    return r.ru_minflt + r.ru_majflt;
}
inline void timing(bool on) {
    Meter &m = meter();
    if (on == m.on) return;
    m.on = on;
    if (on) {
        m.started = faults_now();
        CALLGRIND_TOGGLE_COLLECT;
    } else {
        CALLGRIND_TOGGLE_COLLECT;
        m.faults += faults_now() - m.started;
    }
}

// for (auto _ : vorn_bench::timed(state)) in place of for (auto _ : state).
struct Timed {
    benchmark::State &state;
    struct End {};
    struct It {
        benchmark::State::StateIterator at, end;
        bool operator!=(End) {
            const bool more = at != end;
            timing(more);
            return more;
        }
        void operator++() { ++at; }
        benchmark::State::StateIterator::Value operator*() const { return *at; }
    };
    It begin() { return It{state.begin(), state.end()}; }
    End end() { return {}; }
};
inline Timed timed(benchmark::State &state) {
    meter().faults = 0;
    return Timed{state};
}
inline void pause(benchmark::State &state) {
    timing(false);
    state.PauseTiming();
}
inline void resume(benchmark::State &state) {
    state.ResumeTiming();
    timing(true);
}

// Items per iteration, and the page faults that the timed regions took per
// item (none on warmed memory: the stand-in keeps its released large
// mappings, a few, for the next large block).
inline void finish(benchmark::State &state, int64_t items) {
    state.SetItemsProcessed(state.iterations() * items);
    state.counters["faults_per_item"] =
        static_cast<double>(meter().faults) / static_cast<double>(state.iterations() * items);
    meter().faults = 0;
}

// Bytes the process heap holds now (allocator overhead included), so that
// every contender is measured the same way: our slabs come from malloc too.
// Large blocks are mapped apart from the arena, so both counts are summed.
inline int64_t heap_bytes() {
    const struct mallinfo2 mi = mallinfo2();
    return static_cast<int64_t>(mi.uordblks + mi.hblkhd);
}

// Reports heap bytes per item for a structure built between `before` and now.
// The largest figure of all iterations is kept: an allocator that caches
// freed blocks (GLib's slices) shows its cost on the first build only.
inline void keep_bytes(benchmark::State &state, double per_item) {
    auto it = state.counters.find("bytes_per_item");
    if (it == state.counters.end() || it->second.value < per_item)
        state.counters["bytes_per_item"] = per_item;
}

inline void report_bytes(benchmark::State &state, int64_t before, int64_t items) {
    keep_bytes(state, static_cast<double>(heap_bytes() - before) / static_cast<double>(items));
}

// Bytes per item of our containers: what their MM_ blocks hold.  The slabs
// of the base services give each block exactly its size rounded up to the
// slot step (8 bytes; 4 on 32-bit) with no header, spans aside.
inline void report_mm_bytes(benchmark::State &state, int64_t before, int64_t items) {
    const int64_t grain = sizeof(void *) < 8 ? sizeof(void *) : 8;
    const int64_t bytes = MM_bytes_in_use() - before;
    keep_bytes(state, static_cast<double>((bytes + grain - 1) / grain * grain) /
                          static_cast<double>(items));
}

// Heap bytes now as the contender's blocks are counted, and the bytes per
// item of what was built since `before`.
inline int64_t bytes_now(bool ours) { return ours ? MM_bytes_in_use() : heap_bytes(); }
inline void report_built(benchmark::State &state, bool ours, int64_t before, int64_t items) {
    if (ours)
        report_mm_bytes(state, before, items);
    else
        report_bytes(state, before, items);
}

inline uint64_t mix(uint64_t x) {
    x ^= x >> 33;
    x *= 0xff51afd7ed558ccdull;
    x ^= x >> 33;
    x *= 0xc4ceb9fe1a85ec53ull;
    x ^= x >> 33;
    return x;
}

// n distinct random 32-bit keys (never 0).
inline std::vector<uint32_t> random_keys(size_t n, uint64_t seed = 1) {
    std::vector<uint32_t> keys(n);
    for (size_t i = 0; i < n; ++i) keys[i] = static_cast<uint32_t>(mix(seed * 1000003 + i)) | 1u;
    return keys;
}

}  // namespace vorn_bench
