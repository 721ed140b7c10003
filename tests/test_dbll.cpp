// DBLL's own logic as tables: the unique insertion, the nearest search, the
// sort and the thinning, with the comparison edges (a distance equal to the
// tolerance, NaN, -0.0). The rest forwards to EL and is tested there.
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
        {"distance equal to tolerance refused", {1, 2}, 1.25, 0.25, 0, {1, 2}},
        {"tolerance 0 refuses only equality", {1, 2}, 2, 0, 0, {1, 2}},
        {"long, above all: backward, after last", nine, 20, 0.5, 1, {1, 2, 3, 4, 5, 6, 7, 8, 9, 20}},
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
        {"sort: equal values are not exchanged", {0.0, -0.0}, kNaN, {0.0, -0.0}},
        {"sort: nothing exchanged at a NaN", {3, kNaN, 1}, kNaN, {3, kNaN, 1}},
        {"sort: around a NaN", {2, 1, kNaN, 0}, kNaN, {1, 2, kNaN, 0}},
        {"thin: ends kept", {2.02, 1.0, 1.05, 2.0}, 0.1, {1.0, 2.02}},
        {"thin: middle goes", {1, 2, 3}, 5, {1, 3}},
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

}  // namespace
