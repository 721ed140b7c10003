// The C++ layer costs nothing: range-for through vorn::items against the
// plain C walk over the same container, for GL, EL, GT and DA (100,000
// items, a sum of what is delivered; the tree's items go in in order, so its
// nodes lie in walk order and the walk measures steps, not cache misses).
// Each pair runs 7 repetitions in the same process and reports its median;
// compare the medians of a pair, e.g.
//   vorn_bench --benchmark_filter=CppLayer --benchmark_enable_random_interleaving=true
#include "bench_common.hpp"
#include "vorn_container.hpp"

namespace {

constexpr int64_t kItems = 100000;
constexpr int kRepetitions = 7;

template <class F>
void run(benchmark::State &state, F &&walk) {
    for (auto _ : state) {
        uint64_t sum = walk();
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

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

void CppLayer_GL_C(benchmark::State &state) {
    GL_list *l = lists().gl.get();
    run(state, [&] {
        uint64_t sum = 0;
        GL_iter it = GL_all_items(l);
        void *w;
        while (GL_next_item(&it, &w)) sum += reinterpret_cast<uintptr_t>(w);
        return sum;
    });
}
void CppLayer_GL_Layer(benchmark::State &state) {
    GL_list *l = lists().gl.get();
    run(state, [&] {
        uint64_t sum = 0;
        for (uintptr_t w : vorn::items<uintptr_t>(l)) sum += w;
        return sum;
    });
}

void CppLayer_EL_C(benchmark::State &state) {
    EL_list *l = lists().el.get();
    run(state, [&] {
        uint64_t sum = 0;
        EL_iter it = EL_all_items(l);
        void *p;
        while (EL_next_item(&it, &p)) sum += static_cast<uint64_t>(*static_cast<int64_t *>(p));
        return sum;
    });
}
void CppLayer_EL_Layer(benchmark::State &state) {
    EL_list *l = lists().el.get();
    run(state, [&] {
        uint64_t sum = 0;
        for (int64_t &e : vorn::items<int64_t>(l)) sum += static_cast<uint64_t>(e);
        return sum;
    });
}

void CppLayer_GT_C(benchmark::State &state) {
    GT_tree *t = lists().gt.get();
    run(state, [&] {
        uint64_t sum = 0;
        GT_iter *it = GT_all_items(t);
        void *w;
        while (GT_next_item(it, &w)) sum += reinterpret_cast<uintptr_t>(w);
        return sum;
    });
}
void CppLayer_GT_Layer(benchmark::State &state) {
    GT_tree *t = lists().gt.get();
    run(state, [&] {
        uint64_t sum = 0;
        for (uintptr_t w : vorn::items<uintptr_t>(t)) sum += w;
        return sum;
    });
}

// Two plain C walks over an array: the library's walk record and the
// index loop a C host writes by hand.
void CppLayer_DA_C(benchmark::State &state) {
    DA_array *a = lists().da.get();
    run(state, [&] {
        uint64_t sum = 0;
        DA_iter it = DA_all_items(a);
        void *p;
        while (DA_next(&it, &p)) sum += static_cast<uint32_t>(*static_cast<int32_t *>(p));
        return sum;
    });
}
void CppLayer_DA_CIndex(benchmark::State &state) {
    DA_array *a = lists().da.get();
    run(state, [&] {
        uint64_t sum = 0;
        for (int32_t i = 0; i < DA_nitems(a); ++i)
            sum += static_cast<uint32_t>(*static_cast<int32_t *>(DA_get_item(a, i)));
        return sum;
    });
}
void CppLayer_DA_Layer(benchmark::State &state) {
    DA_array *a = lists().da.get();
    run(state, [&] {
        uint64_t sum = 0;
        for (int32_t &x : vorn::items<int32_t>(a)) sum += static_cast<uint32_t>(x);
        return sum;
    });
}

}  // namespace

BENCHMARK(CppLayer_GL_C)->Repetitions(kRepetitions);
BENCHMARK(CppLayer_GL_Layer)->Repetitions(kRepetitions);
BENCHMARK(CppLayer_EL_C)->Repetitions(kRepetitions);
BENCHMARK(CppLayer_EL_Layer)->Repetitions(kRepetitions);
BENCHMARK(CppLayer_GT_C)->Repetitions(kRepetitions);
BENCHMARK(CppLayer_GT_Layer)->Repetitions(kRepetitions);
BENCHMARK(CppLayer_DA_C)->Repetitions(kRepetitions);
BENCHMARK(CppLayer_DA_CIndex)->Repetitions(kRepetitions);
BENCHMARK(CppLayer_DA_Layer)->Repetitions(kRepetitions);
