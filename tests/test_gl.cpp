// GL against a simple reference, the walk rules, splicing and ownership.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
using vorn_test::Rng;

void *word(uintptr_t v) { return reinterpret_cast<void *>(v); }

void expect_list(GL_list *l, const std::vector<GL_node *> &ref) {
    ASSERT_EQ(GL_count_items(l), l->count);
    vorn_test::expect_links(l->first, l->last, l->count, false, ref);
}

std::vector<GL_node *> positions(GL_list *l) {
    std::vector<GL_node *> out;
    GL_iter it = GL_all_items(l);
    GL_node *p;
    while (GL_next_position(&it, &p)) out.push_back(p);
    return out;
}

class GlModel : public LeakChecked {};

TEST_F(GlModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 40; ++seed) {
        Rng rng(seed);
        GL_list *l = GL_create();
        std::vector<GL_node *> ref;
        auto pick = [&] { return ref[rng.below(static_cast<uint32_t>(ref.size()))]; };
        auto at = [&](GL_node *p) { return std::find(ref.begin(), ref.end(), p); };
        for (int op = 0; op < 400; ++op) {
            void *w = word(rng.below(16));  // small words: duplicates and 0 occur
            switch (rng.below(12)) {
                case 0: ref.push_back(GL_append_after_last(l, w)); break;
                case 1: ref.insert(ref.begin(), GL_insert_before_first(l, w)); break;
                case 2:
                    if (!ref.empty()) {
                        GL_node *p = pick();
                        ref.insert(at(p) + 1, GL_insert_after(l, p, w));
                    }
                    break;
                case 3:
                    if (!ref.empty()) {
                        GL_node *p = pick();
                        ref.insert(at(p), GL_insert_before(l, p, w));
                    }
                    break;
                case 4: {
                    auto hit = std::find_if(ref.begin(), ref.end(),
                                            [&](GL_node *n) { return n->item == w; });
                    GL_node *p = GL_insert_unique(l, w);
                    if (hit != ref.end()) {
                        ASSERT_EQ(p, nullptr);
                    } else {
                        ASSERT_NE(p, nullptr);
                        ref.push_back(p);
                    }
                    break;
                }
                case 5: {
                    auto hit = std::find_if(ref.begin(), ref.end(),
                                            [&](GL_node *n) { return n->item == w; });
                    GL_node *p = reinterpret_cast<GL_node *>(1);
                    ASSERT_EQ(GL_find_item(l, w, &p), hit != ref.end() ? 1 : 0);
                    ASSERT_EQ(p, hit != ref.end() ? *hit : nullptr);
                    break;
                }
                case 6:
                case 7:
                    if (!ref.empty()) {
                        GL_node *p = pick();
                        ref.erase(at(p));
                        GL_remove_item(l, p);
                    }
                    break;
                case 8:
                    if (!ref.empty()) {
                        GL_node *p = pick();
                        ref.erase(at(p));
                        ref.insert(ref.begin(), p);
                        GL_move_before_first(l, p);
                    }
                    break;
                case 9: {  // splice a fresh list behind or in front
                    GL_list *other = GL_create();
                    std::vector<GL_node *> more;
                    for (uint32_t k = rng.below(4); k > 0; --k)
                        more.push_back(GL_append_after_last(other, word(rng.below(16))));
                    if (rng.chance(50)) {
                        GL_node *first = GL_append_list(l, &other);
                        ASSERT_EQ(first, more.empty() ? nullptr : more.front());
                        ref.insert(ref.end(), more.begin(), more.end());
                    } else {
                        GL_append_list_in_front(l, &other);
                        ref.insert(ref.begin(), more.begin(), more.end());
                    }
                    ASSERT_EQ(other, nullptr);
                    break;
                }
                case 10:
                    if (!ref.empty()) {
                        GL_node *p = pick();
                        void *old = p->item, *in = w;
                        GL_swap_item(p, &in);
                        ASSERT_EQ(in, old);
                        ASSERT_EQ(p->item, w);
                    }
                    break;
                case 11:
                    if (rng.chance(5)) {
                        GL_make_empty(l);
                        ref.clear();
                    }
                    break;
            }
            expect_list(l, ref);
            if (::testing::Test::HasFatalFailure()) return;
        }
        // A copy holds the same words in order, in new nodes.
        GL_list *c = GL_copy(l);
        auto cp = positions(c);
        ASSERT_EQ(cp.size(), ref.size());
        for (size_t i = 0; i < ref.size(); ++i) {
            EXPECT_NE(cp[i], ref[i]);
            EXPECT_EQ(cp[i]->item, ref[i]->item);
        }
        GL_release(&c);
        GL_release(&l);
        EXPECT_EQ(l, nullptr);
    }
}

