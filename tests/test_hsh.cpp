// HSH: invariants over the public arrays, a slot-for-slot model of the probing
// and repair rules under random operations, and the growth and shrink sizes.
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
    // run[s]: occupied slots in a row ending at s.  A key is reachable when
    // its home lies within the run that ends at its slot.
    std::vector<uint32_t> run(t->size, 0);
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
    ASSERT_LE(t->count, t->high_limit);
}

// The probing, growth and removal rules as plainly as they can be said: a
// removal takes each entry of the run out and puts it back by a fresh probe.
struct Model {
    uint32_t min_size = 8, size = 0, mask = 0, count = 0;
    int32_t wanted, shift = 0;
    std::vector<void *> keys, values;
    Model(uint32_t min, int32_t sh) : wanted(sh) {
        while (min_size < min) min_size *= 2;
        prepare(min_size);
    }
    void prepare(uint32_t s) {
        int32_t log2 = 0;
        while ((1u << log2) < s) ++log2;
        size = s, mask = s - 1, count = 0, shift = std::min(std::max(wanted, 0), 32 - log2);
        keys.assign(s, nullptr), values.assign(s, nullptr);
    }
    uint32_t high() const { return size * 7 / 8; }
    uint32_t low() const { return size > min_size ? size / 4 : 0; }
    int64_t locate(void *k, bool create) {
        for (;;) {
            uint32_t i = (static_cast<uint32_t>(reinterpret_cast<uintptr_t>(k)) >> shift) & mask;
            for (; keys[i]; i = (i + 1) & mask)
                if (keys[i] == k) return i;
            if (!create) return -1;
            if (count < high()) return ++count, keys[i] = k, i;
            resize(size * 2);
        }
    }
    void resize(uint32_t w) {
        auto ok = keys, ov = values;
        uint32_t s = 8;
        while (s < w || s < min_size || s < count + 1) s *= 2;
        prepare(s);
        for (size_t i = 0; i < ok.size(); ++i)
            if (ok[i]) values[locate(ok[i], true)] = ov[i];
    }
    void set(void *k, void *v) {
        if (k) values[locate(k, true)] = v;
    }
    void remove(void *k) {
        int64_t h = locate(k, false);
        if (h < 0) return;
        keys[h] = nullptr, --count;
        if (count < low()) return resize(size / 2);
        uint32_t e = (h + 1) & mask;
        while (keys[e]) e = (e + 1) & mask;
        const uint32_t tail = (e - 1) & mask;
        for (uint32_t i = tail; i != h;) {
            void *k2 = keys[i], *v2 = values[i];
            keys[i] = nullptr, --count;
            int64_t j = locate(k2, true);
            values[j] = v2;
            if (j == i) i = (i - 1) & mask;
            else h = i, i = tail;
        }
    }
};

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

