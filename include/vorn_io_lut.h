/*
 * vorn_io_lut.h - io_lut, tables that give objects small integer identifiers
 * for reading and writing them.
 *
 * Two kinds of table look alike to the caller and work in opposite ways:
 *  - a read table turns identifiers into pointers: slot i of a DA array of
 *    pointer words holds the pointer of identifier i; pointer to identifier
 *    is a linear scan;
 *  - a write table turns pointers into identifiers: an HSH table keyed by
 *    pointer (minimum 1024 slots, shift 5); identifier to pointer does not
 *    exist.
 * Identifier 0 is the null pointer's and is never given out: tables hand out
 * 1, 2, 3 ...  A table compares and stores pointers and never follows them
 * nor owns what they point to.
 *
 * In a read table slot 0 holds null from creation and is never delivered:
 * scans, walks and pointer lookups begin at 1.  A null slot above 0 is a
 * hole (from io_lut_remove, io_lut_add of null, io_lut_set beyond the end).
 * The array never shrinks, so io_lut_add never gives out an identifier twice.
 * In a write table null is never stored.
 *
 * The record is an MM_ block owned by the caller from a creator to
 * io_lut_release; the array or the hash table is owned by the record.
 *
 * Failures are the IO_LUT_RAISE_ entries of vorn_raises.h (file "plut"):
 *   IO_LUT_RAISE_SET_SLOT_TAKEN  io_lut_set: read table with overwrite 0, id
 *                                below nitems, the slot differs from the pointer
 *   IO_LUT_RAISE_NO_POINTER      io_lut_get_ptr: id below 1, not below nitems,
 *                                or a hole
 *   IO_LUT_RAISE_READ_NO_ID      io_lut_get_id: read table, no slot from 1 up
 *                                equals the pointer
 *   IO_LUT_RAISE_WRITE_NO_ID     io_lut_get_id: write table, a non-null
 *                                pointer with no identifier
 * The array of a read table raises as DA does (DA_RAISE_CREATE_NO_MEMORY,
 * DA_RAISE_EXTEND_NO_MEMORY) when it cannot be had or grow.
 */
#ifndef VORN_IO_LUT_H
#define VORN_IO_LUT_H

#include "vorn_base.h"
#include "vorn_raises.h"
#include "vorn_da.h"
#include "vorn_hsh.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_io_lut io_lut: pointer tables
 * The rules of the family stand at the top of vorn_io_lut.h.
 * @{ */

typedef struct io_lut_table io_lut_table;
typedef struct io_lut_iter io_lut_iter;

/* The table.  The operations tell the kinds apart by `pointers` being null. */
struct io_lut_table {
    int32_t read_table;     /* 1 for a read table, 0 for a write table (a record only) */
    DA_array *pointers;     /* read: pointer words by identifier, increment 1024; write: null */
    int32_t overwrite;      /* read: non-zero lets io_lut_set replace a slot; write: unused */
    HSH_table *identifiers; /* write: pointer -> identifier; read: null */
    int32_t next_id;        /* write: the next identifier to give out, from 1; read: unused */
};

/* A walk over a read table, returned by value and held by the caller.
 * `items` and `count` are a snapshot taken when the walk opens: an
 * identifier set beyond the array's capacity may move the block and leave
 * the walk reading the old one, so the table must not grow during a walk.
 * io_lut_remove during a walk is harmless: the hole is passed over. */
struct io_lut_iter {
    void **items;     /* the block of `pointers` when the walk opened */
    int32_t count;    /* the array's nitems when the walk opened */
    int32_t position; /* the next slot to look at, from 1 */
};

/* A read table with overwrite 0; the same as io_lut_create_read(0). */
VORN_API io_lut_table *io_lut_create(void);
/* A read table keeping `overwrite`; slot 0 is filled with null, which takes
 * the array's first block of 1024 slots. */
VORN_API io_lut_table *io_lut_create_read(int32_t overwrite);
/* A write table with next_id 1. */
VORN_API io_lut_table *io_lut_create_write(void);

/* Gives `pointer` the next identifier and returns it.
 * Read: appends a slot; null takes an identifier and leaves a hole, and a
 * pointer already present gets a second identifier.
 * Write: a non-null pointer gets next_id (replacing any older identifier);
 * null stores nothing but uses next_id up. */
VORN_API int32_t io_lut_add(io_lut_table *table, void *pointer);

/* Gives `pointer` the identifier `id`.
 * Read: with overwrite 0, an id below nitems whose slot differs from the
 * pointer raises IO_LUT_RAISE_SET_SLOT_TAKEN (a hole differs from any
 * non-null pointer);
 * otherwise the slot takes the pointer, an id at or beyond the end
 * lengthening the array with holes.  A negative id (outside the contract)
 * changes nothing.
 * Write: stores id under the pointer (nothing for null, and id 0 reads as
 * absent) and raises next_id to id + 1 if it is below; no check of id, so
 * two pointers may share one identifier. */
VORN_API void io_lut_set(io_lut_table *table, void *pointer, int32_t id);

/* Forgets `pointer`.  Read: the lowest slot from 1 equal to it becomes a
 * hole; later identifiers stay.  Write: its entry leaves the hash; next_id
 * stays.  An absent pointer changes nothing. */
VORN_API void io_lut_remove(io_lut_table *table, void *pointer);

/* The pointer's identifier.  Read: the lowest slot from 1 equal to it (null
 * finds the first hole); none raises IO_LUT_RAISE_READ_NO_ID.  Write: null gives 0
 * without raising; otherwise its identifier, and none (or a stored 0) raises
 * IO_LUT_RAISE_WRITE_NO_ID. */
VORN_API int32_t io_lut_get_id(io_lut_table *table, void *pointer);
/* As io_lut_get_id, but a miss gives 0 and nothing raises. */
VORN_API int32_t io_lut_look_id(io_lut_table *table, void *pointer);

/* Read tables: the pointer of identifier `id`, which must be in 1 to
 * nitems - 1 and not a hole, else raises IO_LUT_RAISE_NO_POINTER.  On a write table
 * (outside the contract) every id is a miss. */
VORN_API void *io_lut_get_ptr(io_lut_table *table, int32_t id);
/* As io_lut_get_ptr, but a miss gives null and nothing raises. */
VORN_API void *io_lut_look_ptr(io_lut_table *table, int32_t id);

/* Read tables: a walk over the slots from 1.  On a write table (outside the
 * contract) a walk that is over at once. */
VORN_API io_lut_iter io_lut_all_items(io_lut_table *table);
/* The next non-null pointer of the walk, in order of identifiers, without
 * its identifier; null at the end, and again at every further call. */
VORN_API void *io_lut_next_item(io_lut_iter *iter);

/* Releases the array or the hash table, sets *handle to null and frees the
 * record.  A null address or a handle holding null does nothing. */
VORN_API void io_lut_release(io_lut_table **handle);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_IO_LUT_H */
