/*
 * vorn_dbll.h - DBLL, the list of doubles.
 *
 * A list of doubles is an EL_list with item_size 8 (vorn_el.h): every EL
 * operation works on it, a position is an EL_node *, a walk is an EL_iter,
 * and the value at a position is the 8 bytes of node->item.  The family has
 * no record of its own and no stored tolerance: each tolerance is an
 * argument of its call.
 *
 * The list is kept in no order by itself.  Ascending order exists where a
 * caller made it: DBLL_sort makes it, DBLL_add_double_unique expects and
 * keeps it, nothing checks it.
 *
 * Comparisons are made in double precision on |a - b| (the sign bit
 * cleared), and a comparison with a NaN is false: a NaN is never a
 * duplicate, never "greater", never nearer.
 *
 * DBLL raises nothing of its own; DBLL_roll and DBLL_replace_doubles_inbetween
 * raise through EL (EL_RAISE_ROLL_NO_PREV, EL_RAISE_REPLACE_SOURCE_SHORT).
 */
#ifndef VORN_DBLL_H
#define VORN_DBLL_H

#include "vorn_el.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_dbll DBLL: list of doubles
 * The rules of the family stand at the top of vorn_dbll.h.
 * @{ */

/* ---- the EL operations under a second name (same arguments, same result,
 * same guarantees as in vorn_el.h) ---- */

/* EL_advance. */
VORN_API EL_node *DBLL_advance(EL_list *list, EL_node *pos, int32_t steps);
VORN_API EL_list *DBLL_copy(EL_list *list);                                      /* EL_total_copy */
VORN_API EL_list *DBLL_copy_inbetween(EL_list *list, EL_node *from, EL_node *to); /* EL_total_copy_inbetween */
/* EL_make_empty. */
VORN_API void DBLL_make_empty(EL_list *list);
/* EL_next_position. */
VORN_API int32_t DBLL_next_position(EL_iter *iter, EL_node **pos_out);
VORN_API void DBLL_release(EL_list **handle); /* takes the address of the handle */
/* EL_remove_at_index. */
VORN_API int32_t DBLL_remove_at_index(EL_list *list, int32_t index);
VORN_API void DBLL_remove_double(EL_list *list, EL_node *pos); /* EL_remove_item: by position */
/* EL_reset_closed. */
VORN_API void DBLL_reset_closed(EL_list *list);
/* EL_reverse. */
VORN_API void DBLL_reverse(EL_list *list);
VORN_API void DBLL_roll(EL_list *list, EL_node *pos); /* raises EL_RAISE_ROLL_NO_PREV as EL_roll */
/* EL_set_closed. */
VORN_API void DBLL_set_closed(EL_list *list);
VORN_API int32_t DBLL_size(EL_list *list);                                  /* EL_count_items */
VORN_API int32_t DBLL_size_inbetween(EL_list *list, EL_node *from, EL_node *to); /* EL_count_items_inbetween */

/* ---- EL operations taking a double by value ---- */

/* A new empty open list of doubles (EL_create with item size 8). */
VORN_API EL_list *DBLL_create(void);
/* Appends `value` (EL_append_after_last); gives its position. */
VORN_API EL_node *DBLL_add_double(EL_list *list, double value);
/* Puts `value` behind `pos` (EL_insert_after); gives its position. */
VORN_API EL_node *DBLL_insert_after(EL_list *list, EL_node *pos, double value);
/* Puts `value` ahead of `pos` (EL_insert_before); gives its position. */
VORN_API EL_node *DBLL_insert_before(EL_list *list, EL_node *pos, double value);
/* Null, and nothing inserted, when the index names no item. */
VORN_API EL_node *DBLL_insert_after_index(EL_list *list, int32_t index, double value);
/* As DBLL_insert_after_index, ahead of the item at `index`. */
VORN_API EL_node *DBLL_insert_before_index(EL_list *list, int32_t index, double value);
/* Overwrites the value at `pos`. */
VORN_API void DBLL_replace_double(EL_node *pos, double value);
/* EL_replace_items_inbetween with 8 bytes: raises
 * EL_RAISE_REPLACE_SOURCE_SHORT when `source` has fewer values than the range. */
VORN_API void DBLL_replace_doubles_inbetween(EL_list *list, EL_node *from, EL_node *to,
                                             EL_list *source);
/* A walk over every value from first to last (EL_all_items). */
VORN_API EL_iter DBLL_all_doubles(EL_list *list);
/* A walk over every value from last to first (EL_all_items_reversed). */
VORN_API EL_iter DBLL_all_doubles_reversed(EL_list *list);
/* Forward from `from` to `to`. */
VORN_API EL_iter DBLL_all_doubles_inbetween(EL_list *list, EL_node *from, EL_node *to);
/* Backward from `from` to `to`: `from` is the later position. */
VORN_API EL_iter DBLL_all_doubles_inbetween_reversed(EL_list *list, EL_node *from, EL_node *to);

/* ---- the family's own ---- */

/* A new open list holding begin_value then end_value, neither compared nor
 * sorted. */
VORN_API EL_list *DBLL_create_with_two(double begin_value, double end_value);
/* 1 when first and last are both null, else 0. */
VORN_API int32_t DBLL_is_empty(EL_list *list);
/* The value at first / last; 0.0 on an empty list (as a stored 0.0). */
VORN_API double DBLL_begin_value(EL_list *list);
/* The value at last; 0.0 on an empty list. */
VORN_API double DBLL_end_value(EL_list *list);
/* Overwrite the value at first / last; an empty list stays empty. */
VORN_API void DBLL_set_begin_value(EL_list *list, double value);
/* Overwrites the value at last; an empty list stays empty. */
VORN_API void DBLL_set_end_value(EL_list *list, double value);
/* Steps the walk (EL_next_position).  1: *value holds the value at the new
 * position; 0: the walk is over and *value is left alone. */
VORN_API int32_t DBLL_next_double(EL_iter *iter, double *value);
/* count x the size of a node holding a double (two links and 8 bytes); the
 * head is not counted. */
VORN_API int32_t DBLL_check(EL_list *list);
/* Adds `delta` to every value from first to last; positions stay. */
VORN_API void DBLL_add_to_all(EL_list *list, double delta);
/* Bubble sort into ascending order that moves values between nodes and
 * leaves the links alone: a position held afterwards may hold another value.
 * Only a strictly greater left neighbour is exchanged, so equal values and
 * NaNs stay where they are; an ascending list costs one pass.  Each pass runs
 * from first to last, so a ring is sorted along its order from first as an
 * open list would be, and stays a ring. */
VORN_API void DBLL_sort(EL_list *list);
/* Inserts `value` into an ascending list at its place unless a stored value
 * w has |value - w| <= tolerance (a distance equal to the tolerance is a
 * duplicate).  With count above 8 and |value - first| > |value - last| the
 * search walks backward from last and inserts after the first w < value;
 * otherwise it walks forward from first and inserts before the first
 * w > value.  Gives 1 for such an insertion; 0 when refused, and 0 when the
 * walk runs out and the value is appended after last (an empty list, a value
 * above all others on the forward walk, a NaN). */
VORN_API int32_t DBLL_add_double_unique(EL_list *list, double value, double tolerance);
/* The index of the value nearest to `value` among those strictly nearer than
 * 2 x tolerance (the lowest index wins a tie), or -1.  Writes the distance
 * found, or 2 x tolerance when none, to *distance.  Walks the whole list; no
 * order needed; NaNs are passed over. */
VORN_API int32_t DBLL_find_index_of_nearest(EL_list *list, double value, double tolerance,
                                            double *distance);
/* Sorts, then thins: walking from first, each value nearer than `tolerance`
 * (strictly) to the last value kept is removed.  The first and the last value
 * always stay: a near value at the very end removes the value kept before it
 * instead, unless that is the first.  Tolerance 0 removes nothing. */
VORN_API void DBLL_remove_double_occ(EL_list *list, double tolerance);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_DBLL_H */
