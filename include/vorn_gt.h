/*
 * vorn_gt.h - GT, the ordered container: an AVL tree of item words with a
 * sorted chain through its nodes, equal items kept first in, first out, and
 * registered iterators that stay correct while the tree changes.
 *
 * Items.  An item word belongs to the caller: the tree stores it, hands it to
 * the compare callback and gives it back, and never reads through it nor frees
 * it (except the `total` operations, which free every item as an MM_ block of
 * the size given).  0 is an item word like any other.
 *
 * Positions.  A position is a GT_node *.  It stays valid, naming the same
 * item, across every insertion, rotation and removal of other items; it ends
 * with the removal of its own node or the emptying or release of the tree.
 * Only GT_sort changes which item a position holds.  `item` stands first in
 * the node, where a caller reads it.
 *
 * Order.  compare(a, b) < 0 sorts a before b; only the sign counts.  In every
 * call `a` is the item being inserted, sought or removed and `b` the item of a
 * node.  An item equal to present ones goes behind all of them.
 *
 * Working state.  The tree routines share one set of module-level variables
 * for all trees, and three leak counters (trees, nodes, iterators) that
 * GT_check prints.  So the operations that insert, look up, remove, sort,
 * free items or print are not re-entrant: a compare or print callback must
 * not call any GT operation, and the callers serialise all GT work across all
 * trees and threads.
 *
 * Failures are the GT_RAISE_ entries of vorn_raises.h (file "gentree") and do
 * not come back; the state at each raise is told with the operation.  Handles,
 * positions and iterators must be live unless an operation says otherwise.
 */
#ifndef VORN_GT_H
#define VORN_GT_H

