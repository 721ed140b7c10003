// GT whole-tree operations: emptying and release (with or without the
// items), sorting after keys changed, counting, the printout and the leak
// report.

#include "checked.hpp"
#include "gentree_state.hpp"

using namespace vorn::gt;

namespace {

// Post-order: left subtree, right subtree, then the node (its item first
// when `with_items`, as an MM_ block of gt_item_size bytes).
void free_subtree(GT_node *n, bool with_items) {
    if (!n) return;
    free_subtree(n->left, with_items);
    free_subtree(n->right, with_items);
    if (with_items) MM_dealloc_item(n->item, static_cast<size_t>(gt_item_size));
    free_node(n);
}

// Open iterators stay registered with next and current null: their next
// step ends them, whatever is inserted meanwhile.
void empty(GT_tree *tree, bool with_items) {
    if (!tree) return;
    for (GL_node *e = tree->iterators->first; e; e = e->next) {
        auto *it = static_cast<GT_iter *>(e->item);
        it->next = nullptr;
        it->current = nullptr;
    }
    free_subtree(tree->root, with_items);
    tree->root = tree->first = tree->last = nullptr;
}

// Iterators still open are orphaned: they keep their record and their count
// until a step or GT_end_iterator frees them.
void release([[maybe_unused]] const char *op, GT_tree **handle, bool with_items) {
    if (!handle || !*handle) return;
    GT_tree *tree = *handle;
    VORN_CHK(dies(op, tree));
    for (GL_node *e = tree->iterators->first; e; e = e->next) {
        auto *it = static_cast<GT_iter *>(e->item);
        it->next = nullptr;
        it->current = nullptr;
        it->tree = nullptr;
    }
    GL_release(&tree->iterators);
    free_subtree(tree->root, with_items);
    --gt_allocated_trees;
    vorn::free_record(tree);
    *handle = nullptr;
}

int32_t count_below(const GT_node *n) {
    return n ? 1 + count_below(n->left) + count_below(n->right) : 0;
}

int32_t height(const GT_node *n) {
    if (!n) return 0;
    const int32_t l = height(n->left);
    const int32_t r = height(n->right);
    return 1 + (l > r ? l : r);
}

void print_below(const GT_node *n, int32_t depth) {
    for (; n; n = n->right, ++depth) {
        print_below(n->left, depth + 1);
        for (int32_t i = 0; i < depth; ++i) Tprintf("   ");
        gt_print_item(n->item);
        const int32_t measured = height(n->right) - height(n->left);
        if (measured != n->balance)
            Tprintf(" %d %d ERROR IN BALANCE !!!!!!!!!!", static_cast<int>(n->balance),
                    static_cast<int>(measured));
        Tprintf("\n");
    }
}

}  // namespace

extern "C" {

void GT_make_empty(GT_tree *tree) {
    VORN_CHK(gt_live(__func__, tree));
    empty(tree, false);
}

void GT_total_make_empty(GT_tree *tree, int32_t item_size) {
    VORN_CHK(gt_live(__func__, tree));
    gt_item_size = item_size;
    empty(tree, true);
}

void GT_release(GT_tree **handle) { release(__func__, handle, false); }

void GT_total_release(GT_tree **handle, int32_t item_size) {
    gt_item_size = item_size;
    release(__func__, handle, true);
}

// Bubble passes along the chain with a falling bound: a pass stops ahead of
// the last exchange of the pass before, since all from there on is in order.
// Only a strictly smaller item moves forward, so equal items keep their order.
void GT_sort(GT_tree *tree) {
    VORN_CHK(gt_live(__func__, tree));
    if (!tree || !tree->first || !tree->first->next) return;
    gt_compare = tree->compare;
    GT_node *bound = nullptr;
    GT_node *last_exchange;
    do {
        last_exchange = tree->first;
        GT_iter *it = GT_all_items(tree);
        GT_node *a;
        GT_node *b;
        if (GT_next_position(it, &a) && GT_next_position(it, &b)) {
            for (;;) {
                if (b == bound) {
                    GT_end_iterator(it);
                    break;
                }
                if (gt_compare(b->item, a->item) < 0) {
                    void *item = a->item;
                    a->item = b->item;
                    b->item = item;
                    last_exchange = b;
                }
                a = b;
                if (!GT_next_position(it, &b)) break;  // the iterator ended itself
            }
        }
        bound = last_exchange;
    } while (last_exchange != tree->first);
}

// The count walks every node, so the checked build checks the whole tree.
int32_t GT_count_items(GT_tree *tree) {
    VORN_CHK(gt(__func__, tree));
    VORN_CHK(gt_full(__func__, tree));
    return tree ? count_below(tree->root) : 0;
}

void GT_print_tree(GT_tree *tree, GT_print_fn print) {
    VORN_CHK(gt_live(__func__, tree));
    if (!tree) return;
    gt_print_item = print;
    print_below(tree->root, 0);
}

void GT_check(void) {
    Tprintf("allocated trees      = %d\n", static_cast<int>(gt_allocated_trees));
    Tprintf("allocated tree_items = %d\n", static_cast<int>(gt_allocated_tree_items));
    Tprintf("allocated tree_iters = %d\n", static_cast<int>(gt_allocated_tree_iters));
}

}  // extern "C"
