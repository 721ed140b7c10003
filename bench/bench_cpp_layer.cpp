// The C++ layer costs nothing: range-for through vorn::items against the
// plain C walk over the same container, for GL, EL, GT and DA (100,000
// items, a sum of what is delivered; the tree's items go in in order, so its
// nodes lie in walk order and the walk measures steps, not cache misses).
// Each pair runs 7 repetitions in the same process and reports its median;
// compare the medians of a pair, e.g.
//   vorn_bench --benchmark_filter=CppLayer --benchmark_enable_random_interleaving=true
// Under valgrind --tool=callgrind each walk function's inclusive count
// divided by its calls gives its instructions per walk, free of noise.
#include <string>

#include "bench_common.hpp"
#include "vorn_container.hpp"

namespace {

constexpr int64_t kItems = 100000;
constexpr int kRepetitions = 7;

struct Lists {
    vorn::gl_list gl;
    vorn::el_list<int64_t> el;
    vorn::gt_tree<uintptr_t, vorn::compare_words> gt;
    vorn::da_array<int32_t> da{1024};
    Lists() {
        for (int64_t i = 0; i < kItems; ++i) {
            const auto key = static_cast<uintptr_t>(vorn_bench::mix(static_cast<uint64_t>(i)) >> 40) + 1;
            GL_append_after_last(gl.get(), vorn::to_word(key));
            const int64_t e = static_cast<int64_t>(key);
            EL_append_after_last(el.get(), &e);
            gt.insert(static_cast<uintptr_t>(i + 1));
            const auto d = static_cast<int32_t>(key);
            DA_append(da.get(), &d, 1);
        }
    }
};
Lists &lists() {
    static Lists l;
    return l;
}

// The walks, each one whole walk in a function of its own, so that an
// instruction count (valgrind --tool=callgrind) gives each one's cost per
// call beside the times.
#define WALK [[gnu::noinline]] uint64_t

WALK gl_c(GL_list *l) {
    uint64_t sum = 0;
    GL_iter it = GL_all_items(l);
    void *w;
    while (GL_next_item(&it, &w)) sum += reinterpret_cast<uintptr_t>(w);
    return sum;
}
WALK gl_layer(GL_list *l) {
    uint64_t sum = 0;
    for (uintptr_t w : vorn::items<uintptr_t>(l)) sum += w;
    return sum;
}

WALK el_c(EL_list *l) {
    uint64_t sum = 0;
    EL_iter it = EL_all_items(l);
    void *p;
    while (EL_next_item(&it, &p)) sum += static_cast<uint64_t>(*static_cast<int64_t *>(p));
    return sum;
}
WALK el_layer(EL_list *l) {
    uint64_t sum = 0;
    for (int64_t &e : vorn::items<int64_t>(l)) sum += static_cast<uint64_t>(e);
    return sum;
}

WALK gt_c(GT_tree *t) {
    uint64_t sum = 0;
    GT_iter *it = GT_all_items(t);
    void *w;
    while (GT_next_item(it, &w)) sum += reinterpret_cast<uintptr_t>(w);
    return sum;
}
WALK gt_layer(GT_tree *t) {
    uint64_t sum = 0;
    for (uintptr_t w : vorn::items<uintptr_t>(t)) sum += w;
    return sum;
}

// Two plain C walks over an array: the library's walk record and the
// index loop a C host writes by hand.
WALK da_c(DA_array *a) {
    uint64_t sum = 0;
    DA_iter it = DA_all_items(a);
    void *p;
    while (DA_next(&it, &p)) sum += static_cast<uint32_t>(*static_cast<int32_t *>(p));
    return sum;
}
WALK da_c_index(DA_array *a) {
    uint64_t sum = 0;
    for (int32_t i = 0; i < DA_nitems(a); ++i)
        sum += static_cast<uint32_t>(*static_cast<int32_t *>(DA_get_item(a, i)));
    return sum;
}
WALK da_layer(DA_array *a) {
    uint64_t sum = 0;
    for (int32_t &x : vorn::items<int32_t>(a)) sum += static_cast<uint32_t>(x);
    return sum;
}
#undef WALK

template <class H>
void walk_bench(benchmark::State &state, uint64_t (*walk)(H *), H *h) {
    for (auto _ : state) {
        uint64_t sum = walk(h);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

template <class H>
void pair(const char *name, uint64_t (*c)(H *), uint64_t (*layer)(H *), H *(*handle)()) {
    const std::string n(name);
    benchmark::RegisterBenchmark((n + "_C").c_str(), [=](benchmark::State &s) {
        walk_bench(s, c, handle());
    })->Repetitions(kRepetitions);
    benchmark::RegisterBenchmark((n + "_Layer").c_str(), [=](benchmark::State &s) {
        walk_bench(s, layer, handle());
    })->Repetitions(kRepetitions);
}

const bool registered = [] {
    pair<GL_list>("CppLayer_GL", gl_c, gl_layer, [] { return lists().gl.get(); });
    pair<EL_list>("CppLayer_EL", el_c, el_layer, [] { return lists().el.get(); });
    pair<GT_tree>("CppLayer_GT", gt_c, gt_layer, [] { return lists().gt.get(); });
    pair<DA_array>("CppLayer_DA", da_c, da_layer, [] { return lists().da.get(); });
    benchmark::RegisterBenchmark("CppLayer_DA_CIndex", [](benchmark::State &s) {
        walk_bench(s, da_c_index, lists().da.get());
    })->Repetitions(kRepetitions);
    return true;
}();

}  // namespace
