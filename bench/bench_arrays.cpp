// 10,000,000 int32 appended one at a time, then read back by index.  DA
// against GArray and std::vector.  DA grows by a fixed step, never by
// doubling, so the step is the caller's tuning: with a step of 2^20 items
// (4 MiB) the array grows ten times here; with a step of 1024 it grows
// about 10,000 times, each a resize of the whole block.
//
// Append builds a new array in every iteration, growth included.
// AppendReuse appends to an array emptied with its capacity kept (DA_reset,
// vector::clear, g_array_set_size 0): the per-item cost alone.
#include <glib.h>

#include <vector>

#include "bench_common.hpp"
#include "vorn_container.h"

namespace {

const int64_t kItems = vorn_bench::scaled(10000000);

template <int32_t Step> struct Da {
    static constexpr bool ours = true;
    DA_array *a = DA_create(sizeof(int32_t), Step);
    ~Da() { DA_release(a); }
    void fill(int64_t n) {
        DA_array *to = a;
        for (int32_t i = 0; i < n; ++i) DA_append(to, &i, 1);
    }
    void empty() { DA_reset(a); }
    int32_t at(int32_t i) { return *static_cast<int32_t *>(DA_get_item(a, i)); }
};

struct GArr {
    static constexpr bool ours = false;
    GArray *a = g_array_new(FALSE, FALSE, sizeof(int32_t));
    ~GArr() { g_array_free(a, TRUE); }
    void fill(int64_t n) {
        for (int32_t i = 0; i < n; ++i) g_array_append_val(a, i);
    }
    void empty() { g_array_set_size(a, 0); }
    int32_t at(int32_t i) { return g_array_index(a, int32_t, i); }
};

struct Vec {
    static constexpr bool ours = false;
    std::vector<int32_t> v;
    void fill(int64_t n) {
        for (int32_t i = 0; i < n; ++i) v.push_back(i);
    }
    void empty() { v.clear(); }
    int32_t at(int32_t i) { return v[static_cast<size_t>(i)]; }
};

template <class T> void Append(benchmark::State &state) {
    delete new T();  // a first build outside the clock warms the allocator
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = vorn_bench::bytes_now(T::ours);
        auto *t = new T();
        t->fill(kItems);
        vorn_bench::pause(state);
        vorn_bench::report_built(state, T::ours, before, kItems);
        delete t;
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

template <class T> void AppendReuse(benchmark::State &state) {
    T t;
    t.fill(kItems);
    for (auto _ : vorn_bench::timed(state)) {
        t.empty();
        t.fill(kItems);
    }
    vorn_bench::finish(state, kItems);
}

template <class T> void ReadIndex(benchmark::State &state) {
    T t;
    t.fill(kItems);
    for (auto _ : vorn_bench::timed(state)) {
        int64_t sum = 0;
        for (int32_t i = 0; i < kItems; ++i) sum += t.at(i);
        benchmark::DoNotOptimize(sum);
    }
    vorn_bench::finish(state, kItems);
}

// The block is public: a host may index it directly.
void DA_ArrayReadData(benchmark::State &state) {
    Da<1 << 20> t;
    t.fill(kItems);
    for (auto _ : vorn_bench::timed(state)) {
        const auto *d = static_cast<const int32_t *>(DA_data(t.a));
        int64_t sum = 0;
        for (int32_t i = 0; i < kItems; ++i) sum += d[i];
        benchmark::DoNotOptimize(sum);
    }
    vorn_bench::finish(state, kItems);
}

}  // namespace

#define VORN_ARRAY_BENCH(contender, T)                                                         \
    BENCHMARK(Append<T>)->Name(#contender "_ArrayAppend")->Unit(benchmark::kMillisecond);      \
    BENCHMARK(AppendReuse<T>)->Name(#contender "_ArrayAppendReuse")->Unit(benchmark::kMillisecond); \
    BENCHMARK(ReadIndex<T>)->Name(#contender "_ArrayReadIndex")->Unit(benchmark::kMillisecond)

VORN_ARRAY_BENCH(DA, Da<1 << 20>);
VORN_ARRAY_BENCH(DAstep1024, Da<1024>);
VORN_ARRAY_BENCH(GArray, GArr);
VORN_ARRAY_BENCH(StdVector, Vec);
BENCHMARK(DA_ArrayReadData)->Unit(benchmark::kMillisecond);
