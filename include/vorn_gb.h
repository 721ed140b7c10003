/*
 * vorn_gb.h - GB, a list of fixed-size items in one contiguous, growable
 * block.
 *
 * A position is a zero-based index, so any item is reached directly at
 * `data + i * item_size`; indices shift when items move.  The record GB_list
 * belongs to the caller, who declares or embeds it: GB_init fills it in, and
 * no operation allocates or frees the record itself, only its block (an MM_
 * block of exactly capacity * item_size bytes, owned by the record while it
 * is live).  There are no walks: the caller counts indices.
 *
 * A record is live from GB_init or GB_copy until GB_release or until it is
 * the other record of GB_append_block; it then holds no block (capacity 0)
 * while `count` still shows the old number; GB_make_empty and the next
 * growth, or GB_init, give it a block again.  Item operations on a record
 * without a block expect count 0.  A record that goes out of scope with a
 * block leaves that block allocated.
 *
 * Growth: when an insertion finds count equal to capacity, the capacity
 * becomes count + inc by the rule of GB_set_number_of_elements: a fixed step,
 * never a factor.  Any growth or change of capacity may move `data`, so a
 * pointer into the block is good only until then.
 *
 * GB raises nothing and tests no allocation.  Operations on a wrong state do
 * nothing.  Where the caller breaks a limit (an index out of range, a removal
 * from an empty list, an inc of 0 or less) this implementation chooses the
 * behaviour that neither writes nor reads outside the block, as stated at
 * each operation.
 */
