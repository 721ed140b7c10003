// GL against a simple reference (with its walks through the exported and the
// inline step, splicing, copies and ownership), the walk corrections.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::Rng;
using Words = std::vector<uintptr_t>;

void *word(uintptr_t v) { return reinterpret_cast<void *>(v); }
uintptr_t num(void *w) { return reinterpret_cast<uintptr_t>(w); }
int32_t accept_odd(void *item) { return num(item) & 1; }

// What a walk delivers through `step`; `out` gets the out argument afterwards.
using Step = int32_t (*)(GL_iter *, void **);
Words walk(GL_iter it, Step step = Step{(GL_next_item)}, void **out = nullptr) {
    Words got;
    void *w = out ? *out : nullptr;
    while (step(&it, &w) && got.size() < 1000) got.push_back(num(w));
    if (out) *out = w;
    return got;
}

int g_released;
void release_word(void **address) {
    ++g_released;
    *address = nullptr;  // allowed: the word dies with its node
}
void *copy_plus_100(void *item) { return word(num(item) + 100); }
int32_t measure_word(void *item) { return static_cast<int32_t>(num(item)); }

class GlModel : public vorn_test::LeakChecked {};

TEST_F(GlModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 40; ++seed) {
        Rng rng(seed);
        GL_list *l = GL_create();
        std::vector<GL_node *> ref;
        auto at = [&](GL_node *p) { return std::find(ref.begin(), ref.end(), p); };
        auto holding = [&](void *w) { return std::find_if(ref.begin(), ref.end(), [&](GL_node *n) { return n->item == w; }); };
        for (int op = 0; op < 400; ++op) {
            void *w = word(rng.below(16));  // small words: duplicates and 0 occur
            GL_node *p = ref.empty() ? nullptr : ref[rng.below(static_cast<uint32_t>(ref.size()))];
            switch (rng.below(13)) {
                case 0: ref.push_back(GL_append_after_last(l, w)); break;
                case 1: ref.insert(ref.begin(), GL_insert_before_first(l, w)); break;
                case 2:
                    if (p) ref.insert(at(p) + 1, GL_insert_after(l, p, w));
                    break;
                case 3:
                    if (p) ref.insert(at(p), GL_insert_before(l, p, w));
                    break;
                case 4: {
                    const bool held = holding(w) != ref.end();
                    GL_node *q = GL_insert_unique(l, w);
                    ASSERT_EQ(q == nullptr, held);
                    if (!held) ref.push_back(q);
                    break;
                }
                case 5: {
                    auto hit = holding(w);
                    GL_node *q = reinterpret_cast<GL_node *>(1);
                    ASSERT_EQ(GL_find_item(l, w, &q), hit != ref.end() ? 1 : 0);
                    ASSERT_EQ(q, hit != ref.end() ? *hit : nullptr);
                    break;
                }
                case 6:
                case 7:
                    if (p) ref.erase(at(p)), GL_remove_item(l, p);
                    break;
                case 8:
                    if (p) ref.erase(at(p)), ref.insert(ref.begin(), p), GL_move_before_first(l, p);
                    break;
                case 9: {  // splice a fresh list behind or in front
                    GL_list *other = GL_create();
                    std::vector<GL_node *> more;
                    for (uint32_t k = rng.below(4); k > 0; --k)
                        more.push_back(GL_append_after_last(other, word(rng.below(16))));
                    if (rng.chance(50)) {
                        ASSERT_EQ(GL_append_list(l, &other), more.empty() ? nullptr : more.front());
                        ref.insert(ref.end(), more.begin(), more.end());
                    } else {
                        GL_append_list_in_front(l, &other);
                        ref.insert(ref.begin(), more.begin(), more.end());
                    }
                    ASSERT_EQ(other, nullptr);
                    break;
                }
                case 10:
                    if (p) {
                        void *old = p->item, *in = w;
                        GL_swap_item(p, &in);
                        ASSERT_EQ(in, old);
                        ASSERT_EQ(p->item, w);
                    }
                    break;
                case 11:
                    if (rng.chance(5)) GL_make_empty(l), ref.clear();
                    break;
                case 12:
                    if (p) {  // either way, tested or not, through both steps; a walk that is over stays over
                        GL_node *to = ref[rng.below(static_cast<uint32_t>(ref.size()))];
                        const bool forward = rng.chance(50), tested = rng.chance(50);
                        const auto idx = vorn_test::walk_order(ref.size(), at(p) - ref.begin(), at(to) - ref.begin(), forward, false);
                        Words want;
                        for (size_t k : idx)
                            if (!tested || accept_odd(ref[k]->item)) want.push_back(num(ref[k]->item));
                        GL_iter it = tested ? GL_tested_items_inbetween(l, p, to, forward, accept_odd)
                                            : GL_all_items_inbetween(l, p, to, forward);
                        for (Step step : {Step{(GL_next_item)}, Step{GL_next_item_inline}}) {
                            void *out = word(99);
                            ASSERT_EQ(walk(it, step, &out), want);
                            ASSERT_EQ(out, ref[idx.back()]->item);  // written before the test: the final word looked at
                        }
                    }
                    break;
            }
            ASSERT_EQ(GL_count_items(l), l->count);
            vorn_test::expect_links(l->first, l->last, l->count, false, ref);
            if (::testing::Test::HasFatalFailure()) return;
        }
        // A copy holds the words (a total copy what the callback gives for
        // them) in order, in new nodes; the total operations hand every word
        // to the callback once; the check measures every word.
        const bool total = seed % 2;
        GL_list *c = total ? GL_total_copy(l, copy_plus_100) : GL_copy(l);
        uintptr_t sum = 0;
        GL_node *n = c->first;
        for (GL_node *r : ref) {
            ASSERT_TRUE(n && n != r);
            ASSERT_EQ(num(n->item), num(r->item) + (total ? 100 : 0));
            sum += num(r->item), n = n->next;
        }
        ASSERT_EQ(n, nullptr);
        EXPECT_EQ(GL_check(l, ref.empty() ? nullptr : measure_word),  // not called on an empty list
                  static_cast<int32_t>(sizeof(GL_list) + ref.size() * sizeof(GL_node) + sum));
        g_released = 0;
        GL_total_make_empty(c, release_word);
        EXPECT_EQ(c->count, 0);
        GL_total_release(&l, release_word);
        EXPECT_EQ(g_released, static_cast<int>(2 * ref.size()));
        EXPECT_EQ(l, nullptr);
        GL_release(&c);
    }
}

// The walk is one step ahead: `current` may go; an item inserted between
// next and last is visited, one beyond last is not; walks that are over
// before they begin leave the out argument alone.  Null arguments.
TEST_F(GlModel, WalkCorrectionsOpeningsAndNullArguments) {
    GL_list *l = GL_create();
    for (uintptr_t i = 0; i < 5; ++i) GL_append_after_last(l, word(i));  // word 0 included
    EXPECT_EQ(walk(GL_all_items_reversed(l)), (Words{4, 3, 2, 1, 0}));
    EXPECT_EQ(walk(GL_tested_items(l, accept_odd)), (Words{1, 3}));
    void *out = word(77);
    EXPECT_EQ(walk(GL_empty_iter(), GL_next_item_inline, &out), Words{});
    EXPECT_EQ(walk(GL_all_items_inbetween(l, nullptr, l->last, 1), Step{(GL_next_item)}, &out), Words{});
    EXPECT_EQ(out, word(77));
    GL_iter it = GL_all_items(l);
    GL_node *p;
    while (GL_next_position(&it, &p)) GL_remove_item(l, p);
    EXPECT_EQ(l->count, 0);
    GL_node *a = GL_append_after_last(l, word(1));
    GL_node *b = GL_append_after_last(l, word(2));
    GL_node *c = GL_append_after_last(l, word(3));
    it = GL_all_items_inbetween(l, a, b, 1);
    GL_next_item(&it, &out);          // a; next is b
    GL_insert_after(l, c, word(9));   // beyond last: not visited
    EXPECT_EQ(walk(it), (Words{2}));
    it = GL_all_items_inbetween(l, a, c, 1);
    GL_next_item(&it, &out);          // a; next is b
    GL_insert_after(l, b, word(8));   // between next and last: visited
    EXPECT_EQ(walk(it), (Words{2, 8, 3}));
    GL_list *keep = GL_create();  // null arguments do nothing
    GL_append_list_in_front(nullptr, &keep);
    GL_append_list_in_front(l, nullptr);
    EXPECT_NE(keep, nullptr);  // survives
    for (GL_list **h : {&keep, &l, &l}) GL_release(h);  // a null handle too
}

}  // namespace
