// EL against a simple reference (open lists and rings, cuts and openings),
// the walk rules and the two failures.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
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

struct Item {
    EL_node *n;
    int32_t v;
};
using Ref = std::vector<Item>;

// Head, links (with the ring rule), count and element values.
void expect_list(EL_list *l, const Ref &ref, bool closed) {
    ASSERT_EQ(l->item_size, kSize);
    ASSERT_EQ(l->closed, closed ? 1 : 0);
    std::vector<EL_node *> nodes;
    for (const Item &it : ref) nodes.push_back(it.n);
    vorn_test::expect_links(l->first, l->last, l->count, closed, nodes);
    for (size_t i = 0; i < ref.size(); ++i) ASSERT_EQ(value_of(ref[i].n->item), ref[i].v) << i;
}

std::vector<int32_t> values(EL_list *l) {
    std::vector<int32_t> out;
    EL_iter it = EL_all_items(l);
    Elem e;
    while (EL_next_item_copy(&it, &e)) out.push_back(value_of(e.b));
    return out;
}

// The indices that a forward walk from i to j delivers.
std::vector<size_t> range(size_t n, size_t i, size_t j, bool ring) {
    std::vector<size_t> out;
    for (size_t k = i;; k = (k + 1) % n) {
        out.push_back(k);
        if (k == j || (!ring && k == n - 1)) break;
    }
    return out;
}

class ElModel : public LeakChecked {};

