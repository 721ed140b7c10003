// GT: the failure lines, the printout and leak report texts, sorting, the
// total operations and the iterator rules the model test does not reach
// (kinds on fixed data, orphans, the choices left open).
#include <functional>

#include "gt_helpers.hpp"

namespace {

using namespace gt_test;

// A tree of the keys 1..n inserted in order, its nodes and items in order.
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
    std::vector<int32_t> walk(GT_iter *it) {
        std::vector<int32_t> keys;
        void *item;
        while (GT_next_item(it, &item)) keys.push_back(key_of(item));
        return keys;
    }
};

int g_compare_calls;
int g_honest_calls;
int32_t counting_by_key(void *a, void *b) {
    ++g_compare_calls;
    return by_key(a, b);
}
// Agrees with by_key for g_honest_calls calls and contradicts it afterwards.
int32_t turncoat(void *a, void *b) {
    return g_compare_calls++ < g_honest_calls ? by_key(a, b) : -by_key(a, b);
}
int32_t below_3(void *item) { return key_of(item) < 3; }
void print_key(void *item) { Tprintf("%d", static_cast<int>(key_of(item))); }

using GtFailures = GtTest;

TEST_F(GtFailures, EachReachableLineRaisesWithItsState) {
    struct Case {
        const char *what;
        int32_t line;
        bool unchanged;  // the tree is as before the call
        std::function<void(Fixed &)> act;
    };
    static Item stranger{0};
    const std::vector<Case> cases = {
        {"remove a position of another tree", 477, true,
         [](Fixed &f) {
             Fixed other(3);
             GT_remove_item(f.t, other.nodes[1]);
         }},
        {"remove an item whose key moved", 477, true,
         [](Fixed &f) {
             f.store[0].key = 9;
             GT_remove_item(f.t, f.nodes[0]);
         }},
        {"remove a null position", 477, true, [](Fixed &f) { GT_remove_item(f.t, nullptr); }},
        {"global removal of a stranger", 541, true,
         [](Fixed &f) {
             Fixed other(3);
             GT_remove_item_global(f.t, other.nodes[2]);
         }},
        {"find and remove an absent item", 562, true,
         [](Fixed &f) { GT_find_and_remove_item(f.t, &stranger); }},
        {"find and remove under a compare that contradicts itself", 575, true,
         [](Fixed &f) {
             f.t->compare = turncoat;
             g_compare_calls = 0;
             g_honest_calls = 2;  // the lookup of 7 compares with 4 and 6
             GT_find_and_remove_item(f.t, f.items[6]);
         }},
        {"insert below a corrupt balance, left", 1177, false,
         [](Fixed &f) {
             f.t->root->balance = 5;
             GT_insert_item(f.t, &stranger);
         }},
        {"insert below a corrupt balance, right", 1232, false,
         [](Fixed &f) {
             f.t->root->balance = -5;
             GT_insert_item(f.t, &f.store[6]);
         }},
        {"remove the first of an empty tree", 1423, true,
         [](Fixed &f) {
             GT_make_empty(f.t);
             f.nodes.clear();
             f.items.clear();
             GT_remove_first_item(f.t);
         }},
        {"remove first when first is corrupt", 1724, true,
         [](Fixed &f) {
             f.t->first = f.t->root;
             GT_remove_first_item(f.t);
         }},
        {"step an unregistered iterator (item)", 892, true,
         [](Fixed &f) {
             GT_iter fake{nullptr, nullptr, f.t, nullptr, 0};
             void *item;
             GT_next_item(&fake, &item);
         }},
        {"step an unregistered iterator (position)", 933, true,
         [](Fixed &f) {
             GT_iter fake{nullptr, nullptr, f.t, nullptr, 0};
             GT_node *pos;
             GT_next_position(&fake, &pos);
         }},
        {"end an unregistered iterator", 958, true,
         [](Fixed &f) {
             GT_iter fake{f.nodes[0], nullptr, f.t, nullptr, 0};
             GT_end_iterator(&fake);
         }},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        Fixed f(7);
        EXPECT_RAISES(c.act(f), "gentree", c.line, 4297);
        f.t->compare = by_key;
        for (size_t i = 0; i < f.store.size(); ++i) f.store[i].key = static_cast<int32_t>(i + 1);
        f.t->first = f.nodes.empty() ? nullptr : f.nodes[0];
        if (c.unchanged) {
            EXPECT_NO_FATAL_FAILURE(expect_sound(f.t, f.nodes, f.items));
        }
    }
}

