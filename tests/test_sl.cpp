// SL against a reference order, open and closed; walks; the release and copy
// callbacks; the two raised failures.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
using vorn_test::Rng;

struct Rec {
    Rec *prev;
    Rec *next;
    int32_t value;
};

void expect_list(SL_list *l, const std::vector<Rec *> &ref) {
    ASSERT_EQ(SL_count_items(l), l->count);
    vorn_test::expect_links(l->first, l->last, l->count, l->closed, ref);
}

int32_t value_of(void *r) { return static_cast<Rec *>(r)->value; }
int32_t is_even(void *r) { return static_cast<Rec *>(r)->value % 2 == 0; }
int32_t accept_none(void *) { return 0; }

std::vector<Rec *> walk(SL_iter it) {
    std::vector<Rec *> out;
    void *r;
    while (SL_next_item(&it, &r)) out.push_back(static_cast<Rec *>(r));
    return out;
}

TEST(SlModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 60; ++seed) {
        Rng rng(seed);
        std::vector<Rec> pool(48);
        for (size_t i = 0; i < pool.size(); ++i) pool[i] = Rec{nullptr, nullptr, int32_t(i)};
        SL_list *l = SL_create();
        std::vector<Rec *> ref;
        auto on_list = [&](Rec *r) { return std::find(ref.begin(), ref.end(), r) != ref.end(); };
        auto spare = [&]() -> Rec * {
            for (uint32_t tries = 0; tries < 8; ++tries) {
                Rec *r = &pool[rng.below(uint32_t(pool.size()))];
                if (!on_list(r)) return r;
            }
            return nullptr;
        };
        auto pick = [&] { return ref[rng.below(uint32_t(ref.size()))]; };
        auto at = [&](Rec *p) { return std::find(ref.begin(), ref.end(), p); };
        for (int op = 0; op < 300; ++op) {
            const int32_t size = int32_t(ref.size());
            const int32_t index = int32_t(rng.below(uint32_t(size + 3))) - 1;  // -1 .. count+1
            Rec *fresh = spare();
            switch (rng.below(15)) {
                case 0:
                    if (fresh) SL_append_after_last(l, fresh), ref.push_back(fresh);
                    break;
                case 1:
                    if (fresh) SL_insert_before_first(l, fresh), ref.insert(ref.begin(), fresh);
                    break;
                case 2:
                    if (fresh && size) {
                        Rec *p = pick();
                        SL_insert_after(l, p, fresh);
                        ref.insert(at(p) + 1, fresh);
                    }
                    break;
                case 3:
                    if (fresh && size) {
                        Rec *p = pick();
                        SL_insert_before(l, p, fresh);
                        ref.insert(at(p), fresh);
                    }
                    break;
                case 4:
                    if (fresh) {
                        const bool ok = index >= 0 && index < size;
                        *fresh = Rec{nullptr, nullptr, fresh->value};
                        if (rng.chance(50)) {
                            ASSERT_EQ(SL_insert_after_index(l, index, fresh), ok ? 1 : 0);
                            if (ok) ref.insert(ref.begin() + index + 1, fresh);
                        } else {
                            ASSERT_EQ(SL_insert_before_index(l, index, fresh), ok ? 1 : 0);
                            if (ok) ref.insert(ref.begin() + index, fresh);
                        }
                        if (!ok) {
                            ASSERT_TRUE(!fresh->prev && !fresh->next);  // untouched
                        }
                    }
                    break;
                case 5:  // unique: a record on the list, or a fresh one (open lists)
                    if (!l->closed) {
                        Rec *r = size && rng.chance(50) ? pick() : fresh;
                        if (!r) break;
                        if (!on_list(r)) ref.push_back(r);
                        SL_insert_unique(l, r);
                    }
                    break;
                case 6:
                case 7:
                    if (size) {
                        Rec *p = pick();
                        SL_remove_item(l, p);
                        ref.erase(at(p));
                        ASSERT_TRUE(!p->prev && !p->next);
                    }
                    break;
                case 8: {
                    const bool ok = index >= 0 && index < size;
                    Rec *p = ok ? ref[size_t(index)] : nullptr;
                    ASSERT_EQ(SL_pos_at_index(l, index), p);
                    ASSERT_EQ(SL_remove_at_index(l, index), ok ? 1 : 0);
                    if (ok) ref.erase(at(p));
                    break;
                }
                case 9:
                    if (l->closed) SL_reset_closed(l); else SL_set_closed(l);
                    break;
                case 10:
                    SL_reverse(l);
                    std::reverse(ref.begin(), ref.end());
                    break;
                case 11:
                    if (size && l->closed) {
                        Rec *p = pick();
                        SL_roll(l, p);
                        std::rotate(ref.begin(), at(p), ref.end());
                    }
                    break;
                case 12:
                    if (size) {
                        Rec *p = pick();
                        const int32_t i = int32_t(at(p) - ref.begin());
                        ASSERT_EQ(SL_get_index(l, p), i);
                        const int32_t steps = int32_t(rng.below(2 * uint32_t(size) + 1)) - size;
                        const int32_t to = i + steps;
                        Rec *want = l->closed ? ref[size_t(((to % size) + size) % size)]
                                              : (to >= 0 && to < size ? ref[size_t(to)] : nullptr);
                        ASSERT_EQ(SL_advance(nullptr, p, steps), want);
                    }
                    break;
                case 13: {  // append a list of spare records (both open)
                    if (l->closed) break;
                    SL_list *other = SL_create();
                    std::vector<Rec *> more;
                    for (uint32_t k = rng.below(4); k > 0; --k) {
                        Rec *r = spare();
                        if (!r || std::find(more.begin(), more.end(), r) != more.end()) continue;
                        SL_append_after_last(other, r);
                        more.push_back(r);
                    }
                    ASSERT_EQ(SL_append_list(l, &other), more.empty() ? nullptr : more.front());
                    ASSERT_EQ(other, nullptr);
                    ref.insert(ref.end(), more.begin(), more.end());
                    break;
                }
                case 14: {
                    int32_t sum = 0;
                    for (Rec *r : ref) sum += r->value;
                    ASSERT_EQ(SL_check(l, value_of), int32_t(sizeof(SL_list)) + sum);
                    ASSERT_EQ(walk(SL_all_items(l)), ref);
                    std::vector<Rec *> rev(ref.rbegin(), ref.rend());
                    ASSERT_EQ(walk(SL_all_items_reversed(l)), rev);
                    break;
                }
            }
            expect_list(l, ref);
        }
        SL_reset_closed(l);
        while (l->first) SL_remove_item(l, l->first);
        SL_release(&l);
        ASSERT_EQ(l, nullptr);
    }
}

// Walk openings against what they deliver, on a list of values 0..4.
TEST(SlWalks, DeliverWhatTheRecordDescribes) {
    Rec r[5];
    for (int32_t i = 0; i < 5; ++i) r[i] = Rec{nullptr, nullptr, i};
    SL_list *l = SL_create();
    for (Rec &x : r) SL_append_after_last(l, &x);
    using V = std::vector<Rec *>;
    struct Row {
        const char *name;
        bool ring;
        SL_iter it;
        V want;
    };
    for (bool ring : {false, true}) {
        if (ring) SL_set_closed(l); else SL_reset_closed(l);
        const Row rows[] = {
            {"tested reversed", ring, SL_tested_items_reversed(l, is_even), {&r[4], &r[2], &r[0]}},
            {"from == to", ring, SL_all_items_inbetween(l, &r[2], &r[2], 1), {&r[2]}},
            {"null from", ring, SL_all_items_inbetween(l, nullptr, &r[2], 1), {}},
            {"backward", ring, SL_all_items_inbetween(l, &r[3], &r[1], 0), {&r[3], &r[2], &r[1]}},
            {"tested between", ring, SL_tested_items_inbetween(l, &r[1], &r[4], 1, is_even),
             {&r[2], &r[4]}},
            // Behind `to`: an open list runs to its end, a ring passes the seam.
            {"past the seam", ring, SL_all_items_inbetween(l, &r[3], &r[1], 1),
             ring ? V{&r[3], &r[4], &r[0], &r[1]} : V{&r[3], &r[4]}},
        };
        for (const Row &row : rows) EXPECT_EQ(walk(row.it), row.want) << row.name << " ring " << ring;
    }
    // The out argument is written only for a delivered record.
    void *out = &r[0];
    SL_iter none = SL_tested_items(l, accept_none);
    EXPECT_EQ(SL_next_item(&none, &out), 0);
    EXPECT_EQ(out, &r[0]);
    // A walk copied mid-way goes on by itself; removing `current` is safe.
    SL_iter it = SL_all_items(l);
    void *got;
    SL_next_item(&it, &got);
    SL_iter copy = it;
    EXPECT_EQ(walk(copy), (V{&r[1], &r[2], &r[3], &r[4]}));
    int32_t n = 0;
    while (SL_next_item(&it, &got)) SL_remove_item(l, got), ++n;
    SL_remove_item(l, &r[0]);
    EXPECT_EQ(n, 4);
    EXPECT_EQ(l->count, 0);
    EXPECT_EQ(l->closed, 1);  // emptied by removal: the flag stays
    SL_append_after_last(l, &r[2]);  // into an empty ring: linked to itself
    EXPECT_EQ(r[2].next, &r[2]);
    EXPECT_EQ(r[2].prev, &r[2]);
    EXPECT_EQ(walk(SL_all_items(l)), V{&r[2]});
    SL_remove_item(l, &r[2]);
    SL_release(&l);
}

