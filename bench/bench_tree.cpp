// Ordered sets of 1,000,000 random keys compared through a function pointer:
// insert, key lookup, in-order walk and removal by position.  GT against
// GLib's GTree, std::multiset (the same function pointer, and an inlined
// comparator) and the BSD red-black tree of sys/tree.h.
#include <bsd/sys/tree.h>
#include <glib.h>

#include <set>

#include "bench_common.hpp"
#include "vorn_container.h"

// Outside the anonymous namespace and not const, so that no contender can
// have the comparison inlined: every compare is a call through a pointer.
extern "C" int32_t vorn_bench_key_compare(void *a, void *b);
int32_t vorn_bench_key_compare(void *a, void *b) {
    const auto x = reinterpret_cast<uintptr_t>(a), y = reinterpret_cast<uintptr_t>(b);
    return (x > y) - (x < y);
}
vorn_compare_fn vorn_bench_compare = vorn_bench_key_compare;

namespace {

const int64_t kItems = vorn_bench::scaled(1000000);

const std::vector<void *> &keys() {
    static const std::vector<void *> k = [] {
        // Full-width random words: distinct in practice, and a repeat would
        // be harmless (every contender admits or skips it).
        std::vector<void *> v;
        for (int64_t i = 0; i < kItems; ++i)
            v.push_back(reinterpret_cast<void *>(static_cast<uintptr_t>(vorn_bench::mix(7000021 + i) | 1)));
        return v;
    }();
    return k;
}

// ---- GT ----
GT_tree *gt_filled(std::vector<GT_node *> *pos = nullptr) {
    GT_tree *t = GT_create_with_dupl_allowed(vorn_bench_compare);
    for (void *k : keys()) {
        GT_node *n = GT_insert_item(t, k);
        if (pos) pos->push_back(n);
    }
    return t;
}

void GT_TreeInsert(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = MM_bytes_in_use();
        GT_tree *t = GT_create_with_dupl_allowed(vorn_bench_compare);
        for (void *k : keys()) GT_insert_item(t, k);
        vorn_bench::pause(state);
        vorn_bench::report_mm_bytes(state, before, kItems);
        GT_release(&t);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void GT_TreeLookup(benchmark::State &state) {
    GT_tree *t = gt_filled();
    for (auto _ : vorn_bench::timed(state)) {
        int64_t found = 0;
        GT_node *pos;
        for (void *k : keys()) found += GT_search_item(t, k, &pos);
        benchmark::DoNotOptimize(found);
    }
    GT_release(&t);
    vorn_bench::finish(state, kItems);
}

void GT_TreeWalk(benchmark::State &state) {
    GT_tree *t = gt_filled();
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        GT_iter *it = GT_all_items(t);
        void *item;
        while (GT_next_item(it, &item)) sum += reinterpret_cast<uintptr_t>(item);
        benchmark::DoNotOptimize(sum);
    }
    GT_release(&t);
    vorn_bench::finish(state, kItems);
}

// The sorted chain is public: a host may walk it directly.
void GT_TreeWalkLinks(benchmark::State &state) {
    GT_tree *t = gt_filled();
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        for (GT_node *n = t->first; n; n = n->next) sum += reinterpret_cast<uintptr_t>(n->item);
        benchmark::DoNotOptimize(sum);
    }
    GT_release(&t);
    vorn_bench::finish(state, kItems);
}

