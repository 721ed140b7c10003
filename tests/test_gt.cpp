// GT against a simple reference: every insertion, lookup and removal form,
// with and without duplicates, while live iterators step through the changes
// and are checked against the correction rules after every operation (the
// model, model_gt.hpp); then the failure lines, the printout and the total
// operations, which the model leaves out.

#include "model_gt.hpp"

namespace {

using namespace gt_model;

// MM_ blocks and the three leak counters back to where they were.
class GtTest : public vorn_test::LeakChecked {
protected:
    void TearDown() override {
        EXPECT_EQ(printed(GT_check), leaks(0, 0, 0));
        LeakChecked::TearDown();
    }
};

class GtModel : public GtTest, public ::testing::WithParamInterface<bool> {};

TEST_P(GtModel, RandomOperationsFollowTheReference) {
    vorn_test::for_seeds(25, 700, [&](auto &rng) { gt_model::run(rng, GetParam()); });
}

INSTANTIATE_TEST_SUITE_P(Dupl, GtModel, ::testing::Values(true, false),
                         [](const auto &info) { return info.param ? "Allowed" : "NotAllowed"; });

// ---- fixed data -------------------------------------------------------------------

// The keys 1..n inserted in order into a tree with duplicates.
struct Fixed {
    GT_tree *t = GT_create_with_dupl_allowed(by_key);
    std::vector<Item> store;
    std::vector<GT_node *> nodes;
    std::vector<Item *> items;
    explicit Fixed(int n) : store(static_cast<size_t>(n)) {
        for (int i = 0; i < n; ++i) {
            store[i].key = i + 1;
            items.push_back(&store[i]);
            nodes.push_back(GT_insert_item(t, &store[i]));
        }
    }
    ~Fixed() { GT_release(&t); }
};

int g_calls;
int g_honest_calls;
// Agrees with by_key for g_honest_calls calls, then contradicts it.
int32_t turncoat(void *a, void *b) { return g_calls++ < g_honest_calls ? by_key(a, b) : -by_key(a, b); }
void print_key(void *item) { Tprintf("%d", static_cast<int>(key_of(item))); }

using GtFixed = GtTest;

// Tree 1..7: 4 at the root, 2 and 6 below, 1 3 5 7 the leaves.
TEST_F(GtFixed, EachReachableLineRaisesWithItsState) {
    static Item zero{0};
    struct Case {
        vorn::RaiseSite site;
        bool unchanged;
        std::function<void(Fixed &)> act;
    };
    const std::vector<Case> cases = {
        {vorn::raises::GT_RAISE_REMOVE_MISSED, true, [](Fixed &f) { GT_remove_item(f.t, Fixed(3).nodes[1]); }},  // another tree's
        {vorn::raises::GT_RAISE_GLOBAL_MISSED, true, [](Fixed &f) { GT_remove_item_global(f.t, Fixed(3).nodes[2]); }},
        {vorn::raises::GT_RAISE_FIND_AND_REMOVE_NO_ITEM, true, [](Fixed &f) { GT_find_and_remove_item(f.t, &zero); }},
        // the lookup of 7 compares with 4 and 6 honestly, the removal does not
        {vorn::raises::GT_RAISE_FIND_AND_REMOVE_MISSED, true, [](Fixed &f) { f.t->compare = turncoat, g_calls = 0, g_honest_calls = 2, GT_find_and_remove_item(f.t, f.items[6]); }},
        {vorn::raises::GT_RAISE_LEFT_GREW_BAD_BALANCE, false, [](Fixed &f) { f.t->root->balance = 5, GT_insert_item(f.t, &zero); }},
        {vorn::raises::GT_RAISE_RIGHT_GREW_BAD_BALANCE, false, [](Fixed &f) { f.t->root->balance = -5, GT_insert_item(f.t, f.items[6]); }},
        {vorn::raises::GT_RAISE_REMOVE_FIRST_EMPTY, true, [](Fixed &f) { GT_make_empty(f.t), f.nodes.clear(), f.items.clear(), GT_remove_first_item(f.t); }},
        {vorn::raises::GT_RAISE_REMOVE_HAS_LEFT, true, [](Fixed &f) { f.t->first = f.t->root, GT_remove_first_item(f.t); }},
        {vorn::raises::GT_RAISE_STEP_NOT_REGISTERED, true, [](Fixed &f) { GT_iter fake{nullptr, nullptr, f.t, nullptr, 0}; void *i; GT_next_item(&fake, &i); }},
        {vorn::raises::GT_RAISE_STEP_POSITION_NOT_REGISTERED, true, [](Fixed &f) { GT_iter fake{nullptr, nullptr, f.t, nullptr, 0}; GT_node *p; GT_next_position(&fake, &p); }},
        {vorn::raises::GT_RAISE_END_NOT_REGISTERED, true, [](Fixed &f) { GT_iter fake{f.nodes[0], nullptr, f.t, nullptr, 0}; GT_end_iterator(&fake); }},
        {vorn::raises::GT_RAISE_REMOVE_FIRST_EMPTY, true, [](Fixed &) { GT_remove_first_item(nullptr); }},
        {vorn::raises::GT_RAISE_REMOVE_MISSED, true, [](Fixed &f) { GT_remove_item(f.t, nullptr); }},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.site.line);
        Fixed f(7);
        EXPECT_RAISES(c.act(f), c.site);
        f.t->compare = by_key;
        f.store[0].key = 1;
        f.t->first = f.nodes.empty() ? nullptr : f.nodes[0];
        if (c.unchanged) {
            EXPECT_NO_FATAL_FAILURE(expect_sound(f.t, f.nodes, f.items));
        }
    }
    // A null tree gives misses and does nothing.
    GT_node *pos = reinterpret_cast<GT_node *>(&pos);
    GT_tree *none = nullptr;
    EXPECT_EQ(GT_insert_item(nullptr, &pos), nullptr);
    EXPECT_EQ(GT_find_item(nullptr, &pos, &pos), 0);
    EXPECT_EQ(pos, nullptr);
    GT_total_make_empty(nullptr, 4), GT_release(&none), GT_total_release(nullptr, 4), GT_sort(nullptr);
    GT_print_tree(nullptr, print_key);
}