// ---- the walk rules ----------------------------------------------------------

int32_t accept_odd(void *item) { return reinterpret_cast<uintptr_t>(item) & 1; }
int32_t accept_none(void *) { return 0; }

struct WalkCase {
    const char *name;
    int n;           // list of words 1..n
    int from, to;    // indices; -1 for a null position
    int32_t forward;
    GL_test_fn test;
    std::vector<uintptr_t> delivered;
    uintptr_t out_after;  // the out word after the final 0 (99: untouched)
};

TEST_F(GlModel, WalkRulesTable) {
    const std::vector<WalkCase> cases = {
        {"empty list", 0, -1, -1, 1, nullptr, {}, 99},
        {"from equals to", 5, 2, 2, 1, nullptr, {3}, 3},
        {"null from is over at once", 5, -1, 3, 1, nullptr, {}, 99},
        {"backward range", 5, 3, 0, 0, nullptr, {4, 3, 2, 1}, 1},
        {"to behind from runs to the end", 5, 3, 1, 1, nullptr, {4, 5}, 5},
        {"tested, last refused", 4, 0, 3, 1, accept_odd, {1, 3}, 4},
        {"tested, nothing accepted", 4, 0, 3, 1, accept_none, {}, 4},
        {"tested backward", 5, 4, 0, 0, accept_odd, {5, 3, 1}, 1},
    };
    // The exported step and the inline one of the header behave the same.
    using Step = int32_t (*)(GL_iter *, void **);
    for (Step step : {Step{(GL_next_item)}, Step{GL_next_item_inline}})
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        GL_list *l = GL_create();
        std::vector<GL_node *> pos;
        for (int i = 1; i <= c.n; ++i) pos.push_back(GL_append_after_last(l, word(i)));
        auto p = [&](int i) { return i < 0 ? nullptr : pos[i]; };
        GL_iter it = c.test ? GL_tested_items_inbetween(l, p(c.from), p(c.to), c.forward, c.test)
                            : GL_all_items_inbetween(l, p(c.from), p(c.to), c.forward);
        std::vector<uintptr_t> got;
        void *out = word(99);
        int steps = 0;
        while (step(&it, &out) && ++steps < 100) got.push_back(reinterpret_cast<uintptr_t>(out));
        EXPECT_EQ(got, c.delivered);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(out), c.out_after);
        // A walk that is over stays over and leaves the out argument alone.
        out = word(77);
        EXPECT_EQ(step(&it, &out), 0);
        EXPECT_EQ(out, word(77));
        GL_release(&l);
    }
}

