// GT operation sequences with a few live iterators.  Reference: the nodes in
// sorted order, equal items first in, first out.  After every step: the
// chain and an in-order walk of the tree match it, every balance is the
// height difference, and each live iterator's next and current are live
// nodes in chain order; a step delivers the node its `next` named.
#include <algorithm>
#include <vector>

#include "fuzz_model.hpp"
#include "vorn_container.h"

namespace {

intptr_t key(void *item) { return reinterpret_cast<intptr_t>(item); }
int32_t by_word(void *a, void *b) { return (key(a) > key(b)) - (key(a) < key(b)); }

int height(GT_node *n, std::vector<GT_node *> &inorder) {
    if (!n) return 0;
    const int l = height(n->left, inorder);
    inorder.push_back(n);
    const int r = height(n->right, inorder);
    FUZZ_CHECK(n->balance == r - l);
    return 1 + std::max(l, r);
}

void check(GT_tree *t, const std::vector<GT_node *> &ref, const std::vector<GT_iter *> &iters) {
    std::vector<GT_node *> inorder;
    height(t->root, inorder);
    FUZZ_CHECK(inorder == ref);
    FUZZ_CHECK(t->first == (ref.empty() ? nullptr : ref.front()));
    FUZZ_CHECK(t->last == (ref.empty() ? nullptr : ref.back()));
    for (size_t i = 0; i < ref.size(); ++i) {
        FUZZ_CHECK(ref[i]->prev == (i ? ref[i - 1] : nullptr));
        FUZZ_CHECK(ref[i]->next == (i + 1 < ref.size() ? ref[i + 1] : nullptr));
    }
    auto at = [&](GT_node *n) { return std::find(ref.begin(), ref.end(), n) - ref.begin(); };
    for (GT_iter *it : iters) {
        FUZZ_CHECK(it->tree == t);
        const auto next = it->next ? at(it->next) : -1, current = it->current ? at(it->current) : -1;
        FUZZ_CHECK(!it->next || next < static_cast<long>(ref.size()));
        FUZZ_CHECK(!it->current || current < static_cast<long>(ref.size()));
        FUZZ_CHECK(!it->next || !it->current || current < next);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    vorn_fuzz::Input in(data, size);
    const int64_t blocks = MM_blocks_in_use();
    GT_tree *t = GT_create_with_dupl_allowed(by_word);
    std::vector<GT_node *> ref;
    std::vector<GT_iter *> iters;
    while (in.more() && ref.size() < 1024) {
        void *item = reinterpret_cast<void *>(static_cast<intptr_t>(in.below(16)));
        const uint32_t op = in.below(6);
        if (op == 0 || op == 1) {
            GT_node *n = GT_insert_item(t, item);
            auto place = std::upper_bound(ref.begin(), ref.end(), item,
                                          [](void *a, GT_node *b) { return by_word(a, b->item) < 0; });
            ref.insert(place, n);
        } else if (op == 2 && !ref.empty()) {
            const auto i = in.below(static_cast<uint32_t>(ref.size()));
            GT_remove_item(t, ref[i]);
            ref.erase(ref.begin() + i);
        } else if (op == 3 && !ref.empty()) {
            GT_remove_first_item(t);
            ref.erase(ref.begin());
        } else if (op == 4 && iters.size() < 4) {
            iters.push_back(iters.empty() || in.below(2) ? GT_all_items(t) : GT_from_next(iters.back()));
        } else if (op == 5 && !iters.empty()) {
            const auto i = in.below(static_cast<uint32_t>(iters.size()));
            GT_iter *it = iters[i];
            if (in.below(8) == 0) {
                GT_end_iterator(it);
                iters.erase(iters.begin() + i);
            } else {
                GT_node *want = it->next, *got = nullptr;
                if (GT_next_position(it, &got)) {
                    FUZZ_CHECK(got == want && it->current == got);
                } else {
                    FUZZ_CHECK(!want);
                    iters.erase(iters.begin() + i);  // freed by the last step
                }
            }
        }
        check(t, ref, iters);
    }
    for (GT_iter *it : iters) GT_end_iterator(it);
    GT_release(&t);
    FUZZ_CHECK(!t && MM_blocks_in_use() == blocks);
    return 0;
}