#ifndef VORN_GB_H
#define VORN_GB_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_gb GB: block list
 * The rules of the family stand at the top of vorn_gb.h.
 * @{ */

typedef struct GB_list GB_list;

/* The caller's record; every field is public. */
struct GB_list {
    void *data;        /* the block: capacity * item_size bytes */
    int32_t item_size; /* bytes per item */
    int32_t count;     /* items in use, at indices 0 to count - 1 */
    int32_t capacity;  /* items the block can hold; 0: no block is held */
    int16_t inc;       /* items added when a full block grows; 10 after GB_init */
    int16_t closed;    /* non-zero: the list counts as a ring (a flag only) */
};

/* `closed` changes nothing in the block.  It is honoured by GB_advance,
 * GB_roll, GB_make_open_at_position and GB_remove_and_get_end_part, carried
 * over by GB_copy and GB_copy_into, and ignored by everything else. */

/* ---- set-up and ending ---- */

/* Fills in the record: a block of max(initial_capacity, 1) items, count 0,
 * inc 10, closed 0.  The record's former content is not looked at (a block
 * it held is not freed). */
VORN_API void GB_init(GB_list *list, int32_t item_size, int32_t initial_capacity);
/* Initialises `dest` as GB_init does, with the source's item size and a
 * capacity of the source's count (at least 1), then takes count, inc and
 * closed from the source and copies the items.  Whatever `dest` held before
 * is not released.  A source that holds no block counts as empty here. */
VORN_API void GB_copy(GB_list *dest, GB_list *src);
/* For a live `dest` of the same item size: ensures room as
 * GB_set_number_of_elements does with the source's count (negative: 0), so
 * the capacity may shrink to exactly that count; then takes count and closed
 * from the source and copies the items.  dest's inc stays.  Should `dest`
 * hold no block, it is given one of exactly that many items.  A source that
 * holds no block counts as empty. */
VORN_API void GB_copy_into(GB_list *dest, GB_list *src);
/* Frees the block if capacity is positive; capacity becomes 0.  data and
 * count are not touched: GB_make_empty and the next growth, or GB_init, make
 * the record usable again. */
VORN_API void GB_release(GB_list *list);
/* count becomes 0; block, capacity, inc and closed stay. */
VORN_API void GB_make_empty(GB_list *list);
/* count. */
VORN_API int32_t GB_count_items(GB_list *list);
/* Sets inc.  It must be positive whenever the block can fill up; should it
 * not be, a full block grows by one item, so an insertion never writes
 * outside the block. */
VORN_API void GB_set_inc(GB_list *list, int16_t inc);
/* Sets the capacity, never count, despite its name: nothing happens when n
 * is not greater than count or equals capacity; otherwise the block is
 * allocated (capacity 0) or resized to n items and capacity becomes n.  So
 * the capacity can also shrink, to any value above count. */
VORN_API void GB_set_number_of_elements(GB_list *list, int32_t n);

/* ---- items: `item` points to item_size bytes, which are copied ---- */

/* Grows if full, copies the item to index count and gives that index. */
VORN_API int32_t GB_append_after_last(GB_list *list, const void *item);
/* Grows if full, moves the items from index on up by one slot and copies the
 * item in.  index from 0 to count; index count appends.  Outside that range
 * nothing happens. */
VORN_API void GB_insert_item(GB_list *list, int32_t index, const void *item);
/* Copies the item over the slot at index.  An index that is not that of an
 * item changes nothing. */
VORN_API void GB_replace_item(GB_list *list, int32_t index, const void *item);
/* Moves the items behind index down by one slot; count drops by one.  An
 * index that is not that of an item changes nothing. */
VORN_API void GB_remove_item(GB_list *list, int32_t index);
/* count drops by one, nothing else; on an empty list nothing happens. */
VORN_API void GB_remove_last_item(GB_list *list);
/* Adds the items of `other` behind those of `list` and consumes other's
 * block: if capacity is below the sum of the counts it becomes exactly that
 * sum (inc plays no part); other's block is freed if its capacity is
 * positive and its capacity becomes 0, its count and data untouched, as
 * after GB_release.  Gives the former count.  Same item size, and `other`
 * must be another record; one that holds no block adds nothing. */
VORN_API int32_t GB_append_block(GB_list *list, GB_list *other);
/* Gives `index` back: an index is the position in this family. */
VORN_API int32_t GB_get_index(GB_list *list, int32_t index);
/* index + delta, or -1.  -1 when count is not positive.  Open: -1 when the
 * new index is negative or not below count.  Closed: the new index is
 * brought into 0 to count - 1 by whole turns of count, however far out. */
VORN_API int32_t GB_advance(GB_list *list, int32_t index, int32_t delta);

/* ---- whole lists ---- */

/* Swaps item i with item count - 1 - i for every i below count / 2, through
 * a one-item scratch block.  closed stays. */
VORN_API void GB_reverse(GB_list *list);
/* closed becomes 1; nothing else changes. */
VORN_API void GB_set_closed(GB_list *list);
/* closed becomes 0; nothing else changes. */
VORN_API void GB_reset_closed(GB_list *list);
/* On a closed list of at least 2 items: rotates so that the item at index n
 * (modulo count; n may be negative or beyond count) becomes index 0, i.e.
 * item i becomes old item (i + n) mod count.  A scratch block of at most
 * count / 2 items is taken and given back at once.  An open list, or one of
 * fewer than 2 items, stays as it is. */
VORN_API void GB_roll(GB_list *list, int32_t n);
/* Opens a ring at index, repeating that item at the end: a, b, c, d opened
 * at 2 gives c, d, a, b, c.  Grows first if full; count grows by one and
 * closed becomes 0.  Nothing happens on an open list or for an index that is
 * not that of an item.  Uses a scratch block of all the items. */
VORN_API void GB_make_open_at_position(GB_list *list, int32_t index);
/* Cuts an open list at index; the item at index stands in both parts: a, b,
 * c, d cut at 2 leaves a, b, c and fills `dest` with c, d.  `dest` is
 * initialised (as GB_init, whatever it held is not released) for the item
 * size with a capacity of count - index and takes the source's inc and
 * closed; the source keeps its block and capacity.  On a closed list, or for
 * an index that is not that of an item, nothing happens and `dest` is not
 * written. */
VORN_API void GB_remove_and_get_end_part(GB_list *dest, GB_list *list, int32_t index);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_GB_H */
