// What the three parts of the tree family share: the working state of the
// recursive routines, the leak counters, the raise path and the iterator
// corrections that insertion and removal call.  One set for all trees: the
// operations that load it are not re-entrant (see vorn_gt.h).
#pragma once

#include <cstdint>

#include "base_binding.hpp"
#include "vorn_gt.h"

#if defined(__GNUC__)
#pragma GCC visibility push(hidden)
#endif

namespace vorn::gt {

// ---- working state, loaded by each operation on entry ----
extern GT_compare_fn gt_compare;    // compare callback in force
extern int32_t gt_dupl_allowed;     // the inserting tree's setting
extern GT_tree *gt_tree;            // tree being changed: chain ends, iterators
extern void *gt_item;               // item inserted or sought
extern GT_node *gt_position;        // out of insert/lookup, into a removal
extern GT_node *gt_left_neighbour;  // last node the insertion passed to the right
extern GT_node *gt_right_neighbour; // last node the insertion passed to the left
extern int32_t gt_grew;             // subtree just left grew in height
extern int32_t gt_found;            // lookup or removal reached its node
extern int32_t gt_shrunk;           // subtree just left lost a level
extern int32_t gt_by_compare;       // removal walk steered (1) or visiting all (0)
extern GT_node **gt_parent_slot;    // slot of a removed node with two children
extern int32_t gt_item_size;        // item size of the total operations
extern GT_print_fn gt_print_item;   // callback of GT_print_tree

// ---- leak counters ----
extern int32_t gt_allocated_trees;
extern int32_t gt_allocated_tree_items;
extern int32_t gt_allocated_tree_iters;

// Failures of the family: the GT_RAISE_ entries of vorn_raises.h.
namespace raises = vorn::raises;

[[noreturn]] inline void fail(const vorn::RaiseSite &site) { vorn::raise(site); }

// Frees a node that has left the tree and the chain.
inline void free_node(GT_node *n) {
    --gt_allocated_tree_items;
    vorn::free_record(n);
}

// Iterator corrections.  The walks over the tree's iterators live in
// gentree_iter.cpp; the checks here keep insertion and removal free of any
// call while the tree has no iterator.
void iters_after_insert_walk(GT_node *fresh);
void iters_before_remove_walk(GT_node *n);

inline bool has_iters() { return gt_tree->iterators->first != nullptr; }

// A new node is linked into tree and chain (before any rotation).
inline void iters_after_insert(GT_node *fresh) {
    if (has_iters()) iters_after_insert_walk(fresh);
}

// The three ways a node leaves, while it is still in the chain: its slot
// takes its left child (n has no right child), its right child (n has no left
// child), or its predecessor `p` (two children, p without a right child).
// Each checks that shape first and raises if it fails.
inline void iters_before_remove_no_right(GT_node *n) {
    if (n->right) fail(raises::GT_RAISE_REMOVE_HAS_RIGHT);
    if (has_iters()) iters_before_remove_walk(n);
}

inline void iters_before_remove_no_left(GT_node *n) {
    if (n->left) fail(raises::GT_RAISE_REMOVE_HAS_LEFT);
    if (has_iters()) iters_before_remove_walk(n);
}

inline void iters_before_remove_two(GT_node *n, GT_node *p) {
    if (!n->left || !n->right || p->right) fail(raises::GT_RAISE_REMOVE_TWO_CHILDREN);
    if (has_iters()) iters_before_remove_walk(n);
}

}  // namespace vorn::gt

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif
