// EL against a simple reference (open lists and rings, cuts, openings and
// walks through the exported, inline and copying steps), the failures the
// model raises, and the two families on top: the ES stack, and DBLL's own
// logic as one table (the rest of DBLL forwards to EL).
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::Rng;

// Elements of an odd size: a value and a two-byte tag derived from it, so a
// short copy or a wrong node size shows up.
constexpr uint16_t kSize = 6;
struct Elem {
    unsigned char b[kSize];
};
Elem elem(int32_t v) {
    Elem e;
    std::memcpy(e.b, &v, 4);
    e.b[4] = static_cast<unsigned char>(v * 7);
    e.b[5] = static_cast<unsigned char>(~v);
    return e;
}
int32_t value_of(const void *bytes) {
    int32_t v;
    std::memcpy(&v, bytes, 4);
    const auto *b = static_cast<const unsigned char *>(bytes);
    EXPECT_EQ(b[4], static_cast<unsigned char>(v * 7));
    EXPECT_EQ(b[5], static_cast<unsigned char>(~v));
    return v;
}
int32_t even(void *bytes) { return value_of(bytes) % 2 == 0; }

struct Item {
    EL_node *n;
    int32_t v;
};
using Ref = std::vector<Item>;
using Values = std::vector<int32_t>;

// Head, links (with the ring rule), count and element values.
void expect_list(EL_list *l, const Ref &ref, bool closed) {
    ASSERT_EQ(l->item_size, kSize);
    ASSERT_EQ(l->closed, closed ? 1 : 0);
    std::vector<EL_node *> nodes;
    for (const Item &it : ref) nodes.push_back(it.n);
    vorn_test::expect_links(l->first, l->last, l->count, closed, nodes);
    for (size_t i = 0; i < ref.size(); ++i) ASSERT_EQ(value_of(ref[i].n->item), ref[i].v) << i;
}

// What a walk delivers through the copying step; `last` gets what the buffer
// holds afterwards (-1 if nothing was copied).
Values copied(EL_iter it, int32_t *last = nullptr) {
    Values out;
    Elem e = elem(-1);
    while (EL_next_item_copy(&it, &e)) out.push_back(value_of(e.b));
    if (last) *last = value_of(e.b);
    return out;
}
Values values(EL_list *l) { return copied(EL_all_items(l)); }

// What a walk delivers through a pointer step; `last` gets the out argument
// afterwards (-1 if never written).
using Step = int32_t (*)(EL_iter *, void **);
Values stepped(EL_iter it, Step step, int32_t *last) {
    Values out;
    void *p = nullptr;
    while (step(&it, &p) && out.size() < 1000) out.push_back(value_of(p));
    *last = p ? value_of(p) : -1;
    return out;
}

class ElModel : public vorn_test::LeakChecked {};

