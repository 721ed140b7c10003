// SL against a reference order, open and closed, with its walks, raised
// failures, copies and release callbacks.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <new>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::Rng;

struct Rec {
    Rec *prev;
    Rec *next;
    int32_t value;
};
using Recs = std::vector<Rec *>;

int32_t value_of(void *r) { return static_cast<Rec *>(r)->value; }
int32_t is_even(void *r) { return static_cast<Rec *>(r)->value % 2 == 0; }

// What a walk delivers; `out` is the out argument afterwards.
Recs walk(SL_iter it, void **out = nullptr) {
    Recs got;
    void *r = out ? *out : nullptr;
    while (SL_next_item(&it, &r)) got.push_back(static_cast<Rec *>(r));
    if (out) *out = r;
    return got;
}

// Records that are MM_ blocks, so that the leak check sees every one.
Rec *new_rec(int32_t v) { return new (MM_alloc_item(sizeof(Rec))) Rec{nullptr, nullptr, v}; }
void *copy_rec(void *r) { return new_rec(static_cast<Rec *>(r)->value * 10); }
int g_released = 0;
void free_rec(void **word) {
    ++g_released;
    MM_dealloc_item(*word, sizeof(Rec));
    *word = nullptr;
}
void forget_rec(void **word) { ++g_released, *word = nullptr; }

class SlModel : public vorn_test::LeakChecked {};

TEST_F(SlModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 60; ++seed) {
        Rng rng(seed);
        std::vector<Rec> pool(48);
        for (size_t i = 0; i < pool.size(); ++i) pool[i] = Rec{nullptr, nullptr, int32_t(i)};
        SL_list *l = SL_create();
        Recs ref;
        bool closed = false;
        auto on_list = [&](Rec *r) { return std::find(ref.begin(), ref.end(), r) != ref.end(); };
        auto spare = [&]() -> Rec * {
            for (uint32_t tries = 0; tries < 8; ++tries) {
                Rec *r = &pool[rng.below(uint32_t(pool.size()))];
                if (!on_list(r)) return r;
            }
            return nullptr;
        };
        auto at = [&](Rec *p) { return std::find(ref.begin(), ref.end(), p); };
        for (int op = 0; op < 300; ++op) {
            const int32_t size = int32_t(ref.size());
            const int32_t index = int32_t(rng.below(uint32_t(size + 3))) - 1;  // -1 .. count+1
            Rec *fresh = spare(), *p = size ? ref[rng.below(uint32_t(size))] : nullptr;
            switch (rng.below(16)) {
                case 0:
                    if (fresh) SL_append_after_last(l, fresh), ref.push_back(fresh);
                    break;
                case 1:
                    if (fresh) SL_insert_before_first(l, fresh), ref.insert(ref.begin(), fresh);
                    break;
                case 2:
                    if (fresh && p) SL_insert_after(l, p, fresh), ref.insert(at(p) + 1, fresh);
                    break;
                case 3:
                    if (fresh && p) SL_insert_before(l, p, fresh), ref.insert(at(p), fresh);
                    break;
                case 4:
                    if (fresh) {
                        const bool ok = index >= 0 && index < size, after = rng.chance(50);
                        ASSERT_EQ(after ? SL_insert_after_index(l, index, fresh) : SL_insert_before_index(l, index, fresh),
                                  ok ? 1 : 0);
                        if (ok) ref.insert(ref.begin() + index + after, fresh);
                        else ASSERT_TRUE(!fresh->prev && !fresh->next);  // untouched
                    }
                    break;
                case 5:  // unique: a record on the list, or a fresh one (appended, on rings too)
                    if (Rec *r = p && rng.chance(50) ? p : fresh) {
                        if (!on_list(r)) ref.push_back(r);
                        SL_insert_unique(l, r);
                    }
                    break;
                case 6:
                case 7:
                    if (p) {
                        SL_remove_item(l, p);
                        ref.erase(at(p));
                        ASSERT_TRUE(!p->prev && !p->next);
                    }
                    break;
                case 8: {
                    const bool ok = index >= 0 && index < size;
                    Rec *q = ok ? ref[size_t(index)] : nullptr;
                    ASSERT_EQ(SL_pos_at_index(l, index), q);
                    ASSERT_EQ(SL_remove_at_index(l, index), ok ? 1 : 0);
                    if (ok) ref.erase(at(q));
                    break;
                }
                case 9:
                    closed = !closed;
                    closed ? SL_set_closed(l) : SL_reset_closed(l);
                    break;
                case 10:
                    SL_reverse(l);
                    std::reverse(ref.begin(), ref.end());
                    break;
                case 11: {  // open: nothing, not even a look; ring: a stranger raises
                    Rec *q = p && rng.chance(80) ? p : fresh;
                    if (!q) break;
                    const auto raised = vorn_test::catch_raise([&] { SL_roll(l, q); });
                    ASSERT_EQ(vorn_test::describe(raised),
                              closed && !on_list(q) ? "sgenlist line 742 code 4297" : "no raise");
                    if (closed && on_list(q)) std::rotate(ref.begin(), at(q), ref.end());
                    break;
                }
                case 12:
                    if (p) {
                        const int32_t i = int32_t(at(p) - ref.begin());
                        ASSERT_EQ(SL_get_index(l, p), i);
                        const int32_t steps = int32_t(rng.below(2 * uint32_t(size) + 1)) - size, to = i + steps;
                        Rec *want = closed ? ref[size_t(((to % size) + size) % size)]
                                           : (to >= 0 && to < size ? ref[size_t(to)] : nullptr);
                        ASSERT_EQ(SL_advance(nullptr, p, steps), want);
                    }
                    break;
                case 13: {  // append a list of spare records, open or closed: a ring stays one
                    SL_list *other = SL_create();
                    Recs more;
                    for (uint32_t k = rng.below(4); k > 0; --k) {
                        Rec *r = spare();
                        if (!r || std::find(more.begin(), more.end(), r) != more.end()) continue;
                        SL_append_after_last(other, r);
                        more.push_back(r);
                    }
                    if (rng.chance(30)) SL_set_closed(other);
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
                    ASSERT_EQ(walk(SL_all_items_reversed(l)), Recs(ref.rbegin(), ref.rend()));
                    Recs even;
                    std::copy_if(ref.begin(), ref.end(), std::back_inserter(even), is_even);
                    ASSERT_EQ(walk(SL_tested_items(l, is_even)), even);
                    std::reverse(even.begin(), even.end());
                    ASSERT_EQ(walk(SL_tested_items_reversed(l, is_even)), even);
                    break;
                }
                case 15:
                    if (p) {  // either way, tested or not; behind `to` an open list runs to its end
                        Rec *to = ref[rng.below(uint32_t(size))];
                        const bool forward = rng.chance(50), tested = rng.chance(50);
                        Recs want;
                        for (size_t k : vorn_test::walk_order(ref.size(), at(p) - ref.begin(), at(to) - ref.begin(), forward, closed))
                            if (!tested || is_even(ref[k])) want.push_back(ref[k]);
                        void *out = &pool;
                        ASSERT_EQ(walk(tested ? SL_tested_items_inbetween(l, p, to, forward, is_even)
                                              : SL_all_items_inbetween(l, p, to, forward), &out), want);
                        ASSERT_EQ(out, want.empty() ? static_cast<void *>(&pool) : want.back());  // only when delivered
                    }
                    break;
            }
            ASSERT_EQ(SL_count_items(l), l->count);
            ASSERT_EQ(l->closed, closed ? 1 : 0);
            vorn_test::expect_links(l->first, l->last, l->count, closed, ref);
        }
        if (seed % 8 == 0)  // an empty list (open or closed) at the end
            while (!ref.empty()) SL_remove_item(l, ref.back()), ref.pop_back();
        SL_list *held = l;
        if (!ref.empty()) EXPECT_RAISES(SL_release(&held), "sgenlist", 74, 4297);
        EXPECT_EQ(held, l);  // nothing freed, handle kept
        // A total copy (closed as the list is) holds what the callback gives,
        // in order; emptying hands every record to the callback once.
        SL_list *c = SL_total_copy(l, copy_rec);
        ASSERT_EQ(c->closed, closed ? 1 : 0);
        int32_t sum = 0;
        std::vector<int32_t> want, got;
        for (Rec *r : ref) want.push_back(r->value * 10), sum += r->value * 10;
        for (Rec *r : walk(SL_all_items(c))) got.push_back(r->value);
        ASSERT_EQ(got, want);
        ASSERT_EQ(SL_check(c, ref.empty() ? nullptr : value_of), int32_t(sizeof(SL_list)) + sum);  // ends on a ring
        g_released = 0;
        SL_total_release(&c, free_rec);
        SL_make_empty(l, forget_rec);
        EXPECT_EQ(g_released, int(2 * ref.size()));
        EXPECT_EQ(l->closed, 0);
        EXPECT_EQ(l->first, nullptr);
        SL_release(&l);
        SL_release(&l);  // a handle holding null is left alone
        ASSERT_EQ(l, nullptr);
    }
}

}  // namespace
