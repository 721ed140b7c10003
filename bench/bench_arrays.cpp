// 10,000,000 int32 appended one at a time, then read back by index.  DA
// against GArray and std::vector.  DA grows by a fixed step, never by
// doubling, so the step is the caller's tuning: one of 2^20 items (4 MiB)
// keeps the number of growths to ten here.
#include <glib.h>

#include <vector>

#include "bench_common.hpp"
#include "vorn_container.h"

namespace {

constexpr int64_t kItems = 10000000;
constexpr int32_t kStep = 1 << 20;

DA_array *da_filled() {
    DA_array *a = DA_create(sizeof(int32_t), kStep);
    for (int32_t i = 0; i < kItems; ++i) DA_append(a, &i, 1);
    return a;
}

void DA_ArrayAppend(benchmark::State &state) {
    for (auto _ : state) {
        const int64_t before = MM_bytes_in_use();
        DA_array *a = da_filled();
        state.PauseTiming();
        vorn_bench::report_mm_bytes(state, before, kItems);
        DA_release(a);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

void DA_ArrayReadIndex(benchmark::State &state) {
    DA_array *a = da_filled();
    for (auto _ : state) {
        int64_t sum = 0;
        for (int32_t i = 0; i < kItems; ++i) sum += *static_cast<int32_t *>(DA_get_item(a, i));
        benchmark::DoNotOptimize(sum);
    }
    DA_release(a);
    state.SetItemsProcessed(state.iterations() * kItems);
}

// The block is public: a host may index it directly.
void DA_ArrayReadData(benchmark::State &state) {
    DA_array *a = da_filled();
    for (auto _ : state) {
        const auto *d = static_cast<const int32_t *>(DA_data(a));
        int64_t sum = 0;
        for (int32_t i = 0; i < kItems; ++i) sum += d[i];
        benchmark::DoNotOptimize(sum);
    }
    DA_release(a);
    state.SetItemsProcessed(state.iterations() * kItems);
}

GArray *garray_filled() {
    GArray *a = g_array_new(FALSE, FALSE, sizeof(int32_t));
    for (int32_t i = 0; i < kItems; ++i) g_array_append_val(a, i);
    return a;
}

void GArray_ArrayAppend(benchmark::State &state) {
    for (auto _ : state) {
        const int64_t before = vorn_bench::heap_bytes();
        GArray *a = garray_filled();
        state.PauseTiming();
        vorn_bench::report_bytes(state, before, kItems);
        g_array_free(a, TRUE);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

void GArray_ArrayReadIndex(benchmark::State &state) {
    GArray *a = garray_filled();
    for (auto _ : state) {
        int64_t sum = 0;
        for (int32_t i = 0; i < kItems; ++i) sum += g_array_index(a, int32_t, i);
        benchmark::DoNotOptimize(sum);
    }
    g_array_free(a, TRUE);
    state.SetItemsProcessed(state.iterations() * kItems);
}

void StdVector_ArrayAppend(benchmark::State &state) {
    for (auto _ : state) {
        const int64_t before = vorn_bench::heap_bytes();
        auto *v = new std::vector<int32_t>();
        for (int32_t i = 0; i < kItems; ++i) v->push_back(i);
        state.PauseTiming();
        vorn_bench::report_bytes(state, before, kItems);
        delete v;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

void StdVector_ArrayReadIndex(benchmark::State &state) {
    std::vector<int32_t> v;
    for (int32_t i = 0; i < kItems; ++i) v.push_back(i);
    for (auto _ : state) {
        int64_t sum = 0;
        for (int32_t i = 0; i < kItems; ++i) sum += v[static_cast<size_t>(i)];
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

}  // namespace

#define VORN_ARRAY_BENCH(name) BENCHMARK(name)->Unit(benchmark::kMillisecond)
VORN_ARRAY_BENCH(DA_ArrayAppend);
VORN_ARRAY_BENCH(GArray_ArrayAppend);
VORN_ARRAY_BENCH(StdVector_ArrayAppend);
VORN_ARRAY_BENCH(DA_ArrayReadIndex);
VORN_ARRAY_BENCH(DA_ArrayReadData);
VORN_ARRAY_BENCH(GArray_ArrayReadIndex);
VORN_ARRAY_BENCH(StdVector_ArrayReadIndex);
