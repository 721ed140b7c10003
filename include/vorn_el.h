/*
 * vorn_el.h - EL, the doubly linked list of fixed-size elements held by value.
 *
 * Each item is `item_size` bytes copied into its node, directly behind the
 * two links.  Elements are moved with plain byte copies; the list knows
 * nothing of their content and owns no other memory.  The head and every
 * node are MM_ blocks owned by the list from EL_create (or a copy, or a cut)
 * to EL_release or use as the second list of EL_append_list.
 *
 * Positions (EL_node *) stay valid while their item is on the list: across
 * insertions, removals of other items, closing and opening, reversal, roll
 * and splicing.  Nodes never move.  A pointer to the element bytes
 * (node->item) lives as long as the position, and a caller may write
 * through it.  A position ends with the removal of its item or the emptying
 * of its list.
 *
 * Rings: a closed list (closed == 1) has last->next == first and
 * first->prev == last; `first` and `last` mark where the ring is entered.
 * Insertion and removal keep a ring whole; an empty ring stays closed, so the
 * next insertion links itself again.  Index operations end at `last` and
 * never wrap; EL_advance follows links, so it wraps on a ring.
 *
 * Failures: only EL_replace_items_inbetween (EL_RAISE_REPLACE_SOURCE_SHORT)
 * and EL_roll (EL_RAISE_ROLL_NO_PREV) raise; the table is vorn_raises.h.
 * Everything else is quiet: an
 * index out of range gives 0 or null and changes nothing.  Arguments are not
 * tested: a position must belong to the list it is given with, and a range
 * `to` on a ring must be a position of that ring (a walk towards anything
 * else does not end).
 */
#ifndef VORN_EL_H
#define VORN_EL_H