TEST_F(GlModel, WalkOpenings) {
    GL_list *l = GL_create();
    for (uintptr_t i = 0; i < 5; ++i) GL_append_after_last(l, word(i));  // word 0 included
    auto collect = [](GL_iter it) {
        std::vector<uintptr_t> v;
        void *w;
        while (GL_next_item(&it, &w)) v.push_back(reinterpret_cast<uintptr_t>(w));
        return v;
    };
    EXPECT_EQ(collect(GL_all_items_reversed(l)), (std::vector<uintptr_t>{4, 3, 2, 1, 0}));
    EXPECT_EQ(collect(GL_empty_iter()), std::vector<uintptr_t>{});

    // A copy of the record taken mid-walk delivers the same remaining items.
    GL_iter it = GL_all_items(l);
    void *w;
    GL_next_item(&it, &w);
    GL_next_item(&it, &w);
    GL_iter copy = it;
    EXPECT_EQ(collect(it), collect(copy));

    // Removing every item at `current` during a walk empties the list.
    it = GL_all_items(l);
    GL_node *p;
    while (GL_next_position(&it, &p)) GL_remove_item(l, p);
    EXPECT_EQ(l->count, 0);
    EXPECT_EQ(l->first, nullptr);
    EXPECT_EQ(l->last, nullptr);

    // An item inserted beyond `last` is not visited; one between next and
    // last is.
    GL_node *a = GL_append_after_last(l, word(1));
    GL_node *b = GL_append_after_last(l, word(2));
    GL_node *c = GL_append_after_last(l, word(3));
    it = GL_all_items_inbetween(l, a, b, 1);
    GL_next_item(&it, &w);                   // a; next is b
    GL_insert_after(l, c, word(9));          // beyond last: not visited
    EXPECT_EQ(collect(it), (std::vector<uintptr_t>{2}));
    it = GL_all_items_inbetween(l, a, c, 1);
    GL_next_item(&it, &w);                   // a; next is b
    GL_insert_after(l, b, word(8));          // between next and last: visited
    EXPECT_EQ(collect(it), (std::vector<uintptr_t>{2, 8, 3}));
    GL_release(&l);
}

// ---- ownership, splicing edges, check -----------------------------------------------

int g_released;
void release_word(void **address) {
    ++g_released;
    *address = nullptr;  // allowed: the word dies with its node
}
void *copy_plus_100(void *item) { return word(reinterpret_cast<uintptr_t>(item) + 100); }
int32_t measure_word(void *item) { return static_cast<int32_t>(reinterpret_cast<uintptr_t>(item)); }
int32_t g_measured;
int32_t measure_counting(void *) { return ++g_measured, 0; }

TEST_F(GlModel, OwnershipSplicesAndCheck) {
    GL_list *l = GL_create();
    for (uintptr_t i = 1; i <= 3; ++i) GL_append_after_last(l, word(i));

    GL_list *t = GL_total_copy(l, copy_plus_100);
    std::vector<uintptr_t> got;
    for (GL_node *n = t->first; n; n = n->next) got.push_back(reinterpret_cast<uintptr_t>(n->item));
    EXPECT_EQ(got, (std::vector<uintptr_t>{101, 102, 103}));

    EXPECT_EQ(GL_check(l, measure_word),
              static_cast<int32_t>(sizeof(GL_list) + 3 * sizeof(GL_node) + 6));
    GL_list *empty = GL_create();
    g_measured = 0;
    EXPECT_EQ(GL_check(empty, measure_counting), static_cast<int32_t>(sizeof(GL_list)));
    EXPECT_EQ(g_measured, 0);

    // In front of an empty list takes everything over; null arguments do nothing.
    GL_list *keep = GL_create();
    GL_append_list_in_front(nullptr, &keep);
    GL_append_list_in_front(l, nullptr);
    GL_append_after_last(keep, word(7));
    GL_append_list_in_front(empty, &keep);
    EXPECT_EQ(keep, nullptr);
    EXPECT_EQ(empty->count, 1);
    g_released = 0;
    GL_total_make_empty(t, release_word);
    EXPECT_EQ(g_released, 3);
    EXPECT_EQ(t->count, 0);
    GL_total_release(&l, release_word);
    EXPECT_EQ(g_released, 6);
    EXPECT_EQ(l, nullptr);
    GL_release(&l);  // a null handle: nothing happens
    GL_release(&t);
    GL_release(&empty);
}

}  // namespace
