// The lookups against references, each driver a template over its source of
// choices (vorn_test::Rng under GoogleTest, vorn_test::Bytes under
// libFuzzer): HSH keeps every invariant of its record and arrays (the probe
// run rule: no empty slot between a key's home and its place; the limits;
// growth and shrink exactly at the limits) and the contents of a reference map under keys
// that collide on purpose; vorn_lu keeps each entry in its slot or its table
// as a reference slot and map say, and looks at both in the stated order.
#pragma once

#include "support.hpp"

namespace lookup_model {

inline void *word(uint64_t v) { return reinterpret_cast<void *>(static_cast<uintptr_t>(v)); }
inline uint32_t home(const HSH_table *t, void *k) {
    return (static_cast<uint32_t>(reinterpret_cast<uintptr_t>(k)) >> t->shift) & t->mask;
}

// Everything the table guarantees about its own record and arrays.
inline void check_invariants(const HSH_table *t) {
    int32_t log2 = 0;
    while ((1 << log2) < t->size) ++log2;
    ASSERT_EQ(t->size, 1 << log2);
    ASSERT_GE(t->size, 8);
    ASSERT_GE(t->size, t->min_size);
    ASSERT_EQ(t->mask, static_cast<uint32_t>(t->size - 1));
    ASSERT_EQ(t->shift, std::min(std::max(t->wanted_shift, 0), 32 - log2));
    ASSERT_EQ(t->high_limit, t->size * 7 / 8);
    ASSERT_EQ(t->low_limit, t->size > t->min_size ? t->size / 4 : 0);
    // Walking from an empty slot, `len` counts the occupied slots in a row up
    // to s: a key is reachable when its home lies within that run.
    uint32_t start = 0;
    while (t->keys[start]) ++start;  // an empty slot always exists
    std::vector<void *> present;
    for (uint32_t n = 1, len = 0; n <= t->mask + 1; ++n) {
        const uint32_t s = (start + n) & t->mask;
        void *k = t->keys[s];
        len = k ? len + 1 : 0;
        if (!k) continue;
        present.push_back(k);
        ASSERT_LT((s - home(t, k)) & t->mask, len) << "empty slot between home and place";
    }
    std::sort(present.begin(), present.end());
    ASSERT_EQ(std::adjacent_find(present.begin(), present.end()), present.end()) << "key twice";
    ASSERT_EQ(t->count, static_cast<int32_t>(present.size()));
    ASSERT_LE(t->count, t->high_limit);  // grown in time
    ASSERT_GE(t->count, t->low_limit);   // shrunk in time
}

// Keys that collide on purpose: a few home fields, runs that start at the
// last slots and wrap, noise below the shift, high bits set (bit 31, and on
// 64-bit hosts bits above 32, which the home slot ignores).
template <class R>
inline void *pick_key(R &rng, int32_t shift) {
    const uint64_t noise = shift ? rng.below(1u << shift) : 0;
    const uint64_t high = uint64_t{rng.below(16)} << 28;
    const uint64_t wide = sizeof(void *) > 4 && rng.chance(30) ? uint64_t{rng.below(4)} << 40 : 0;
    switch (rng.below(4)) {
        case 0: return word(0xFFFFFFFFull - (uint64_t{rng.below(6)} << shift) - noise + wide);
        case 1: return word((uint64_t{rng.below(6)} << shift) + noise + high + wide);
        case 2: return word(rng.chance(2) ? 0 : (rng.next() & 0xFFFFFFFFull) | 1);
        default: return word(((uint64_t{rng.below(300)} + 1) << shift) + noise + wide);
    }
}

// What the keys of the HSH driver exercised.
struct Seen {
    int64_t wrapped = 0, largest = 0, shrinks = 0;
};

template <class R>
inline void run_hsh(R &rng, uint32_t min, int32_t shift, Seen &seen) {
    HSH_table *t = HSH_create(min, shift);
    int32_t min_size = 8;  // the minimum rounded up to a power of two, at least 8
    while (min_size < int64_t{min}) min_size *= 2;
    ASSERT_EQ((std::vector<int32_t>{t->min_size, t->size, t->wanted_shift}), (std::vector<int32_t>{min_size, min_size, shift}));
    std::map<void *, void *> ref;
    for (int op = 0; rng.more(); ++op) {
        const bool filling = (op / 500) % 2 == 0;
        void *k = pick_key(rng, t->shift);
        void *v = word(rng.below(5));  // 0 occurs as a stored value
        const uint32_t what = rng.below(100);
        const int32_t before = t->size, count = t->count, high = t->high_limit, low = t->low_limit;
        if (what < (filling ? 55u : 20u)) {
            ASSERT_EQ(HSH_set_value(t, k, v), k ? v : nullptr);
            if (k) ref[k] = v;
        } else if (what < 80) {
            if (!ref.empty() && rng.chance(70))  // mostly keys present
                k = std::next(ref.begin(), rng.below(static_cast<uint32_t>(ref.size())))->first;
            HSH_remove_entry(t, k);
            ref.erase(k);
        } else {
            // the exported reads and the header's inline forms (where it has them) alike
            for (int32_t got : {(HSH_contains_key)(t, k), HSH_contains_key(t, k)}) ASSERT_EQ(got, ref.count(k) ? 1 : 0);
            for (void *got : {(HSH_get_value)(t, k), HSH_get_value(t, k)}) ASSERT_EQ(got, ref.count(k) ? ref[k] : nullptr);
        }
        check_invariants(t);
        // A new key doubles the table at the high limit; a removal halves it below the low limit.
        ASSERT_EQ(t->size, t->count > count && count >= high ? 2 * before : t->count < low ? before / 2 : before);
        seen.shrinks += t->size < before;
        seen.largest = std::max<int64_t>(seen.largest, t->size);
        for (uint32_t s = 0; s < 4; ++s) seen.wrapped += t->keys[s] && home(t, t->keys[s]) > s;
    }
    std::map<void *, void *> walked;
    HSH_iter it = HSH_all_entries(t), again = it;
    void *k, *v;
    while (HSH_next(&it, &k, &v)) ASSERT_TRUE(walked.emplace(k, v).second);
    ASSERT_EQ(walked, ref);
    k = v = word(77);
    ASSERT_EQ(HSH_next(&it, &k, &v), 0);
    ASSERT_EQ((std::pair{k, v}), (std::pair{word(77), word(77)}));  // an ended walk leaves them alone
    size_t n = 0;
    while (HSH_next(&again, nullptr, nullptr)) ++n;  // null out arguments are allowed
    ASSERT_EQ(n, ref.size());
    HSH_release(&t);
    ASSERT_EQ(t, nullptr);
    HSH_release(&t);  // a handle holding null is left alone
}

// ---- vorn_lu: where each entry lives (slot or table) after each operation,
// and the order in which the operations look at both places (the table's
// own order is its walk's).
using Words = std::vector<void *>;
using Map = std::map<void *, void *>;

inline Words g_seen;
inline void record_value(void *v) { g_seen.push_back(v); }
inline void record_address(void **a) { g_seen.push_back(*a); }

template <class R>
inline void run_lu(R &rng) {
    const bool with_callback = rng.chance(75);
    vorn_lu *lu = vorn_lu_create();
    ASSERT_EQ(lu->table->size, 8);
    void *slot_key = nullptr, *slot_value = nullptr;
    Map table;
    auto table_order = [&] {  // (key, value) in slot order
        std::vector<std::pair<void *, void *>> out;
        HSH_iter it = HSH_all_entries(lu->table);
        void *k, *v;
        while (HSH_next(&it, &k, &v)) out.emplace_back(k, v);
        return out;
    };
    auto values = [&] {  // the slot's value if not 0, then the table's, 0 included
        Words out;
        if (slot_value) out.push_back(slot_value);
        for (auto [tk, tv] : table_order()) out.push_back(tv);
        g_seen.clear();
        return out;
    };
    for (int op = 0; rng.more(); ++op) {
        void *k = word(rng.below(rng.chance(70) ? 6 : 48)), *v = word(rng.below(4));  // 0 occurs as both
        switch (rng.below(5)) {
            case 0:
            case 1:
                vorn_lu_add(lu, k, v);
                if (slot_key) table[slot_key] = slot_value;
                slot_key = k, slot_value = v;
                break;
            case 2:
                ASSERT_EQ(vorn_lu_get(lu, k), slot_key == k ? slot_value : table.count(k) ? table[k] : nullptr);
                break;
            case 3: {
                void *want = nullptr;
                if (slot_value && slot_value == v) want = slot_key;
                else
                    for (auto [tk, tv] : table_order())
                        if (tv == v && !want) want = tk;
                ASSERT_EQ(vorn_lu_find(lu, v), want);
                break;
            }
            default:
                vorn_lu_remove(lu, k);  // one place alone
                if (slot_key == k) slot_key = slot_value = nullptr;
                else table.erase(k);
        }
        ASSERT_EQ(lu->last_key, slot_key);
        ASSERT_EQ(lu->last_value, slot_value);
        const auto order = table_order();
        ASSERT_EQ(Map(order.begin(), order.end()), table);
        if (op % 50 == 0) {
            const Words want = values();
            vorn_lu_apply(lu, record_value);
            ASSERT_EQ(g_seen, want);
        }
    }
    vorn_lu_add(nullptr, word(1), word(1)), vorn_lu_remove(nullptr, word(1)), vorn_lu_apply(nullptr, record_value);
    vorn_lu_apply(lu, nullptr), vorn_lu_release(nullptr, nullptr);  // null arguments do nothing
    EXPECT_EQ(vorn_lu_get(nullptr, word(1)), nullptr);
    EXPECT_EQ(vorn_lu_find(nullptr, word(1)), nullptr);
    const Words want = with_callback ? values() : (g_seen.clear(), Words());
    vorn_lu_release(&lu, with_callback ? record_address : nullptr);  // without a callback too
    EXPECT_EQ(g_seen, want);
    vorn_lu_release(&lu, nullptr);  // a handle holding null does nothing
}

}  // namespace lookup_model
