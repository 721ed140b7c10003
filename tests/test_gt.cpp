// GT against a simple reference: every insertion, lookup and removal form,
// with and without duplicates, while live iterators step through the changes
// and are checked against the correction rules after every operation.
#include <algorithm>
#include <deque>

#include "gt_helpers.hpp"

namespace {

using namespace gt_test;
using vorn_test::Rng;

// The reference: nodes in chain order with the item each holds, and for each
// live iterator the next and current node it must show.
struct Model {
    struct Walk {
        GT_iter *h;
        GT_node *next, *current;
        int32_t kind;
    };
    GT_tree *t;
    std::vector<GT_node *> nodes;
    std::vector<Item *> items;
    std::vector<Walk> walks;
    std::deque<Item> pool;
    Rng rng;
    int32_t keys;

    Model(bool dupl, uint64_t seed)
        : t(dupl ? GT_create_with_dupl_allowed(by_key) : GT_create_with_dupl_not_allowed(by_key)),
          rng(seed), keys(dupl ? 24 : 200) {}

    size_t index(GT_node *n) const { return std::find(nodes.begin(), nodes.end(), n) - nodes.begin(); }
    GT_node *succ(GT_node *n) const {
        const size_t i = index(n);
        return i + 1 < nodes.size() ? nodes[i + 1] : nullptr;
    }
    size_t pick() { return rng.below(static_cast<uint32_t>(nodes.size())); }
    Item *fresh(int32_t key) { return &pool.emplace_back(Item{key}); }
    // A key that no other item has, for changes in a tree without duplicates.
    int32_t unused_key() {
        for (;;) {
            int32_t k = static_cast<int32_t>(rng.below(10000));
            if (std::none_of(items.begin(), items.end(), [k](Item *i) { return i->key == k; })) return k;
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
        // Identity: the node found holds this very word (the word may stand twice).
        Item *item = nodes.empty() || rng.chance(20) ? fresh(static_cast<int32_t>(rng.below(keys)))
                                                     : items[pick()];
        GT_node *pos = reinterpret_cast<GT_node *>(1);
        const bool held = std::count(items.begin(), items.end(), item) > 0;
        ASSERT_EQ(GT_find_item(t, item, &pos), held ? 1 : 0);
        ASSERT_TRUE(held ? index(pos) < nodes.size() && items[index(pos)] == item : pos == nullptr);
        // Key: some node with an equal key.
        Item probe{static_cast<int32_t>(rng.below(keys))};
        const bool any = std::any_of(items.begin(), items.end(), [&](Item *i) { return i->key == probe.key; });
        ASSERT_EQ(GT_search_item(t, &probe, &pos), any ? 1 : 0);
        ASSERT_TRUE(any ? index(pos) < nodes.size() && items[index(pos)]->key == probe.key : pos == nullptr);
    }
    void remove_at(GT_node *n) {
        removing(n);
        GT_remove_item(t, n);
    }
    void remove() {
        if (nodes.empty()) {
            EXPECT_RAISES(GT_remove_first_item(t), "gentree", 1423, 4297);
            return;
        }
        GT_node *n = nodes[pick()];
        switch (rng.below(4)) {
            case 0: return remove_at(n);
            case 1: {  // the key changed since insertion: the steered walk may miss
                if (std::count(items.begin(), items.end(), n->item) > 1) return remove_at(n);
                static_cast<Item *>(n->item)->key =
                    t->dupl_allowed ? static_cast<int32_t>(rng.below(keys)) : unused_key();
                const auto raised = vorn_test::catch_raise([&] { GT_remove_item(t, n); });
                if (raised) {
                    ASSERT_EQ(raised->line, 477);
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
            default:
                removing(nodes.front());
                GT_remove_first_item(t);
        }
    }
    // One of the nine openings: place 0 the tree, 1 a source's current, 2 its next.
    void open() {
        const int32_t kind = static_cast<int32_t>(rng.below(3));
        const int place = walks.empty() ? 0 : static_cast<int>(rng.below(3));
        const Walk *src = place ? &walks[rng.below(static_cast<uint32_t>(walks.size()))] : nullptr;
        GT_iter *s = src ? src->h : nullptr;
        GT_iter *h = nullptr;
        switch (place * 3 + kind) {
            case 0: h = GT_all_items(t); break;
            case 1: h = GT_all_items_conditional(t, even_key); break;
            case 2: h = GT_all_items_while_conditioned(t, even_key); break;
            case 3: h = GT_from_current(s); break;
            case 4: h = GT_from_current_conditional(s, even_key); break;
            case 5: h = GT_from_current_while_conditioned(s, even_key); break;
            case 6: h = GT_from_next(s); break;
            case 7: h = GT_from_next_conditional(s, even_key); break;
            default: h = GT_from_next_while_conditioned(s, even_key);
        }
        walks.push_back({h, place == 0 ? t->first : place == 1 ? src->current : src->next, nullptr, kind});
    }
    void step() {
        const size_t i = rng.below(static_cast<uint32_t>(walks.size()));
        Walk &w = walks[i];
        GT_node *expected = nullptr;
        while (GT_node *n = w.next) {
            w.next = succ(n);
            if (w.kind == 0 || even_key(items[index(n)])) {
                expected = n;
                break;
            }
            if (w.kind == 2) break;
        }
        static int untouched;
        GT_node *got = reinterpret_cast<GT_node *>(&untouched);
        void *word = &untouched;
        const bool by_position = rng.chance(50);
        const int32_t r = by_position ? GT_next_position(w.h, &got) : GT_next_item(w.h, &word);
        ASSERT_EQ(r, expected ? 1 : 0);
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
            items[pick()]->key = t->dupl_allowed ? static_cast<int32_t>(rng.below(keys)) : unused_key();
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
        for (const Walk &w : walks) {
            ASSERT_EQ(w.h->next, w.next);
            ASSERT_EQ(w.h->current, w.current);
        }
    }
    void finish() {
        while (!walks.empty()) end();
        GT_release(&t);
        ASSERT_EQ(t, nullptr);
    }
};

class GtModel : public GtTest, public ::testing::WithParamInterface<bool> {};

TEST_P(GtModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 25; ++seed) {
        Model m(GetParam(), seed);
        for (int op = 0; op < 700; ++op) {
            const uint32_t dice = m.rng.below(100);
            const bool grow = m.nodes.size() < 48;
            if (dice < (grow ? 40u : 20u)) {
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
            ASSERT_NO_FATAL_FAILURE(m.check()) << "seed " << seed << " op " << op;
        }
        m.finish();
    }
}

INSTANTIATE_TEST_SUITE_P(Dupl, GtModel, ::testing::Values(true, false),
                         [](const auto &info) { return info.param ? "Allowed" : "NotAllowed"; });

}  // namespace
