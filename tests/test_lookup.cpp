// The lookups: HSH's invariants over the public arrays under random
// operations against a reference map, the exact layout a removal repair
// leaves, and the growth and shrink sizes; io_lut's identifier rules and
// failure lines as one table of cases; vorn_lu against a reference slot and
// map.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
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

// ---- io_lut: the identifier rules and failure lines of both kinds of table,
// then the creation shapes and the walk's snapshot.
using vorn_test::Raised;

void *p(uintptr_t v) { return reinterpret_cast<void *>(v * 64); }  // aligned like objects
constexpr intptr_t kNull = 0;

enum Kind { kRead, kOverwrite, kWrite };

struct Case {
    const char *what;
    Kind kind;
    std::function<intptr_t(io_lut_table *)> run;  // gives the result checked
    intptr_t result;                               // unused when a raise is expected
    std::optional<Raised> raise;
};

intptr_t as_int(void *v) { return reinterpret_cast<intptr_t>(v); }
Raised plut(int32_t line) { return {"plut", line, line == 85 ? 4297 : 4397}; }

const std::vector<Case> &cases() {
    static const std::vector<Case> all = {
        // read tables
        {"read: first add 1, next 2", kRead, [](auto t) { io_lut_add(t, p(1)); return io_lut_add(t, p(2)); }, 2, {}},
        {"read: get_id on a new table", kRead, [](auto t) { return io_lut_get_id(t, p(1)); }, 0, plut(201)},
        {"read: get_ptr 0", kRead, [](auto t) { io_lut_add(t, p(1)); return as_int(io_lut_get_ptr(t, 0)); }, 0, plut(105)},
        {"read: look_ptr 0, -1, nitems", kRead,
         [](auto t) { io_lut_add(t, p(1)); return as_int(io_lut_look_ptr(t, 0)) | as_int(io_lut_look_ptr(t, -1)) | as_int(io_lut_look_ptr(t, 2)); },
         kNull, {}},
        {"read: get_ptr of a removed pointer", kRead,
         [](auto t) { io_lut_add(t, p(1)); io_lut_add(t, p(2)); io_lut_remove(t, p(1)); return as_int(io_lut_get_ptr(t, 1)); }, 0, plut(105)},
        {"read: set at 10 of 3 slots leaves holes 3 to 9", kRead,
         [](auto t) { io_lut_add(t, p(1)); io_lut_add(t, p(2)); io_lut_set(t, p(3), 10);
                      return intptr_t{t->pointers->nitems} * 100 + io_lut_look_id(t, nullptr); }, 1103, {}},
        {"read: a non-null pointer into a hole", kRead,
         [](auto t) { io_lut_set(t, p(3), 10); io_lut_set(t, p(4), 5); return intptr_t{0}; }, 0, plut(85)},
        {"read: null into a hole", kRead, [](auto t) { io_lut_set(t, p(3), 10); io_lut_set(t, nullptr, 5); return io_lut_look_id(t, p(3)); }, 10, {}},
        {"read: a different pointer over a slot", kRead, [](auto t) { io_lut_add(t, p(1)); io_lut_set(t, p(2), 1); return intptr_t{0}; }, 0, plut(85)},
        {"read: negative id changes nothing", kOverwrite, [](auto t) { io_lut_set(t, p(2), -4); return intptr_t{t->pointers->nitems}; }, 1, {}},
        {"read: get_id of null finds the first hole", kRead,
         [](auto t) { io_lut_add(t, p(1)); io_lut_add(t, nullptr); io_lut_add(t, nullptr); return io_lut_get_id(t, nullptr); }, 2, {}},
        {"read: get_id of null without a hole", kRead, [](auto t) { io_lut_add(t, p(1)); return io_lut_get_id(t, nullptr); }, 0, plut(201)},
        {"read: two slots, the lower wins and goes first", kRead,
         [](auto t) { io_lut_add(t, p(1)); io_lut_add(t, p(1)); intptr_t low = io_lut_get_id(t, p(1));
                      io_lut_remove(t, p(1)); return low * 10 + io_lut_get_id(t, p(1)); }, 12, {}},
        {"overwrite: set replaces a slot", kOverwrite,
         [](auto t) { io_lut_add(t, p(1)); io_lut_set(t, p(2), 1); return io_lut_look_id(t, p(1)) * 10 + io_lut_look_id(t, p(2)); }, 1, {}},
        {"overwrite: slot 0 stays out of sight", kOverwrite,
         [](auto t) { io_lut_set(t, p(2), 0); return io_lut_look_id(t, p(2)) + as_int(io_lut_look_ptr(t, 0)); }, 0, {}},
        // write tables
        {"write: add of null uses an identifier up", kWrite,
         [](auto t) { intptr_t id = io_lut_add(t, nullptr); return id * 100 + io_lut_look_id(t, nullptr) * 10 + io_lut_add(t, p(1)); }, 102, {}},
        {"write: set 10 then add", kWrite, [](auto t) { io_lut_set(t, p(1), 10); return io_lut_add(t, p(2)); }, 11, {}},
        {"write: set below next_id keeps it", kWrite,
         [](auto t) { io_lut_set(t, p(1), 10); io_lut_add(t, p(2)); io_lut_set(t, p(3), 3); return io_lut_add(t, p(4)) * 100 + io_lut_get_id(t, p(3)); }, 1203, {}},
        {"write: set of null stores nothing, next_id rises", kWrite,
         [](auto t) { io_lut_set(t, nullptr, 5); return t->identifiers->count * 100 + io_lut_add(t, p(1)); }, 6, {}},
        {"write: get_id after a set at id 0", kWrite, [](auto t) { io_lut_set(t, p(1), 0); return io_lut_get_id(t, p(1)); }, 0, plut(210)},
        {"write: get_id of an absent pointer", kWrite, [](auto t) { io_lut_add(t, p(1)); return io_lut_get_id(t, p(2)); }, 0, plut(210)},
        {"write: a second add replaces the identifier", kWrite, [](auto t) { io_lut_add(t, p(1)); io_lut_add(t, p(1)); return io_lut_get_id(t, p(1)); }, 2, {}},
        {"write: remove keeps next_id", kWrite,
         [](auto t) { io_lut_add(t, p(1)); io_lut_remove(t, p(1)); return io_lut_look_id(t, p(1)) * 10 + io_lut_add(t, p(1)); }, 2, {}},
        {"write: pointer lookups miss", kWrite,
         [](auto t) { io_lut_add(t, p(1)); io_lut_iter it = io_lut_all_items(t); return as_int(io_lut_look_ptr(t, 1)) + as_int(io_lut_next_item(&it)); }, kNull, {}},
    };
    return all;
}