TEST_F(ElModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 60; ++seed) {
        Rng rng(seed);
        EL_list *l = EL_create(kSize);
        Ref ref;
        bool closed = false;
        int32_t fresh = 0;
        auto pick = [&] { return rng.below(static_cast<uint32_t>(ref.size())); };
        auto any_index = [&] { return static_cast<int32_t>(rng.below(ref.size() + 3)) - 1; };
        auto fresh_list = [&](size_t len, Ref &made) {  // a new open list of fresh values
            EL_list *x = EL_create(kSize);
            for (; len > 0; --len) {
                const Elem m = elem(++fresh);
                made.push_back({EL_append_after_last(x, &m), fresh});
            }
            return x;
        };
        for (int op = 0; op < 300; ++op) {
            const int32_t v = ++fresh;
            const Elem e = elem(v);
            const size_t n = ref.size();
            const size_t i = n ? pick() : 0, j = n ? pick() : 0;
            switch (rng.below(22)) {
                case 0: ref.push_back({EL_append_after_last(l, &e), v}); break;
                case 1: ref.insert(ref.begin(), {EL_insert_before_first(l, &e), v}); break;
                case 2:
                    if (n) ref.insert(ref.begin() + i + 1, {EL_insert_after(l, ref[i].n, &e), v});
                    break;
                case 3:
                    if (n) ref.insert(ref.begin() + i, {EL_insert_before(l, ref[i].n, &e), v});
                    break;
                case 4:
                case 5: {  // index forms: only an existing item can be addressed
                    const int32_t k = any_index();
                    const bool hit = k >= 0 && k < static_cast<int32_t>(n), after = rng.chance(50);
                    EL_node *p = after ? EL_insert_after_index(l, k, &e) : EL_insert_before_index(l, k, &e);
                    ASSERT_EQ(p != nullptr, hit);
                    if (hit) ref.insert(ref.begin() + k + (after ? 1 : 0), {p, v});
                    break;
                }
                case 6:
                    if (n) EL_remove_item(l, ref[i].n), ref.erase(ref.begin() + i);
                    break;
                case 7: {
                    const int32_t k = any_index();
                    const bool hit = k >= 0 && k < static_cast<int32_t>(n);
                    ASSERT_EQ(EL_remove_at_index(l, k), hit ? 1 : 0);
                    if (hit) ref.erase(ref.begin() + k);
                    break;
                }
                case 8:
                    if (n) {
                        auto idx = vorn_test::walk_order(n, i, j, true, closed);
                        ASSERT_EQ(EL_count_items_inbetween(l, ref[i].n, ref[j].n), static_cast<int32_t>(idx.size()));
                        EL_remove_items_inbetween(l, ref[i].n, ref[j].n);
                        std::sort(idx.rbegin(), idx.rend());
                        for (size_t k : idx) ref.erase(ref.begin() + k);
                    }
                    break;
                case 9:
                    closed = !closed;
                    closed ? EL_set_closed(l) : EL_reset_closed(l);
                    break;
                case 10:
                    if (n) {  // roll: a ring moves its seam; an open list only raises at first
                        auto raised = vorn_test::catch_raise([&] { EL_roll(l, ref[i].n); });
                        ASSERT_EQ(vorn_test::describe(raised), !closed && i == 0 ? "egenlist line 987 code 4297" : "no raise");
                        if (closed) std::rotate(ref.begin(), ref.begin() + i, ref.end());
                    }
                    break;
                case 11:
                    EL_reverse(l);
                    std::reverse(ref.begin(), ref.end());
                    break;
                case 12:  // an open list opens as if it were closed
                    if (n) {
                        const int32_t at = ref[i].v;
                        ASSERT_EQ(EL_make_open_at_position(l, ref[i].n), ref[i].n);
                        std::rotate(ref.begin(), ref.begin() + i, ref.end());
                        ref.push_back({l->last, at});
                        closed = false;
                    }
                    break;
                case 13:
                    if (n) {  // cut, check both parts, then join them again or drop the end
                        const int32_t at = ref[i].v;
                        EL_list *end = EL_remove_and_get_end_part(l, ref[i].n);
                        Ref tail(ref.begin() + i, ref.end());
                        ref.erase(ref.begin() + i, ref.end());
                        ref.push_back({l->last, at});
                        closed = false;
                        expect_list(end, tail, false);
                        if (rng.chance(50)) {
                            ASSERT_EQ(EL_append_list(l, &end), tail.front().n);
                            ref.insert(ref.end(), tail.begin(), tail.end());
                        } else {
                            EL_release(&end);
                        }
                        ASSERT_EQ(end, nullptr);
                    }
                    break;
                case 14: {  // a copy holds equal values in new nodes and keeps the ring
                    EL_list *c = EL_total_copy(l);
                    ASSERT_EQ(c->closed, closed ? 1 : 0);
                    ASSERT_EQ(c->count, l->count);
                    ASSERT_EQ(values(c), values(l));
                    if (n) {
                        ASSERT_NE(c->first, l->first);
                        ASSERT_EQ(c->last->next, closed ? c->first : nullptr);
                    }
                    EL_release(&c);
                    break;
                }
                case 15:
                    if (n) {  // an open copy of a range
                        EL_list *c = EL_total_copy_inbetween(l, ref[i].n, ref[j].n);
                        Values want;
                        for (size_t k : vorn_test::walk_order(n, i, j, true, closed)) want.push_back(ref[k].v);
                        ASSERT_EQ((std::pair{c->closed, c->count}), (std::pair{0, static_cast<int32_t>(want.size())}));
                        ASSERT_EQ(values(c), want);
                        EL_release(&c);
                    }
                    break;
                case 16:
                    if (n) {  // position arithmetic
                        const int32_t steps = static_cast<int32_t>(rng.below(2 * n + 3)) - static_cast<int32_t>(n) - 1;
                        const int64_t nn = static_cast<int64_t>(n), to = static_cast<int64_t>(i) + steps,
                                      at = closed ? (to % nn + nn) % nn : to;
                        ASSERT_EQ(EL_advance(l, ref[i].n, steps), at >= 0 && at < nn ? ref[size_t(at)].n : nullptr);
                        ASSERT_EQ(EL_get_index(l, ref[i].n), static_cast<int32_t>(i));
                        const int32_t k = any_index();
                        const bool hit = k >= 0 && k < static_cast<int32_t>(n);
                        ASSERT_EQ(EL_get_pos_at_index(l, k), hit ? ref[k].n : nullptr);
                        ASSERT_EQ(EL_get_item_at_index(l, k), hit ? static_cast<void *>(ref[k].n->item) : nullptr);
                    }
                    break;
                case 17:
                    if (n) {  // overwrite a range from a source list of random length
                        auto idx = vorn_test::walk_order(n, i, j, true, closed);
                        Ref made;
                        const size_t len = rng.below(static_cast<uint32_t>(idx.size()) + 2);
                        EL_list *src = fresh_list(len, made);
                        auto raised = vorn_test::catch_raise(
                            [&] { EL_replace_items_inbetween(l, ref[i].n, ref[j].n, src, kSize); });
                        ASSERT_EQ(vorn_test::describe(raised), len < idx.size() ? "egenlist line 555 code 4297" : "no raise");
                        for (size_t k = 0; k < idx.size() && k < len; ++k) ref[idx[k]].v = made[k].v;
                        ASSERT_EQ(src->count, static_cast<int32_t>(len));
                        EL_release(&src);
                    }
                    break;
                case 18:
                    if (rng.chance(10)) {
                        EL_make_empty(l);
                        ref.clear();
                        closed = false;
                    }
                    break;
                case 19: {  // a ring stays a ring holding both parts
                    Ref moved;
                    EL_list *more = fresh_list(rng.below(4), moved);
                    ASSERT_EQ(EL_append_list(l, &more), moved.empty() ? nullptr : moved.front().n);
                    ref.insert(ref.end(), moved.begin(), moved.end());
                    break;
                }
                case 20:
                    if (n) {  // walks either way, tested or not, through every step
                        const bool forward = rng.chance(50), tested = rng.chance(50);
                        const auto idx = vorn_test::walk_order(n, i, j, forward, closed);
                        Values want;
                        for (size_t k : idx)
                            if (!tested || ref[k].v % 2 == 0) want.push_back(ref[k].v);
                        const EL_iter it = tested ? EL_tested_items_inbetween(l, ref[i].n, ref[j].n, forward, even)
                                                  : EL_all_items_inbetween(l, ref[i].n, ref[j].n, forward);
                        ASSERT_EQ(it.item_size, kSize);
                        // The pointer is written before the test: it ends on the final item looked at.
                        int32_t last = 0;
                        ASSERT_EQ(stepped(it, Step{(EL_next_item)}, &last), want);
                        ASSERT_EQ(last, ref[idx.back()].v);
                        ASSERT_EQ(stepped(it, Step{EL_next_item_inline}, &last), want);
                        ASSERT_EQ(last, ref[idx.back()].v);
                        ASSERT_EQ(copied(it, &last), want);  // the buffer holds the last delivered
                        ASSERT_EQ(last, want.empty() ? -1 : want.back());
                    }
                    break;
                case 21:
                    if (n) EL_replace_item(ref[i].n, &e, kSize), ref[i].v = v;
                    break;
            }
            expect_list(l, ref, closed);
            if (::testing::Test::HasFatalFailure()) return;
        }
        EL_release(&l);
        EXPECT_EQ(l, nullptr);
    }
}

