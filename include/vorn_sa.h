/*
 * vorn_sa.h - SA, sets of 32-bit numbers that follow the edits of a
 * sequence.
 *
 * A number set is a DA_array of item_size 4 that the caller makes with
 * DA_create(4, step), reads with DA_nitems / DA_data and ends with
 * DA_release; SA creates and ends nothing.  Its items are int32_t in
 * strictly ascending signed order, so a number occurs at most once.  Every
 * SA operation keeps that order and relies on it; none checks it (a caller
 * writing through DA_data keeps it too).
 *
 * The numbers stand for indices of items of a sequence that the caller
 * holds: after editing that sequence the caller calls the matching adapt
 * operation with the same index, count or shift, and each number becomes
 * the index its item has after the edit.  The adapt operations that take a
 * `count` expect every number in 0 .. count - 1.
 *
 * SA raises nothing of its own.  SA_add_number can raise the growth failure
 * of DA (DA_RAISE_EXTEND_NO_MEMORY); SA_adapt_for_reverse and
 * SA_adapt_for_roll take the untested temporaries of DA_reverse / DA_roll.
 */
#ifndef VORN_SA_H
#define VORN_SA_H

#include "vorn_da.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_sa SA: number sets
 * The rules of the family stand at the top of vorn_sa.h.
 * @{ */

/* Adds the number at its place by binary search; a number already there
 * changes nothing and touches no block.  A number above all others goes in
 * through DA_insert beyond the end, which asks for one slot more. */
VORN_API void SA_add_number(DA_array *set, int32_t number);
/* 1 if the number is in the set, else 0 (always 0 for an empty set). */
VORN_API int32_t SA_check_number(DA_array *set, int32_t number);
/* Takes the number out (DA_delete; the block keeps its size).  A number that
 * isn't there changes nothing. */
VORN_API void SA_remove_number(DA_array *set, int32_t number);
/* One item went into the sequence at `index`: every number >= index rises
 * by 1 (the new item is not in the set). */
VORN_API void SA_adapt_for_insert(DA_array *set, int32_t index);
/* The item at `index` left the sequence: `index` leaves the set, and every
 * number above it falls by 1. */
VORN_API void SA_adapt_for_remove(DA_array *set, int32_t index);
/* The sequence of `count` items was reversed: every number v becomes
 * count - v - 1, then DA_reverse restores ascending order (called for an
 * empty set too). */
VORN_API void SA_adapt_for_reverse(DA_array *set, int32_t count);
/* The sequence of `count` items was rolled by `shift` (0 .. count) in the
 * sense of DA_roll, so its item at `shift` is now at 0: every number v
 * becomes (v - shift + count) mod count, and the members that wrapped round
 * are rolled behind the others with DA_roll.  An empty set is left alone;
 * on a non-empty set `count` must not be 0. */
VORN_API void SA_adapt_for_roll(DA_array *set, int32_t shift, int32_t count);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_SA_H */
