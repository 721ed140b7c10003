/*
 * vorn_hsh.h - HSH, the hash table from word to word.
 *
 * Open addressing with linear probing over two parallel arrays (keys and
 * values) whose size is a power of two.  There is no hash function: the home
 * slot of a key is the field of bits of the key's low 32 bits that starts at
 * `shift`, cut out by a shift and the mask.  Callers whose keys have
 * uninformative low bits (aligned pointers) give a shift that skips them.
 *
 * The word 0 marks an empty slot, so the key 0 cannot be stored: every
 * operation given the key 0 quietly does nothing (or gives 0).  Values may be
 * 0; HSH_contains_key tells a stored 0 from a miss.  Keys and values belong
 * to the caller and are never dereferenced.
 *
 * The table grows (doubling) when a new key finds `count` at `high_limit`
 * (7/8 of the size), short of the largest size, and halves when a removal
 * leaves `count` below `low_limit` (1/4 of the size, 0 at the minimum size).
 * No deleted-entry marker exists: a removal repairs the probe run behind the
 * hole at once.
 * Only a resize allocates; a lookup touches the keys array alone.
 *
 * Cost depends on the keys and the shift.  An operation probes from the
 * key's home slot to the key or to the end of the run of occupied slots it
 * meets, and where runs form depends on how the keys' bit fields spread
 * over the table, not on the load alone.  Keys whose fields look random
 * (objects allocated one by one, with the alignment bits skipped by the
 * shift, or random words) give short runs at any load up to 7/8.  Evenly
 * spaced keys, such as the addresses of the objects of one array, are the
 * hard case.  With the shift of their stride (5 for 32-byte objects) their
 * homes are consecutive slots and the table ends with one solid run.  Set
 * in address order, each key lands on its home.  Set in another order,
 * keys pile up while the table is smaller than their span, the local load
 * nears 1, and an insertion costs about sqrt(n) probes.  A miss whose home
 * falls in the solid run scans to its end, n/2 probes on average.  For
 * 300,000 keys base + i * 32 from HSH_create(1024, 5), measured on a 2-core
 * VM (tools/bench.sh, bench/results.md): about 10 ns per set in order,
 * 3.5 us per set shuffled, 48 us per miss of a random aligned word.
 *
 * Choosing the shift and the minimum size for such keys: a shift two below
 * the stride's (3 for 32-byte objects) puts their homes four slots apart,
 * and runs stay short in any order: about 33 ns per shuffled set and 2 ns
 * per miss for the same keys.  Or a shift one below the stride's with a
 * minimum size of at least the keys' span in slots (count * stride >>
 * shift): homes never wrap and every other slot stays empty;
 * HSH_create(1 << 20, 4) gives about 20 ns per shuffled set and 1 ns per
 * miss.  Shift 0 on aligned keys leaves most slots unreachable as homes
 * (about 55 ns per shuffled set).  A minimum size of at least count * 8 / 7
 * also spares a table of known size every resize.
 *
 * The table record and both arrays are MM_ blocks owned by the table from
 * HSH_create to HSH_release.  HSH raises nothing and tests no allocation.
 * Addresses into `keys` / `values` hold until the next insertion or removal.
 */
#ifndef VORN_HSH_H
#define VORN_HSH_H

