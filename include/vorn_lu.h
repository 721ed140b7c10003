/*
 * vorn_lu.h - vorn_lu, a lookup from word to word on an HSH table that keeps
 * the entry added last in a slot of its own.
 *
 * The slot is not a cache: the entry in it is in the table not at all, or
 * only in an older form, until the next vorn_lu_add spills it into the table.
 * Every operation therefore looks at the slot and the table in a set order,
 * and some look at one place alone (see each operation).  Getting the entry
 * added last costs one comparison and no hash.
 *
 * Keys and values are the caller's words and are never dereferenced.  The
 * table's rules hold: key 0 can live in the slot but never in the table.
 * The record and its table are MM_ blocks owned by the lookup from
 * vorn_lu_create to vorn_lu_release.  vorn_lu raises nothing; a miss gives 0,
 * so a stored 0 and a miss look alike.
 */
#ifndef VORN_LU_H
#define VORN_LU_H

#include "vorn_base.h"
#include "vorn_hsh.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_lu vorn_lu: lookup
 * The rules of the family stand at the top of vorn_lu.h.
 * @{ */

typedef struct vorn_lu vorn_lu;

/* The lookup.  The slot is empty when `last_key` is 0. */
struct vorn_lu {
    void *last_key;   /* key of the entry added last; 0 when the slot is empty */
    void *last_value; /* its value; 0 when the slot is empty */
    HSH_table *table; /* all earlier entries, from HSH_create(0, 0) */
};

/* Called with each value word (vorn_lu_apply). */
typedef vorn_apply_fn vorn_lu_apply_fn;
/* Called with the address of a word holding a value (vorn_lu_release). */
typedef vorn_release_fn vorn_lu_release_fn;

/* A new lookup: slot empty, table empty with 8 slots, keyed by the low bits. */
VORN_API vorn_lu *vorn_lu_create(void);

/* Spills the slot's entry into the table (HSH_set_value, if its key isn't 0),
 * then puts (key, value) into the slot.  The new key is not looked up: an
 * older entry of the same key stays in the table until the slot spills over
 * it.  A null lookup does nothing. */
VORN_API void vorn_lu_add(vorn_lu *lu, void *key, void *value);

/* The slot's value if `last_key` is the key (key 0 on an empty slot gives 0
 * from the slot), else the table's value, else 0.  A null lookup gives 0. */
VORN_API void *vorn_lu_get(vorn_lu *lu, void *key);

/* Reverse lookup: the slot's key if `last_value` is non-zero and equal to
 * `value`, else the key of the first table entry (in slot order) holding
 * `value`, else 0.  A null lookup gives 0. */
VORN_API void *vorn_lu_find(vorn_lu *lu, void *value);

/* If `last_key` is the key, empties the slot and leaves the table alone;
 * otherwise takes the key out of the table.  One place alone is looked at.
 * A null lookup does nothing. */
VORN_API void vorn_lu_remove(vorn_lu *lu, void *key);

/* Calls `apply` with the slot's value if it isn't 0, then with every value
 * of the table in slot order, 0 included.  Does nothing if either argument
 * is null.  A callback that changes the lookup meets the limits of HSH_next. */
VORN_API void vorn_lu_apply(vorn_lu *lu, vorn_lu_apply_fn apply);

/* If `release` isn't null: calls it with the address of `last_value` if that
 * isn't 0, then for each table value with the address of a local copy.  Then
 * frees the table and the record and writes null into *handle.  A null
 * address or a handle holding null does nothing. */
VORN_API void vorn_lu_release(vorn_lu **handle, vorn_lu_release_fn release);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_LU_H */
