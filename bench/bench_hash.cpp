// Hash tables of 1,000,000 word keys, of two kinds: aligned pointer-like
// words (addresses of 32-byte objects; HSH with shift 5 skips the alignment
// bits) and random words (shift 0).  Set, get hit, get miss, remove.  HSH
// against GHashTable (g_direct_hash), std::unordered_map and uthash.
//
// Dense aligned keys, HSH alone: the addresses of 300,000 objects of 32
// bytes in a row, set in address order and shuffled, looked up, and missed
// with random aligned words, under several minimum sizes and shifts.  The
// home slot is a field of the key's bits, so with shift 5 these keys' homes
// form one solid block: see the cost paragraph of vorn_hsh.h.
#include <glib.h>
#include <uthash.h>

#include <algorithm>
#include <random>
#include <unordered_map>

#include "bench_common.hpp"
#include "vorn_container.h"

namespace {

const int64_t kItems = vorn_bench::scaled(1000000);

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

// ---- dense aligned keys ----
const int64_t kDense = vorn_bench::scaled(300000);
const int64_t kDenseMisses = vorn_bench::scaled(2000);

struct DenseKeys {
    std::vector<void *> ordered, shuffled, miss;
};

const DenseKeys &dense_keys() {
    static const DenseKeys ks = [] {
        DenseKeys k;
        const uintptr_t base = uintptr_t{1} << 28;
        for (int64_t i = 0; i < kDense; ++i)
            k.ordered.push_back(reinterpret_cast<void *>(base + static_cast<uintptr_t>(i) * 32));
        k.shuffled = k.ordered;
        std::mt19937_64 rng(5);
        std::shuffle(k.shuffled.begin(), k.shuffled.end(), rng);
        // Aligned words whose homes spread over the whole table; none is a key.
        for (int64_t i = 0; i < kDenseMisses; ++i)
            k.miss.push_back(reinterpret_cast<void *>((vorn_bench::mix(i + 99) & ~uintptr_t{31}) | (uintptr_t{1} << 31)));
        return k;
    }();
    return ks;
}

enum DenseOp { kSetOrdered, kSetShuffled, kGetHit, kGetMiss };

template <uint32_t Min, int32_t Shift, DenseOp Op> void Dense(benchmark::State &state) {
    const DenseKeys &k = dense_keys();
    const std::vector<void *> &keys = Op == kSetOrdered ? k.ordered : k.shuffled;
    HSH_table *t = nullptr;
    if (Op == kGetHit || Op == kGetMiss) {
        t = HSH_create(Min, Shift);
        for (void *key : keys) HSH_set_value(t, key, key);
    }
    const std::vector<void *> &probe = Op == kGetMiss ? k.miss : keys;
    for (auto _ : vorn_bench::timed(state)) {
        if (Op == kSetOrdered || Op == kSetShuffled) {
            t = HSH_create(Min, Shift);
            for (void *key : keys) HSH_set_value(t, key, key);
            vorn_bench::pause(state);
            HSH_release(&t);
            vorn_bench::resume(state);
        } else {
            int64_t found = 0;
            for (void *key : probe) found += HSH_get_value(t, key) != nullptr;
            benchmark::DoNotOptimize(found);
        }
    }
    if (t) HSH_release(&t);
    vorn_bench::finish(state, static_cast<int64_t>(probe.size()));
}

template <class T, const KeySet &(*Keys)()> void Set(benchmark::State &state) {
    const KeySet &k = Keys();
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = vorn_bench::bytes_now(T::ours);
        auto *t = new T(k);
        for (void *key : k.hit) t->set(key);
        vorn_bench::pause(state);
        vorn_bench::report_built(state, T::ours, before, kItems);
        delete t;
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

template <class T, const KeySet &(*Keys)(), bool Hit> void Get(benchmark::State &state) {
    const KeySet &k = Keys();
    auto *t = new T(k);
    for (void *key : k.hit) t->set(key);
    const std::vector<void *> &probe = Hit ? k.hit : k.miss;
    for (auto _ : vorn_bench::timed(state)) {
        int64_t found = 0;
        for (void *key : probe) found += t->get(key);
        benchmark::DoNotOptimize(found);
    }
    delete t;
    vorn_bench::finish(state, kItems);
}

template <class T, const KeySet &(*Keys)()> void Remove(benchmark::State &state) {
    const KeySet &k = Keys();
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        auto *t = new T(k);
        for (void *key : k.hit) t->set(key);
        vorn_bench::resume(state);
        for (void *key : k.hit) t->remove(key);
        vorn_bench::pause(state);
        delete t;
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
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

#define VORN_DENSE_BENCH(min, shift)                                                                 \
    BENCHMARK(Dense<min, shift, kSetOrdered>)->Name("HSH_DenseSetOrdered_m" #min "s" #shift);        \
    BENCHMARK(Dense<min, shift, kSetShuffled>)->Name("HSH_DenseSetShuffled_m" #min "s" #shift);      \
    BENCHMARK(Dense<min, shift, kGetHit>)->Name("HSH_DenseGetHit_m" #min "s" #shift);                \
    BENCHMARK(Dense<min, shift, kGetMiss>)->Name("HSH_DenseGetMiss_m" #min "s" #shift)

VORN_DENSE_BENCH(1024, 5);
VORN_DENSE_BENCH(1024, 4);
VORN_DENSE_BENCH(1024, 3);
VORN_DENSE_BENCH(1024, 0);
VORN_DENSE_BENCH(1048576, 4);
