/*
 * vorn_sl.h - SL, the intrusive list of the caller's own records.
 *
 * A record that stands on an SL list begins with two pointers, `prev` then
 * `next`; the rest of it is the caller's.  The list writes those two links
 * and nothing else, never allocates or frees a record, and a position is the
 * record's address (`void *`).  A record stands on at most one list at a
 * time: an insertion overwrites both links without reading them.  No
 * insertion or removal allocates anything.
 *
 * The head is an MM_ block owned by the list from SL_create (or
 * SL_total_copy) to SL_release / SL_total_release, or its use as the second
 * list of SL_append_list.  The records stay the caller's throughout.
 *
 * A list may be closed into a ring (SL_set_closed): last->next is first and
 * first->prev is last; `first` and `last` mark where the ring is entered.
 * Insertion and removal keep a ring whole; when count reaches 0 first and
 * last become null and `closed` stays set.
 *
 * Positions stay valid while their record is on the list, across other
 * insertions and removals, closing, opening, SL_reverse, SL_roll and
 * SL_append_list.  Only SL_release (a list that still holds records) and
 * SL_roll (a position that is not on the ring) raise; everything else
 * checks nothing: an index out of range gives 0 or null and changes nothing,
 * and a position must be on the list it is given with.
 */
#ifndef VORN_SL_H
#define VORN_SL_H

