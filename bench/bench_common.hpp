// What the benchmarks share: the workload size, deterministic keys and the
// measure of heap bytes per item.
#pragma once

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdint>
#include <cstdlib>

#include "vorn_base.h"
#include <vector>

namespace vorn_bench {

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
