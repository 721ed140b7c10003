// GT against a simple reference: every insertion, lookup and removal form,
// with and without duplicates, while live iterators step through the changes
// and are checked against the correction rules after every operation, with
// the balance and chain checker and the leak counters, and the walks that
// the tree's release orphans.  The driver is a
// template over its source of choices (vorn_test::Rng under GoogleTest,
// vorn_test::Bytes under libFuzzer); the tests and the fuzzer share it.
#pragma once

#include "support.hpp"

namespace gt_model {

using vorn_test::printed;

// Items are records with a key: distinct words can compare equal, and a key
// can change after insertion.
struct Item {
    int32_t key;
};
inline int32_t key_of(void *item) { return static_cast<Item *>(item)->key; }
inline int32_t by_key(void *a, void *b) { return key_of(a) - key_of(b); }
inline int32_t by_key_reversed(void *a, void *b) { return key_of(b) - key_of(a); }
inline int32_t even_key(void *item) { return key_of(item) % 2 == 0; }

// The text of GT_check for these counters.
inline std::string leaks(int trees, int items, int iters) {
    char buf[128];
    std::snprintf(buf, sizeof buf,
                  "allocated trees      = %d\nallocated tree_items = %d\nallocated tree_iters = %d\n",
                  trees, items, iters);
    return buf;
}

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
inline void expect_sound(GT_tree *t, const std::vector<GT_node *> &nodes, const std::vector<Item *> &items) {
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

// The reference: nodes in chain order with the item each holds, and for each
// live iterator the next and current node it must show.
template <class R>
struct Model {
    struct Walk {
        GT_iter *h;
        GT_node *next, *current;
        int32_t kind;
        GT_test_fn test;  // a null test accepts every item
    };
    GT_tree *t;
    // Another tree with another order, looked at (twice, two ways) before
    // every operation: each must take its own tree's compare into the
    // working state.
    GT_tree *decoy = GT_create_with_dupl_allowed(by_key_reversed);
    Item decoy_item{1};
    std::vector<GT_node *> nodes;
    std::vector<Item *> items;
    std::vector<Walk> walks;
    std::deque<Item> pool;
    R &rng;
    int32_t keys;

    Model(bool dupl, R &rng_)
        : t(dupl ? GT_create_with_dupl_allowed(by_key) : GT_create_with_dupl_not_allowed(by_key)),
          rng(rng_), keys(dupl ? 24 : 200) {}

    size_t index(GT_node *n) const { return std::find(nodes.begin(), nodes.end(), n) - nodes.begin(); }
    GT_node *succ(GT_node *n) const {
        const size_t i = index(n);
        return i + 1 < nodes.size() ? nodes[i + 1] : nullptr;
    }
    size_t pick() { return rng.below(static_cast<uint32_t>(nodes.size())); }
    Item *fresh(int32_t key) { return &pool.emplace_back(Item{key}); }
    // A new key for a changed item: any key with duplicates, else one no other item has.
    int32_t new_key() {
        for (;;) {
            const int32_t k = static_cast<int32_t>(rng.below(t->dupl_allowed ? keys : 10000));
            if (t->dupl_allowed || std::none_of(items.begin(), items.end(), [k](Item *i) { return i->key == k; }))
                return k;
        }
    }

    void inserted(GT_node *n, Item *item) {
        const size_t at = std::upper_bound(items.begin(), items.end(), item->key,
                                           [](int32_t k, Item *i) { return k < i->key; }) -
                          items.begin();
        nodes.insert(nodes.begin() + at, n);
        items.insert(items.begin() + at, item);
        for (Walk &w : walks)
            if (w.current && at > 0 && nodes[at - 1] == w.current) w.next = n;
    }
    void removing(GT_node *n) {
        for (Walk &w : walks) {
            if (w.current == n) w.current = nullptr;
            if (w.next == n) w.next = succ(n);
        }
        const size_t i = index(n);
        nodes.erase(nodes.begin() + i);
        items.erase(items.begin() + i);
    }

    void insert() {
        Item *item = fresh(static_cast<int32_t>(rng.below(keys)));
        if (t->dupl_allowed && !items.empty() && rng.chance(10)) item = items[pick()];  // same word again
        auto equal = std::find_if(items.begin(), items.end(), [&](Item *i) { return i->key == item->key; });
        GT_node *n = GT_insert_item(t, item);
        if (!t->dupl_allowed && equal != items.end()) {
            ASSERT_EQ(n, nodes[equal - items.begin()]);
            ASSERT_EQ(n->item, *equal);
        } else {
            ASSERT_EQ(n->item, item);
            inserted(n, item);
        }
    }
    void lookups() {
        // Key: some node with an equal key.
        GT_node *pos = reinterpret_cast<GT_node *>(1);
        Item probe{static_cast<int32_t>(rng.below(keys))};
        const bool any = std::any_of(items.begin(), items.end(), [&](Item *i) { return i->key == probe.key; });
        ASSERT_EQ(GT_search_item(t, &probe, &pos), any ? 1 : 0);
        ASSERT_TRUE(any ? index(pos) < nodes.size() && items[index(pos)]->key == probe.key : pos == nullptr);
        // Identity: the node found holds this very word (the word may stand twice).
        Item *item = nodes.empty() || rng.chance(20) ? fresh(static_cast<int32_t>(rng.below(keys)))
                                                     : items[pick()];
        const bool held = std::count(items.begin(), items.end(), item) > 0;
        ASSERT_EQ(GT_find_item(t, item, &pos), held ? 1 : 0);
        ASSERT_TRUE(held ? index(pos) < nodes.size() && items[index(pos)] == item : pos == nullptr);
    }
    void remove() {
        if (nodes.empty()) {
            EXPECT_RAISES(GT_remove_first_item(t), vorn::raises::GT_RAISE_REMOVE_FIRST_EMPTY);
            return;
        }
        GT_node *n = nodes[pick()];
        switch (rng.below(4)) {
            case 0: removing(n), GT_remove_item(t, n); break;
            case 1: {  // the key changed since insertion: the steered walk may miss
                if (std::count(items.begin(), items.end(), n->item) > 1) {  // one word twice: removed plainly
                    removing(n), GT_remove_item(t, n);
                    break;
                }
                static_cast<Item *>(n->item)->key = new_key();
                const auto raised = vorn_test::catch_raise([&] { GT_remove_item(t, n); });
                if (raised) {
                    ASSERT_EQ(*raised, vorn_test::raise_of(vorn::raises::GT_RAISE_REMOVE_MISSED));
                    GT_remove_item_global(t, n);
                }
                removing(n);
                break;
            }
            case 2: {
                Item *item = static_cast<Item *>(n->item);
                GT_node *found;
                ASSERT_EQ(GT_find_item(t, item, &found), 1);
                removing(found);
                GT_find_and_remove_item(t, item);
                break;
            }
            default: removing(nodes.front()), GT_remove_first_item(t);
        }
    }
    // One of the nine openings: place 0 the tree, 1 a source's current, 2 its next.
    void open() {
        const int32_t kind = static_cast<int32_t>(rng.below(3));
        const int place = walks.empty() ? 0 : static_cast<int>(rng.below(3));
        const Walk *src = place ? &walks[rng.below(static_cast<uint32_t>(walks.size()))] : nullptr;
        GT_iter *s = src ? src->h : nullptr, *h = nullptr;
        const GT_test_fn test = kind && rng.chance(10) ? nullptr : even_key;
        switch (place * 3 + kind) {
            case 0: h = GT_all_items(t); break;
            case 1: h = GT_all_items_conditional(t, test); break;
            case 2: h = GT_all_items_while_conditioned(t, test); break;
            case 3: h = GT_from_current(s); break;
            case 4: h = GT_from_current_conditional(s, test); break;
            case 5: h = GT_from_current_while_conditioned(s, test); break;
            case 6: h = GT_from_next(s); break;
            case 7: h = GT_from_next_conditional(s, test); break;
            default: h = GT_from_next_while_conditioned(s, test);
        }
        walks.push_back({h, place == 0 ? t->first : place == 1 ? src->current : src->next, nullptr, kind, test});
    }
    void step() {
        const size_t i = rng.below(static_cast<uint32_t>(walks.size()));
        Walk &w = walks[i];
        GT_node *expected = nullptr;
        while (GT_node *n = w.next) {
            w.next = succ(n);
            if (w.kind == 0 || !w.test || even_key(items[index(n)])) {
                expected = n;
                break;
            }
            if (w.kind == 2) break;
        }
        static int untouched;
        GT_node *got = reinterpret_cast<GT_node *>(&untouched);
        void *word = &untouched;
        const bool by_position = rng.chance(50);
        ASSERT_EQ(by_position ? GT_next_position(w.h, &got) : GT_next_item(w.h, &word), expected ? 1 : 0);
        if (by_position)
            ASSERT_EQ(got, expected ? expected : reinterpret_cast<GT_node *>(&untouched));
        else
            ASSERT_EQ(word, expected ? items[index(expected)] : static_cast<void *>(&untouched));
        if (!expected) {
            walks.erase(walks.begin() + static_cast<long>(i));
            return;
        }
        w.current = expected;
        void *cur;
        ASSERT_EQ(GT_current_item(w.h, &cur), 1);
        ASSERT_EQ(cur, expected->item);
    }
    void end() {
        const size_t i = rng.below(static_cast<uint32_t>(walks.size()));
        GT_end_iterator(walks[i].h);
        walks.erase(walks.begin() + static_cast<long>(i));
    }
    // Keys change under the tree, GT_sort puts the items back in order:
    // nodes stay, items move, equal items keep their order.
    void sort() {
        for (int k = 0, m = static_cast<int>(rng.below(4)); k < m && !nodes.empty(); ++k)
            items[pick()]->key = new_key();
        std::stable_sort(items.begin(), items.end(), [](Item *a, Item *b) { return a->key < b->key; });
        GT_sort(t);
    }
    void empty() {
        GT_make_empty(t);
        nodes.clear();
        items.clear();
        for (Walk &w : walks) w.next = w.current = nullptr;
    }
    void check() {
        ASSERT_NO_FATAL_FAILURE(expect_sound(t, nodes, items));
        ASSERT_EQ(printed(GT_check), leaks(2, int(nodes.size()) + 1, int(walks.size())));
        for (const Walk &w : walks) {
            ASSERT_EQ(w.h->next, w.next);
            ASSERT_EQ(w.h->current, w.current);
        }
    }
};

// One tree's life: `dupl` chooses the kind of tree; operations while the
// source has more.
template <class R>
inline void run(R &rng, bool dupl) {
    Model<R> m(dupl, rng);
    GT_insert_item(m.decoy, &m.decoy_item);
    while (rng.more()) {
        GT_node *pos;
        GT_find_item(m.decoy, &m.decoy_item, &pos), GT_search_item(m.decoy, &m.decoy_item, &pos);
        const uint32_t dice = m.rng.below(100);
        if (dice < (m.nodes.size() < 48 ? 40u : 20u)) {
            ASSERT_NO_FATAL_FAILURE(m.insert());
        } else if (dice < 52) {
            ASSERT_NO_FATAL_FAILURE(m.lookups());
        } else if (dice < 72) {
            ASSERT_NO_FATAL_FAILURE(m.remove());
        } else if (dice < 80 && m.walks.size() < 5) {
            m.open();
        } else if (dice < 94 && !m.walks.empty()) {
            ASSERT_NO_FATAL_FAILURE(m.step());
        } else if (dice < 97 && !m.walks.empty()) {
            m.end();
        } else if (dice < 99) {
            m.sort();
        } else {
            m.empty();
        }
        ASSERT_NO_FATAL_FAILURE(m.check());
    }
    // The release orphans the walks still open: counted until a step or an
    // end frees them; no current item, and an opening from one is an orphan.
    GT_release(&m.t);
    ASSERT_EQ(m.t, nullptr);
    ASSERT_EQ(printed(GT_check), leaks(1, 1, int(m.walks.size())));
    for (const auto &w : m.walks) {
        void *item = &m;
        ASSERT_TRUE(w.h->tree == nullptr && GT_current_item(w.h, &item) == 0 && item == nullptr);
        GT_iter *orphan = GT_from_next(w.h);
        rng.chance(50) ? GT_end_iterator(w.h) : (void)GT_next_item(w.h, &item);
        ASSERT_EQ(GT_next_item(orphan, &item), 0);
    }
    ASSERT_EQ(printed(GT_check), leaks(1, 1, 0));
    GT_release(&m.decoy);
}

}  // namespace gt_model
