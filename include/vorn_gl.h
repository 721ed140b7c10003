/*
 * vorn_gl.h - GL, the doubly linked list of pointer-sized item words.
 *
 * The list is open only (no ring, no index operations).  It stores item words
 * and never reads through them nor owns what they point to; 0 is an item like
 * any other.  Heads and nodes are MM_ blocks owned by the list from GL_create
 * (or a copy) to GL_release / GL_total_release or use as the second list of a
 * splice.
 *
 * Positions (GL_node *) stay valid while their item is on the list: across
 * insertions, removals of other items and splices.  Nodes never move.
 * GL raises nothing and does not test its arguments: a position must belong
 * to the list it is given with, and a handle must be live unless an
 * operation says otherwise.
 */
#ifndef VORN_GL_H
#define VORN_GL_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_gl GL: pointer list
 * The rules of the family stand at the top of vorn_gl.h.
 * @{ */

typedef struct GL_node GL_node;
typedef struct GL_list GL_list;
typedef struct GL_iter GL_iter;

/* One item: the links, then the item word. */
struct GL_node {
    GL_node *prev; /* towards first, null at the first item */
    GL_node *next; /* towards last, null at the last item */
    void *item;    /* the item word, never interpreted */
};

/* The head.  Empty exactly when first and last are null. */
struct GL_list {
    GL_node *first;
    GL_node *last;
    int32_t count; /* number of items; GL_count_items costs no walk */
};

/* Caller functions (no context argument; never tested for null except a
 * null test in an iterator record, which means "no test"). */
typedef vorn_test_fn GL_test_fn;       /* non-zero accepts the item word */
typedef vorn_copy_fn GL_copy_fn;       /* gives the new item word */
typedef vorn_release_fn GL_release_fn; /* may write the word, must not change the list */
typedef vorn_measure_fn GL_measure_fn; /* bytes the item word refers to */

/* A walk, held by the caller and returned by value.  It owns nothing, needs
 * no closing and may be copied at any moment: the copy walks on by itself.
 * The walk is one step ahead: the item at `current` may be removed between
 * two steps; removing the item at `next` or `last` ends the walk's validity. */
struct GL_iter {
    GL_node *current; /* reached by the last step, null before the first */
    GL_node *next;    /* taken by the next step, null once the walk is over */
    GL_node *last;    /* where the walk ends, itself included */
    int32_t forward;  /* non-zero follows next links, 0 follows prev links */
    GL_test_fn test;  /* null delivers every item */
};

/* ---- creation and ending ---- */

/* A new empty list. */
VORN_API GL_list *GL_create(void);
/* A new list of the same item words in the same order. */
VORN_API GL_list *GL_copy(GL_list *list);
/* A new list: for each item from first, calls `copy` on the word, then
 * appends the word it returned. */
VORN_API GL_list *GL_total_copy(GL_list *list, GL_copy_fn copy);
/* Frees every node; the head remains, empty.  Item words are dropped. */
VORN_API void GL_make_empty(GL_list *list);
/* From first to the end: calls `release` with the address of the node's item
 * field, then frees the node.  The head remains, empty. */
VORN_API void GL_total_make_empty(GL_list *list, GL_release_fn release);
/* Frees every node and the head and sets *handle to null; a handle holding
 * null is left alone. */
VORN_API void GL_release(GL_list **handle);
/* As GL_total_make_empty, then frees the head and sets *handle to null.  The
 * handle must hold a list. */
VORN_API void GL_total_release(GL_list **handle, GL_release_fn release);
/* The count, without a walk. */
VORN_API int32_t GL_count_items(GL_list *list);
/* Bytes held: sizeof(GL_list) plus, for each item, sizeof(GL_node) and what
 * `measure` gives for its word.  `measure` is not called on an empty list. */
VORN_API int32_t GL_check(GL_list *list, GL_measure_fn measure);

/* ---- insertion: each allocates one node and gives its position ---- */

/* Puts `item` in a new node behind last; gives the node. */
VORN_API GL_node *GL_append_after_last(GL_list *list, void *item);
/* Puts `item` in a new node ahead of first; gives the node. */
VORN_API GL_node *GL_insert_before_first(GL_list *list, void *item);
/* Puts `item` in a new node directly behind `pos` (behind last: as
 * GL_append_after_last); gives the node. */
VORN_API GL_node *GL_insert_after(GL_list *list, GL_node *pos, void *item);
/* Puts `item` in a new node directly ahead of `pos` (ahead of first: as
 * GL_insert_before_first); gives the node. */
VORN_API GL_node *GL_insert_before(GL_list *list, GL_node *pos, void *item);
/* Appends unless an equal word is already on the list; then gives null and
 * changes nothing.  Linear in count. */
VORN_API GL_node *GL_insert_unique(GL_list *list, void *item);

/* ---- search, change, removal ---- */

/* The first position from `first` whose word equals `item`: stored through
 * `pos_out` with result 1; on a miss null is stored and the result is 0. */
VORN_API int32_t GL_find_item(GL_list *list, void *item, GL_node **pos_out);
/* Exchanges the node's word with *word: the new one goes in, the old one
 * comes back through `word`. */
VORN_API void GL_swap_item(GL_node *pos, void **word);
/* Unlinks the item and makes it first (moving last if needed); the first
 * position stays where it is. */
VORN_API void GL_move_before_first(GL_list *list, GL_node *pos);
/* Unlinks and frees the node; the item word is dropped.  At count 0 first
 * and last become null. */
VORN_API void GL_remove_item(GL_list *list, GL_node *pos);

/* ---- splicing: constant time, no allocation ---- */

/* Moves all items of *second behind those of `list`, frees the second head
 * and sets *second to null.  Gives the position of the first item moved, or
 * null if the second list was empty.  Both lists must exist. */
VORN_API GL_node *GL_append_list(GL_list *list, GL_list **second);
/* Moves all items of *second, in their order, ahead of those of `list`,
 * frees the second head and sets *second to null.  Does nothing at all if
 * `list`, `second` or *second is null (the second list then survives). */
VORN_API void GL_append_list_in_front(GL_list *list, GL_list **second);

/* ---- walks ---- */

/* A walk over every item from first to last. */
VORN_API GL_iter GL_all_items(GL_list *list);
/* A walk over every item from last to first. */
VORN_API GL_iter GL_all_items_reversed(GL_list *list);
/* From `from` to `to` inclusive in the given direction; the list is not
 * read.  On an open list a `to` that does not lie ahead of `from` lets the
 * walk run to the end of the list.  A null `from` gives a walk that is over. */
VORN_API GL_iter GL_all_items_inbetween(GL_list *list, GL_node *from, GL_node *to,
                                        int32_t forward);
/* As GL_all_items, delivering only the words that `test` accepts. */
VORN_API GL_iter GL_tested_items(GL_list *list, GL_test_fn test);
/* As GL_all_items_inbetween, delivering only the words that `test`
 * accepts. */
VORN_API GL_iter GL_tested_items_inbetween(GL_list *list, GL_node *from, GL_node *to,
                                           int32_t forward, GL_test_fn test);
/* A walk that is over before it begins. */
VORN_API GL_iter GL_empty_iter(void);
/* One step: 1 and the item word through `item_out`, or 0 when the walk is
 * over.  Under a test the word is written before the test is called, so
 * after a 0 it holds the last word refused; with nothing left to visit the
 * out argument is not written. */
VORN_API int32_t GL_next_item(GL_iter *iter, void **item_out);
/* As GL_next_item, delivering the position. */
VORN_API int32_t GL_next_position(GL_iter *iter, GL_node **pos_out);

/* The step is small and runs once per item, so hosts get it inline: the
 * walk's record can then stay in registers.  It behaves exactly as the
 * exported GL_next_item (whose address stays available); define
 * VORN_NO_INLINE_WALKS to call the library instead. */
#if !defined(VORN_NO_INLINE_WALKS) && !defined(VORN_CHECKED) && !defined(VORN_CONTAINER_BUILD)
static inline int32_t GL_next_item_inline(GL_iter *iter, void **item_out) {
    for (;;) {
        GL_node *n = iter->next;
        if (!n) return 0;
        iter->current = n;
        iter->next = n == iter->last ? (GL_node *)0 : iter->forward ? n->next : n->prev;
        *item_out = n->item;
        if (!iter->test || iter->test(n->item)) return 1;
    }
}
#define GL_next_item(iter, item_out) GL_next_item_inline((iter), (item_out))
#elif defined(VORN_CHECKED) && !defined(VORN_CONTAINER_BUILD)
/* The checked build keeps the inline name, calling the checked export. */
static inline int32_t GL_next_item_inline(GL_iter *iter, void **item_out) {
    return GL_next_item(iter, item_out);
}
#endif

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_GL_H */
