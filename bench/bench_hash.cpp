// Hash tables of 1,000,000 word keys, of two kinds: aligned pointer-like
// words (addresses of 32-byte objects; HSH with shift 5 skips the alignment
// bits) and random words (shift 0).  Set, get hit, get miss, remove.  HSH
// against GHashTable (g_direct_hash), std::unordered_map and uthash.
#include <glib.h>
#include <uthash.h>

#include <algorithm>
#include <random>
#include <unordered_map>

#include "bench_common.hpp"
#include "vorn_container.h"

namespace {

constexpr int64_t kItems = 1000000;

struct KeySet {
    std::vector<void *> hit, miss;
    int32_t shift;
};

// Addresses of 32-byte objects taken in random order; the misses are the
// addresses of a second array of such objects.
const KeySet &ptr_keys() {
    static const KeySet ks = [] {
        KeySet k;
        k.shift = 5;
        static struct alignas(32) Obj { char bytes[32]; } *objs = new Obj[2 * kItems];
        for (int64_t i = 0; i < kItems; ++i) {
            k.hit.push_back(&objs[i]);
            k.miss.push_back(&objs[kItems + i]);
        }
        std::mt19937_64 rng(3);
        std::shuffle(k.hit.begin(), k.hit.end(), rng);
        std::shuffle(k.miss.begin(), k.miss.end(), rng);
        return k;
    }();
    return ks;
}

const KeySet &rand_keys() {
    static const KeySet ks = [] {
        KeySet k;
        k.shift = 0;
        for (int64_t i = 0; i < kItems; ++i) {
            k.hit.push_back(reinterpret_cast<void *>(vorn_bench::mix(2 * i + 11) | 1));
            k.miss.push_back(reinterpret_cast<void *>(vorn_bench::mix(2 * i + 12) | 1));
        }
        return k;
    }();
    return ks;
}

// ---- the contenders, behind one small face each ----
struct Hsh {
    static constexpr bool ours = true;
    HSH_table *t;
    explicit Hsh(const KeySet &k) : t(HSH_create(8, k.shift)) {}
    ~Hsh() { HSH_release(&t); }
    void set(void *k) { HSH_set_value(t, k, k); }
    bool get(void *k) { return HSH_get_value(t, k) != nullptr; }
    void remove(void *k) { HSH_remove_entry(t, k); }
};

struct GHash {
    static constexpr bool ours = false;
    GHashTable *t;
    explicit GHash(const KeySet &) : t(g_hash_table_new(g_direct_hash, g_direct_equal)) {}
    ~GHash() { g_hash_table_destroy(t); }
    void set(void *k) { g_hash_table_insert(t, k, k); }
    bool get(void *k) { return g_hash_table_lookup(t, k) != nullptr; }
    void remove(void *k) { g_hash_table_remove(t, k); }
};

struct StdUMap {
    static constexpr bool ours = false;
    std::unordered_map<void *, void *> m;
    explicit StdUMap(const KeySet &) {}
    void set(void *k) { m[k] = k; }
    bool get(void *k) {
        auto i = m.find(k);
        return i != m.end() && i->second;
    }
    void remove(void *k) { m.erase(k); }
};

struct UtEntry {
    void *key;
    void *value;
    UT_hash_handle hh;
};
struct Uthash {
    static constexpr bool ours = false;
    UtEntry *head = nullptr;
    explicit Uthash(const KeySet &) {}
    ~Uthash() {
        UtEntry *e, *tmp;
        HASH_ITER(hh, head, e, tmp) {
            HASH_DEL(head, e);
            free(e);
        }
    }
    void set(void *k) {
        UtEntry *e;
        HASH_FIND_PTR(head, &k, e);
        if (!e) {
            e = static_cast<UtEntry *>(malloc(sizeof(UtEntry)));
            e->key = k;
            HASH_ADD_PTR(head, key, e);
        }
        e->value = k;
    }
    bool get(void *k) {
        UtEntry *e;
        HASH_FIND_PTR(head, &k, e);
        return e && e->value;
    }
    void remove(void *k) {
        UtEntry *e;
        HASH_FIND_PTR(head, &k, e);
        if (e) {
            HASH_DEL(head, e);
            free(e);
        }
    }
};

int64_t bytes_now(bool ours) { return ours ? MM_bytes_in_use() : vorn_bench::heap_bytes(); }

template <class T, const KeySet &(*Keys)()> void Set(benchmark::State &state) {
    const KeySet &k = Keys();
    for (auto _ : state) {
        const int64_t before = bytes_now(T::ours);
        auto *t = new T(k);
        for (void *key : k.hit) t->set(key);
        state.PauseTiming();
        if (T::ours)
            vorn_bench::report_mm_bytes(state, before, kItems);
        else
            vorn_bench::report_bytes(state, before, kItems);
        delete t;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

template <class T, const KeySet &(*Keys)(), bool Hit> void Get(benchmark::State &state) {
    const KeySet &k = Keys();
    auto *t = new T(k);
    for (void *key : k.hit) t->set(key);
    const std::vector<void *> &probe = Hit ? k.hit : k.miss;
    for (auto _ : state) {
        int64_t found = 0;
        for (void *key : probe) found += t->get(key);
        benchmark::DoNotOptimize(found);
    }
    delete t;
    state.SetItemsProcessed(state.iterations() * kItems);
}

template <class T, const KeySet &(*Keys)()> void Remove(benchmark::State &state) {
    const KeySet &k = Keys();
    for (auto _ : state) {
        state.PauseTiming();
        auto *t = new T(k);
        for (void *key : k.hit) t->set(key);
        state.ResumeTiming();
        for (void *key : k.hit) t->remove(key);
        state.PauseTiming();
        delete t;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

}  // namespace

#define VORN_HASH_BENCH(contender, T, kind, keys)                                           \
    BENCHMARK(Set<T, keys>)->Name(#contender "_Set" #kind)->Unit(benchmark::kMillisecond);  \
    BENCHMARK(Get<T, keys, true>)                                                          \
        ->Name(#contender "_GetHit" #kind)                                                 \
        ->Unit(benchmark::kMillisecond);                                                   \
    BENCHMARK(Get<T, keys, false>)                                                         \
        ->Name(#contender "_GetMiss" #kind)                                                \
        ->Unit(benchmark::kMillisecond);                                                   \
    BENCHMARK(Remove<T, keys>)->Name(#contender "_Remove" #kind)->Unit(benchmark::kMillisecond)

VORN_HASH_BENCH(HSH, Hsh, Ptr, ptr_keys);
VORN_HASH_BENCH(GHashTable, GHash, Ptr, ptr_keys);
VORN_HASH_BENCH(StdUnorderedMap, StdUMap, Ptr, ptr_keys);
VORN_HASH_BENCH(Uthash, Uthash, Ptr, ptr_keys);
VORN_HASH_BENCH(HSH, Hsh, Rand, rand_keys);
VORN_HASH_BENCH(GHashTable, GHash, Rand, rand_keys);
VORN_HASH_BENCH(StdUnorderedMap, StdUMap, Rand, rand_keys);
VORN_HASH_BENCH(Uthash, Uthash, Rand, rand_keys);