TEST_F(GtFailures, NoTreeGivesMissesAndNothing) {
    GT_node *pos = reinterpret_cast<GT_node *>(&pos);
    Item i{1};
    EXPECT_EQ(GT_insert_item(nullptr, &i), nullptr);
    EXPECT_EQ(GT_find_item(nullptr, &i, &pos), 0);
    EXPECT_EQ(pos, nullptr);
    EXPECT_EQ(GT_search_item(nullptr, &i, &pos), 0);
    EXPECT_EQ(GT_count_items(nullptr), 0);
    GT_tree *none = nullptr;
    GT_make_empty(nullptr);
    GT_total_make_empty(nullptr, 4);
    GT_release(&none);
    GT_total_release(nullptr, 4);
    GT_sort(nullptr);
    GT_print_tree(nullptr, print_key);
    EXPECT_RAISES(GT_remove_first_item(nullptr), "gentree", 1423, 4297);
}

using GtWhole = GtTest;

TEST_F(GtWhole, PrintoutShowsShapeAndBadBalance) {
    Fixed f(3);  // 1, 2, 3: a left rotation puts 2 at the root, all balanced
    ASSERT_EQ(f.t->root, f.nodes[1]);
    {
        Capture cap;
        GT_print_tree(f.t, print_key);
        EXPECT_EQ(cap.text(), "   1\n2\n   3\n");
    }
    f.nodes[1]->balance = 1;
    f.nodes[2]->balance = -1;
    {
        Capture cap;
        GT_print_tree(f.t, print_key);
        EXPECT_EQ(cap.text(), "   1\n2 1 0 ERROR IN BALANCE !!!!!!!!!!\n   3 -1 0 ERROR IN BALANCE !!!!!!!!!!\n");
    }
    f.nodes[1]->balance = f.nodes[2]->balance = 0;
    Fixed deep(7);
    Capture cap;
    GT_print_tree(deep.t, print_key);
    EXPECT_EQ(cap.text(), "      1\n   2\n      3\n4\n      5\n   6\n      7\n");
    GT_make_empty(deep.t);
    captured().clear();
    GT_print_tree(deep.t, nullptr);  // nothing to print, nothing called
    EXPECT_EQ(cap.text(), "");
}

