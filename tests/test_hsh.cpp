// HSH: invariants over the public arrays under random operations against a
// reference map, the exact layout a removal repair leaves, and the growth and
// shrink sizes.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
using vorn_test::Rng;

void *word(uint64_t v) { return reinterpret_cast<void *>(static_cast<uintptr_t>(v)); }
uint32_t home(const HSH_table *t, void *k) {
    return (static_cast<uint32_t>(reinterpret_cast<uintptr_t>(k)) >> t->shift) & t->mask;
}

// Everything the table guarantees about its own record and arrays.
void check_invariants(const HSH_table *t) {
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
void *pick_key(Rng &rng, int32_t shift) {
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

class HshModel : public LeakChecked {};

TEST_F(HshModel, RandomOperationsKeepTheInvariantsAndTheReference) {
    const struct { uint32_t min; int32_t shift; } shapes[] = {{0, 0}, {0, 5}, {64, 5}, {8, 31}, {16, -3}};
    int64_t wrapped = 0, largest = 0, shrinks = 0;  // what the keys exercised
    for (auto shape : shapes) {
        for (uint64_t seed = 1; seed <= 4; ++seed) {
            Rng rng(seed * 131 + shape.min + static_cast<uint64_t>(shape.shift + 7));
            HSH_table *t = HSH_create(shape.min, shape.shift);
            std::map<void *, void *> ref;
            for (int op = 0; op < 2000; ++op) {
                const bool filling = (op / 500) % 2 == 0;
                void *k = pick_key(rng, t->shift);
                void *v = word(rng.below(5));  // 0 occurs as a stored value
                const uint32_t what = rng.below(100);
                const int32_t before = t->size;
                if (what < (filling ? 55u : 20u)) {
                    ASSERT_EQ(HSH_set_value(t, k, v), k ? v : nullptr);
                    if (k) ref[k] = v;
                } else if (what < 80) {
                    if (!ref.empty() && rng.chance(70))  // mostly keys present
                        k = std::next(ref.begin(), rng.below(static_cast<uint32_t>(ref.size())))->first;
                    HSH_remove_entry(t, k);
                    ref.erase(k);
                } else {
                    ASSERT_EQ(HSH_contains_key(t, k), ref.count(k) ? 1 : 0);
                    ASSERT_EQ(HSH_get_value(t, k), ref.count(k) ? ref[k] : nullptr);
                }
                check_invariants(t);
                shrinks += t->size < before;
                largest = std::max<int64_t>(largest, t->size);
                for (uint32_t s = 0; s < 4; ++s) wrapped += t->keys[s] && home(t, t->keys[s]) > s;
            }
            std::map<void *, void *> walked;
            HSH_iter it = HSH_all_entries(t);
            void *k, *v;
            while (HSH_next(&it, &k, &v)) ASSERT_TRUE(walked.emplace(k, v).second);
            ASSERT_EQ(walked, ref);
            ASSERT_EQ(HSH_next(&it, &k, &v), 0);
            HSH_release(&t);
            ASSERT_EQ(t, nullptr);
        }
    }
    EXPECT_GT(wrapped, 0);
    EXPECT_GE(largest, 256);
    EXPECT_GT(shrinks, 0);
}

class Hsh : public LeakChecked {};

// The repair goes backward from the tail of the run: the entry nearest the
// tail that can fill the hole does so first, then the scan starts over from
// the tail for the new hole.  (A forward repair gives other layouts here.)
TEST_F(Hsh, RemovalRepairLeavesTheBackwardLayout) {
    const uint64_t top = 0x80000000ull;  // the top bit never reaches the home slot at shift 0
    const struct { std::vector<uint64_t> keys; uint64_t removed; std::vector<uint64_t> layout; } rows[] = {
        // homes 6 6 7 6: a run that wraps past the end of the array
        {{6, 14, 7, 22 + top}, 6, {7, 0, 0, 0, 0, 0, 22 + top, 14}},
        // homes 2 2 3 5 3: the tail entry moves on the second pass
        {{2, 10, 3, 5 + top, 11}, 2, {0, 0, 10, 11, 3, 5 + top, 0, 0}},
    };
    for (const auto &r : rows) {
        HSH_table *t = HSH_create(0, 0);
        for (uint64_t k : r.keys) HSH_set_value(t, word(k), word(k));
        HSH_remove_entry(t, word(r.removed));
        check_invariants(t);
        for (int32_t s = 0; s < 8; ++s) {
            EXPECT_EQ(t->keys[s], word(r.layout[s])) << "slot " << s;
            EXPECT_TRUE(!t->keys[s] || t->values[s] == t->keys[s]);
        }
        HSH_release(&t);
    }
}

TEST_F(Hsh, SizesLimitsAndShiftByMinimum) {
    const struct { uint32_t min; int32_t shift; int32_t size, high, in_force; } rows[] = {
        {0, 0, 8, 7, 0}, {8, 31, 8, 7, 29}, {9, 5, 16, 14, 5}, {1025, 40, 2048, 1792, 21}, {100, -2, 128, 112, 0},
    };
    for (auto r : rows) {
        HSH_table *t = HSH_create(r.min, r.shift);
        EXPECT_EQ((std::vector<int32_t>{t->min_size, t->size, t->high_limit, t->low_limit, t->shift, t->wanted_shift}),
                  (std::vector<int32_t>{r.size, r.size, r.high, 0, r.in_force, r.shift}));
        HSH_release(&t);
    }
}

TEST_F(Hsh, GrowsAtSevenEighthsAndShrinksBelowAQuarterDownToTheMinimum) {
    HSH_table *t = HSH_create(0, 0);
    auto sizes = [&](std::vector<uintptr_t> keys, bool set) {  // the size after each key
        std::vector<int32_t> out;
        for (uintptr_t k : keys) {
            if (set) HSH_set_value(t, word(k), word(k));
            else HSH_remove_entry(t, word(k));
            out.push_back(t->size);
        }
        return out;
    };
    EXPECT_EQ(sizes({1, 2, 3, 4, 5, 6, 7, 3, 8}, true), (std::vector<int32_t>{8, 8, 8, 8, 8, 8, 8, 8, 16}));
    EXPECT_EQ(sizes({8, 7, 6, 5, 4, 3, 2, 1}, false), (std::vector<int32_t>{16, 16, 16, 16, 8, 8, 8, 8}));
    HSH_iter it = HSH_all_entries(t);
    void *k = word(77), *v = word(77);
    EXPECT_EQ(HSH_next(&it, &k, &v), 0);  // an empty table: the out arguments are left alone
    EXPECT_EQ(k, word(77));
    HSH_release(&t);
    HSH_release(&t);  // a handle holding null is left alone
    t = HSH_create(8, 31);  // the field sits at the top of the word at every size
    for (uintptr_t k = 1; k <= 8; ++k) HSH_set_value(t, word(k << 28), word(k));
    EXPECT_EQ(t->shift, 28);
    for (uintptr_t k = 1; k <= 8; ++k) EXPECT_EQ(t->keys[k], word(k << 28));
    HSH_set_value(t, word(9), nullptr);  // key and value 0 otherwise go through the model
    it = HSH_all_entries(t);
    int n = 0;
    while (HSH_next(&it, nullptr, nullptr)) ++n;  // null out arguments are allowed
    EXPECT_EQ(n, 9);
    HSH_release(&t);
}

}  // namespace