#include "vorn_base.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_hsh HSH: hash table
 * The rules of the family stand at the top of vorn_hsh.h.
 * @{ */

typedef struct HSH_table HSH_table;
typedef struct HSH_iter HSH_iter;

/* The table.  All fields are public and read-only to callers.
 * Invariants: `count` is the number of non-zero keys and stays below
 * `size`, so an empty slot always ends a probe; below the largest size
 * (2^30 slots) it never exceeds `high_limit`, at the largest size it may
 * fill past it up to size - 1 (see HSH_set_value); every key stands in its
 * home slot or behind it in probe order (wrapping through `mask`) with no
 * empty slot between; no key stands twice. */
struct HSH_table {
    int32_t min_size;     /* smallest size: the minimum given, as a power of two >= 8 */
    int32_t size;         /* slots in each array; a power of two >= min_size */
    int32_t count;        /* keys present */
    int32_t low_limit;    /* a removal leaving count below this shrinks: size/4, 0 at min_size */
    int32_t high_limit;   /* a new key finding count at this grows first: size*7/8 */
    uint32_t mask;        /* size - 1 */
    int32_t shift;        /* in force: min(wanted_shift, 32 - log2(size)), at least 0 */
    int32_t wanted_shift; /* the shift given to HSH_create, as given */
    void **keys;          /* `size` key words, 0 = empty slot */
    void **values;        /* `size` value words, meaningful where the key is set */
};

/* A walk: returned by value, held by the caller, owns nothing and needs no
 * closing.  It holds a slot index only, so a change of the table during a
 * walk cannot make it read out of bounds; after a removal or a resize
 * entries may be met twice or not at all. */
struct HSH_iter {
    HSH_table *table; /* the table walked */
    int32_t index;    /* the slot the next step looks at first */
};

/* A new empty table.  `min_size` (compared unsigned) is raised to a power of
 * two, at least 8; a minimum above 2^30 is taken as 2^30.  `shift` is where
 * the key's bit field begins: 0 uses the low bits, 5 skips 32-byte alignment.
 * A negative shift is taken as 0 (the stored `wanted_shift` keeps it). */
VORN_API HSH_table *HSH_create(uint32_t min_size, int32_t shift);

/* Stores `value` under `key`, putting the key in if it is new (which may
 * grow the table) or replacing its value (which never resizes).  Gives the
 * value.  Key 0: stores nothing and gives 0.  At the largest size, 2^30
 * slots, the table fills past its high limit until one slot is left empty,
 * and then a new key is not stored and gives 0. */
VORN_API void *HSH_set_value(HSH_table *table, void *key, void *value);

/* The value of `key`, or 0 if it is absent (or is 0).  Allocates nothing. */
VORN_API void *HSH_get_value(HSH_table *table, void *key);

/* 1 if `key` is present, else 0 (always 0 for key 0). */
VORN_API int32_t HSH_contains_key(HSH_table *table, void *key);

/* Takes `key` out, repairing the probe run behind it; may shrink the table.
 * An absent key (or 0) is no failure and changes nothing. */
VORN_API void HSH_remove_entry(HSH_table *table, void *key);

/* A walk over the table in slot order: `index` 0, or `size` if the table is
 * empty.  Slot order has nothing to do with insertion and changes with any
 * resize. */
VORN_API HSH_iter HSH_all_entries(HSH_table *table);

/* The next occupied slot at or after `iter->index`: 1 with its key and value
 * written through the outs and `index` moved behind it, or 0 when none is
 * left (outs untouched, `index` left at `size`).  Either out may be null; a
 * negative `index` in a record filled by hand is read as 0. */
VORN_API int32_t HSH_next(HSH_iter *iter, void **key, void **value);

/* Frees `keys`, `values` and the record, in this order, and writes null into
 * *handle.  A null address or a handle holding null does nothing. */
VORN_API void HSH_release(HSH_table **handle);

/* A lookup is a short probe loop over the public arrays, so hosts get it
 * inline: the same probe as the exported HSH_get_value and
 * HSH_contains_key, with the same results, without a call.  Define
 * VORN_NO_INLINE_WALKS to call the library instead. */
#if !defined(VORN_NO_INLINE_WALKS) && !defined(VORN_CHECKED) && !defined(VORN_CONTAINER_BUILD)
static inline int32_t HSH_slot_of_inline(const HSH_table *table, const void *key) {
    void *const *keys = table->keys;
    const uint32_t mask = table->mask;
    uint32_t i = ((uint32_t)(uintptr_t)key >> table->shift) & mask;
    for (void *k; (k = keys[i]) != (void *)0; i = (i + 1) & mask)
        if (k == key) return (int32_t)i;
    return -1;
}
static inline void *HSH_get_value_inline(HSH_table *table, void *key) {
    const int32_t i = HSH_slot_of_inline(table, key);
    return i < 0 ? (void *)0 : table->values[i];
}
static inline int32_t HSH_contains_key_inline(HSH_table *table, void *key) {
    return HSH_slot_of_inline(table, key) >= 0;
}
#define HSH_get_value(table, key) HSH_get_value_inline((table), (key))
#define HSH_contains_key(table, key) HSH_contains_key_inline((table), (key))
#elif defined(VORN_CHECKED) && !defined(VORN_CONTAINER_BUILD)
/* The checked build keeps the inline name, calling the checked export. */
static inline void *HSH_get_value_inline(HSH_table *table, void *key) {
    return HSH_get_value(table, key);
}
static inline int32_t HSH_contains_key_inline(HSH_table *table, void *key) {
    return HSH_contains_key(table, key);
}
#endif

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_HSH_H */