// Choices that cannot crash: an empty ring stays a ring, a null handle or
// range start does nothing, and a range towards a position that is not on
// the ring stops once the ring is empty instead of following a freed node.
TEST_F(ElModel, EdgesThatCannotCrash) {
    EL_list *l = EL_create(1);
    EL_set_closed(l);
    EL_node *p = EL_insert_before_first(l, "a");
    EL_remove_item(l, p);
    EXPECT_EQ(l->closed, 1);
    p = EL_append_after_last(l, "b");
    EXPECT_EQ(p->next, p);
    EL_append_after_last(l, "c");
    EL_list *other = EL_create(1);
    EL_append_after_last(other, "z");
    EL_replace_items_inbetween(l, nullptr, l->last, other, 1);  // empty range: nothing, no raise
    EXPECT_EQ(l->first->item[0], 'b');
    EL_remove_items_inbetween(l, l->last, other->first);
    EXPECT_EQ(l->count, 0);
    EXPECT_EQ(l->first, nullptr);
    EL_release(&other);
    EL_release(&l);
    EL_release(&l);  // a handle holding null is left alone
}

TEST_F(ElModel, StackIsLastInFirstOut) {
    EL_list *s = ES_create(sizeof(int32_t));
    int32_t buf = -1;
    EXPECT_EQ(ES_pop(s, &buf) + ES_inspect_top(s, &buf), 0);
    EXPECT_EQ(buf, -1);  // the buffer is left alone
    for (int32_t i = 0; i < 5; ++i) EXPECT_EQ(ES_push(s, &i), s->last);
    EXPECT_EQ(ES_inspect_top(s, &buf), 1);
    EXPECT_EQ(buf, 4);
    for (int32_t i = 4; i >= 0; --i) {
        EXPECT_EQ(ES_pop(s, &buf), 1);
        EXPECT_EQ(buf, i);
    }
    EXPECT_EQ(ES_is_empty(s), 1);
    ES_push(s, &buf);
    ES_release(&s);
    EXPECT_EQ(s, nullptr);
}

