// The arrays: DA against a byte-exact model of the whole block (copies
// between item sizes too), the walk against the present count; SA's number
// sets against a marked sequence.  Allocation failures: test_oom.cpp.

#include "model_arrays.hpp"

namespace {

using namespace arrays_model;

class DaModel : public vorn_test::LeakChecked {};

TEST_F(DaModel, RandomOperationsFollowTheModel) {
    vorn_test::for_seeds(60, 300, [](auto &rng) { run_da(rng); });
}

DA_array *tens(int32_t n) {  // 10, 20, ... n items, increment 4
    DA_array *a = DA_create(4, 4);
    for (int32_t v = 10; v <= 10 * n; v += 10) DA_append(a, &v, 1);
    return a;
}

int g_calls;
int32_t odd_tens(void *item) { return ++g_calls, (*static_cast<int32_t *>(item) / 10) % 2; }

// A walk follows indices against the present count; an ended walk stays
// ended and writes null; the test runs once per item.
TEST_F(DaModel, WalksFollowIndicesAgainstThePresentCount) {
    using Start = DA_iter (*)(DA_array *);
    const Start all = DA_all_items;
    const struct {
        const char *name;
        Start start;
        void (*after_first)(DA_array *);  // applied once the first item came
        std::vector<int32_t> want;
        int calls;
    } cases[] = {
        {"tested", [](DA_array *a) { return DA_tested_items(a, odd_tens); }, nullptr, {10, 30, 50}, 5},
        {"down from beyond the end", [](DA_array *a) { return DA_iter{a, 0, 7, 1, nullptr}; }, nullptr, {50, 40, 30, 20}, 0},
        {"from below 0", [](DA_array *a) { return DA_iter{a, 1, -3, 1, nullptr}; }, nullptr, {10, 20}, 0},
        {"truncated", all, [](DA_array *a) { DA_truncate(a, 2); }, {10, 20}, 0},
        {"delivered deleted", all, [](DA_array *a) { DA_delete(a, 0, 1); }, {10, 30, 40, 50}, 0},
        {"appended", all, [](DA_array *a) { DA_append(a, &a->nitems, 1); }, {10, 20, 30, 40, 50}, 0},
        {"emptied", all, DA_reset, {10}, 0},
    };
    for (const auto &c : cases) {
        DA_array *a = tens(5);
        g_calls = 0;
        DA_iter it = c.start(a);
        std::vector<int32_t> got;
        void *item;
        while (DA_next(&it, &item)) {
            got.push_back(*static_cast<int32_t *>(item));
            if (got.size() == 1 && c.after_first) c.after_first(a);
        }
        EXPECT_EQ(got, c.want) << c.name;
        EXPECT_EQ(g_calls, c.calls) << c.name;
        item = &got;
        EXPECT_EQ(DA_next(&it, &item), 0) << c.name;
        EXPECT_EQ(item, nullptr) << c.name;
        DA_release(a);
    }
}

class SaModel : public vorn_test::LeakChecked {};

TEST_F(SaModel, SetFollowsTheMarkedItemsOfAnEditedSequence) {
    vorn_test::for_seeds(40, 400, [](auto &rng) { run_sa(rng); });
}

}  // namespace
