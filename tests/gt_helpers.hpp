// What the GT tests share: keyed items, the leak report and
// the invariant checker.
#pragma once

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "support.hpp"

namespace gt_test {

// Items are records with a key: distinct words can compare equal, and a key
// can change after insertion.
struct Item {
    int32_t key;
};
inline int32_t key_of(void *item) { return static_cast<Item *>(item)->key; }
inline int32_t by_key(void *a, void *b) { return key_of(a) - key_of(b); }
inline int32_t even_key(void *item) { return key_of(item) % 2 == 0; }

using vorn_test::printed;

// The text of GT_check for these counters.
inline std::string leaks(int trees, int items, int iters) {
    char buf[128];
    std::snprintf(buf, sizeof buf,
                  "allocated trees      = %d\nallocated tree_items = %d\nallocated tree_iters = %d\n",
                  trees, items, iters);
    return buf;
}

// MM_ blocks and the three leak counters back to where they were.
class GtTest : public vorn_test::LeakChecked {
protected:
    void TearDown() override {
        EXPECT_EQ(printed(GT_check), leaks(0, 0, 0));
        LeakChecked::TearDown();
    }
};

// In-order visit: collects the nodes, checks each balance against the real
// heights and the -1..1 bound, gives the height.
inline int32_t visit(GT_node *n, std::vector<GT_node *> &in_order) {
    if (!n) return 0;
    const int32_t l = visit(n->left, in_order);
    in_order.push_back(n);
    const int32_t r = visit(n->right, in_order);
    EXPECT_EQ(n->balance, r - l) << "balance at key " << key_of(n->item);
    EXPECT_LE(std::abs(r - l), 1);
    return 1 + std::max(l, r);
}

// The tree holds exactly `nodes` in this order with `items` in them: tree
// links and chain agree both ways, the order holds by compare (strictly
// without duplicates), balances are true and the height keeps the AVL bound.
// FIFO among equal items is in the expected order.
inline void expect_sound(GT_tree *t, const std::vector<GT_node *> &nodes,
                         const std::vector<Item *> &items) {
    std::vector<GT_node *> in_order;
    const int32_t h = visit(t->root, in_order);
    ASSERT_EQ(in_order, nodes);
    const size_t n = nodes.size();
    EXPECT_LE(h, 1.4405 * std::log2(n + 2.0) - 0.3277 + 1e-9);
    ASSERT_EQ(GT_count_items(t), static_cast<int32_t>(n));
    ASSERT_EQ(t->first, n ? nodes.front() : nullptr);
    ASSERT_EQ(t->last, n ? nodes.back() : nullptr);
    for (size_t i = 0; i < n; ++i) {
        ASSERT_EQ(nodes[i]->item, items[i]) << "item of node " << i;
        ASSERT_EQ(nodes[i]->prev, i ? nodes[i - 1] : nullptr);
        ASSERT_EQ(nodes[i]->next, i + 1 < n ? nodes[i + 1] : nullptr);
        if (i) {
            const int32_t c = t->compare(items[i - 1], items[i]);
            ASSERT_TRUE(t->dupl_allowed ? c <= 0 : c < 0) << "order at " << i;
        }
    }
}

}  // namespace gt_test
