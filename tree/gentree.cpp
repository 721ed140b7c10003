// GT core: creation, the AVL rotations and balance tables, insertion,
// identity and key lookup, and the removals.
//
// Nodes have no parent link: every routine that may put another node at the
// top of a subtree is handed that subtree's slot (the word pointing to it)
// and writes the new top through it.  The routines share the module-level
// working state of gentree_state.hpp instead of passing arguments.
//
// Items never move between nodes here: a node with two children is replaced
// by relinking its in-order predecessor node into its place, so every other
// position stays valid, and rotations touch neither the chain nor the items.

#include <cstddef>
#include <type_traits>

#include "checked.hpp"
#include "gentree_state.hpp"

static_assert(std::is_standard_layout_v<GT_node> && std::is_trivially_copyable_v<GT_node>);
static_assert(offsetof(GT_node, item) == 0 && offsetof(GT_node, prev) == 3 * sizeof(void *));
static_assert(offsetof(GT_node, balance) == 5 * sizeof(void *));
static_assert(offsetof(GT_tree, compare) == 3 * sizeof(void *));
static_assert(offsetof(GT_iter, next) == 0 && offsetof(GT_iter, kind) == 4 * sizeof(void *));

namespace vorn::gt {

GT_compare_fn gt_compare;
int32_t gt_dupl_allowed;
GT_tree *gt_tree;
void *gt_item;
GT_node *gt_position;
GT_node *gt_left_neighbour;
GT_node *gt_right_neighbour;
int32_t gt_grew;
int32_t gt_found;
int32_t gt_shrunk;
int32_t gt_by_compare;
GT_node **gt_parent_slot;
int32_t gt_item_size;
GT_print_fn gt_print_item;

int32_t gt_allocated_trees;
int32_t gt_allocated_tree_items;
int32_t gt_allocated_tree_iters;

namespace {

// ---- rotations: the slot is that of n ----

inline void rotate_right(GT_node **slot, GT_node *n, GT_node *c) {
    n->left = c->right;
    c->right = n;
    *slot = c;
}

inline void rotate_left(GT_node **slot, GT_node *n, GT_node *c) {
    n->right = c->left;
    c->left = n;
    *slot = c;
}

void rotate_left_right(GT_node **slot, GT_node *n) {
    GT_node *c = n->left;
    GT_node *g = c->right;
    c->right = g->left;
    n->left = g->right;
    g->left = c;
    g->right = n;
    *slot = g;
    n->balance = g->balance == -1 ? 1 : 0;
    c->balance = g->balance == 1 ? -1 : 0;
    g->balance = 0;
}

void rotate_right_left(GT_node **slot, GT_node *n) {
    GT_node *c = n->right;
    GT_node *g = c->left;
    c->left = g->right;
    n->right = g->left;
    g->right = c;
    g->left = n;
    *slot = g;
    n->balance = g->balance == 1 ? -1 : 0;
    c->balance = g->balance == -1 ? 1 : 0;
    g->balance = 0;
}

// ---- insertion ----

// The left subtree of the node in `slot` grew by one level.
void left_grew(GT_node **slot) {
    GT_node *n = *slot;
    switch (n->balance) {
        case 1: n->balance = 0; gt_grew = 0; return;
        case 0: n->balance = -1; return;
        case -1: {
            GT_node *c = n->left;
            if (c->balance == -1) {
                rotate_right(slot, n, c);
                n->balance = 0;
                c->balance = 0;
            } else {
                rotate_left_right(slot, n);
            }
            gt_grew = 0;
            return;
        }
        default: fail(raises::GT_RAISE_LEFT_GREW_BAD_BALANCE);
    }
}

// The right subtree of the node in `slot` grew by one level.
void right_grew(GT_node **slot) {
    GT_node *n = *slot;
    switch (n->balance) {
        case -1: n->balance = 0; gt_grew = 0; return;
        case 0: n->balance = 1; return;
        case 1: {
            GT_node *c = n->right;
            if (c->balance == 1) {
                rotate_left(slot, n, c);
                n->balance = 0;
                c->balance = 0;
            } else {
                rotate_right_left(slot, n);
            }
            gt_grew = 0;
            return;
        }
        default: fail(raises::GT_RAISE_RIGHT_GREW_BAD_BALANCE);
    }
}

// A new leaf in the empty `slot`.  Its chain neighbours are the last turns of
// the descent, so no search is needed.
void add_leaf(GT_node **slot) {
    GT_node *n = vorn::alloc_record<GT_node>();
    ++gt_allocated_tree_items;
    n->item = gt_item;
    n->left = n->right = nullptr;
    n->balance = 0;
    n->prev = gt_left_neighbour;
    n->next = gt_right_neighbour;
    (gt_left_neighbour ? gt_left_neighbour->next : gt_tree->first) = n;
    (gt_right_neighbour ? gt_right_neighbour->prev : gt_tree->last) = n;
    *slot = n;
    gt_position = n;
    gt_grew = 1;
    iters_after_insert(n);
}

// An equal item descends to the right, so it lands behind every equal one.
// A descent waits for one node per level; asking for both children while
// the comparison runs hides part of that wait.
inline void prefetch_children(const GT_node *n) {
#if defined(__GNUC__)
    __builtin_prefetch(n->left);
    __builtin_prefetch(n->right);
#else
    (void)n;
#endif
}

void insert_below(GT_node **slot) {
    GT_node *n = *slot;
    if (!n) return add_leaf(slot);
    prefetch_children(n);
    const int32_t r = gt_compare(gt_item, n->item);
    if (r < 0) {
        gt_right_neighbour = n;
        insert_below(&n->left);
        if (gt_grew) left_grew(slot);
    } else if (r == 0 && !gt_dupl_allowed) {
        gt_position = n;
    } else {
        gt_left_neighbour = n;
        insert_below(&n->right);
        if (gt_grew) right_grew(slot);
    }
}

// ---- lookup ----

// Identity search from n down its right side; on compare 0 both subtrees are
// tried, left first, since equal items lie on both sides after rotations.
void find_below(GT_node *n) {
    for (;;) {
        if (!n) {
            gt_position = nullptr;
            return;
        }
        if (n->item == gt_item) {
            gt_position = n;
            gt_found = 1;
            return;
        }
        const int32_t r = gt_compare(gt_item, n->item);
        if (r <= 0) {
            find_below(n->left);
            if (gt_found || r < 0) return;
        }
        n = n->right;
    }
}

int32_t finish_lookup(GT_node **pos_out) {
    *pos_out = gt_position;
    return gt_found;
}

// ---- removal ----

// The left subtree of the node in `slot` lost a level.  A balance outside
// -1..1 is left alone.
void left_shrunk(GT_node **slot) {
    GT_node *n = *slot;
    switch (n->balance) {
        case -1: n->balance = 0; return;
        case 0: n->balance = 1; gt_shrunk = 0; return;
        case 1: {
            GT_node *c = n->right;
            switch (c->balance) {
                case -1: rotate_right_left(slot, n); return;
                case 0:
                    rotate_left(slot, n, c);
                    n->balance = 1;
                    c->balance = -1;
                    gt_shrunk = 0;
                    return;
                case 1:
                    rotate_left(slot, n, c);
                    n->balance = 0;
                    c->balance = 0;
                    return;
                default: return;
            }
        }
        default: return;
    }
}

// The mirror: the right subtree of the node in `slot` lost a level.
void right_shrunk(GT_node **slot) {
    GT_node *n = *slot;
    switch (n->balance) {
        case 1: n->balance = 0; return;
        case 0: n->balance = -1; gt_shrunk = 0; return;
        case -1: {
            GT_node *c = n->left;
            switch (c->balance) {
                case 1: rotate_left_right(slot, n); return;
                case 0:
                    rotate_right(slot, n, c);
                    n->balance = -1;
                    c->balance = 1;
                    gt_shrunk = 0;
                    return;
                case -1:
                    rotate_right(slot, n, c);
                    n->balance = 0;
                    c->balance = 0;
                    return;
                default: return;
            }
        }
        default: return;
    }
}

// Takes n's chain neighbours past it and frees it.
void unchain_and_free(GT_node *n) {
    (n->prev ? n->prev->next : gt_tree->first) = n->next;
    (n->next ? n->next->prev : gt_tree->last) = n->prev;
    free_node(n);
}

// Descends to the rightmost node p of the subtree in `slot` (the left subtree
// of n = gt_position, so p is n's predecessor), unhooks it and puts it in n's
// place at gt_parent_slot with n's right child and balance.  p keeps its item
// and chain links: it stays the same position.  Its `left` is set again by
// the caller, after the rebalancing on the way back may have rotated the top
// of n's left subtree.
void take_predecessor(GT_node **slot) {
    GT_node *p = *slot;
    if (p->right) {
        take_predecessor(&p->right);
        if (gt_shrunk) right_shrunk(slot);
        return;
    }
    GT_node *n = gt_position;
    iters_before_remove_two(n, p);
    GT_node *below = p->left;
    if (p != n->left) p->left = n->left;
    *slot = below;
    p->balance = n->balance;
    p->right = n->right;
    gt_shrunk = 1;
    *gt_parent_slot = p;
}

// n = gt_position sits in `slot`: take it out of tree and chain, free it.
void take_out(GT_node **slot, GT_node *n) {
    gt_found = 1;
    if (!n->right) {
        iters_before_remove_no_right(n);
        gt_shrunk = 1;
        *slot = n->left;
    } else if (!n->left) {
        iters_before_remove_no_left(n);
        gt_shrunk = 1;
        *slot = n->right;
    } else {
        gt_parent_slot = slot;
        take_predecessor(&n->left);
        GT_node *p = *slot;
        p->left = n->left;  // read only now: the way back may have rotated it
        if (gt_shrunk) left_shrunk(slot);
    }
    unchain_and_free(n);
}

// Looks for gt_position below `slot`, steered by compare or visiting all,
// removes it and rebalances on the way back up the path walked.
void remove_below(GT_node **slot) {
    GT_node *n = *slot;
    if (!n) return;
    if (n == gt_position) return take_out(slot, n);
    const int32_t r = gt_by_compare ? gt_compare(gt_position->item, n->item) : 0;
    if (r <= 0) {
        remove_below(&n->left);
        if (gt_found) {
            if (gt_shrunk) left_shrunk(slot);
            return;
        }
        if (r < 0) return;
    }
    remove_below(&(*slot)->right);
    if (gt_found && gt_shrunk) right_shrunk(slot);
}

// Steered removal of `pos` from the loaded gt_tree; gives gt_found.
int32_t remove_steered(GT_node *pos) {
    gt_found = 0;
    gt_shrunk = 0;
    gt_position = pos;
    gt_by_compare = 1;
    remove_below(&gt_tree->root);
    return gt_found;
}

// Down the left spine to gt_position, the first node, which has no left
// child in a sound tree.
void remove_first_below(GT_node **slot) {
    GT_node *n = *slot;
    if (!n) fail(raises::GT_RAISE_REMOVE_FIRST_EMPTY);
    if (n != gt_position) {
        remove_first_below(&n->left);
        if (gt_shrunk) left_shrunk(slot);
        return;
    }
    gt_found = 1;
    if (!n->right)
        iters_before_remove_no_right(n);
    else
        iters_before_remove_no_left(n);
    *slot = n->right;
    gt_shrunk = 1;
    gt_tree->first = n->next;
    (n->next ? n->next->prev : gt_tree->last) = n->prev;
    free_node(n);
}

GT_tree *create(GT_compare_fn compare, int32_t dupl_allowed) {
    ++gt_allocated_trees;
    GT_tree *t = vorn::alloc_record<GT_tree>();
    t->root = t->first = t->last = nullptr;
    t->compare = compare;
    t->dupl_allowed = dupl_allowed;
    t->iterators = GL_create();
    VORN_CHK(born(t));
    return t;
}

}  // namespace
}  // namespace vorn::gt