class IoLut : public LeakChecked {};

TEST_F(IoLut, IdentifierRulesAndFailureLines) {
    for (const Case &c : cases()) {
        SCOPED_TRACE(c.what);
        io_lut_table *t = c.kind == kWrite ? io_lut_create_write() : io_lut_create_read(c.kind == kOverwrite);
        intptr_t got = -1;
        auto raised = vorn_test::catch_raise([&] { got = c.run(t); });
        EXPECT_EQ(vorn_test::describe(raised), vorn_test::describe(c.raise));
        if (!c.raise) {
            EXPECT_EQ(got, c.result);
        }
        io_lut_release(&t);
        EXPECT_EQ(t, nullptr);
    }
}

TEST_F(IoLut, CreationShapesAndTheWalkSnapshot) {
    io_lut_table *r = io_lut_create(), *w = io_lut_create_write();
    EXPECT_EQ((std::vector<intptr_t>{r->read_table, r->overwrite, r->pointers->item_size, r->pointers->nitems,
                                     r->pointers->nalloc, as_int(r->identifiers)}),
              (std::vector<intptr_t>{1, 0, sizeof(void *), 1, 1024, 0}));
    EXPECT_EQ((std::vector<intptr_t>{w->read_table, as_int(w->pointers), w->next_id, w->identifiers->size,
                                     w->identifiers->shift}),
              (std::vector<intptr_t>{0, 0, 1, 1024, 5}));
    io_lut_iter it = io_lut_all_items(r);
    EXPECT_EQ(io_lut_next_item(&it), nullptr);
    for (uintptr_t i : {0, 2, 3, 0, 5}) io_lut_add(r, i ? p(i) : nullptr);
    it = io_lut_all_items(r);
    EXPECT_EQ((std::vector<intptr_t>{it.count, it.position}), (std::vector<intptr_t>{6, 1}));
    EXPECT_EQ(io_lut_next_item(&it), p(2));
    io_lut_remove(r, p(3));  // harmless: the hole is passed over
    io_lut_add(r, p(6));     // beyond the snapshot's count
    EXPECT_EQ(io_lut_next_item(&it), p(5));
    EXPECT_EQ(io_lut_next_item(&it), nullptr);
    EXPECT_EQ(io_lut_next_item(&it), nullptr);
    for (uintptr_t i = 7; i <= 1024; ++i) ASSERT_EQ(io_lut_add(r, p(i)), static_cast<int32_t>(i));
    EXPECT_EQ(r->pointers->nalloc, 2048);  // grows by steps of 1024 identifiers
    io_lut_release(&r);
    io_lut_release(&w);
    io_lut_release(&w);  // a handle holding null is left alone
}

// ---- vorn_lu: where each entry lives (slot or table) after each operation,
// and the order in which the operations look at both places (the table's
// own order is its walk's).
using Words = std::vector<void *>;
using Map = std::map<void *, void *>;

Words g_seen;
void record_value(void *v) { g_seen.push_back(v); }
void record_address(void **a) { g_seen.push_back(*a); }

class Lu : public vorn_test::LeakChecked {};

TEST_F(Lu, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 40; ++seed) {
        vorn_test::Rng rng(seed);
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
        for (int op = 0; op < 500; ++op) {
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
        const Words want = seed % 4 ? values() : (g_seen.clear(), Words());
        vorn_lu_release(&lu, seed % 4 ? record_address : nullptr);  // without a callback too
        EXPECT_EQ(g_seen, want);
        vorn_lu_release(&lu, nullptr);  // a handle holding null does nothing
    }
}

}  // namespace
