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

// Failure lines of the family; file "gentree", code 4297.
enum Line : int32_t {
    kRemoveMissed = 477,
    kGlobalMissed = 541,
    kFindAndRemoveNoItem = 562,
    kFindAndRemoveMissed = 575,
    kStepNotRegistered = 892,
    kStepPositionNotRegistered = 933,
    kEndNotRegistered = 958,
    kLeftGrewBadBalance = 1177,
    kRightGrewBadBalance = 1232,
    kRemoveFirstEmpty = 1423,
    kRemoveHasLeft = 1724,
    kRemoveHasRight = 1756,
    kRemoveTwoChildren = 1795,
};

[[noreturn]] inline void fail(Line line) { vorn::raise("gentree", line, kBrokenState); }

// Frees a node that has left the tree and the chain.
inline void free_node(GT_node *n) {
    --gt_allocated_tree_items;
    vorn::free_record(n);
}

// Iterator corrections (gentree_iter.cpp); they reach the iterators through
// gt_tree and cost nothing while the tree has none.
void iters_after_insert(GT_node *fresh);
// The three ways a node leaves: its slot takes its left child (n has no
// right child), its right child (n has no left child), or its predecessor
// `p` (two children).  Each checks that shape first and raises if it fails.
void iters_before_remove_no_right(GT_node *n);
void iters_before_remove_no_left(GT_node *n);
void iters_before_remove_two(GT_node *n, GT_node *p);

}  // namespace vorn::gt

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif
