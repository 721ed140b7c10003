/*
 * vorn_clut.h - CLUT, the one process-wide indexed colour table, its start-up
 * RGBLUT_init and the exported indices of the named colours (GE_ words).
 *
 * The table maps 32-bit signed indices to RGB triples.  RGBLUT_init creates
 * it once per process with a fixed number of entries (it never grows and is
 * never freed), gives the first 34 indices their names and colours and makes
 * them hard.  Every index is in one of three states:
 *
 *   CLUT_FREE     nobody holds it; its colour is zero or the last one it had
 *   CLUT_HARD     claimed for good (start-up, CLUT_alloc, CLUT_set on a free
 *                 index); nothing frees it
 *   CLUT_DYNAMIC  handed out by CLUT_new_index, freed by CLUT_release_index
 *
 * Hard claims are allowed only until the first CLUT_new_index: that call
 * closes the window for good.  There are no reference counts: one release
 * frees a dynamic index, however many callers use it.
 *
 * The table is a set of module-level words with no lock: callers keep all its
 * operations on one thread or serialise them.  The colour callback runs on the
 * calling thread, inside CLUT_set (before the store) or CLUT_copy (after it).
 *
 * Failures are the CLUT_RAISE_ entries of vorn_raises.h (file "rgblut").
 * Every operation but CLUT_set_RGB (which reaches the test in CLUT_set) and
 * CLUT_statistics raises when the table does not exist yet.
 *
 * Messages go through Tprintf, selected by clut_debug: 0 prints nothing (but
 * CLUT_statistics); any other value prints the allocation messages
 * ("Initialising Clut Table, %d entries\n", "CLUT alloc %d\n",
 * "CLUT_new_index : %d\n", "CLUT OVERFLOW\n", "CLUT_release_index : %d\n");
 * a value greater than 1 also prints each set and get
 * ("set index : %d : %d %d %d\n", "get index : %d : %d %d %d\n").
 *
 * Indices must not be negative.  Where a caller passes one anyway, or an index
 * beyond the table to an operation without a range test, the table reads and
 * writes nothing outside itself: such an index counts as beyond the table
 * (CLUT_set, CLUT_copy, CLUT_get) or as neither free nor dynamic (CLUT_alloc,
 * CLUT_release_index), as each operation states below.
 */
#ifndef VORN_CLUT_H
#define VORN_CLUT_H

#include "vorn_base.h"
#include "vorn_raises.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_clut CLUT, RGBLUT_init and the GE_ words: colour table
 * The rules of the family stand at the top of vorn_clut.h.
 * @{ */

/* One entry of the table.  The system's own colours lie in 0 to 255; nothing
 * tests the range. */
typedef struct CLUT_colour CLUT_colour;
struct CLUT_colour {
    int16_t r;
    int16_t g;
    int16_t b;
};

/* The states of an index. */
enum { CLUT_FREE = 0, CLUT_HARD = 1, CLUT_DYNAMIC = 2 };

/* The colour callback: index, r, g, b; its result is ignored.  Null: none. */
typedef vorn_colour_fn CLUT_callback_fn;

/* Verbosity of the table's messages (see above).  0 until a caller sets it;
 * it may be set at any time, also before RGBLUT_init. */
extern VORN_API int32_t clut_debug;

/* ---- start-up ---- */

/* Creates the table, once per process.  An entry count of 0 with a null
 * callback means 256 entries and prints nothing; any other count is used as
 * given and, with clut_debug non-zero, announced by
 * "Initialising Clut Table, %d entries\n".  Then the 34 GE_ words get the
 * indices 0 to 33, 33 colours are written with CLUT_set and 11 copies made
 * with CLUT_copy (the callback hears all 44, in this order), the three system
 * colours coming from GetSysColor (15, 13, 14), and indices 0 to 33 are hard.
 * Raises CLUT_RAISE_INIT_TWICE on a second call (before it changes anything)
 * and CLUT_RAISE_INIT_TOO_SMALL when the count is below 34 (after the GE_
 * words got their indices, before any entry is written); a negative count
 * takes no memory and raises the latter. */
VORN_API void RGBLUT_init(int32_t entries, CLUT_callback_fn callback);

/* ---- hard indices ---- */

/* Makes a free index hard; prints "CLUT alloc %d\n" with clut_debug
 * non-zero.  Does not move the free-index cursor.  Raises
 * CLUT_RAISE_ALLOC_NO_TABLE before start-up, CLUT_RAISE_ALLOC_HARD_CLOSED
 * after the first CLUT_new_index, CLUT_RAISE_ALLOC_NOT_FREE when the index is
 * not free; a negative index, or one beyond the table, counts as not free. */
VORN_API void CLUT_alloc(int32_t index);

/* ---- colours ---- */

/* Writes a colour.  A free index is first claimed hard through CLUT_alloc
 * (so after the first CLUT_new_index that raises
 * CLUT_RAISE_ALLOC_HARD_CLOSED); hard and dynamic
 * indices can be set again and again and keep their state.  The callback, if
 * any, hears (index, r, g, b) while the table still holds the old colour; then
 * the colour is stored and, with clut_debug > 1, "set index : ..." printed.
 * Raises CLUT_RAISE_SET_NO_TABLE before start-up, CLUT_RAISE_SET_OUTSIDE
 * when the index is at or beyond the table size (a negative index too). */
VORN_API void CLUT_set(int32_t index, int16_t r, int16_t g, int16_t b);

/* CLUT_set with components in floating point, 1.0 for full intensity: each is
 * multiplied by 255 in single precision, the fraction dropped and the low 16
 * bits passed on; no clamping (1.0 gives 255, 0.5 gives 127).  A product
 * that is NaN or outside the 32-bit range gives 0. */
VORN_API void CLUT_set_RGB(int32_t index, float r, float g, float b);

/* Copies the colour of `source` into `destination`, then calls the callback
 * with the destination index and the new colour (the table already holds
 * it).  Prints nothing.  Raises CLUT_RAISE_COPY_NO_TABLE before start-up,
 * CLUT_RAISE_COPY_OUTSIDE when either index is at or beyond the table size
 * (a negative index too), CLUT_RAISE_COPY_FREE when either index is free. */
VORN_API void CLUT_copy(int32_t destination, int32_t source);

/* Reads a colour through the three pointers and gives 1.  An index at or
 * beyond the table size (a negative index too) reads the entry of GE_GREEN
 * instead and gives 0; should that entry lie beyond the table as well (only
 * after a start-up that raised CLUT_RAISE_INIT_TOO_SMALL), the colour read
 * is 0, 0, 0.  The state is not looked at.  With clut_debug > 1 prints
 * "get index : %d : %d %d %d\n" with the index really read.  Raises
 * CLUT_RAISE_GET_NO_TABLE before start-up. */
VORN_API int32_t CLUT_get(int32_t index, int16_t *r, int16_t *g, int16_t *b);

/* The lowest index whose colour equals (r, g, b), whatever its state (a
 * released index keeps its colour and can match), or -1.  Raises
 * CLUT_RAISE_GET_ID_NO_TABLE before start-up. */
VORN_API int32_t CLUT_getID(int16_t r, int16_t g, int16_t b);

/* ---- dynamic indices ---- */

/* Ends the hard-claim window for good (on every call), then hands out the
 * lowest free index as dynamic and prints "CLUT_new_index : %d\n" with
 * clut_debug non-zero.  A full table is no failure: it gives the index in
 * GE_GREEN and changes no state; with clut_debug non-zero the first such
 * overflow of the process prints "CLUT OVERFLOW\n" (an overflow under
 * clut_debug 0 is not noted).  Raises CLUT_RAISE_NEW_INDEX_NO_TABLE
 * before start-up. */
VORN_API int32_t CLUT_new_index(void);

/* Calls debug_break, then gives a dynamic index back: it becomes free and
 * keeps its colour, and the next CLUT_new_index may hand it out again.  The
 * index in GE_GREEN is accepted and nothing is done, so what an overflow gave
 * can be given back.  Prints "CLUT_release_index : %d\n" with clut_debug
 * non-zero.  Raises CLUT_RAISE_RELEASE_NO_TABLE before start-up,
 * CLUT_RAISE_RELEASE_NOT_DYNAMIC when the index is not dynamic (a negative
 * index, or one beyond the table, counts as not dynamic). */
VORN_API void CLUT_release_index(int32_t index);

/* Prints, in any state of the module and whatever clut_debug says:
 * "Clut Size : %d\n", "First Free index : %d\n",
 * "Number of free indices : %d\n", "Number of hard indices : %d\n",
 * "Number of dynamic indices : %d\n".  Before start-up every figure is 0. */
VORN_API void CLUT_statistics(void);

/* ---- the named colours ----
 * Each word holds its index from RGBLUT_init on (0 before); no operation
 * changes the words after it.  Colours as RGBLUT_init leaves them; a caller
 * may change any of them with CLUT_set.  GE_GREEN also names the substitute
 * for an index that does not exist or cannot be had. */
extern VORN_API int32_t GE_WHITE;                       /*  0: 255 255 255 */
extern VORN_API int32_t GE_CLEAR;                       /*  1: 255 255 255 */
extern VORN_API int32_t GE_BLACK;                       /*  2: 0 0 0 */
extern VORN_API int32_t GE_OBJ_SELECTABLE;              /*  3: as GE_BLACK */
extern VORN_API int32_t GE_OBJ_RED_SELECTED;            /*  4: as GE_RED */
extern VORN_API int32_t GE_OBJ_GREEN_SELECTED;          /*  5: as GE_GREEN */
extern VORN_API int32_t GE_OBJ_BLUE_SELECTED;           /*  6: as GE_CYAN */
extern VORN_API int32_t GE_OBJ_LOCKED;                  /*  7: as GE_GRAY */
extern VORN_API int32_t GE_OBJ_CLIPMASK;                /*  8: as GE_DRKBLU */
extern VORN_API int32_t GE_OBJ_CROSSHAIR_GUIDES;        /*  9: as GE_BLUE */
extern VORN_API int32_t GE_OBJ_NOTES;                   /* 10: as GE_YELLOW */
extern VORN_API int32_t GE_OBJ_PAGE;                    /* 11: as GE_BLUE */
extern VORN_API int32_t GE_OBJ_MARKUP;                  /* 12: as GE_BLUE */
extern VORN_API int32_t GE_OBJ_GRIDS;                   /* 13: as GE_LGRAY */
extern VORN_API int32_t GE_GRAY;                        /* 14: 127 127 127 */
extern VORN_API int32_t GE_LGRAY;                       /* 15: system colour 15 */
extern VORN_API int32_t GE_YELLOW;                      /* 16: 255 255 0 */
extern VORN_API int32_t GE_DRKGRAY;                     /* 17: 100 100 100 */
extern VORN_API int32_t GE_BLUE;                        /* 18: 0 0 255 */
extern VORN_API int32_t GE_RED;                         /* 19: 255 0 0 */
extern VORN_API int32_t GE_LRED;                        /* 20: 237 164 164 */
extern VORN_API int32_t GE_GREEN;                       /* 21: 0 255 0 */
extern VORN_API int32_t GE_CYAN;                        /* 22: 0 255 255 */
extern VORN_API int32_t GE_MAG;                         /* 23: 189 0 189 */
extern VORN_API int32_t GE_DRKGREEN;                    /* 24: 0 200 0 */
extern VORN_API int32_t GE_DRKMAG;                      /* 25: 200 0 200 */
extern VORN_API int32_t GE_DRKBLU;                      /* 26: 0 0 200 */
extern VORN_API int32_t GE_SYS32;                       /* 27: never set: 0 0 0 */
extern VORN_API int32_t GE_GRAY144;                     /* 28: 144 144 144 */
extern VORN_API int32_t GE_GRAY164;                     /* 29: 164 164 164 */
extern VORN_API int32_t GE_DRKCYAN;                     /* 30: 0 200 200 */
extern VORN_API int32_t GE_SELECTION_BLUE;              /* 31: 0 0 128 */
extern VORN_API int32_t GE_WINDOWS_COLOR_HIGHLIGHT;     /* 32: system colour 13 */
extern VORN_API int32_t GE_WINDOWS_COLOR_HIGHLIGHTTEXT; /* 33: system colour 14 */

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_CLUT_H */
