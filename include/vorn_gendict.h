/*
 * vorn_gendict.h - GENDICT, the dictionary of text keys and typed values.
 *
 * A dictionary is an SL list (its handle is an SL_list *, made by
 * GENDICT_create, GENDICT_copy, GENDICT_from_buf or taken from a value of
 * kind GENDICT_DICT) whose records are GENDICT_item entries.  There is no
 * hashing and no sorting: entries stand in the order of their first
 * insertion and every lookup walks from the first entry, comparing keys byte
 * for byte (case counts; the empty text is a key).  A dictionary is never
 * closed into a ring.  Values nest: a value may be another dictionary, to any
 * depth.
 *
 * Ownership.  A dictionary owns its entries (MM_ blocks), their keys and
 * texts (standard heap: malloc/strdup, freed with free) and their
 * sub-dictionaries, down every level.  Whatever GENDICT_get hands out is
 * lent.  No operation raises and none tests its dictionary argument for
 * null.  Copy, release and the text form walk nested dictionaries with a
 * heap stack, not with recursion, so nesting depth is bounded by memory
 * only, never by the native stack.
 *
 * One dictionary with all it holds is used by one thread at a time; these
 * operations touch no module-level state.
 */
#ifndef VORN_GENDICT_H
#define VORN_GENDICT_H

