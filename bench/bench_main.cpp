// The benchmark's main: warms the memory of every contender before any
// timing, so that no contender pays first-touch page faults that another
// avoids.  glibc is told to keep what it has (no mappings of their own for
// large blocks, no trimming), and a large block is touched and freed so the
// heap already holds the pages; the stand-in's slabs are warmed with the
// node sizes the workloads use (their chunks are never given back).
#include <malloc.h>

#include <cstring>
#include <vector>

#include "bench_common.hpp"

namespace {

void warm_memory() {
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    const auto heap = static_cast<size_t>(vorn_bench::scaled(int64_t{768} << 20));
    if (void *p = std::malloc(heap)) {
        std::memset(p, 1, heap);
        benchmark::DoNotOptimize(p);
        std::free(p);
    }
    const int64_t n = vorn_bench::scaled(1200000);
    std::vector<void *> blocks(static_cast<size_t>(n));
    for (size_t size : {16, 24, 32, 48, 64}) {
        for (auto &b : blocks) std::memset(b = MM_alloc_item(size), 1, size);
        for (void *b : blocks) MM_dealloc_item(b, size);
    }
}

}  // namespace

int main(int argc, char **argv) {
    warm_memory();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