// Records that are MM_ blocks, so that the leak check sees every one.
Rec *new_rec(int32_t v) {
    Rec *r = static_cast<Rec *>(MM_alloc_item(sizeof(Rec)));
    *r = Rec{nullptr, nullptr, v};
    return r;
}
int g_released = 0;
void free_rec(void **word) {
    ++g_released;
    MM_dealloc_item(*word, sizeof(Rec));
    *word = nullptr;
}
void *copy_rec(void *r) { return new_rec(static_cast<Rec *>(r)->value * 10); }

class SlOwnership : public LeakChecked {};

TEST_F(SlOwnership, CallbacksSeeEveryRecordOnceOnRings) {
    for (bool ring : {false, true}) {
        SL_list *l = SL_create();
        for (int32_t i = 0; i < 5; ++i) SL_append_after_last(l, new_rec(i));
        if (ring) SL_set_closed(l);
        SL_list *copy = SL_total_copy(l, copy_rec);
        EXPECT_EQ(copy->closed, ring ? 1 : 0);
        std::vector<int32_t> values;
        for (Rec *r : walk(SL_all_items(copy))) values.push_back(r->value);
        EXPECT_EQ(values, (std::vector<int32_t>{0, 10, 20, 30, 40}));
        EXPECT_EQ(SL_check(copy, value_of), int32_t(sizeof(SL_list)) + 100);  // ends on a ring
        g_released = 0;
        SL_make_empty(l, free_rec);
        EXPECT_EQ(g_released, 5);
        EXPECT_EQ(l->first, nullptr);
        EXPECT_EQ(l->closed, 0);
        SL_release(&l);
        g_released = 0;
        SL_total_release(&copy, free_rec);
        EXPECT_EQ(g_released, 5);
        EXPECT_EQ(copy, nullptr);
    }
    SL_list *empty = SL_create();
    SL_set_closed(empty);
    SL_list *copy = SL_total_copy(empty, copy_rec);
    EXPECT_EQ(copy->closed, 1);
    EXPECT_EQ(copy->count, 0);
    EXPECT_EQ(SL_check(copy, nullptr), int32_t(sizeof(SL_list)));  // measure never called
    SL_release(&copy);
    SL_release(&empty);
    SL_release(&empty);  // a handle holding null is left alone
}

TEST_F(SlOwnership, ReleaseAndRollRaiseOnTheirFailureLines) {
    Rec a{nullptr, nullptr, 1}, b{nullptr, nullptr, 2}, stray{nullptr, nullptr, 3};
    SL_list *l = SL_create();
    SL_append_after_last(l, &a);
    SL_list *held = l;
    EXPECT_RAISES(SL_release(&held), "sgenlist", 74, 4297);
    EXPECT_EQ(held, l);  // nothing freed, handle kept
    EXPECT_EQ(l->count, 1);

    SL_roll(l, &stray);   // open: nothing happens, the position isn't looked at
    SL_roll(l, nullptr);
    EXPECT_EQ(l->first, &a);
    SL_append_after_last(l, &b);
    SL_set_closed(l);
    EXPECT_RAISES(SL_roll(l, &stray), "sgenlist", 742, 4297);
    EXPECT_EQ(l->first, &a);
    SL_roll(l, &b);
    EXPECT_EQ(l->first, &b);
    EXPECT_EQ(l->last, &a);

    // A closed list given to SL_append_list is opened first; a ring stays one.
    SL_list *other = SL_create();
    SL_append_after_last(other, &stray);
    SL_set_closed(other);
    EXPECT_EQ(SL_append_list(l, &other), &stray);
    expect_list(l, {&b, &a, &stray});
    SL_reset_closed(l);
    // insert_unique on a ring ends: a stranger is appended, a member is not.
    SL_set_closed(l);
    SL_insert_unique(l, &a);
    EXPECT_EQ(l->count, 3);
    SL_remove_item(l, &stray);
    SL_insert_unique(l, &stray);
    expect_list(l, {&b, &a, &stray});
    SL_reset_closed(l);
    for (Rec *r : {&a, &b, &stray}) SL_remove_item(l, r);
    SL_release(&l);
    EXPECT_EQ(l, nullptr);
}

}  // namespace
