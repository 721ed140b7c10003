// GT: the failure lines, the printout and leak report texts, sorting, the
// total operations, the cost of a lookup and the iterator rules on fixed
// data (kinds, openings, orphans and the choices left open).
#include <functional>

#include "gt_helpers.hpp"

namespace {

using namespace gt_test;
using Keys = std::vector<int32_t>;

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
    static Keys walk(GT_iter *it) {
        Keys keys;
        void *item;
        while (GT_next_item(it, &item)) keys.push_back(key_of(item));
        return keys;
    }
};

int g_calls;
int g_honest_calls;
int32_t counting_by_key(void *a, void *b) { return ++g_calls, by_key(a, b); }
// Agrees with by_key for g_honest_calls calls, then contradicts it.
int32_t turncoat(void *a, void *b) { return g_calls++ < g_honest_calls ? by_key(a, b) : -by_key(a, b); }
int32_t below_3(void *item) { return key_of(item) < 3; }
void print_key(void *item) { Tprintf("%d", static_cast<int>(key_of(item))); }

using GtFailures = GtTest;

// Tree 1..7: 4 at the root, 2 and 6 below, 1 3 5 7 the leaves.
TEST_F(GtFailures, EachReachableLineRaisesWithItsState) {
    static Item zero{0};
    struct Case {
        int32_t line;
        bool unchanged;
        std::function<void(Fixed &)> act;
    };
    const std::vector<Case> cases = {
        {477, true, [](Fixed &f) { GT_remove_item(f.t, Fixed(3).nodes[1]); }},  // another tree's
        {541, true, [](Fixed &f) { GT_remove_item_global(f.t, Fixed(3).nodes[2]); }},
        {562, true, [](Fixed &f) { GT_find_and_remove_item(f.t, &zero); }},
        // the lookup of 7 compares with 4 and 6 honestly, the removal does not
        {575, true, [](Fixed &f) { f.t->compare = turncoat, g_calls = 0, g_honest_calls = 2, GT_find_and_remove_item(f.t, f.items[6]); }},
        {1177, false, [](Fixed &f) { f.t->root->balance = 5, GT_insert_item(f.t, &zero); }},
        {1232, false, [](Fixed &f) { f.t->root->balance = -5, GT_insert_item(f.t, f.items[6]); }},
        {1423, true, [](Fixed &f) { GT_make_empty(f.t), f.nodes.clear(), f.items.clear(), GT_remove_first_item(f.t); }},
        {1724, true, [](Fixed &f) { f.t->first = f.t->root, GT_remove_first_item(f.t); }},
        {892, true, [](Fixed &f) { GT_iter fake{nullptr, nullptr, f.t, nullptr, 0}; void *i; GT_next_item(&fake, &i); }},
        {933, true, [](Fixed &f) { GT_iter fake{nullptr, nullptr, f.t, nullptr, 0}; GT_node *p; GT_next_position(&fake, &p); }},
        {958, true, [](Fixed &f) { GT_iter fake{f.nodes[0], nullptr, f.t, nullptr, 0}; GT_end_iterator(&fake); }},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.line);
        Fixed f(7);
        EXPECT_RAISES(c.act(f), "gentree", c.line, 4297);
        f.t->compare = by_key;
        f.store[0].key = 1;
        f.t->first = f.nodes.empty() ? nullptr : f.nodes[0];
        if (c.unchanged) {
            EXPECT_NO_FATAL_FAILURE(expect_sound(f.t, f.nodes, f.items));
        }
    }
}

TEST_F(GtFailures, NullTreeGivesMissesAndDoesNothing) {
    GT_node *pos = reinterpret_cast<GT_node *>(&pos);
    GT_tree *none = nullptr;
    EXPECT_EQ(GT_insert_item(nullptr, &pos), nullptr);
    EXPECT_EQ(GT_find_item(nullptr, &pos, &pos), 0);
    EXPECT_EQ(pos, nullptr);
    GT_total_make_empty(nullptr, 4);
    GT_release(&none);
    GT_total_release(nullptr, 4);
    GT_sort(nullptr);
    GT_print_tree(nullptr, print_key);
    EXPECT_RAISES(GT_remove_first_item(nullptr), "gentree", 1423, 4297);
}

using GtWhole = GtTest;