TEST_F(ElModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 60; ++seed) {
        Rng rng(seed);
        EL_list *l = EL_create(kSize);
        Ref ref;
        bool closed = false;
        int32_t fresh = 0;
        auto pick = [&] { return rng.below(static_cast<uint32_t>(ref.size())); };
        auto any_index = [&] { return static_cast<int32_t>(rng.below(ref.size() + 3)) - 1; };
        for (int op = 0; op < 300; ++op) {
            const int32_t v = ++fresh;
            const Elem e = elem(v);
            const size_t n = ref.size();
            switch (rng.below(20)) {
                case 0: ref.push_back({EL_append_after_last(l, &e), v}); break;
                case 1: ref.insert(ref.begin(), {EL_insert_before_first(l, &e), v}); break;
                case 2:
                    if (n) {
                        size_t i = pick();
                        ref.insert(ref.begin() + i + 1, {EL_insert_after(l, ref[i].n, &e), v});
                    }
                    break;
                case 3:
                    if (n) {
                        size_t i = pick();
                        ref.insert(ref.begin() + i, {EL_insert_before(l, ref[i].n, &e), v});
                    }
                    break;
                case 4:
                case 5: {  // index forms: only an existing item can be addressed
                    const int32_t i = any_index();
                    const bool hit = i >= 0 && i < static_cast<int32_t>(n);
                    const bool after = rng.chance(50);
                    EL_node *p = after ? EL_insert_after_index(l, i, &e) : EL_insert_before_index(l, i, &e);
                    ASSERT_EQ(p != nullptr, hit);
                    if (hit) ref.insert(ref.begin() + i + (after ? 1 : 0), {p, v});
                    break;
                }
                case 6:
                    if (n) {
                        size_t i = pick();
                        EL_remove_item(l, ref[i].n);
                        ref.erase(ref.begin() + i);
                    }
                    break;
                case 7: {
                    const int32_t i = any_index();
                    const bool hit = i >= 0 && i < static_cast<int32_t>(n);
                    ASSERT_EQ(EL_remove_at_index(l, i), hit ? 1 : 0);
                    if (hit) ref.erase(ref.begin() + i);
                    break;
                }
                case 8:
                    if (n) {
                        size_t i = pick(), j = pick();
                        auto idx = range(n, i, j, closed);
                        ASSERT_EQ(EL_count_items_inbetween(l, ref[i].n, ref[j].n),
                                  static_cast<int32_t>(idx.size()));
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
                        size_t i = pick();
                        auto raised = vorn_test::catch_raise([&] { EL_roll(l, ref[i].n); });
                        ASSERT_EQ(raised.has_value(), !closed && i == 0);
                        if (raised) {
                            ASSERT_EQ(*raised, (vorn_test::Raised{"egenlist", 987, 4297}));
                        }
                        if (closed) std::rotate(ref.begin(), ref.begin() + i, ref.end());
                    }
                    break;
                case 11:
                    EL_reverse(l);
                    std::reverse(ref.begin(), ref.end());
                    break;
                case 12:  // an open list opens as if it were closed
                    if (n) {
                        size_t i = pick();
                        const int32_t at = ref[i].v;
                        ASSERT_EQ(EL_make_open_at_position(l, ref[i].n), ref[i].n);
                        std::rotate(ref.begin(), ref.begin() + i, ref.end());
                        ref.push_back({l->last, at});
                        closed = false;
                    }
                    break;
                case 13:
                    if (n) {  // cut, check both parts, then join them again or drop the end
                        size_t i = pick();
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
                    if (n) {
                        size_t i = pick(), j = pick();
                        EL_list *c = EL_total_copy_inbetween(l, ref[i].n, ref[j].n);
                        std::vector<int32_t> want;
                        for (size_t k : range(n, i, j, closed)) want.push_back(ref[k].v);
                        ASSERT_EQ(c->closed, 0);
                        ASSERT_EQ(c->count, static_cast<int32_t>(want.size()));
                        ASSERT_EQ(values(c), want);
                        EL_release(&c);
                    }
                    break;
                case 16:
                    if (n) {  // position arithmetic
                        size_t i = pick();
                        const int32_t steps = static_cast<int32_t>(rng.below(2 * n + 3)) - static_cast<int32_t>(n) - 1;
                        const int64_t to = static_cast<int64_t>(i) + steps;
                        EL_node *want = nullptr;
                        if (closed)
                            want = ref[static_cast<size_t>(((to % int64_t(n)) + int64_t(n)) % int64_t(n))].n;
                        else if (to >= 0 && to < int64_t(n))
                            want = ref[static_cast<size_t>(to)].n;
                        ASSERT_EQ(EL_advance(l, ref[i].n, steps), want);
                        ASSERT_EQ(EL_get_index(l, ref[i].n), static_cast<int32_t>(i));
                        const int32_t k = any_index();
                        const bool hit = k >= 0 && k < static_cast<int32_t>(n);
                        ASSERT_EQ(EL_get_pos_at_index(l, k), hit ? ref[k].n : nullptr);
                        ASSERT_EQ(EL_get_item_at_index(l, k), hit ? static_cast<void *>(ref[k].n->item) : nullptr);
                    }
                    break;
                case 17:
                    if (n) {  // overwrite a range from a source list of random length
                        size_t i = pick(), j = pick();
                        auto idx = range(n, i, j, closed);
                        EL_list *src = EL_create(kSize);
                        const size_t len = rng.below(static_cast<uint32_t>(idx.size()) + 2);
                        for (size_t k = 0; k < len; ++k) {
                            const Elem s = elem(++fresh);
                            EL_append_after_last(src, &s);
                        }
                        auto raised = vorn_test::catch_raise(
                            [&] { EL_replace_items_inbetween(l, ref[i].n, ref[j].n, src, kSize); });
                        ASSERT_EQ(raised.has_value(), len < idx.size());
                        for (size_t k = 0; k < idx.size() && k < len; ++k)
                            ref[idx[k]].v = fresh - static_cast<int32_t>(len) + 1 + static_cast<int32_t>(k);
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
                    {
                        EL_list *more = EL_create(kSize);
                        Ref moved;
                        for (uint32_t k = rng.below(4); k > 0; --k) {
                            const Elem m = elem(++fresh);
                            moved.push_back({EL_append_after_last(more, &m), fresh});
                        }
                        ASSERT_EQ(EL_append_list(l, &more), moved.empty() ? nullptr : moved.front().n);
                        ref.insert(ref.end(), moved.begin(), moved.end());
                    }
                    break;
                }
            }
            expect_list(l, ref, closed);
            if (::testing::Test::HasFatalFailure()) return;
        }
        EL_release(&l);
        EXPECT_EQ(l, nullptr);
    }
}