// ---- DBLL: the unique insertion, the nearest search, the sort and the
// thinning, with the comparison edges (a distance equal to the tolerance,
// NaN, -0.0).
using V = std::vector<double>;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

// Values from first, compared bit for bit (-0.0 included; any NaN matches a NaN).
V read(EL_list *l) {
    V out;
    EL_iter it = DBLL_all_doubles(l);
    double d;
    while (DBLL_next_double(&it, &d)) out.push_back(d);
    return out;
}
bool same(const V &a, const V &b) {
    for (size_t i = 0; i < a.size() && a.size() == b.size(); ++i)
        if (!(std::isnan(a[i]) && std::isnan(b[i])) && std::memcmp(&a[i], &b[i], sizeof(double)) != 0) return false;
    return a.size() == b.size();
}

struct Case {
    const char *name;
    char op;  // u: DBLL_add_double_unique, n: DBLL_find_index_of_nearest, s: DBLL_sort, t: DBLL_remove_double_occ
    V start;
    double value, tolerance;
    int32_t result;  // u and n
    V after;         // n: the distance
};

using Dbll = vorn_test::LeakChecked;

TEST_F(Dbll, OwnLogicTable) {
    const V nine = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    // Not ascending, so that the walk's direction shows in where the value lands.
    const V probe = {1, 3, 0, 0, 0, 0, 0, 0, 3}, probe_near_last = {1, 3, 0, 0, 0, 0, 0, 0, 2.9};
    const Case cases[] = {
        {"empty list: appended, 0", 'u', {}, 1.0, 0.5, 0, {1.0}},
        {"short, below all: becomes first", 'u', {1, 2, 3}, 0.5, 0.1, 1, {0.5, 1, 2, 3}},
        {"distance equal to tolerance refused", 'u', {1, 2}, 1.25, 0.25, 0, {1, 2}},
        {"tolerance 0 refuses only equality", 'u', {1, 2}, 2, 0, 0, {1, 2}},
        {"long, above all: backward, after last", 'u', nine, 20, 0.5, 1, {1, 2, 3, 4, 5, 6, 7, 8, 9, 20}},
        {"long, near last: backward", 'u', nine, 8.5, 0.1, 1, {1, 2, 3, 4, 5, 6, 7, 8, 8.5, 9}},
        {"equally far from both ends: forward", 'u', probe, 2, 0.1, 1, {1, 2, 3, 0, 0, 0, 0, 0, 0, 3}},
        {"nearer to last: backward", 'u', probe_near_last, 2, 0.1, 1, {1, 3, 0, 0, 0, 0, 0, 0, 2, 2.9}},
        {"eight items is short: forward", 'u', {1, 3, 0, 0, 0, 0, 0, 2.9}, 2, 0.1, 1, {1, 2, 3, 0, 0, 0, 0, 0, 2.9}},
        {"backward walk runs out: appended, 0", 'u', {5, 6, 6, 6, 6, 6, 6, 6, 1}, 0.5, 0.1, 0,
         {5, 6, 6, 6, 6, 6, 6, 6, 1, 0.5}},
        {"NaN walks to the end, appended, 0", 'u', {1, 2}, kNaN, 10, 0, {1, 2, kNaN}},
        {"NaN tolerance refuses nothing", 'u', {1, 2}, 1, kNaN, 1, {1, 1, 2}},
        {"nearest of three", 'n', {3.5, 6.5, 4.0}, 5, 1, 2, {1.0}},
        {"exactly twice the tolerance is too far", 'n', {3, 7}, 5, 1, -1, {2.0}},
        {"a tie goes to the lowest index", 'n', {4, 6}, 5, 1, 0, {1.0}},
        {"NaN passed over", 'n', {kNaN, 5.5}, 5, 1, 1, {0.5}},
        {"no order needed", 'n', {9, 1, 5.25, 5.5}, 5, 1, 2, {0.25}},
        {"nothing is nearer than NaN", 'n', {1, 2}, 1, kNaN, -1, {kNaN}},
        {"sort", 's', {3, 1, 2, 1}, 0, 0, 0, {1, 1, 2, 3}},
        {"sort: equal values are not exchanged", 's', {0.0, -0.0}, 0, 0, 0, {0.0, -0.0}},
        {"sort: nothing exchanged at a NaN", 's', {3, kNaN, 1}, 0, 0, 0, {3, kNaN, 1}},
        {"sort: around a NaN", 's', {2, 1, kNaN, 0}, 0, 0, 0, {1, 2, kNaN, 0}},
        {"thin: ends kept", 't', {2.02, 1.0, 1.05, 2.0}, 0, 0.1, 0, {1.0, 2.02}},
        {"thin: middle goes", 't', {1, 2, 3}, 0, 5, 0, {1, 3}},
        {"thin: distance equal to tolerance stays", 't', {1, 1.5, 3}, 0, 0.5, 0, {1, 1.5, 3}},
        {"thin: tolerance 0 keeps duplicates", 't', {1, 1, 1}, 0, 0, 0, {1, 1, 1}},
        {"thin: against the last kept", 't', {1.0, 0.9, 0.6, 0.3, 0}, 0, 0.5, 0, {0, 1.0}},
        {"thin: unsorted input", 't', {3, 1.25, 1}, 0, 0.5, 0, {1, 3}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EL_list *l = DBLL_create();
        for (double d : c.start) DBLL_add_double(l, d);
        EL_node *first = l->first, *last = l->last;
        if (c.op == 'u') {
            EXPECT_EQ(DBLL_add_double_unique(l, c.value, c.tolerance), c.result);
            EXPECT_EQ(DBLL_size(l), static_cast<int32_t>(c.after.size()));
        } else if (c.op == 'n') {
            double d = -1;
            EXPECT_EQ(DBLL_find_index_of_nearest(l, c.value, c.tolerance, &d), c.result);
            EXPECT_TRUE(same({d}, c.after)) << d;
        } else if (c.op == 's') {
            DBLL_sort(l);
            EXPECT_EQ(l->first, first);  // values move, links stay
            EXPECT_EQ(l->last, last);
        } else {
            DBLL_remove_double_occ(l, c.tolerance);
        }
        EXPECT_TRUE(same(read(l), c.op == 'n' ? c.start : c.after));
        DBLL_release(&l);
    }
    // The ends, whole-list arithmetic and the size; an empty list stays empty.
    EL_list *l = DBLL_create_with_two(1, 2), *empty = DBLL_create();
    DBLL_set_begin_value(empty, 3), DBLL_set_end_value(empty, 3);
    EXPECT_EQ((V{double(DBLL_is_empty(empty)), double(DBLL_is_empty(l)), DBLL_begin_value(empty), DBLL_end_value(empty)}),
              (V{1, 0, 0, 0}));
    DBLL_add_to_all(l, 0.5);
    DBLL_set_end_value(l, DBLL_end_value(l) * 10);
    DBLL_set_begin_value(l, DBLL_begin_value(l) - 1);
    EXPECT_TRUE(same(read(l), {0.5, 25}));
    EXPECT_EQ(DBLL_check(l), static_cast<int32_t>(2 * (sizeof(EL_node) + sizeof(double))));
    DBLL_release(&l), DBLL_release(&empty);
}

}  // namespace
