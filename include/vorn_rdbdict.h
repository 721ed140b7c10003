/*
 * vorn_rdbdict.h - RDBDICT, values found by a topic and a key.
 *
 * A two-level view on a GENDICT dictionary, with no record of its own: the
 * handle is a GENDICT handle (SL_list *), a topic is a top-level entry of
 * kind GENDICT_DICT whose sub-dictionary holds the topic's keys.  Topics
 * stand in the order of their first use, keys in the order of their first
 * insertion.  Ownership is that of GENDICT: the dictionary owns everything
 * under it; what a lookup gives is lent.
 *
 * A top-level entry of any other kind (fed through GENDICT_add or the text
 * reader) is no topic: RDBDICT_add, RDBDICT_get, RDBDICT_get_topic and
 * RDBDICT_delete_key treat its name as unusable; RDBDICT_delete_topic,
 * RDBDICT_copy and RDBDICT_release treat it like any entry.  A kind 4 entry
 * whose dictionary is null counts as no topic either.  A topic whose
 * last key was deleted stays, with an empty sub-dictionary.
 *
 * Nothing here raises.  No module-level state; one thread at a time per
 * dictionary.
 */
#ifndef VORN_RDBDICT_H
#define VORN_RDBDICT_H

#include "vorn_base.h"
#include "vorn_gendict.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_rdbdict RDBDICT: topic dictionary
 * The rules of the family stand at the top of vorn_rdbdict.h.
 * @{ */

/* A new empty dictionary; the same as GENDICT_create. */
VORN_API SL_list *RDBDICT_create(void);

/* Stores `value` under `key` in `topic`, creating the topic at the end of the
 * top level if it is new.  Ownership and replacement as in GENDICT_add.  If
 * the topic's name holds a value of another kind, nothing happens at all and
 * the value given stays the caller's (a text or a sub-dictionary alike). */
VORN_API void RDBDICT_add(SL_list *dict, const char *topic, const char *key,
                          GENDICT_value value);

/* 1 and a copy of the value record through `out` if the topic exists (kind
 * 4) and holds the key; else 0 and `out` untouched.  The value is lent. */
VORN_API int32_t RDBDICT_get(SL_list *dict, const char *topic, const char *key,
                             GENDICT_value *out);

/* The topic's sub-dictionary, lent (use it with any GENDICT operation except
 * release), or 0 if the name is missing or is no topic. */
VORN_API SL_list *RDBDICT_get_topic(SL_list *dict, const char *topic);

/* Deletes `key` from the topic; a missing topic, a name that is no topic or
 * a missing key change nothing. */
VORN_API void RDBDICT_delete_key(SL_list *dict, const char *topic, const char *key);

/* Deletes the top-level entry of that name with all it holds, whatever its
 * kind; the same as GENDICT_delete_item. */
VORN_API void RDBDICT_delete_topic(SL_list *dict, const char *topic);

/* A deep copy sharing nothing; the same as GENDICT_copy. */
VORN_API SL_list *RDBDICT_copy(SL_list *dict);

/* Releases everything and sets *handle to 0; the same as GENDICT_release. */
VORN_API void RDBDICT_release(SL_list **handle);

/* The RDB form from depth 0 on standard output: GENDICT_print_rdb(dict, 0).
 * Each topic is "[topic]\n" followed by its keys indented by two blanks. */
VORN_API void RDBDICT_print(SL_list *dict);

/* Writes the DICT form as GENDICT_to_buf does. */
VORN_API void RDBDICT_to_buf(SL_list *dict, char **buf, int32_t *length);
/* Reads the DICT form as GENDICT_from_buf does. */
VORN_API SL_list *RDBDICT_from_buf(const char *text);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_RDBDICT_H */
