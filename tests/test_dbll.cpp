// DBLL: the worked examples of the unique insertion, the nearest search and
// the thinning as tables, with the comparison edges (a distance equal to the
// tolerance, NaN, -0.0), and the family's small operations.
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
using V = std::vector<double>;
const double kNaN = std::numeric_limits<double>::quiet_NaN();

EL_list *make(const V &v) {
    EL_list *l = DBLL_create();
    for (double d : v) DBLL_add_double(l, d);
    return l;
}

// Values from first, compared bit for bit (NaN and -0.0 included).
V read(EL_list *l) {
    V out;
    EL_iter it = DBLL_all_doubles(l);
    double d;
    while (DBLL_next_double(&it, &d)) out.push_back(d);
    return out;
}
bool same(const V &a, const V &b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::memcmp(&a[i], &b[i], sizeof(double)) != 0) return false;
    return true;
}
#define EXPECT_VALUES(list, ...) EXPECT_TRUE(same(read(list), V __VA_ARGS__))

class Dbll : public LeakChecked {};

struct UniqueCase {
    const char *name;
    V start;
    double value, tolerance;
    int32_t result;
    V after;
};

TEST_F(Dbll, AddDoubleUniqueTable) {
    const V nine = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    // Not ascending, so that the walk's direction shows in where the value lands.
    const V probe = {1, 3, 0, 0, 0, 0, 0, 0, 3};
    const V probe_near_last = {1, 3, 0, 0, 0, 0, 0, 0, 2.9};
    const std::vector<UniqueCase> cases = {
        {"empty list: appended, 0", {}, 1.0, 0.5, 0, {1.0}},
        {"short, below all: becomes first", {1, 2, 3}, 0.5, 0.1, 1, {0.5, 1, 2, 3}},
        {"short, above all: appended, 0", {1, 2, 3}, 4, 0.1, 0, {1, 2, 3, 4}},
        {"distance equal to tolerance refused", {1, 2}, 1.25, 0.25, 0, {1, 2}},
        {"between", {1, 2}, 1.5, 0.25, 1, {1, 1.5, 2}},
        {"tolerance 0 refuses only equality", {1, 2}, 2, 0, 0, {1, 2}},
        {"long, above all: backward, after last", nine, 20, 0.5, 1, {1, 2, 3, 4, 5, 6, 7, 8, 9, 20}},
        {"long, below all: forward, first", nine, -5, 0.5, 1, {-5, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"long, near last: backward", nine, 8.5, 0.1, 1, {1, 2, 3, 4, 5, 6, 7, 8, 8.5, 9}},
        {"equally far from both ends: forward", probe, 2, 0.1, 1, {1, 2, 3, 0, 0, 0, 0, 0, 0, 3}},
        {"nearer to last: backward", probe_near_last, 2, 0.1, 1, {1, 3, 0, 0, 0, 0, 0, 0, 2, 2.9}},
        {"eight items is short: forward", {1, 3, 0, 0, 0, 0, 0, 2.9}, 2, 0.1, 1, {1, 2, 3, 0, 0, 0, 0, 0, 2.9}},
        {"backward walk runs out: appended, 0", {5, 6, 6, 6, 6, 6, 6, 6, 1}, 0.5, 0.1, 0,
         {5, 6, 6, 6, 6, 6, 6, 6, 1, 0.5}},
        {"NaN walks to the end, appended, 0", {1, 2}, kNaN, 10, 0, {1, 2, kNaN}},
        {"NaN tolerance refuses nothing", {1, 2}, 1, kNaN, 1, {1, 1, 2}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EL_list *l = make(c.start);
        EXPECT_EQ(DBLL_add_double_unique(l, c.value, c.tolerance), c.result);
        EXPECT_TRUE(same(read(l), c.after));
        EXPECT_EQ(DBLL_size(l), static_cast<int32_t>(c.after.size()));
        DBLL_release(&l);
    }
}

struct NearestCase {
    const char *name;
    V start;
    double value, tolerance;
    int32_t index;
    double distance;
};

TEST_F(Dbll, FindIndexOfNearestTable) {
    const std::vector<NearestCase> cases = {
        {"nearest of three", {3.5, 6.5, 4.0}, 5, 1, 2, 1.0},
        {"exactly twice the tolerance is too far", {3, 7}, 5, 1, -1, 2.0},
        {"empty list", {}, 5, 1.5, -1, 3.0},
        {"a tie goes to the lowest index", {4, 6}, 5, 1, 0, 1.0},
        {"NaN passed over", {kNaN, 5.5}, 5, 1, 1, 0.5},
        {"no order needed", {9, 1, 5.25, 5.5}, 5, 1, 2, 0.25},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EL_list *l = make(c.start);
        double d = -1;
        EXPECT_EQ(DBLL_find_index_of_nearest(l, c.value, c.tolerance, &d), c.index);
        EXPECT_EQ(d, c.distance);
        DBLL_release(&l);
    }
    EL_list *l = make({1, 2});
    double d = 0;
    EXPECT_EQ(DBLL_find_index_of_nearest(l, 1, kNaN, &d), -1);  // nothing is nearer than NaN
    EXPECT_TRUE(std::isnan(d));
    DBLL_release(&l);
}

struct SortThinCase {
    const char *name;
    V start;
    double tolerance;  // NaN: sort only
    V after;
};

TEST_F(Dbll, SortAndThinTable) {
    const std::vector<SortThinCase> cases = {
        {"sort", {3, 1, 2, 1}, kNaN, {1, 1, 2, 3}},
        {"sort: empty", {}, kNaN, {}},
        {"sort: equal values are not exchanged", {0.0, -0.0}, kNaN, {0.0, -0.0}},
        {"sort: nothing exchanged at a NaN", {3, kNaN, 1}, kNaN, {3, kNaN, 1}},
        {"sort: around a NaN", {2, 1, kNaN, 0}, kNaN, {1, 2, kNaN, 0}},
        {"thin: ends kept", {2.02, 1.0, 1.05, 2.0}, 0.1, {1.0, 2.02}},
        {"thin: middle goes", {1, 2, 3}, 5, {1, 3}},
        {"thin: two stay", {1, 2}, 5, {1, 2}},
        {"thin: one item only sorts", {4}, 5, {4}},
        {"thin: empty", {}, 5, {}},
        {"thin: distance equal to tolerance stays", {1, 1.5, 3}, 0.5, {1, 1.5, 3}},
        {"thin: tolerance 0 keeps duplicates", {1, 1, 1}, 0, {1, 1, 1}},
        {"thin: against the last kept", {1.0, 0.9, 0.6, 0.3, 0}, 0.5, {0, 1.0}},
        {"thin: unsorted input", {3, 1.25, 1}, 0.5, {1, 3}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EL_list *l = make(c.start);
        EL_node *first = l->first, *last = l->last;
        if (std::isnan(c.tolerance)) {
            DBLL_sort(l);
            EXPECT_EQ(l->first, first);  // values move, links stay
            EXPECT_EQ(l->last, last);
        } else {
            DBLL_remove_double_occ(l, c.tolerance);
        }
        EXPECT_TRUE(same(read(l), c.after));
        DBLL_release(&l);
    }
}

TEST_F(Dbll, SmallOperations) {
    EL_list *l = DBLL_create_with_two(2.0, 1.0);  // neither compared nor sorted
    EXPECT_VALUES(l, {2.0, 1.0});
    EXPECT_EQ(l->closed, 0);
    EXPECT_EQ(l->item_size, 8);
    EXPECT_EQ(DBLL_check(l), static_cast<int32_t>(2 * (2 * sizeof(void *) + 8)));
    EL_node *second = l->last;
    DBLL_add_to_all(l, 0.5);  // order and positions stay
    EXPECT_VALUES(l, {2.5, 1.5});
    EXPECT_EQ(l->last, second);

    // Backward from the later position; a finished walk leaves the double alone.
    DBLL_insert_before_index(l, 1, 2.0);
    EL_iter it = DBLL_all_doubles_inbetween_reversed(l, l->last, l->first->next);
    V back;
    double d;
    while (DBLL_next_double(&it, &d)) back.push_back(d);
    EXPECT_EQ(back, (V{1.5, 2.0}));
    d = 42;
    EXPECT_EQ(DBLL_next_double(&it, &d), 0);
    EXPECT_EQ(d, 42);

    // The failures come through EL.
    EL_list *src = make({7});
    EXPECT_RAISES(DBLL_replace_doubles_inbetween(l, l->first, l->last, src), "egenlist", 555, 4297);
    EXPECT_RAISES(DBLL_roll(l, l->first), "egenlist", 987, 4297);
    EXPECT_VALUES(l, {7, 2.0, 1.5});
    DBLL_release(&src);

    // A ring sorts along its order from first and stays a ring.
    DBLL_set_closed(l);
    DBLL_roll(l, l->last);
    DBLL_sort(l);
    EXPECT_VALUES(l, {1.5, 2.0, 7});
    EXPECT_EQ(l->last->next, l->first);

    // One item: begin and end are the same value; a one-item ring is not empty.
    EXPECT_EQ(DBLL_remove_at_index(l, 3), 0);
    DBLL_remove_double(l, l->first);
    DBLL_remove_at_index(l, 0);
    DBLL_set_begin_value(l, 4.0);
    EXPECT_EQ(DBLL_end_value(l), 4.0);
    EXPECT_EQ(DBLL_is_empty(l), 0);
    DBLL_make_empty(l);
    EXPECT_EQ(DBLL_is_empty(l), 1);
    EXPECT_EQ(DBLL_begin_value(l), 0.0);
    EXPECT_EQ(DBLL_end_value(l), 0.0);
    DBLL_set_end_value(l, 1.0);  // stays empty
    EXPECT_EQ(DBLL_size(l), 0);
    DBLL_release(&l);
    EXPECT_EQ(l, nullptr);
}

}  // namespace