#include "vorn_base.h"
#include "vorn_raises.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_el EL: element list
 * The rules of the family stand at the top of vorn_el.h.
 * @{ */

typedef struct EL_node EL_node;
typedef struct EL_list EL_list;
typedef struct EL_iter EL_iter;

/* One item: the links, then the element bytes.  The block is exactly
 * sizeof(EL_node) + item_size bytes (the two links plus the element).  The
 * flexible array member is standard C; C++ compilers take it as an
 * extension, whose warning is silenced here for gcc, clang and MSVC (C4200)
 * so that hosts building with warnings as errors include this header. */
#if defined(__cplusplus) && (defined(__GNUC__) || defined(__clang__))
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#endif
#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4200)
#endif
struct EL_node {
    EL_node *prev;        /* towards first; null at first when open, last on a ring */
    EL_node *next;        /* towards last; null at last when open, first on a ring */
    unsigned char item[]; /* the element, item_size bytes */
};
#if defined(_MSC_VER)
#pragma warning(pop)
#endif
#if defined(__cplusplus) && (defined(__GNUC__) || defined(__clang__))
#pragma GCC diagnostic pop
#endif

/* The head.  Empty exactly when first and last are null. */
struct EL_list {
    EL_node *first;
    EL_node *last;
    uint16_t item_size; /* bytes per element, fixed at creation */
    int32_t count;      /* number of items; EL_count_items costs no walk */
    int32_t closed;     /* 1 when the list is a ring, else 0 */
};

/* Test: receives a pointer to the element bytes; non-zero accepts. */
typedef vorn_test_fn EL_test_fn;

/* A walk, held by the caller and returned by value.  It owns nothing, needs
 * no closing and may be copied at any moment: the copy walks on by itself.
 * The walk is one step ahead: the item at `current` may be removed between
 * two steps; removing the item at `next` or `last` ends the walk's validity.
 * A walk ends at `last` or at a null link, whichever comes first. */
struct EL_iter {
    EL_node *current;  /* reached by the last step, null before the first */
    EL_node *next;     /* taken by the next step, null once the walk is over */
    EL_node *last;     /* where the walk ends, itself included */
    int32_t forward;   /* non-zero follows next links, 0 follows prev links */
    int32_t item_size; /* the list's item size when the walk was opened */
    EL_test_fn test;   /* null delivers every item */
};

/* ---- creation and ending ---- */

/* A new empty open list of elements of `item_size` bytes. */
VORN_API EL_list *EL_create(uint16_t item_size);
/* A new list of copies of all elements in order, with the same count, closed
 * if the source is closed.  The source is only read. */
VORN_API EL_list *EL_total_copy(EL_list *list);
/* A new open list of copies of the elements that a forward walk from `from`
 * to `to` delivers, `to` included (on a ring the walk may pass the seam; on
 * an open list a `to` that is not ahead of `from` copies to the end).  A null
 * `from` gives an empty list. */
VORN_API EL_list *EL_total_copy_inbetween(EL_list *list, EL_node *from, EL_node *to);
/* Opens a ring and frees every node; the head remains, empty and open. */
VORN_API void EL_make_empty(EL_list *list);
/* As EL_make_empty, then frees the head and sets *handle to null.  A handle
 * that holds null is left alone. */
VORN_API void EL_release(EL_list **handle);
/* The count, without a walk. */
VORN_API int32_t EL_count_items(EL_list *list);
/* The number of items that a forward walk from `from` to `to` delivers,
 * counted by walking them; 0 if `from` is null. */
VORN_API int32_t EL_count_items_inbetween(EL_list *list, EL_node *from, EL_node *to);

/* ---- insertion: each allocates one node, copies item_size bytes from
 * `element` into it and gives the new position ---- */

/* The new item becomes last; on a ring first->prev follows. */
VORN_API EL_node *EL_append_after_last(EL_list *list, const void *element);
/* The new item becomes first; on a ring last->next follows. */
VORN_API EL_node *EL_insert_before_first(EL_list *list, const void *element);
/* After `pos`; at last this is EL_append_after_last. */
VORN_API EL_node *EL_insert_after(EL_list *list, EL_node *pos, const void *element);
/* Before `pos`; at first this is EL_insert_before_first. */
VORN_API EL_node *EL_insert_before(EL_list *list, EL_node *pos, const void *element);
/* After / before the item at `index`.  The index must name an existing item,
 * so these never fill an empty list nor address the place behind last:
 * otherwise nothing is inserted and the result is null. */
VORN_API EL_node *EL_insert_after_index(EL_list *list, int32_t index, const void *element);
/* As EL_insert_after_index, ahead of the item at `index`. */
VORN_API EL_node *EL_insert_before_index(EL_list *list, int32_t index, const void *element);

/* ---- access ---- */

/* The element bytes / the position at `index` (zero-based from first, ending
 * at last, never wrapping); null for a negative index or one of count or
 * more. */
VORN_API void *EL_get_item_at_index(EL_list *list, int32_t index);
/* As EL_get_item_at_index, giving the position. */
VORN_API EL_node *EL_get_pos_at_index(EL_list *list, int32_t index);
/* The number of prev links from `pos` back to first; `pos` must be on the
 * list. */
VORN_API int32_t EL_get_index(EL_list *list, EL_node *pos);
/* Follows next (`steps` > 0) or prev (< 0) links that often; 0 gives `pos`
 * back.  A null link on the way gives null; on a ring it wraps.  The list is
 * not read. */
VORN_API EL_node *EL_advance(EL_list *list, EL_node *pos, int32_t steps);
/* Copies `size` bytes from `source` over the element at `pos`.  The size is
 * the caller's and is not compared with item_size. */
VORN_API void EL_replace_item(EL_node *pos, const void *source, int32_t size);
/* Walks forward from `from` to `to` and, beside it, over all of `source`;
 * at each position of the range copies `size` bytes of the next source
 * element over the element there.  Surplus source items are ignored, the
 * source is not changed, and a null `from` does nothing.  Raises
 * EL_RAISE_REPLACE_SOURCE_SHORT when the source runs out; the items before
 * are already overwritten. */
VORN_API void EL_replace_items_inbetween(EL_list *list, EL_node *from, EL_node *to,
                                         EL_list *source, int32_t size);

/* ---- removal ---- */

/* Unlinks and frees the node, keeping a ring whole.  At count 0 first and
 * last become null and `closed` stays as it was. */
VORN_API void EL_remove_item(EL_list *list, EL_node *pos);
/* Removes the item at `index`: 1, or 0 when the index finds nothing. */
VORN_API int32_t EL_remove_at_index(EL_list *list, int32_t index);
/* Removes every item that a forward walk from `from` to `to` delivers (on a
 * ring through the seam; on an open list a `to` not ahead of `from` lets it
 * remove to the end, and `to` survives).  A null `from` does nothing.  The
 * removal stops once the list is empty, so it never reads a freed node. */
VORN_API void EL_remove_items_inbetween(EL_list *list, EL_node *from, EL_node *to);

/* ---- lists as wholes ---- */

/* Moves all items of *second behind those of `list` without allocating,
 * frees the second head and sets *second to null.  Gives the first item
 * moved, or null if the second list was empty.  Both lists are meant to be
 * open; if either is a ring its seam is opened first, and `list` keeps its
 * own `closed` flag (a ring stays a ring, now holding both parts). */
VORN_API EL_node *EL_append_list(EL_list *list, EL_list **second);
/* Reverses the order: prev and next swap in every item, first and last swap,
 * a ring stays closed.  Positions stay with their elements. */
VORN_API void EL_reverse(EL_list *list);
/* Makes the list a ring (on an empty list only the flag changes). */
VORN_API void EL_set_closed(EL_list *list);
/* Opens the ring at its seam: first->prev and last->next become null. */
VORN_API void EL_reset_closed(EL_list *list);
/* On a ring, makes `pos` first and its prev last; no link changes.  Raises
 * EL_RAISE_ROLL_NO_PREV when pos->prev is null (the first item of an open
 * list).  On an open list any other position changes nothing. */
VORN_API void EL_roll(EL_list *list, EL_node *pos);
/* Opens a ring at `pos`: a copy of its element is inserted before it and
 * becomes last, `pos` becomes first, and the list is open with one item
 * more.  A ring a, b, c, d opened at c gives c, d, a, b, c.  Gives `pos`.
 * Given an open list, it first closes it, so a, b, c, d opened at c gives
 * the same c, d, a, b, c. */
VORN_API EL_node *EL_make_open_at_position(EL_list *list, EL_node *pos);
/* Cuts the list at `pos` and gives the end part as a new open list: a copy
 * of the element at `pos` ends the source, and `pos` begins the new list
 * with every item behind it.  a, b, c, d cut at c leaves a, b, c and gives
 * c, d.  A ring is opened at its seam first; both lists end open. */
VORN_API EL_list *EL_remove_and_get_end_part(EL_list *list, EL_node *pos);

/* ---- walks ---- */

/* A walk over every element from first to last (on a ring: once round,
 * ending at last). */
VORN_API EL_iter EL_all_items(EL_list *list);
/* A walk over every element from last to first. */
VORN_API EL_iter EL_all_items_reversed(EL_list *list);
/* From `from` to `to` inclusive in the given direction; the item size comes
 * from the list.  A null `from` gives a walk that is over. */
VORN_API EL_iter EL_all_items_inbetween(EL_list *list, EL_node *from, EL_node *to,
                                        int32_t forward);
/* As EL_all_items_inbetween, delivering only the elements that `test`
 * accepts. */
VORN_API EL_iter EL_tested_items_inbetween(EL_list *list, EL_node *from, EL_node *to,
                                           int32_t forward, EL_test_fn test);
/* One step: 1 and a pointer to the element bytes through `item_out`, or 0
 * when the walk is over.  Under a test the pointer is written before the
 * test is called, so after a 0 it holds the last element refused; with
 * nothing left to visit the out argument is not written. */
VORN_API int32_t EL_next_item(EL_iter *iter, void **item_out);
/* As EL_next_item, delivering the position. */
VORN_API int32_t EL_next_position(EL_iter *iter, EL_node **pos_out);
/* As EL_next_item, copying the iterator's item_size bytes of the element into
 * `buffer`; the buffer is written only for an accepted item. */
VORN_API int32_t EL_next_item_copy(EL_iter *iter, void *buffer);

/* The step runs once per item, so hosts get it inline: the walk's record can
 * then stay in registers.  It behaves exactly as the exported EL_next_item
 * (whose address stays available); define VORN_NO_INLINE_WALKS to call the
 * library instead. */
#if !defined(VORN_NO_INLINE_WALKS) && !defined(VORN_CHECKED) && !defined(VORN_CONTAINER_BUILD)
static inline int32_t EL_next_item_inline(EL_iter *iter, void **item_out) {
    for (;;) {
        EL_node *n = iter->next;
        if (!n) return 0;
        iter->current = n;
        iter->next = n == iter->last ? (EL_node *)0 : iter->forward ? n->next : n->prev;
        *item_out = n->item;
        if (!iter->test || iter->test(n->item)) return 1;
    }
}
#define EL_next_item(iter, item_out) EL_next_item_inline((iter), (item_out))
#elif defined(VORN_CHECKED) && !defined(VORN_CONTAINER_BUILD)
/* The checked build keeps the inline name, calling the checked export. */
static inline int32_t EL_next_item_inline(EL_iter *iter, void **item_out) {
    return EL_next_item(iter, item_out);
}
#endif

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_EL_H */