TEST_F(GtWhole, LeakReportCountsTreesNodesAndIterators) {
    Fixed f(2);
    GT_iter *it = GT_all_items(f.t);
    {
        Capture cap;
        GT_check();
        EXPECT_EQ(cap.text(),
                  "allocated trees      = 1\nallocated tree_items = 2\nallocated tree_iters = 1\n");
    }
    GT_tree *unique = GT_create_with_dupl_not_allowed(by_key);
    Item a{2}, b{2};
    GT_node *pos = GT_insert_item(unique, &a);
    EXPECT_EQ(GT_insert_item(unique, &b), pos);  // equal item, no duplicates: nothing stored
    EXPECT_EQ(pos->item, &a);
    EXPECT_EQ(counters(), (Counters{2, 3, 1}));
    GT_release(&unique);
    GT_end_iterator(it);
    // An iterator orphaned by the release stays counted until it is stepped.
    it = GT_all_items(f.t);
    GT_release(&f.t);
    EXPECT_EQ(f.t, nullptr);
    EXPECT_EQ(counters(), (Counters{0, 0, 1}));
    EXPECT_EQ(it->tree, nullptr);
    GT_iter *orphan = GT_from_next(it);  // an orphan's copy is an orphan
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
    // Left: tree record and its list head, the iterator and its list node.
    EXPECT_EQ(MM_blocks_in_use(), before + 4);
    Item late{0};
    GT_insert_item(t, &late);  // the emptied walk stays over
    EXPECT_EQ(GT_next_item(it, &item), 0);
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
    g_compare_calls = 0;
    GT_sort(f.t);
    EXPECT_EQ(g_compare_calls, n - 1);  // in order: one pass, no exchange
    for (int i = 0; i < n; ++i) f.store[i].key = (n - i) / 2;  // reversed, pairs of equal keys
    struct Shape { GT_node *l, *r; int32_t b; };
    std::vector<Shape> shape;
    for (GT_node *p : f.nodes) shape.push_back({p->left, p->right, p->balance});
    GT_iter *watcher = GT_all_items(f.t);
    GT_node *pos;
    ASSERT_EQ(GT_next_position(watcher, &pos), 1);
    g_compare_calls = 0;
    GT_sort(f.t);
    // Each pass stops ahead of the last exchange of the one before.
    EXPECT_EQ(g_compare_calls, 66);  // n(n-1)/2 on reversed keys
    std::stable_sort(f.items.begin(), f.items.end(), [](Item *a, Item *b) { return a->key < b->key; });
    EXPECT_NO_FATAL_FAILURE(expect_sound(f.t, f.nodes, f.items));
    for (int i = 0; i < n; ++i) {
        EXPECT_EQ(f.nodes[i]->left, shape[i].l);
        EXPECT_EQ(f.nodes[i]->right, shape[i].r);
        EXPECT_EQ(f.nodes[i]->balance, shape[i].b);
    }
    EXPECT_EQ(watcher->current, f.nodes[0]);
    EXPECT_EQ(watcher->next, f.nodes[1]);
    GT_end_iterator(watcher);
    Fixed one(1);
    g_compare_calls = 0;
    one.t->compare = counting_by_key;
    GT_sort(one.t);
    EXPECT_EQ(g_compare_calls, 0);
}

using GtIter = GtTest;

TEST_F(GtIter, KindsAndOpeningsOnFixedItems) {
    Fixed f(4);
    EXPECT_EQ(f.walk(GT_all_items_conditional(f.t, even_key)), (std::vector<int32_t>{2, 4}));
    EXPECT_EQ(f.walk(GT_all_items_while_conditioned(f.t, even_key)), (std::vector<int32_t>{}));
    EXPECT_EQ(f.walk(GT_all_items_while_conditioned(f.t, below_3)), (std::vector<int32_t>{1, 2}));
    EXPECT_EQ(f.walk(GT_all_items_conditional(f.t, nullptr)), (std::vector<int32_t>{1, 2, 3, 4}));

    GT_iter *src = GT_all_items(f.t);
    void *item = &item;
    EXPECT_EQ(GT_current_item(src, &item), 0);  // nothing delivered yet
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(f.walk(GT_from_current(src)), (std::vector<int32_t>{}));
    ASSERT_EQ(GT_next_item(src, &item), 1);
    ASSERT_EQ(GT_next_item(src, &item), 1);  // stands on 2
    EXPECT_EQ(f.walk(GT_from_current(src)), (std::vector<int32_t>{2, 3, 4}));
    EXPECT_EQ(f.walk(GT_from_next(src)), (std::vector<int32_t>{3, 4}));
    EXPECT_EQ(f.walk(GT_from_current_conditional(src, even_key)), (std::vector<int32_t>{2, 4}));
    EXPECT_EQ(f.walk(GT_from_next_while_conditioned(src, below_3)), (std::vector<int32_t>{}));
    EXPECT_EQ(f.walk(GT_from_current_while_conditioned(src, below_3)), (std::vector<int32_t>{2}));
    EXPECT_EQ(f.walk(GT_from_next_conditional(src, even_key)), (std::vector<int32_t>{4}));

    // Removing the item just delivered is safe; one inserted directly behind
    // the current item comes next; a zero word reads back as 0.
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
    EXPECT_EQ(f.walk(src), (std::vector<int32_t>{4}));
    EXPECT_EQ(counters(), (Counters{1, 3, 0}));
    GT_remove_first_item(f.t);
    GT_find_and_remove_item(f.t, f.items[2]);
    GT_remove_item(f.t, f.nodes[3]);
    EXPECT_EQ(f.t->root, nullptr);
    EXPECT_EQ(f.t->first, nullptr);
    EXPECT_EQ(f.t->last, nullptr);
}

}  // namespace
