/*
 * vorn_da.h - DA, the dynamic array of fixed-size items.
 *
 * Items of `item_size` bytes lie side by side in one MM_ block that the
 * caller may address directly.  To the array an item is a run of bytes: it
 * copies, moves, zeroes and compares bytes and never looks inside.
 *
 * Growth.  DA_create allocates the record only; the block comes with the
 * first growth.  `increment` is a growth step in items: capacity (`nalloc`)
 * is always 0 or a whole number of steps, and grows by exactly as many steps
 * as a request needs, never by doubling.  Capacity that has never held an
 * item is zero bytes; capacity that once held items keeps its old bytes and
 * they reappear when the count rises again without growth.  Capacity falls
 * only through DA_clear, DA_copy_into and DA_release.
 *
 * Validity.  Every address into the block (DA_data, DA_get_item, DA_string,
 * DA_next) holds only until the next operation that may grow the array or
 * free the block: growth may move the block.
 *
 * Limits kept by the caller (nothing checks them): `item_size` and
 * `increment` at least 1, an index at least 0, a count at least 0, and for
 * DA_delete index + count <= nitems.  A source given to DA_append, DA_insert
 * or DA_put_item is read after any growth (and in DA_insert after the items
 * have moved up), so a source inside the array's own block is the caller's
 * risk.
 *
 * Failures are the DA_RAISE_ entries of vorn_raises.h (file "darray"):
 *   DA_RAISE_CREATE_NO_MEMORY        DA_create: no memory for the record
 *   DA_RAISE_EXTEND_NO_MEMORY        DA_extend, so every growing operation:
 *                       no memory for the block; `data` is then null while
 *                       `nalloc` and `nitems` keep their old values (the old
 *                       block is not freed: the raise undoes nothing)
 *   DA_RAISE_COPY_NO_MEMORY          DA_copy: no memory for the record
 *   DA_RAISE_COPY_INTO_SIZES_DIFFER  DA_copy_into: item sizes differ;
 *                       nothing changed
 * The temporaries of DA_reverse and DA_roll are not tested for null.
 *
 * An array belongs to one thread at a time; the family keeps no other state.
 */
#ifndef VORN_DA_H
#define VORN_DA_H