TEST_F(HshModel, RandomOperationsMatchTheModelSlotForSlot) {
    const struct { uint32_t min; int32_t shift; } shapes[] = {{0, 0}, {0, 5}, {64, 5}, {8, 31}, {16, -3}};
    int64_t wrapped = 0, largest = 0, shrinks = 0;  // what the keys exercised
    for (auto shape : shapes) {
        for (uint64_t seed = 1; seed <= 4; ++seed) {
            Rng rng(seed * 131 + shape.min + static_cast<uint64_t>(shape.shift + 7));
            HSH_table *t = HSH_create(shape.min, shape.shift);
            Model m(shape.min, shape.shift);
            std::map<void *, void *> ref;
            for (int op = 0; op < 2000; ++op) {
                const bool filling = (op / 500) % 2 == 0;
                void *k = pick_key(rng, m.shift);
                void *v = word(rng.below(5));  // 0 occurs as a stored value
                const uint32_t what = rng.below(100);
                const int32_t before = t->size;
                if (what < (filling ? 55u : 20u)) {
                    ASSERT_EQ(HSH_set_value(t, k, v), k ? v : nullptr);
                    m.set(k, v);
                    if (k) ref[k] = v;
                } else if (what < 80) {
                    if (!ref.empty() && rng.chance(70))  // mostly keys present
                        k = std::next(ref.begin(), rng.below(static_cast<uint32_t>(ref.size())))->first;
                    HSH_remove_entry(t, k);
                    m.remove(k);
                    ref.erase(k);
                } else {
                    ASSERT_EQ(HSH_contains_key(t, k), ref.count(k) ? 1 : 0);
                    ASSERT_EQ(HSH_get_value(t, k), ref.count(k) ? ref[k] : nullptr);
                }
                check_invariants(t);
                shrinks += t->size < before;
                largest = std::max<int64_t>(largest, t->size);
                for (uint32_t s = 0; s < 4; ++s) wrapped += t->keys[s] && home(t, t->keys[s]) > s;
                ASSERT_EQ(t->size, static_cast<int32_t>(m.size)) << "op " << op;
                ASSERT_EQ(std::vector<void *>(t->keys, t->keys + t->size), m.keys) << "op " << op;
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

TEST_F(Hsh, SizesLimitsAndShiftByMinimum) {
    const struct { uint32_t min; int32_t shift; int32_t size, high, low, in_force; } rows[] = {
        {0, 0, 8, 7, 0, 0},       {1, 5, 8, 7, 0, 5},         {8, 31, 8, 7, 0, 29},
        {9, 5, 16, 14, 0, 5},     {1024, 5, 1024, 896, 0, 5}, {1025, 40, 2048, 1792, 0, 21},
        {100, -2, 128, 112, 0, 0},
    };
    for (auto r : rows) {
        HSH_table *t = HSH_create(r.min, r.shift);
        EXPECT_EQ(t->min_size, r.size);
        EXPECT_EQ(t->size, r.size);
        EXPECT_EQ(t->high_limit, r.high);
        EXPECT_EQ(t->low_limit, r.low);
        EXPECT_EQ(t->shift, r.in_force);
        EXPECT_EQ(t->wanted_shift, r.shift);
        HSH_release(&t);
    }
}

TEST_F(Hsh, GrowsAtSevenEighthsAndShrinksBelowAQuarterDownToTheMinimum) {
    HSH_table *t = HSH_create(0, 0);
    for (uintptr_t k = 1; k <= 7; ++k) HSH_set_value(t, word(k), word(k));
    EXPECT_EQ(t->size, 8);
    HSH_set_value(t, word(3), word(30));  // a replacement never grows
    EXPECT_EQ(t->size, 8);
    HSH_set_value(t, word(8), word(8));
    EXPECT_EQ(t->size, 16);
    EXPECT_EQ(t->low_limit, 4);
    for (uintptr_t k = 8; k >= 5; --k) HSH_remove_entry(t, word(k));  // leaves 4
    EXPECT_EQ(t->size, 16);
    HSH_remove_entry(t, word(4));  // leaves 3, below 4
    EXPECT_EQ(t->size, 8);
    EXPECT_EQ(t->low_limit, 0);
    EXPECT_EQ(HSH_get_value(t, word(3)), word(30));
    for (uintptr_t k = 1; k <= 3; ++k) HSH_remove_entry(t, word(k));
    EXPECT_EQ(t->size, 8);
    EXPECT_EQ(t->count, 0);
    HSH_release(&t);

    t = HSH_create(8, 31);  // the field sits at the top of the word at every size
    EXPECT_EQ(t->shift, 29);
    for (uintptr_t k = 1; k <= 8; ++k) HSH_set_value(t, word(k << 28), word(k));
    EXPECT_EQ(t->shift, 28);
    for (uintptr_t k = 1; k <= 8; ++k) EXPECT_EQ(t->keys[k], word(k << 28));
    HSH_release(&t);
}

TEST_F(Hsh, KeyZeroStoredZeroAndWalks) {
    HSH_table *t = HSH_create(0, 0);
    HSH_iter it = HSH_all_entries(t);
    EXPECT_EQ(it.index, 8);
    void *k = word(77), *v = word(77);
    EXPECT_EQ(HSH_next(&it, &k, &v), 0);
    EXPECT_EQ(k, word(77));
    EXPECT_EQ(HSH_set_value(t, nullptr, word(5)), nullptr);
    EXPECT_EQ(t->count, 0);
    HSH_set_value(t, word(9), nullptr);
    EXPECT_EQ(HSH_get_value(t, nullptr), nullptr);
    EXPECT_EQ(HSH_contains_key(t, nullptr), 0);
    HSH_remove_entry(t, nullptr);
    EXPECT_EQ(HSH_get_value(t, word(9)), nullptr);
    EXPECT_EQ(HSH_contains_key(t, word(9)), 1);
    it = HSH_all_entries(t);
    EXPECT_EQ(it.index, 0);
    EXPECT_EQ(HSH_next(&it, nullptr, nullptr), 1);
    EXPECT_EQ(it.index, 2);
    EXPECT_EQ(HSH_next(&it, &k, &v), 0);
    EXPECT_EQ(it.index, 8);
    HSH_release(&t);
    HSH_release(&t);  // a handle holding null is left alone
}

}  // namespace