#include "vorn_base.h"
#include "vorn_sl.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_gendict GENDICT: typed dictionary
 * The rules of the family stand at the top of vorn_gendict.h.
 * @{ */

/* The kinds of a value. */
enum {
    GENDICT_INT = 1,    /* data.integer, stored by value */
    GENDICT_DOUBLE = 2, /* data.real, stored by value */
    GENDICT_STRING = 3, /* data.text: the entry owns its own copy */
    GENDICT_DICT = 4    /* data.dict: the entry owns the dictionary given */
};

typedef struct GENDICT_value GENDICT_value;
typedef struct GENDICT_item GENDICT_item;

/* A typed value, passed by value.  Any kind other than 1 to 4 is stored
 * with no value behind it and released like an integer. */
struct GENDICT_value {
    int32_t kind;
    union {
        int32_t integer;
        double real;
        char *text;
        SL_list *dict;
    } data;
};

/* An entry: an SL record.  Only SL operations write the links. */
struct GENDICT_item {
    GENDICT_item *prev; /* towards the first entry, null on it */
    GENDICT_item *next; /* towards the last entry, null on it */
    char *key;          /* the entry's own copy of the key (standard heap) */
    GENDICT_value value;
};

/* A new empty dictionary (an empty SL list). */
VORN_API SL_list *GENDICT_create(void);

/* Stores `value` under `key`.  A key already present keeps its entry and its
 * place: the old value is released (a text freed, a sub-dictionary released
 * with all it holds) and the new kind and value go in.  A new key appends an
 * entry.  The key is copied; a text (kind 3) is copied; a sub-dictionary
 * (kind 4) is taken over, and the caller must not release it afterwards.
 * Passing the entry's own key, text or sub-dictionary back is safe: the new
 * value is taken before the old one is released, and a sub-dictionary that
 * the entry holds already is kept, not released.  A null text or
 * sub-dictionary is stored as given. */
VORN_API void GENDICT_add(SL_list *dict, const char *key, GENDICT_value value);

/* 1 and a copy of the value record through `out` if `key` stands in the
 * dictionary; else 0 and `out` untouched.  A text or sub-dictionary is lent:
 * it stays valid until its entry is replaced or deleted or the dictionary is
 * released; do not free it, nor pass a lent dictionary to GENDICT_release. */
VORN_API int32_t GENDICT_get(SL_list *dict, const char *key, GENDICT_value *out);

/* The integer view of a value, stored through `out` with result 1:
 *  kind 1: the integer;
 *  kind 2: the double plus 0.5 if it is greater than 0.0, else minus 0.5,
 *          then the fraction dropped (halves go away from zero); a result
 *          beyond the 32-bit range is clamped to INT32_MIN / INT32_MAX and
 *          a NaN gives 0;
 *  kind 3: the text read as a decimal number after optional white space and
 *          sign, as atoi does, 0 without one; clamped to the 32-bit range;
 *          a null text gives 0.
 * Any other kind, kind 4 too: result 0 and `out` untouched. */
VORN_API int32_t GENDICT_get_int_val(GENDICT_value value, int32_t *out);

/* Removes the entry of `key` with all its value holds; a missing key changes
 * nothing. */
VORN_API void GENDICT_delete_item(SL_list *dict, const char *key);

/* A new dictionary, deep at every level: entries in the same order, keys,
 * texts and sub-dictionaries copied, nothing shared with the source.  A null
 * text or sub-dictionary is copied as null. */
VORN_API SL_list *GENDICT_copy(SL_list *dict);

/* Releases the dictionary with every entry, key, text and sub-dictionary at
 * every depth, then sets *handle to 0.  A handle holding 0 is left alone. */
VORN_API void GENDICT_release(SL_list **handle);

/* ---- the text form ----------------------------------------------------
 *
 * The DICT form, the one that is written and read back.  A dictionary at
 * depth d (the top level 0) is "DICT{\n", then for each entry in list order
 * d + 1 indent units of two blanks, "[key] = " and the value, then d units and
 * "}\n".  Values: kind 1 "%d\n", kind 2 "%lf\n" (six digits behind the
 * point), kind 3 the text between double quotes and "\n", kind 4 the
 * sub-dictionary's form at depth d + 1 (its opening on the key's line); any
 * other kind writes nothing, so the next piece follows on the same line.
 * Nothing is escaped.  Keys of any length are written whole.  A null text is
 * written as the empty text and a null sub-dictionary as an empty one.
 *
 * The RDB form (written only): for each entry d indent units, then
 * "key = %d\n", "key = %lf\n", "key = \"text\"\n", or for kind 4 "[key]\n"
 * followed by the sub-dictionary's entries at depth d + 1.  No opening or
 * closing; an empty dictionary writes nothing.
 */

/* Writes the DICT form at depth 0 to standard output. */
VORN_API void GENDICT_print(SL_list *dict);
/* Writes the RDB form to standard output starting at `depth`; a level whose
 * depth is 0 or less gets no indentation. */
VORN_API void GENDICT_print_rdb(SL_list *dict, int32_t depth);

/* Writes the DICT form into one new block of exactly the text's length plus
 * its terminating zero, from malloc: the block through `buf`, that length
 * (text length + 1) through `length`.  The caller frees the block with free,
 * never with MM_dealloc_item.  The text is measured in a first walk and
 * stored in a second, so the dictionary must not change meanwhile.  This
 * implementation keeps its count and cursor on the call's own frame.  If the
 * text would not fit a 32-bit length, or malloc fails, null and 0 are stored
 * and nothing is allocated. */
VORN_API void GENDICT_to_buf(SL_list *dict, char **buf, int32_t *length);

/* Reads a dictionary in the DICT form from the zero-terminated `text`, which
 * is not changed, and gives a new dictionary, or 0.
 *
 * Grammar.  White space is blank, \n, \r, \t, \v, \f and may stand around
 * every part of an entry.  The text is optional white space and a value;
 * what follows the value is not looked at.  A value is a dictionary
 * ("DICT{", case counts), a string (a double quote) or a number (a minus sign
 * or a digit).  A dictionary is "DICT{", entries, "}"; an entry is "[", the
 * key (all bytes up to the first "]", the empty key allowed), "]", "=", a
 * value.  A string is every byte up to the next double quote, line feeds
 * included, with no escapes.  A number is every byte up to the next white
 * space or the end: with a "." in it a double (kind 2, read as strtod reads
 * it), else an integer (kind 1, optional minus sign and decimal digits, the
 * rest ignored); the token is consumed whole.  A repeated key replaces the
 * value at the place of its first entry.
 *
 * Outcomes.  0 for: an empty or all-blank text; a text whose value is not a
 * dictionary (a string or number at the top level included); a dictionary
 * cut off by the end of the text; a byte other than "[" or "}" where an
 * entry should begin; anything but "=" behind a key; any failure inside a
 * nested dictionary.  An entry whose value cannot be read and is followed
 * at once by "[" or "}" is dropped and reading goes on.
 *
 * Choices where the form leaves one open:
 *  - a key or a string left open by the end of the text gives 0;
 *  - keys of any length are read whole (longer ones than the 255 bytes that
 *    portable writers keep to included);
 *  - a number token of more than 320 bytes cannot be read, so the text
 *    gives 0 (every finite double the writer produces is shorter; infinite
 *    and NaN values are written as "inf" and "nan", which do not read back);
 *  - a number token with no digits to convert (a lone minus sign) gives 0 or
 *    0.0 of its kind; an integer beyond the 32-bit range is clamped to
 *    INT32_MIN / INT32_MAX;
 *  - if malloc fails for a key or a string the text gives 0.
 * The reader never reads past the terminating zero, needs native stack
 * independent of the nesting depth, and whenever it gives 0 leaves nothing
 * allocated.  Linear in the text's length; repeated keys are found through a
 * scratch hash table once a dictionary grows past a few entries. */
VORN_API SL_list *GENDICT_from_buf(const char *text);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_GENDICT_H */
