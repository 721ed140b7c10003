// The lookups: HSH's invariants, growth and shrink points over the public
// arrays under random operations against a reference map, and the exact
// layout a removal repair leaves; io_lut's identifier rules and failure
// lines as one table of cases; vorn_lu against a reference slot and map.

#include "model_lookup.hpp"

namespace {

using namespace lookup_model;
using vorn_test::LeakChecked;

class HshModel : public LeakChecked {};

TEST_F(HshModel, RandomOperationsKeepTheInvariantsAndTheReference) {
    const struct { uint32_t min; int32_t shift; } shapes[] = {{0, 0},  {0, 5},  {64, 5},      {8, 31},
                                                              {16, -3}, {9, 5}, {1025, 40}, {100, -2}};
    Seen seen;  // what the keys exercised
    for (auto shape : shapes)
        vorn_test::for_seeds(4, 2000, [&](auto &rng) { run_hsh(rng, shape.min, shape.shift, seen); });
    EXPECT_GT(seen.wrapped, 0);
    EXPECT_GE(seen.largest, 256);
    EXPECT_GT(seen.shrinks, 0);
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

const std::vector<Case> &cases() {
    static const std::vector<Case> all = {
        // read tables
        {"read: first add 1, next 2", kRead, [](auto t) { io_lut_add(t, p(1)); return io_lut_add(t, p(2)); }, 2, {}},
        {"read: get_id on a new table", kRead, [](auto t) { return io_lut_get_id(t, p(1)); }, 0, vorn_test::raise_of(vorn::raises::IO_LUT_RAISE_READ_NO_ID)},
        {"read: get_ptr 0", kRead, [](auto t) { io_lut_add(t, p(1)); return as_int(io_lut_get_ptr(t, 0)); }, 0, vorn_test::raise_of(vorn::raises::IO_LUT_RAISE_NO_POINTER)},
        {"read: look_ptr 0, -1, nitems", kRead,
         [](auto t) { io_lut_add(t, p(1)); return as_int(io_lut_look_ptr(t, 0)) | as_int(io_lut_look_ptr(t, -1)) | as_int(io_lut_look_ptr(t, 2)); },
         kNull, {}},
        {"read: get_ptr of a removed pointer", kRead,
         [](auto t) { io_lut_add(t, p(1)); io_lut_add(t, p(2)); io_lut_remove(t, p(1)); return as_int(io_lut_get_ptr(t, 1)); }, 0, vorn_test::raise_of(vorn::raises::IO_LUT_RAISE_NO_POINTER)},
        {"read: set at 10 of 3 slots leaves holes 3 to 9", kRead,
         [](auto t) { io_lut_add(t, p(1)); io_lut_add(t, p(2)); io_lut_set(t, p(3), 10);
                      return intptr_t{t->pointers->nitems} * 100 + io_lut_look_id(t, nullptr); }, 1103, {}},
        {"read: a non-null pointer into a hole", kRead,
         [](auto t) { io_lut_set(t, p(3), 10); io_lut_set(t, p(4), 5); return intptr_t{0}; }, 0, vorn_test::raise_of(vorn::raises::IO_LUT_RAISE_SET_SLOT_TAKEN)},
        {"read: null into a hole", kRead, [](auto t) { io_lut_set(t, p(3), 10); io_lut_set(t, nullptr, 5); return io_lut_look_id(t, p(3)); }, 10, {}},
        {"read: a different pointer over a slot", kRead, [](auto t) { io_lut_add(t, p(1)); io_lut_set(t, p(2), 1); return intptr_t{0}; }, 0, vorn_test::raise_of(vorn::raises::IO_LUT_RAISE_SET_SLOT_TAKEN)},
        {"read: negative id changes nothing", kOverwrite, [](auto t) { io_lut_set(t, p(2), -4); return intptr_t{t->pointers->nitems}; }, 1, {}},
        {"read: get_id of null finds the first hole", kRead,
         [](auto t) { io_lut_add(t, p(1)); io_lut_add(t, nullptr); io_lut_add(t, nullptr); return io_lut_get_id(t, nullptr); }, 2, {}},
        {"read: get_id of null without a hole", kRead, [](auto t) { io_lut_add(t, p(1)); return io_lut_get_id(t, nullptr); }, 0, vorn_test::raise_of(vorn::raises::IO_LUT_RAISE_READ_NO_ID)},
        {"read: the walk is a snapshot of the count; holes and removed slots are passed over", kRead,
         [](auto t) { io_lut_iter it = io_lut_all_items(t);
                      void *none = io_lut_next_item(&it);
                      for (uintptr_t i : {0, 2, 3, 0, 5}) io_lut_add(t, i ? p(i) : nullptr);
                      it = io_lut_all_items(t);
                      const bool start = it.count == 6 && it.position == 1;  // slot 0 is passed over
                      void *a = io_lut_next_item(&it);
                      io_lut_remove(t, p(3)), io_lut_add(t, p(6));
                      void *b = io_lut_next_item(&it);
                      return intptr_t{!none && a == p(2) && b == p(5) && !io_lut_next_item(&it) && !io_lut_next_item(&it) && start}; }, 1, {}},
        {"read: grows by steps of 1024 identifiers", kRead,
         [](auto t) { for (uintptr_t i = 1; i <= 1024; ++i) io_lut_add(t, p(i)); return intptr_t{t->pointers->nalloc}; }, 2048, {}},
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
        {"write: get_id after a set at id 0", kWrite, [](auto t) { io_lut_set(t, p(1), 0); return io_lut_get_id(t, p(1)); }, 0, vorn_test::raise_of(vorn::raises::IO_LUT_RAISE_WRITE_NO_ID)},
        {"write: get_id of an absent pointer", kWrite, [](auto t) { io_lut_add(t, p(1)); return io_lut_get_id(t, p(2)); }, 0, vorn_test::raise_of(vorn::raises::IO_LUT_RAISE_WRITE_NO_ID)},
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
        io_lut_table *t = c.kind == kWrite ? io_lut_create_write() : c.kind == kRead ? io_lut_create() : io_lut_create_read(1);
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

TEST_F(IoLut, CreationShapes) {
    io_lut_table *r = io_lut_create(), *w = io_lut_create_write();
    EXPECT_EQ((std::vector<intptr_t>{r->read_table, r->overwrite, r->pointers->item_size, r->pointers->nitems,
                                     r->pointers->nalloc, as_int(r->identifiers)}),
              (std::vector<intptr_t>{1, 0, sizeof(void *), 1, 1024, 0}));
    EXPECT_EQ((std::vector<intptr_t>{w->read_table, as_int(w->pointers), w->next_id, w->identifiers->size,
                                     w->identifiers->shift}),
              (std::vector<intptr_t>{0, 0, 1, 1024, 5}));
    io_lut_release(&r);
    io_lut_release(&w);
    io_lut_release(&w);  // a handle holding null is left alone
}

class Lu : public vorn_test::LeakChecked {};

TEST_F(Lu, RandomOperationsFollowTheReference) {
    vorn_test::for_seeds(40, 500, [](auto &rng) { run_lu(rng); });
}

}  // namespace