#include "vorn_base.h"
#include "vorn_raises.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_da DA: dynamic array
 * The rules of the family stand at the top of vorn_da.h.
 * @{ */

typedef struct DA_array DA_array;
typedef struct DA_iter DA_iter;

/* Filter of a walk: gets the address of the item in the block, non-zero
 * accepts it. */
typedef vorn_test_fn DA_test_fn;

/* The array record, an MM_ block owned by the caller from DA_create or
 * DA_copy to DA_release.  The block is owned by the array. */
struct DA_array {
    int32_t item_size; /* bytes per item; set at creation, never changes */
    int32_t increment; /* growth step in items; set at creation, never changes */
    int32_t nalloc;    /* capacity in items, 0 or a multiple of increment */
    int32_t nitems;    /* items in use, 0 .. nalloc */
    void *data;        /* nalloc * item_size bytes, null while there is no block */
};

/* A walk, returned by value and held by the caller; it owns nothing and
 * needs no release.  It holds indices, never an address in the block, so
 * growth during a walk does no harm.  `last` is fixed when the walk starts
 * and each index is also held against the array's present nitems: items
 * appended during a walk are not visited, indices cut off are passed over.
 * A downward walk is a record filled by the caller with forward 0, index the
 * highest index and last the lowest. */
struct DA_iter {
    DA_array *array; /* the array walked */
    int32_t forward; /* non-zero: upwards; 0: downwards */
    int32_t index;   /* the next index to try */
    int32_t last;    /* the last index of the walk, inclusive */
    DA_test_fn test; /* null delivers every item */
};

/* ---- life and size ---- */

/* A new array: nalloc and nitems 0, data null; no block yet.  Raises
 * DA_RAISE_CREATE_NO_MEMORY when the record cannot be had.  The arguments
 * are not checked. */
VORN_API DA_array *DA_create(int32_t item_size, int32_t increment);
/* Frees the block (with nalloc * item_size bytes) if there is one, then the
 * record.  A null array does nothing.  The caller's word is not cleared. */
VORN_API void DA_release(DA_array *array);
/* Frees the block; data null, nalloc and nitems 0.  The record, item_size
 * and increment stay, ready for use again. */
VORN_API void DA_clear(DA_array *array);
/* nitems becomes 0; block, capacity and contents stay. */
VORN_API void DA_reset(DA_array *array);
/* If count < nitems, nitems becomes count; never lengthens. */
VORN_API void DA_truncate(DA_array *array, int32_t count);
/* DA_extend(array, count), then nitems = count, up or down.  Never lowers
 * capacity; slots that come into use show their old (or zero) bytes. */
VORN_API void DA_setsize(DA_array *array, int32_t count);
/* Makes room for `count` items; nitems stays.  The capacity wanted is
 * ((count - 1) / increment + 1) * increment (division toward zero), the
 * smallest multiple of increment not below count when count >= 1; count 0
 * gives one step when increment >= 2 and nothing when it is 1.  If that
 * exceeds nalloc the block is allocated or resized to it and the added
 * bytes are zeroed.  Raises DA_RAISE_EXTEND_NO_MEMORY when no block is
 * obtained. */
VORN_API void DA_extend(DA_array *array, int32_t count);
/* Items held. */
VORN_API int32_t DA_nitems(DA_array *array);
/* Capacity in items. */
VORN_API int32_t DA_nalloc(DA_array *array);
/* Capacity in bytes, nalloc * item_size; 0 for a null array. */
VORN_API int32_t DA_memsize(DA_array *array);
/* Bytes held, counting the record: sizeof(DA_array), plus nalloc * item_size
 * when there is a block.  The array must not be null. */
VORN_API int32_t DA_check(DA_array *array);
/* The block; null while there is none. */
VORN_API void *DA_data(DA_array *array);

/* ---- items ---- */

/* Copies `count` items from `items` behind the last item, growing when
 * nitems + count > nalloc; nitems rises by count.  A count of 0 or less
 * changes nothing and does not read `items`.  `items` must not lie in the
 * record itself (the inline form below relies on it). */
VORN_API void DA_append(DA_array *array, const void *items, int32_t count);
/* index < nitems: grows when nitems + count > nalloc, moves the items from
 * index up by count places, copies the new items to index.
 * index >= nitems: the capacity needed is taken as index + count + 1 (one
 * more than the items occupy); copies the items to index and sets nitems to
 * index + count: slots between the old end and index keep their bytes and
 * now count as items.  So a count of 0 beyond the end sets nitems to index. */
VORN_API void DA_insert(DA_array *array, int32_t index, const void *items, int32_t count);
/* Moves the items behind index + count down to index and lowers nitems by
 * count.  The block stays; the slots freed at the end keep their bytes. */
VORN_API void DA_delete(DA_array *array, int32_t index, int32_t count);
/* Grows when index >= nalloc (to index + 1), copies item_size bytes from
 * `item` to the slot (a null item zeroes it), and lengthens nitems to
 * index + 1 when index >= nitems. */
VORN_API void DA_put_item(DA_array *array, int32_t index, const void *item);
/* The address of slot `index`.  A read past the end lengthens the array:
 * grows when index >= nalloc, and nitems becomes index + 1 when
 * index >= nitems, so everything up to the index counts as items. */
VORN_API void *DA_get_item(DA_array *array, int32_t index);
/* For arrays of item_size 1: makes room for one byte more than nitems,
 * writes a zero byte at byte offset nitems and returns the block, readable
 * as a zero-terminated string.  nitems stays: the terminator is no item and
 * the next DA_append overwrites it.  Never returns null. */
VORN_API char *DA_string(DA_array *array);

/* ---- whole arrays ---- */

/* A new array of the same item_size and increment holding a copy of the
 * nitems items; its capacity is rounded up from the source's count (an
 * empty source gives a copy without a block).  Bytes behind the items are
 * not copied.  Raises DA_RAISE_COPY_NO_MEMORY for the record,
 * DA_RAISE_EXTEND_NO_MEMORY for the block (the new record is then freed). */
VORN_API DA_array *DA_copy(DA_array *array);
/* Replaces the destination's items by a copy of the source's.  Raises
 * DA_RAISE_COPY_INTO_SIZES_DIFFER when the item sizes differ, with the
 * destination untouched.
 * Otherwise frees the destination's block whatever its size, then grows it
 * to the source's count under the destination's own increment (an empty
 * source leaves it without a block).  Given the same array twice, the array
 * ends empty: its block is freed before the source is read. */
VORN_API void DA_copy_into(DA_array *destination, DA_array *source);
/* 1 when item_size and nitems agree and the nitems * item_size bytes are
 * identical; increment and nalloc do not count.  Two empty arrays of one
 * item size are equal, with or without blocks. */
VORN_API int32_t DA_equal(DA_array *a, DA_array *b);
/* Reverses the order of the items in place, through a one-item temporary
 * MM_ block that is allocated and freed on every call. */
VORN_API void DA_reverse(DA_array *array);
/* Rotates the items in place: afterwards the item that stood at index
 * (i + shift) mod nitems stands at i, for any shift (shift 1 turns
 * 10 20 30 40 50 into 20 30 40 50 10).  Uses an MM_ temporary of at most
 * half the items; with nitems <= 1 or nothing to move it allocates
 * nothing. */
VORN_API void DA_roll(DA_array *array, int32_t shift);

/* ---- walking ---- */

/* A walk over all items upwards: forward 1, index 0, last nitems - 1, no
 * test. */
VORN_API DA_iter DA_all_items(DA_array *array);
/* The same with a test. */
VORN_API DA_iter DA_tested_items(DA_array *array, DA_test_fn test);
/* Delivers the address of the next item that passes the test through *item
 * and returns 1; when the walk is over writes null and returns 0, on every
 * further call too.  An index outside 0 .. nitems - 1 (nitems read once per
 * call) delivers nothing and is passed over without calling the test; the
 * test is called once for each index within.  `index` has moved on when the
 * call returns, so after a DA_delete of the item just delivered, the item
 * that slid into its place is not delivered. */
VORN_API int32_t DA_next(DA_iter *iterator, void **item);

/* Reading an item that is there is one multiplication, so hosts get it
 * inline: DA_get_item with an index in 0 .. nitems - 1 gives the slot's
 * address without a call, and any other index goes to the library, with the
 * same result as the exported call.
 *
 * Appending one item to an array with room is one copy, so it is inline
 * too: DA_append with count 1 and nitems < nalloc copies the item behind
 * the last one and raises nitems; any other count, and an append that needs
 * growth, goes to the library.  Contents, nitems, nalloc and raises are
 * those of the exported call.
 *
 * Define VORN_NO_INLINE_WALKS to call the library always; a VORN_CHECKED
 * build calls it always too, so that its checks see every call.  The
 * exported functions stay callable by name: (DA_get_item)(array, index). */
#if !defined(VORN_NO_INLINE_WALKS) && !defined(VORN_CHECKED) && !defined(VORN_CONTAINER_BUILD)
static inline void *DA_get_item_inline(DA_array *array, int32_t index) {
    if (index >= 0 && index < array->nitems)
        return (char *)array->data + (size_t)index * (size_t)array->item_size;
    return DA_get_item(array, index);
}
#define DA_get_item(array, index) DA_get_item_inline((array), (index))

/* The record is restrict-qualified: the item copied in lies in the block or
 * elsewhere, never in the record, so a compiler may keep nitems in a
 * register across a loop of appends. */
#if defined(__cplusplus) || defined(_MSC_VER)
#define VORN_DA_RESTRICT __restrict
#else
#define VORN_DA_RESTRICT restrict
#endif
#if defined(__GNUC__)
#define VORN_DA_LIKELY(c) __builtin_expect(!!(c), 1)
#else
#define VORN_DA_LIKELY(c) (c)
#endif
/* The copy needs no <string.h>: the headers include only <stddef.h> and
 * <stdint.h>, so a host's include set stays its own. */
#if defined(__GNUC__) || defined(__clang__)
#define VORN_DA_COPY(to, from, n) __builtin_memcpy((to), (from), (n))
#else
static inline void VORN_DA_COPY(char *to, const void *from, size_t n) {
    const char *f = (const char *)from;
    while (n--) *to++ = *f++;
}
#endif
static inline void DA_append_inline(DA_array *VORN_DA_RESTRICT array, const void *items, int32_t count) {
    const int32_t n = array->nitems;
    if (VORN_DA_LIKELY(count == 1 && n < array->nalloc)) {
        char *data = (char *)array->data;
        const int32_t size = array->item_size;
        /* The usual sizes as fixed-size moves rather than a call.  gcc
         * checks each branch against the caller's source object although
         * only the one of the source's size runs, hence the pragmas. */
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Warray-bounds"
#pragma GCC diagnostic ignored "-Wstringop-overread"
#endif
        if (VORN_DA_LIKELY(size == 4))
            VORN_DA_COPY(data + (size_t)n * 4, items, 4);
        else if (size == 8)
            VORN_DA_COPY(data + (size_t)n * 8, items, 8);
        else
            VORN_DA_COPY(data + (size_t)n * (size_t)size, items, (size_t)size);
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
        array->nitems = n + 1;
        return;
    }
    (DA_append)(array, items, count);
}
#define DA_append(array, items, count) DA_append_inline((array), (items), (count))
#elif defined(VORN_CHECKED) && !defined(VORN_CONTAINER_BUILD)
/* The checked build keeps the inline name, calling the checked export. */
static inline void *DA_get_item_inline(DA_array *array, int32_t index) {
    return DA_get_item(array, index);
}
static inline void DA_append_inline(DA_array *array, const void *items, int32_t count) {
    DA_append(array, items, count);
}
#endif

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_DA_H */