// Removal of every node through the position its insertion gave, in
// insertion (random) order.
void GT_TreeRemoveAt(benchmark::State &state) {
    std::vector<GT_node *> pos;
    pos.reserve(kItems);
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        pos.clear();
        GT_tree *t = gt_filled(&pos);
        vorn_bench::resume(state);
        for (GT_node *n : pos) GT_remove_item(t, n);
        vorn_bench::pause(state);
        GT_release(&t);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

// ---- GTree ----
gint gtree_compare(gconstpointer a, gconstpointer b) {
    return vorn_bench_compare(const_cast<void *>(a), const_cast<void *>(b));
}

GTree *gtree_filled() {
    GTree *t = g_tree_new(gtree_compare);
    for (void *k : keys()) g_tree_insert(t, k, k);
    return t;
}

void GTree_TreeInsert(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = vorn_bench::heap_bytes();
        GTree *t = g_tree_new(gtree_compare);
        for (void *k : keys()) g_tree_insert(t, k, k);
        vorn_bench::pause(state);
        vorn_bench::report_bytes(state, before, kItems);
        g_tree_destroy(t);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void GTree_TreeLookup(benchmark::State &state) {
    GTree *t = gtree_filled();
    for (auto _ : vorn_bench::timed(state)) {
        int64_t found = 0;
        for (void *k : keys()) found += g_tree_lookup(t, k) != nullptr;
        benchmark::DoNotOptimize(found);
    }
    g_tree_destroy(t);
    vorn_bench::finish(state, kItems);
}

void GTree_TreeWalk(benchmark::State &state) {
    GTree *t = gtree_filled();
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        for (GTreeNode *n = g_tree_node_first(t); n; n = g_tree_node_next(n))
            sum += reinterpret_cast<uintptr_t>(g_tree_node_key(n));
        benchmark::DoNotOptimize(sum);
    }
    g_tree_destroy(t);
    vorn_bench::finish(state, kItems);
}

// GTree has no removal by node: the nearest is removal by key.
void GTree_TreeRemoveAt(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        GTree *t = gtree_filled();
        vorn_bench::resume(state);
        for (void *k : keys()) g_tree_remove(t, k);
        vorn_bench::pause(state);
        g_tree_destroy(t);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

// ---- std::multiset ----
struct FnLess {  // the same function pointer, held at run time
    vorn_compare_fn compare;
    bool operator()(void *a, void *b) const { return compare(a, b) < 0; }
};
struct InlineLess {
    bool operator()(void *a, void *b) const {
        return reinterpret_cast<uintptr_t>(a) < reinterpret_cast<uintptr_t>(b);
    }
};

template <class Less> std::multiset<void *, Less> *set_new() {
    if constexpr (std::is_same_v<Less, FnLess>)
        return new std::multiset<void *, Less>(FnLess{vorn_bench_compare});
    else
        return new std::multiset<void *, Less>();
}

template <class Less> void Set_Insert(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = vorn_bench::heap_bytes();
        auto *s = set_new<Less>();
        for (void *k : keys()) s->insert(k);
        vorn_bench::pause(state);
        vorn_bench::report_bytes(state, before, kItems);
        delete s;
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

template <class Less> void Set_Lookup(benchmark::State &state) {
    auto *s = set_new<Less>();
    for (void *k : keys()) s->insert(k);
    for (auto _ : vorn_bench::timed(state)) {
        int64_t found = 0;
        for (void *k : keys()) found += s->find(k) != s->end();
        benchmark::DoNotOptimize(found);
    }
    delete s;
    vorn_bench::finish(state, kItems);
}

template <class Less> void Set_Walk(benchmark::State &state) {
    auto *s = set_new<Less>();
    for (void *k : keys()) s->insert(k);
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        for (void *k : *s) sum += reinterpret_cast<uintptr_t>(k);
        benchmark::DoNotOptimize(sum);
    }
    delete s;
    vorn_bench::finish(state, kItems);
}

template <class Less> void Set_RemoveAt(benchmark::State &state) {
    using It = typename std::multiset<void *, Less>::iterator;
    std::vector<It> pos;
    pos.reserve(kItems);
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        pos.clear();
        auto *s = set_new<Less>();
        for (void *k : keys()) pos.push_back(s->insert(k));
        vorn_bench::resume(state);
        for (It i : pos) s->erase(i);
        vorn_bench::pause(state);
        delete s;
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void StdMultisetFn_TreeInsert(benchmark::State &s) { Set_Insert<FnLess>(s); }
void StdMultisetFn_TreeLookup(benchmark::State &s) { Set_Lookup<FnLess>(s); }
void StdMultisetFn_TreeWalk(benchmark::State &s) { Set_Walk<FnLess>(s); }
void StdMultisetFn_TreeRemoveAt(benchmark::State &s) { Set_RemoveAt<FnLess>(s); }
void StdMultisetInl_TreeInsert(benchmark::State &s) { Set_Insert<InlineLess>(s); }
void StdMultisetInl_TreeLookup(benchmark::State &s) { Set_Lookup<InlineLess>(s); }
void StdMultisetInl_TreeWalk(benchmark::State &s) { Set_Walk<InlineLess>(s); }
void StdMultisetInl_TreeRemoveAt(benchmark::State &s) { Set_RemoveAt<InlineLess>(s); }

// ---- BSD red-black tree ----
struct RbNode {
    RB_ENTRY(RbNode) link;
    void *item;
};
int rb_compare(RbNode *a, RbNode *b) { return vorn_bench_compare(a->item, b->item); }
RB_HEAD(RbTree, RbNode);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
RB_GENERATE(RbTree, RbNode, link, rb_compare)
#pragma GCC diagnostic pop

void rb_free(RbTree *h) {
    RbNode *n, *next;
    for (n = RB_MIN(RbTree, h); n; n = next) {
        next = RB_NEXT(RbTree, h, n);
        RB_REMOVE(RbTree, h, n);
        free(n);
    }
}

void rb_fill(RbTree *h, std::vector<RbNode *> *pos = nullptr) {
    RB_INIT(h);
    for (void *k : keys()) {
        auto *n = static_cast<RbNode *>(malloc(sizeof(RbNode)));
        n->item = k;
        if (RB_INSERT(RbTree, h, n)) {  // a repeat: the tree keeps the first
            free(n);
            continue;
        }
        if (pos) pos->push_back(n);
    }
}

void BsdRb_TreeInsert(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = vorn_bench::heap_bytes();
        RbTree h;
        rb_fill(&h);
        vorn_bench::pause(state);
        vorn_bench::report_bytes(state, before, kItems);
        rb_free(&h);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void BsdRb_TreeLookup(benchmark::State &state) {
    RbTree h;
    rb_fill(&h);
    for (auto _ : vorn_bench::timed(state)) {
        int64_t found = 0;
        RbNode probe;
        for (void *k : keys()) {
            probe.item = k;
            found += RB_FIND(RbTree, &h, &probe) != nullptr;
        }
        benchmark::DoNotOptimize(found);
    }
    rb_free(&h);
    vorn_bench::finish(state, kItems);
}

void BsdRb_TreeWalk(benchmark::State &state) {
    RbTree h;
    rb_fill(&h);
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        RbNode *n;
        RB_FOREACH(n, RbTree, &h) sum += reinterpret_cast<uintptr_t>(n->item);
        benchmark::DoNotOptimize(sum);
    }
    rb_free(&h);
    vorn_bench::finish(state, kItems);
}

void BsdRb_TreeRemoveAt(benchmark::State &state) {
    std::vector<RbNode *> pos;
    pos.reserve(kItems);
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        pos.clear();
        RbTree h;
        rb_fill(&h, &pos);
        vorn_bench::resume(state);
        for (RbNode *n : pos) RB_REMOVE(RbTree, &h, n);
        vorn_bench::pause(state);
        for (RbNode *n : pos) free(n);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

}  // namespace

#define VORN_TREE_BENCH(name) BENCHMARK(name)->Unit(benchmark::kMillisecond)
VORN_TREE_BENCH(GT_TreeInsert);
VORN_TREE_BENCH(GTree_TreeInsert);
VORN_TREE_BENCH(StdMultisetFn_TreeInsert);
VORN_TREE_BENCH(StdMultisetInl_TreeInsert);
VORN_TREE_BENCH(BsdRb_TreeInsert);
VORN_TREE_BENCH(GT_TreeLookup);
VORN_TREE_BENCH(GTree_TreeLookup);
VORN_TREE_BENCH(StdMultisetFn_TreeLookup);
VORN_TREE_BENCH(StdMultisetInl_TreeLookup);
VORN_TREE_BENCH(BsdRb_TreeLookup);
VORN_TREE_BENCH(GT_TreeWalk);
VORN_TREE_BENCH(GT_TreeWalkLinks);
VORN_TREE_BENCH(GTree_TreeWalk);
VORN_TREE_BENCH(StdMultisetFn_TreeWalk);
VORN_TREE_BENCH(StdMultisetInl_TreeWalk);
VORN_TREE_BENCH(BsdRb_TreeWalk);
VORN_TREE_BENCH(GT_TreeRemoveAt);
VORN_TREE_BENCH(GTree_TreeRemoveAt);
VORN_TREE_BENCH(StdMultisetFn_TreeRemoveAt);
VORN_TREE_BENCH(StdMultisetInl_TreeRemoveAt);
VORN_TREE_BENCH(BsdRb_TreeRemoveAt);