TEST_F(GtFixed, PrintoutShowsShapeAndBadBalance) {
    Fixed f(3);  // a left rotation puts 2 at the root
    auto print = [&](GT_tree *t) { return printed([&] { GT_print_tree(t, print_key); }); };
    EXPECT_EQ(print(f.t), "   1\n2\n   3\n");
    f.nodes[1]->balance = 1;
    f.nodes[2]->balance = -1;
    EXPECT_EQ(print(f.t), "   1\n2 1 0 ERROR IN BALANCE !!!!!!!!!!\n   3 -1 0 ERROR IN BALANCE !!!!!!!!!!\n");
    f.nodes[1]->balance = f.nodes[2]->balance = 0;
    Fixed deep(7);
    EXPECT_EQ(print(deep.t), "      1\n   2\n      3\n4\n      5\n   6\n      7\n");
    GT_make_empty(deep.t);
    EXPECT_EQ(printed([&] { GT_print_tree(deep.t, nullptr); }), "");  // calls nothing
}

TEST_F(GtFixed, TotalOperationsFreeEveryItemOnce) {
    const int64_t before = MM_blocks_in_use();
    GT_tree *t = GT_create_with_dupl_allowed(by_key);
    auto fill = [&] {
        for (int32_t k : {5, 1, 4, 1, 3}) GT_insert_item(t, new (MM_alloc_item(sizeof(Item))) Item{k});
    };
    fill();
    GT_iter *it = GT_all_items(t);
    void *item;
    ASSERT_EQ(GT_next_item(it, &item), 1);
    GT_total_release(nullptr, 8);  // another size in the working state: each call takes its own
    GT_total_make_empty(t, sizeof(Item));
    EXPECT_EQ(MM_blocks_in_use(), before + 4);  // tree, its list, the iterator, its list node
    EXPECT_EQ(GT_next_item(it, &item), 0);      // an emptied walk stays over
    fill();
    GT_total_make_empty(nullptr, 8);
    GT_total_release(&t, sizeof(Item));
    EXPECT_EQ(t, nullptr);
    EXPECT_EQ(MM_blocks_in_use(), before);
}

}  // namespace