#include "vorn_base.h"
#include "vorn_raises.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_sl SL: intrusive list
 * The rules of the family stand at the top of vorn_sl.h.
 * @{ */

typedef struct SL_list SL_list;
typedef struct SL_iter SL_iter;

/* The head.  Empty exactly when first and last are null. */
struct SL_list {
    void *first;    /* first record, null when empty */
    void *last;     /* last record, null when empty */
    int32_t count;  /* number of records; SL_count_items costs no walk */
    int32_t closed; /* 1 when the list is a ring, else 0 */
};

/* Caller functions (no context argument; never tested for null except a
 * null test in an iterator record, which means "no test"). */
typedef vorn_test_fn SL_test_fn;       /* gets the record; non-zero accepts it */
typedef vorn_copy_fn SL_copy_fn;       /* gets the record; gives a new record */
typedef vorn_release_fn SL_release_fn; /* gets the address of a scratch word
                                          holding the record; may free it */
typedef vorn_measure_fn SL_measure_fn; /* gets the record; bytes it refers to */

/* A walk, held by the caller and returned by value.  It owns nothing, needs
 * no closing and may be copied at any moment: the copy walks on by itself.
 * The walk is one step ahead: the record at `current` may be removed between
 * two steps; removing the record at `next` or `last` ends its validity. */
struct SL_iter {
    void *current;   /* reached by the last step, null before the first */
    void *next;      /* taken by the next step, null once the walk is over */
    void *last;      /* where the walk ends, itself included */
    int32_t forward; /* non-zero follows next links, 0 follows prev links */
    SL_test_fn test; /* null delivers every record */
};

/* ---- creation and ending ---- */

/* A new empty open list. */
VORN_API SL_list *SL_create(void);
/* A new open list: from first along next up to and including last, calls
 * `copy` on each record and appends the record it returns.  The source is
 * not written, so a ring is copied without being opened; the copy of a
 * closed list (even an empty one) is closed. */
VORN_API SL_list *SL_total_copy(SL_list *list, SL_copy_fn copy);
/* Opens a ring, then from first to the end calls `release` with the address
 * of a scratch word holding the record; the record's next link is read
 * before the call, so the function may free the record.  The head remains,
 * empty and open. */
VORN_API void SL_make_empty(SL_list *list, SL_release_fn release);
/* Frees the head of an empty list and sets *handle to null.  A list that
 * still holds records raises SL_RAISE_RELEASE_NOT_EMPTY and stays as it was.  A
 * handle holding null is left alone. */
VORN_API void SL_release(SL_list **handle);
/* As SL_make_empty, then frees the head and sets *handle to null.  The
 * handle must hold a list. */
VORN_API void SL_total_release(SL_list **handle, SL_release_fn release);
/* The count, without a walk. */
VORN_API int32_t SL_count_items(SL_list *list);
/* sizeof(SL_list) plus what `measure` gives for each record; nothing is
 * added for a record itself.  Ends at a null link or on coming back to
 * first, so it is safe on a ring.  `measure` is not called on an empty
 * list. */
VORN_API int32_t SL_check(SL_list *list, SL_measure_fn measure);

/* ---- insertion: constant time unless stated, nothing allocated ---- */

/* The record becomes last; on a ring first->prev follows.  Into an empty
 * ring the record is linked to itself in both directions. */
VORN_API void SL_append_after_last(SL_list *list, void *record);
/* The record becomes first; on a ring last->next follows. */
VORN_API void SL_insert_before_first(SL_list *list, void *record);
/* Behind `pos`; at last this is SL_append_after_last. */
VORN_API void SL_insert_after(SL_list *list, void *pos, void *record);
/* Ahead of `pos`; at first this is SL_insert_before_first. */
VORN_API void SL_insert_before(SL_list *list, void *pos, void *record);
/* Index lookup (from first, zero-based, never wrapping), then as
 * SL_insert_after / SL_insert_before with result 1.  A negative index, an
 * index of count or more, or an empty list give 0 and leave the record
 * untouched. */
VORN_API int32_t SL_insert_after_index(SL_list *list, int32_t index, void *record);
/* As SL_insert_after_index, ahead of the record at `index`. */
VORN_API int32_t SL_insert_before_index(SL_list *list, int32_t index, void *record);
/* Appends the record unless this very record (same address) is on the list
 * already; then nothing changes.  Linear in count.  The search also ends at
 * last, so on a ring a record that is not on it is appended (and the call
 * always ends). */
VORN_API void SL_insert_unique(SL_list *list, void *record);

/* ---- access and removal ---- */

/* The record at a zero-based index, or null (negative, count or more). */
VORN_API void *SL_pos_at_index(SL_list *list, int32_t index);
/* Counts the prev links from `pos` back to first; `pos` must be on the
 * list. */
VORN_API int32_t SL_get_index(SL_list *list, void *pos);
/* Follows next (steps > 0) or prev (steps < 0) links that often; 0 gives
 * `pos` back.  The list is not read.  A null link on the way gives null; on a
 * ring the links wrap. */
VORN_API void *SL_advance(SL_list *list, void *pos, int32_t steps);
/* Unlinks the record, keeping a ring whole, and sets both its links to null;
 * the record stays the caller's and may go straight onto a list again.  At
 * count 0 first and last become null and `closed` stays as it was. */
VORN_API void SL_remove_item(SL_list *list, void *pos);
/* Index lookup, then as SL_remove_item with result 1; 0 if the lookup finds
 * nothing. */
VORN_API int32_t SL_remove_at_index(SL_list *list, int32_t index);

/* ---- lists as wholes ---- */

/* Moves all records of *second behind those of `list` in constant time,
 * frees the second head and sets *second to null.  Gives the first record
 * moved, or null if the second list was empty.  Both lists should be open;
 * a closed list here is first opened, and if `list` was a ring the joined
 * list is closed again, so the result is always a whole list. */
VORN_API void *SL_append_list(SL_list *list, SL_list **second);
/* Swaps prev and next in every record and first with last; a ring stays a
 * ring.  Positions stay with their records. */
VORN_API void SL_reverse(SL_list *list);
/* Makes the list a ring: first->prev becomes last, last->next becomes first
 * (where they exist), closed becomes 1.  On an empty list only the flag
 * changes. */
VORN_API void SL_set_closed(SL_list *list);
/* Opens the list: the prev of first and the next of last become null,
 * closed becomes 0. */
VORN_API void SL_reset_closed(SL_list *list);
/* On a ring, makes `pos` first and its prev last; no link changes.  On an
 * open list nothing happens and `pos` is not looked at.  On a ring a `pos`
 * whose prev is null is not on the ring: raises SL_RAISE_ROLL_OFF_RING
 * and changes nothing. */
VORN_API void SL_roll(SL_list *list, void *pos);

/* ---- walks ---- */

/* A walk over every record from first to last. */
VORN_API SL_iter SL_all_items(SL_list *list);
/* A walk over every record from last to first. */
VORN_API SL_iter SL_all_items_reversed(SL_list *list);
/* From `from` to `to` inclusive in the given direction; the list is not
 * read.  On an open list a `to` that does not lie ahead of `from` lets the
 * walk run to the end of the list; on a ring the walk passes the seam, so
 * `to` must be on that ring.  A null `from` gives a walk that is over. */
VORN_API SL_iter SL_all_items_inbetween(SL_list *list, void *from, void *to, int32_t forward);
/* As SL_all_items, delivering only the records that `test` accepts. */
VORN_API SL_iter SL_tested_items(SL_list *list, SL_test_fn test);
/* As SL_all_items_reversed, delivering only the records that `test`
 * accepts. */
VORN_API SL_iter SL_tested_items_reversed(SL_list *list, SL_test_fn test);
/* As SL_all_items_inbetween, delivering only the records that `test`
 * accepts. */
VORN_API SL_iter SL_tested_items_inbetween(SL_list *list, void *from, void *to,
                                           int32_t forward, SL_test_fn test);
/* A walk that is over before it begins. */
VORN_API SL_iter SL_empty_iter(void);
/* One step: 1 and the record (which is also its position) through
 * `record_out`, or 0 when the walk is over.  The out argument is written only
 * for a record that is delivered: after a 0 it holds what it held before. */
VORN_API int32_t SL_next_item(SL_iter *iter, void **record_out);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_SL_H */