using namespace vorn::gt;

extern "C" {

GT_tree *GT_create_with_dupl_allowed(GT_compare_fn compare) { return create(compare, 1); }

GT_tree *GT_create_with_dupl_not_allowed(GT_compare_fn compare) { return create(compare, 0); }

GT_node *GT_insert_item(GT_tree *tree, void *item) {
    VORN_CHK(gt_live(__func__, tree));
    if (!tree) return nullptr;
    gt_item = item;
    gt_compare = tree->compare;
    gt_tree = tree;
    gt_dupl_allowed = tree->dupl_allowed;
    gt_grew = 0;
    gt_left_neighbour = nullptr;
    gt_right_neighbour = nullptr;
    insert_below(&tree->root);
    VORN_CHK(gt_inserted(__func__, tree, gt_position));
    VORN_CHK(gt(__func__, tree));
    return gt_position;
}

int32_t GT_find_item(GT_tree *tree, void *item, GT_node **pos_out) {
    VORN_CHK(gt_live(__func__, tree));
    gt_found = 0;
    gt_position = nullptr;
    if (tree) {
        gt_compare = tree->compare;
        gt_item = item;
        find_below(tree->root);
    }
    return finish_lookup(pos_out);
}

int32_t GT_search_item(GT_tree *tree, void *item, GT_node **pos_out) {
    VORN_CHK(gt_live(__func__, tree));
    gt_found = 0;
    gt_position = nullptr;
    if (tree) {
        gt_compare = tree->compare;
        gt_item = item;
        for (GT_node *n = tree->root; n;) {
            prefetch_children(n);
            const int32_t r = gt_compare(gt_item, n->item);
            if (r == 0) {
                gt_position = n;
                gt_found = 1;
                break;
            }
            n = r < 0 ? n->left : n->right;
        }
    }
    return finish_lookup(pos_out);
}

void GT_remove_item(GT_tree *tree, GT_node *pos) {
    VORN_CHK(gt_live(__func__, tree));
    if (!tree || !pos) fail(raises::GT_RAISE_REMOVE_MISSED);
    gt_tree = tree;
    gt_compare = tree->compare;
    if (!remove_steered(pos)) fail(raises::GT_RAISE_REMOVE_MISSED);
    VORN_CHK(gt(__func__, tree));
}

void GT_remove_item_global(GT_tree *tree, GT_node *pos) {
    VORN_CHK(gt_live(__func__, tree));
    if (!tree || !pos) fail(raises::GT_RAISE_GLOBAL_MISSED);
    gt_tree = tree;
    gt_compare = tree->compare;
    if (!remove_steered(pos)) {
        gt_by_compare = 0;  // the walk missed: visit the whole tree
        remove_below(&tree->root);
        if (!gt_found) fail(raises::GT_RAISE_GLOBAL_MISSED);
    }
    VORN_CHK(gt(__func__, tree));
}

void GT_find_and_remove_item(GT_tree *tree, void *item) {
    VORN_CHK(gt_live(__func__, tree));
    if (!tree) fail(raises::GT_RAISE_FIND_AND_REMOVE_NO_ITEM);
    gt_found = 0;
    gt_compare = tree->compare;
    gt_item = item;
    find_below(tree->root);
    if (!gt_found) fail(raises::GT_RAISE_FIND_AND_REMOVE_NO_ITEM);
    gt_tree = tree;
    if (!remove_steered(gt_position)) fail(raises::GT_RAISE_FIND_AND_REMOVE_MISSED);
    VORN_CHK(gt(__func__, tree));
}

void GT_remove_first_item(GT_tree *tree) {
    VORN_CHK(gt_live(__func__, tree));
    if (!tree) fail(raises::GT_RAISE_REMOVE_FIRST_EMPTY);
    gt_tree = tree;
    gt_found = 0;
    gt_shrunk = 0;
    gt_position = tree->first;
    remove_first_below(&tree->root);
    VORN_CHK(gt(__func__, tree));
}

}  // extern "C"