TEST_F(GtWhole, PrintoutShowsShapeAndBadBalance) {
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

TEST_F(GtWhole, LeakReportCountsTreesNodesAndIterators) {
    Fixed f(2);
    GT_iter *it = GT_all_items(f.t);
    EXPECT_EQ(printed(GT_check), leaks(1, 2, 1));
    GT_tree *unique = GT_create_with_dupl_not_allowed(by_key);
    Item a{2}, b{2};
    GT_node *pos = GT_insert_item(unique, &a);
    EXPECT_EQ(GT_insert_item(unique, &b), pos);  // equal item: nothing stored
    EXPECT_EQ(pos->item, &a);
    EXPECT_EQ(printed(GT_check), leaks(2, 3, 1));
    GT_release(&unique);
    GT_end_iterator(it);
    // An iterator orphaned by the release stays counted until stepped or ended.
    it = GT_all_items(f.t);
    GT_release(&f.t);
    EXPECT_EQ(f.t, nullptr);
    EXPECT_EQ(it->tree, nullptr);
    GT_iter *orphan = GT_from_next(it);
    EXPECT_EQ(printed(GT_check), leaks(0, 0, 2));
    void *item = &item;
    EXPECT_EQ(GT_current_item(it, &item), 0);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(GT_next_item(it, &item), 0);
    GT_end_iterator(orphan);
}

TEST_F(GtWhole, TotalOperationsFreeEveryItemOnce) {
    const int64_t before = MM_blocks_in_use();
    GT_tree *t = GT_create_with_dupl_allowed(by_key);
    auto fill = [&] {
        for (int32_t k : {5, 1, 4, 1, 3}) {
            auto *item = static_cast<Item *>(MM_alloc_item(sizeof(Item)));
            item->key = k;
            GT_insert_item(t, item);
        }
    };
    fill();
    GT_iter *it = GT_all_items(t);
    void *item;
    ASSERT_EQ(GT_next_item(it, &item), 1);
    GT_total_make_empty(t, sizeof(Item));
    EXPECT_EQ(MM_blocks_in_use(), before + 4);  // tree, its list, the iterator, its list node
    Item late{0};
    GT_insert_item(t, &late);
    EXPECT_EQ(GT_next_item(it, &item), 0);  // an emptied walk stays over
    GT_find_and_remove_item(t, &late);
    fill();
    GT_total_release(&t, sizeof(Item));
    EXPECT_EQ(t, nullptr);
    EXPECT_EQ(MM_blocks_in_use(), before);
}

TEST_F(GtWhole, SortRestoresOrderKeepingNodesShapeAndEqualOrder) {
    const int n = 12;
    Fixed f(n);
    f.t->compare = counting_by_key;
    g_calls = 0;
    GT_sort(f.t);
    EXPECT_EQ(g_calls, n - 1);  // in order: one pass, no exchange
    for (int i = 0; i < n; ++i) f.store[i].key = (n - i) / 2;  // reversed, equal pairs
    struct Shape {
        GT_node *l, *r;
        int32_t b;
        bool operator==(const Shape &) const = default;
    };
    auto shape = [&] {
        std::vector<Shape> s;
        for (GT_node *p : f.nodes) s.push_back({p->left, p->right, p->balance});
        return s;
    };
    const std::vector<Shape> before = shape();
    g_calls = 0;
    GT_sort(f.t);
    EXPECT_EQ(g_calls, n * (n - 1) / 2);  // each pass stops ahead of the last exchange
    std::stable_sort(f.items.begin(), f.items.end(), [](Item *a, Item *b) { return a->key < b->key; });
    EXPECT_NO_FATAL_FAILURE(expect_sound(f.t, f.nodes, f.items));
    EXPECT_TRUE(shape() == before);
    Fixed one(1);
    one.t->compare = counting_by_key;
    g_calls = 0;
    GT_sort(one.t);
    EXPECT_EQ(g_calls, 0);
}

TEST_F(GtWhole, LookupAndInsertionCostOneCompareALevel) {
    Fixed f(7);  // a perfect tree of height 3
    f.t->compare = counting_by_key;
    Item absent{0}, last{7}, behind{8};
    GT_node *pos;
    g_calls = 0;
    EXPECT_EQ(GT_find_item(f.t, &absent, &pos), 0);
    EXPECT_EQ(g_calls, 3);
    EXPECT_EQ(GT_search_item(f.t, &last, &pos), 1);
    EXPECT_EQ(pos, f.nodes[6]);
    EXPECT_EQ(g_calls, 6);
    GT_remove_item(f.t, GT_insert_item(f.t, &behind));
    EXPECT_EQ(g_calls, 6 + 3 + 3);
}

using GtIter = GtTest;

TEST_F(GtIter, KindsAndOpeningsOnFixedItems) {
    Fixed f(4);
    EXPECT_EQ(Fixed::walk(GT_all_items_while_conditioned(f.t, below_3)), (Keys{1, 2}));
    EXPECT_EQ(Fixed::walk(GT_all_items_conditional(f.t, nullptr)), (Keys{1, 2, 3, 4}));

    GT_iter *src = GT_all_items(f.t);
    void *item = &item;
    EXPECT_EQ(GT_current_item(src, &item), 0);  // nothing delivered yet
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(Fixed::walk(GT_from_current(src)), (Keys{}));
    ASSERT_EQ(GT_next_item(src, &item), 1);
    ASSERT_EQ(GT_next_item(src, &item), 1);  // stands on 2
    EXPECT_EQ(Fixed::walk(GT_from_current_while_conditioned(src, below_3)), (Keys{2}));
    EXPECT_EQ(Fixed::walk(GT_from_next(src)), (Keys{3, 4}));

    // The item just delivered may go; one inserted directly behind the
    // current item comes next; a zero word reads back as 0.
    GT_remove_item(f.t, f.nodes[1]);
    EXPECT_EQ(GT_current_item(src, &item), 0);
    ASSERT_EQ(GT_next_item(src, &item), 1);
    EXPECT_EQ(key_of(item), 3);
    GT_node *behind = GT_insert_item(f.t, &f.store[2]);  // equal to 3: behind it
    EXPECT_EQ(src->next, behind);
    behind->item = nullptr;
    ASSERT_EQ(GT_next_item(src, &item), 1);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(GT_current_item(src, &item), 0);
    behind->item = &f.store[2];
    GT_remove_item(f.t, behind);
    EXPECT_EQ(Fixed::walk(src), (Keys{4}));
    EXPECT_EQ(printed(GT_check), leaks(1, 3, 0));
}

}  // namespace
