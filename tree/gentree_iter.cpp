// GT iteration: the nine openings, stepping along the chain, ending, and the
// corrections that keep every registered iterator right through insertions
// and removals.
//
// An iterator holds `next` ahead of time and `current`, the node delivered
// last.  The one node an insertion can put between them is one placed directly
// behind `current`; a removal only has to move `next` past the node that goes
// and forget `current` if it was that node.  Rotations and a predecessor moved
// into a removed node's place leave every chain link as it was, so they need
// no correction at all.

#include "checked.hpp"
#include "gentree_state.hpp"

using namespace vorn::gt;

namespace {

GT_iter *open_walk(GT_tree *tree, GT_node *start, int32_t kind, GT_test_fn test) {
    GT_iter *it = vorn::alloc_record<GT_iter>();
    ++gt_allocated_tree_iters;
    it->next = start;
    it->current = nullptr;
    it->tree = tree;
    it->test = test;
    it->kind = kind;
    if (tree) GL_append_after_last(tree->iterators, it);  // an orphaned source gives an orphan
    VORN_CHK(born(it));
    return it;
}

// Deregisters and frees; `unregistered` is raised if the record is not on its tree's list.
void end_walk(GT_iter *it, const vorn::RaiseSite &unregistered) {
    if (GT_tree *tree = it->tree) {
        GL_node *entry;
        if (!GL_find_item(tree->iterators, it, &entry)) fail(unregistered);
        GL_remove_item(tree->iterators, entry);
    }
    --gt_allocated_tree_iters;
    VORN_CHK(forget(it));
    vorn::free_record(it);
}

// One step; `deliver` writes the out argument.  `next` is advanced before the
// test runs, so the test never sees the iterator pointing at its own node.
template <class Deliver>
int32_t step(GT_iter *it, const vorn::RaiseSite &unregistered, Deliver deliver) {
    while (GT_node *n = it->next) {
        it->next = n->next;
        if (it->kind == 0 || !it->test || it->test(n->item)) {
            it->current = n;
            deliver(n);
            return 1;
        }
        if (it->kind == 2) break;  // the first refusal ends a while-conditioned walk
    }
    end_walk(it, unregistered);
    return 0;
}

// Calls f on every iterator of gt_tree, by the list's own walk.
template <class F>
inline void for_each_iter(F f) {
    GL_iter walk = GL_all_items(gt_tree->iterators);
    void *word;
    while (GL_next_item(&walk, &word)) f(static_cast<GT_iter *>(word));
}

}  // namespace

namespace vorn::gt {

// Only a node placed directly behind `current` can come between an iterator
// and the `next` it holds.
void iters_after_insert_walk(GT_node *fresh) {
    for_each_iter([fresh](GT_iter *it) {
        if (it->current && it->current->next == fresh) it->next = fresh;
    });
}

// One rule for every shape of removal, applied to the leaving node alone.
void iters_before_remove_walk(GT_node *n) {
    for_each_iter([n](GT_iter *it) {
        if (it->current == n) it->current = nullptr;
        if (it->next == n) it->next = n->next;
    });
}

}  // namespace vorn::gt

extern "C" {

GT_iter *GT_all_items(GT_tree *tree) {
    VORN_CHK(gt_live(__func__, tree));
    return open_walk(tree, tree->first, 0, nullptr);
}

GT_iter *GT_all_items_conditional(GT_tree *tree, GT_test_fn test) {
    VORN_CHK(gt_live(__func__, tree));
    return open_walk(tree, tree->first, 1, test);
}

GT_iter *GT_all_items_while_conditioned(GT_tree *tree, GT_test_fn test) {
    VORN_CHK(gt_live(__func__, tree));
    return open_walk(tree, tree->first, 2, test);
}

// A kind-0 copy carries the source's test along; nothing reads it.
GT_iter *GT_from_current(GT_iter *source) {
    VORN_CHK(gt_walk(__func__, source));
    return open_walk(source->tree, source->current, 0, source->test);
}

GT_iter *GT_from_current_conditional(GT_iter *source, GT_test_fn test) {
    VORN_CHK(gt_walk(__func__, source));
    return open_walk(source->tree, source->current, 1, test);
}

GT_iter *GT_from_current_while_conditioned(GT_iter *source, GT_test_fn test) {
    VORN_CHK(gt_walk(__func__, source));
    return open_walk(source->tree, source->current, 2, test);
}

GT_iter *GT_from_next(GT_iter *source) {
    VORN_CHK(gt_walk(__func__, source));
    return open_walk(source->tree, source->next, 0, source->test);
}

GT_iter *GT_from_next_conditional(GT_iter *source, GT_test_fn test) {
    VORN_CHK(gt_walk(__func__, source));
    return open_walk(source->tree, source->next, 1, test);
}

GT_iter *GT_from_next_while_conditioned(GT_iter *source, GT_test_fn test) {
    VORN_CHK(gt_walk(__func__, source));
    return open_walk(source->tree, source->next, 2, test);
}

int32_t GT_next_item(GT_iter *iter, void **item_out) {
    return step(iter, raises::GT_RAISE_STEP_NOT_REGISTERED, [item_out](GT_node *n) { *item_out = n->item; });
}

int32_t GT_next_position(GT_iter *iter, GT_node **pos_out) {
    return step(iter, raises::GT_RAISE_STEP_POSITION_NOT_REGISTERED, [pos_out](GT_node *n) { *pos_out = n; });
}

int32_t GT_current_item(GT_iter *iter, void **item_out) {
    VORN_CHK(gt_walk(__func__, iter));
    void *item = iter->current ? iter->current->item : nullptr;
    *item_out = item;
    return item != nullptr;
}

void GT_end_iterator(GT_iter *iter) { end_walk(iter, raises::GT_RAISE_END_NOT_REGISTERED); }

}  // extern "C"