#include "vorn_base.h"
#include "vorn_raises.h"
#include "vorn_gl.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_gt GT: AVL tree with live iterators
 * The rules of the family stand at the top of vorn_gt.h.
 * @{ */

typedef struct GT_node GT_node;
typedef struct GT_tree GT_tree;
typedef struct GT_iter GT_iter;

typedef vorn_compare_fn GT_compare_fn; /* never tested for null */
typedef vorn_test_fn GT_test_fn;       /* non-zero accepts the item */
typedef vorn_print_fn GT_print_fn;     /* writes one item; result ignored */

/* One node per item, an MM_ block owned by the tree.  The tree links
 * (left/right) may change by rotation and removal; the chain links
 * (prev/next) hold the sorted order and change only when a neighbour comes
 * or goes.  No parent link. */
struct GT_node {
    void *item;      /* the caller's item word */
    GT_node *left;   /* items sorting before, or equal after rotations */
    GT_node *right;  /* items sorting after, or equal */
    GT_node *prev;   /* neighbour before in sorted order, null on the first */
    GT_node *next;   /* neighbour behind in sorted order, null on the last */
    int32_t balance; /* height(right) - height(left): -1, 0 or 1 */
};

/* The tree record, an MM_ block owned from creation to release.  root,
 * first and last are null together exactly when the tree is empty.  No item
 * count is kept (GT_count_items walks the nodes). */
struct GT_tree {
    GT_node *root;
    GT_node *first;          /* head of the sorted chain */
    GT_node *last;           /* tail of the sorted chain */
    GT_compare_fn compare;   /* fixed at creation */
    int32_t dupl_allowed;    /* 1 admits items equal to present ones */
    GL_list *iterators;      /* the open GT_iter handles, in order of opening */
};

/* An iterator: allocated by the opening operation, registered on its tree's
 * `iterators` and corrected by every insertion and removal.  It is freed by
 * the step that returns 0 or by GT_end_iterator; the handle is dead after. */
struct GT_iter {
    GT_node *next;    /* node the next step looks at; null when used up */
    GT_node *current; /* node delivered last; null before the first delivery
                         and after that node was removed or the tree emptied */
    GT_tree *tree;    /* null once the tree was released (orphaned) */
    GT_test_fn test;  /* kinds 1 and 2; a null test accepts every item */
    int32_t kind;     /* 0 all items, 1 conditional, 2 while conditioned */
};

/* ---- creation ---- */

/* A new empty tree ordered by `compare`, admitting equal items. */
VORN_API GT_tree *GT_create_with_dupl_allowed(GT_compare_fn compare);
/* A new empty tree ordered by `compare`, keeping one item per key. */
VORN_API GT_tree *GT_create_with_dupl_not_allowed(GT_compare_fn compare);

/* ---- insertion and lookup ---- */

/* Puts `item` in a new node behind every equal item and gives its position;
 * an iterator standing directly ahead of the new node delivers it next.  In
 * a tree without duplicates an equal item already present makes it give that
 * node's position, storing and allocating nothing (tell the outcomes apart by
 * the node's `item`).  Raises GT_RAISE_LEFT_GREW_BAD_BALANCE or
 * GT_RAISE_RIGHT_GREW_BAD_BALANCE only on a node whose `balance` was
 * corrupted outside -1..1 (the new node is then in place).  A null tree gives
 * null. */
VORN_API GT_node *GT_insert_item(GT_tree *tree, void *item);
/* Identity: 1 if a node holds this very word (found even where compare would
 * not call it equal to itself), its position through *pos_out; else 0 and
 * null.  compare only steers, and all equal items may be visited.  A null
 * tree is a miss. */
VORN_API int32_t GT_find_item(GT_tree *tree, void *item, GT_node **pos_out);
/* Key: 1 and the first node met on the way down whose item compares equal
 * (which of several equal ones depends on the tree's shape); else 0 and
 * null.  A null tree is a miss. */
VORN_API int32_t GT_search_item(GT_tree *tree, void *item, GT_node **pos_out);

/* ---- removal: frees the node only, never the item ---- */

/* Removes the node at `pos`, reached by a walk steered by compare.  Every
 * other position stays valid: a node with two children is replaced by its
 * predecessor node, items never move.  Raises GT_RAISE_REMOVE_MISSED (tree
 * unchanged) if the walk misses: `pos` is not in this tree, its item no
 * longer sorts where it stands, or `pos` or the tree is null. */
VORN_API void GT_remove_item(GT_tree *tree, GT_node *pos);
/* As GT_remove_item, but a miss is followed by a walk of the whole tree, so
 * an item whose key changed since insertion is removed too.  Raises
 * GT_RAISE_GLOBAL_MISSED (unchanged) only if `pos` is not in this tree (or
 * is null). */
VORN_API void GT_remove_item_global(GT_tree *tree, GT_node *pos);
/* Removes the node that GT_find_item would find for `item`.  Raises
 * GT_RAISE_FIND_AND_REMOVE_NO_ITEM (unchanged) if there is none (also for a
 * null tree), GT_RAISE_FIND_AND_REMOVE_MISSED (unchanged) if a
 * self-contradicting compare steers the removal walk away from it. */
VORN_API void GT_find_and_remove_item(GT_tree *tree, void *item);
/* Removes the first node in sorted order, calling no callback.  Raises
 * GT_RAISE_REMOVE_FIRST_EMPTY (unchanged) on an empty or null tree.  A
 * `first` corrupted to a node with a left child raises
 * GT_RAISE_REMOVE_HAS_LEFT only when that node also has a right child; with
 * no right child the node is unlinked and its left subtree drops out of the
 * tree unnoticed. */
VORN_API void GT_remove_first_item(GT_tree *tree);

/* ---- iteration ----
 * Each opening allocates a record, registers it with the tree and counts it.
 * Walks go forward along the chain.  A GT_from_* opening takes the tree from
 * the source, which is not changed; from an orphaned source it gives an
 * orphan that ends at its first step. */

/* Over every item, from the tree's first. */
VORN_API GT_iter *GT_all_items(GT_tree *tree);
/* Over the items that `test` accepts. */
VORN_API GT_iter *GT_all_items_conditional(GT_tree *tree, GT_test_fn test);
/* Over the items up to the first that `test` refuses (that one not given). */
VORN_API GT_iter *GT_all_items_while_conditioned(GT_tree *tree, GT_test_fn test);
/* From the source's current item, which is delivered again; a source that
 * has delivered nothing, or whose current node went, gives a walk that ends
 * at its first step. */
VORN_API GT_iter *GT_from_current(GT_iter *source);
/* As GT_from_current, delivering only the items that `test` accepts. */
VORN_API GT_iter *GT_from_current_conditional(GT_iter *source, GT_test_fn test);
/* As GT_from_current, up to the first item that `test` refuses. */
VORN_API GT_iter *GT_from_current_while_conditioned(GT_iter *source, GT_test_fn test);
/* From what the source would deliver next. */
VORN_API GT_iter *GT_from_next(GT_iter *source);
/* As GT_from_next, delivering only the items that `test` accepts. */
VORN_API GT_iter *GT_from_next_conditional(GT_iter *source, GT_test_fn test);
/* As GT_from_next, up to the first item that `test` refuses. */
VORN_API GT_iter *GT_from_next_while_conditioned(GT_iter *source, GT_test_fn test);

/* One step: 1 and the item word through *item_out; or 0 when the walk is
 * over, and then the iterator is freed and *item_out untouched.  The next
 * node is held before the test runs, so the item just delivered may be
 * removed between steps.  A test must not remove the node under test, end
 * this iterator, or empty or release the tree.  Raises
 * GT_RAISE_STEP_NOT_REGISTERED (record not freed) if the walk is over and
 * the iterator is not on its tree's list.  An orphaned iterator (tree
 * released) returns 0 and is freed. */
VORN_API int32_t GT_next_item(GT_iter *iter, void **item_out);
/* As GT_next_item, delivering the position; raises
 * GT_RAISE_STEP_POSITION_NOT_REGISTERED in its place. */
VORN_API int32_t GT_next_position(GT_iter *iter, GT_node **pos_out);
/* Writes the current item through *item_out and gives 1 if that word is not
 * 0, else 0.  With no current node (nothing delivered yet, or its node
 * removed, or the tree emptied or released) writes null and gives 0. */
VORN_API int32_t GT_current_item(GT_iter *iter, void **item_out);
/* Ends a walk that is not over and frees the record.  Raises
 * GT_RAISE_END_NOT_REGISTERED (record not freed) if the iterator is not on
 * its tree's list.  Frees an orphan. */
VORN_API void GT_end_iterator(GT_iter *iter);

/* ---- whole tree ---- */

/* Frees every node, not the items; open iterators stay registered and end
 * at their next step.  The tree stays usable.  A null tree does nothing. */
VORN_API void GT_make_empty(GT_tree *tree);
/* As GT_make_empty, also freeing each item as an MM_ block of `item_size`
 * bytes (every item must be such a block, none in two nodes). */
VORN_API void GT_total_make_empty(GT_tree *tree, int32_t item_size);
/* Frees every node and the tree, not the items, and sets *handle to null.
 * Iterators still open are orphaned: their tree, next and current become
 * null and they stay counted until stepped or ended (which frees them).  A
 * null address or a null handle does nothing. */
VORN_API void GT_release(GT_tree **handle);
/* As GT_release, also freeing each item as in GT_total_make_empty. */
VORN_API void GT_total_release(GT_tree **handle, int32_t item_size);
/* Puts the items back in order by the tree's compare after their keys have
 * changed: bubble passes along the chain, moving item words between nodes.
 * Shape, balances and nodes stay; equal items keep their order; a position
 * then holds whatever item landed in its node.  Uses one counted iterator
 * per pass.  Fewer than two items (or a null tree): nothing is called. */
VORN_API void GT_sort(GT_tree *tree);
/* The number of nodes, by a visit of all of them; 0 for a null tree. */
VORN_API int32_t GT_count_items(GT_tree *tree);
/* Through Tprintf, one line per node in sorted order, indented three blanks
 * per depth (the root at the margin): `print` writes the item, then
 * " %d %d ERROR IN BALANCE !!!!!!!!!!" (stored, then measured balance) if the
 * stored balance is wrong, then "\n".  `print` must not change the tree nor
 * call GT_print_tree.  Heights are measured anew at every node.  An empty or
 * null tree prints nothing and calls nothing. */
VORN_API void GT_print_tree(GT_tree *tree, GT_print_fn print);
/* Prints the leak counters through Tprintf:
 * "allocated trees      = %d\n", "allocated tree_items = %d\n",
 * "allocated tree_iters = %d\n". */
VORN_API void GT_check(void);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_GT_H */
