// The list families: each model driver (model_lists.hpp) for many seeds,
// then what the drivers leave out: GL's walk corrections and null
// arguments, and DBLL's own logic as one table (the rest of DBLL forwards to
// EL).

#include "model_lists.hpp"

namespace {

class ElModel : public vorn_test::LeakChecked {};

TEST_F(ElModel, RandomOperationsFollowTheReference) {
    vorn_test::for_seeds(60, 300, [](auto &rng) { el_model::run(rng); });
}

using SlModel = ElModel;
TEST_F(SlModel, RandomOperationsFollowTheReference) {
    vorn_test::for_seeds(60, 300, [](auto &rng) { sl_model::run(rng); });
}

using GbModel = ElModel;
TEST_F(GbModel, RandomOperationsFollowTheReference) {
    vorn_test::for_seeds(60, 300, [](auto &rng) { gb_model::run(rng); });
}

using GlModel = ElModel;
TEST_F(GlModel, RandomOperationsFollowTheReference) {
    vorn_test::for_seeds(40, 400, [](auto &rng) { gl_model::run(rng); });
}

// The walk is one step ahead: `current` may go; an item inserted between
// next and last is visited, one beyond last is not; walks that are over
// before they begin leave the out argument alone.  Null arguments.
TEST_F(GlModel, WalkCorrectionsOpeningsAndNullArguments) {
    using namespace gl_model;
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