// Letters as elements: "abcd" is the list a, b, c, d.
EL_list *letters(const char *s, bool ring) {
    EL_list *l = EL_create(1);
    for (; *s; ++s) EL_append_after_last(l, s);
    if (ring) EL_set_closed(l);
    return l;
}
std::string text(EL_list *l) {
    std::string out;
    EL_iter it = EL_all_items(l);
    void *b;
    while (EL_next_item(&it, &b)) out += *static_cast<char *>(b);
    return out;
}
EL_node *at(EL_list *l, int i) { return EL_get_pos_at_index(l, i); }

TEST_F(ElModel, EmptyRingLinksItsFirstItemToItself) {
    EL_list *l = EL_create(1);
    EL_set_closed(l);
    EXPECT_EQ(l->closed, 1);
    EL_node *p = EL_insert_before_first(l, "a");
    EXPECT_EQ(p->prev, p);
    EXPECT_EQ(p->next, p);
    EL_remove_item(l, p);
    EXPECT_EQ(l->first, nullptr);
    EXPECT_EQ(l->count, 0);
    EXPECT_EQ(l->closed, 1);
    p = EL_append_after_last(l, "b");
    EXPECT_EQ(p->next, p);
    EL_release(&l);
    EL_release(&l);  // a handle holding null is left alone

    // A range towards a position that is not on the ring: the removal stops
    // once the ring is empty instead of following a freed node.
    l = letters("abc", true);
    EL_list *other = letters("z", false);
    EL_remove_items_inbetween(l, at(l, 1), other->first);
    EXPECT_EQ(l->count, 0);
    EXPECT_EQ(l->first, nullptr);
    EL_release(&other);
    EL_release(&l);
}

// ---- walks and failures --------------------------------------------------------------

int32_t accept_vowel(void *b) { return std::strchr("aeiou", *static_cast<char *>(b)) != nullptr; }

// What is EL's own in a walk: the copying step, the item size it carries and
// when each out argument is written.
TEST_F(ElModel, WalkOutArguments) {
    EL_list *l = letters("abcde", false);
    EL_iter it = EL_tested_items_inbetween(l, l->last, l->first, 0, accept_vowel);
    EXPECT_EQ(it.item_size, 1);
    std::string got;
    char c = '?';
    while (EL_next_item_copy(&it, &c)) got += c;
    EXPECT_EQ(got, "ea");

    // A test refusing the final item gives 0 at once; EL_next_item's out
    // argument then holds the refused item, EL_next_item_copy's buffer is
    // left alone.
    it = EL_tested_items_inbetween(l, at(l, 1), at(l, 3), 1, accept_vowel);
    void *b = nullptr;
    EXPECT_EQ(EL_next_item(&it, &b), 0);
    EXPECT_EQ(*static_cast<char *>(b), 'd');
    it = EL_tested_items_inbetween(l, at(l, 1), at(l, 3), 1, accept_vowel);
    c = '?';
    EXPECT_EQ(EL_next_item_copy(&it, &c), 0);
    EXPECT_EQ(c, '?');
    EL_release(&l);
}

TEST_F(ElModel, Failures) {
    EL_list *l = letters("abc", false);
    EXPECT_RAISES(EL_roll(l, l->first), "egenlist", 987, 4297);
    EXPECT_EQ(text(l), "abc");

    // Short source: the range is overwritten up to the source's end.
    EL_list *src = letters("XY", false);
    EXPECT_RAISES(EL_replace_items_inbetween(l, l->first, l->last, src, 1), "egenlist", 555, 4297);
    EXPECT_EQ(text(l), "XYc");
    EXPECT_EQ(text(src), "XY");
    EL_replace_items_inbetween(l, at(l, 1), l->last, src, 1);  // as long: no raise
    EXPECT_EQ(text(l), "XXY");
    EL_make_empty(src);
    EL_replace_items_inbetween(l, nullptr, l->last, src, 1);  // empty range: nothing, no raise
    EXPECT_EQ(text(l), "XXY");
    EL_release(&src);
    EL_release(&l);
}

}  // namespace
