/*
 * vorn_raises.h - every failure the library raises, in one table.
 *
 * A failure leaves through EX_raise_exception_line(file, line, code) and does
 * not come back.  The three values are the failure's fixed identity: the
 * line is a number of this table, not a position in any source file.  The
 * library raises these and no others; a host (or a test) that catches a raise
 * with the handler of vorn_base.h can name it from here.
 *
 * One X-macro per family that raises; each entry is
 *     X(ID, file, line, code, operations, condition)
 * where operations names the exported operations that reach the raise (joined
 * with ", ") and condition says, in lower case, what was found.  VORN_RAISES
 * lists them all.  The enum vorn_raise gives each ID its line.  Nothing here
 * is exported: the header is plain macros and constants, for C and C++.
 */
#ifndef VORN_RAISES_H
#define VORN_RAISES_H

/** \defgroup raises Raised failures
 * \brief The table of every raise: file, line, code, operations, condition.
 * @{ */

/** Code: no memory block was obtained (only DA tests its blocks). */
#define VORN_CODE_NO_MEMORY 4197
/** Code: a broken precondition or an internal inconsistency. */
#define VORN_CODE_BROKEN_STATE 4297
/** Code: a pointer or identifier that the table doesn't hold (io_lut). */
#define VORN_CODE_NOT_IN_TABLE 4397

/** EL (file "egenlist"); DBLL reaches them through EL. */
#define VORN_RAISES_EL(X)                                                              \
    X(EL_RAISE_REPLACE_SOURCE_SHORT, "egenlist", 555, VORN_CODE_BROKEN_STATE,          \
      "EL_replace_items_inbetween, DBLL_replace_doubles_inbetween",                    \
      "the source list has fewer items than the range")                                \
    X(EL_RAISE_ROLL_NO_PREV, "egenlist", 987, VORN_CODE_BROKEN_STATE,                  \
      "EL_roll, DBLL_roll", "the position has a null prev")

/** SL (file "sgenlist"). */
#define VORN_RAISES_SL(X)                                                              \
    X(SL_RAISE_RELEASE_NOT_EMPTY, "sgenlist", 74, VORN_CODE_BROKEN_STATE,              \
      "SL_release", "the list still holds records")                                    \
    X(SL_RAISE_ROLL_OFF_RING, "sgenlist", 742, VORN_CODE_BROKEN_STATE, "SL_roll",      \
      "the list is closed and the position has a null prev")

/** GT (file "gentree").  The last three guard the tree's own shape: a sound
 * tree never raises them. */
#define VORN_RAISES_GT(X)                                                              \
    X(GT_RAISE_REMOVE_MISSED, "gentree", 477, VORN_CODE_BROKEN_STATE,                  \
      "GT_remove_item", "the walk steered by the compare didn't reach the position")   \
    X(GT_RAISE_GLOBAL_MISSED, "gentree", 541, VORN_CODE_BROKEN_STATE,                  \
      "GT_remove_item_global", "no walk reached the position")                         \
    X(GT_RAISE_FIND_AND_REMOVE_NO_ITEM, "gentree", 562, VORN_CODE_BROKEN_STATE,        \
      "GT_find_and_remove_item", "no node holds the item")                             \
    X(GT_RAISE_FIND_AND_REMOVE_MISSED, "gentree", 575, VORN_CODE_BROKEN_STATE,         \
      "GT_find_and_remove_item", "the removal walk didn't reach the node found")       \
    X(GT_RAISE_STEP_NOT_REGISTERED, "gentree", 892, VORN_CODE_BROKEN_STATE,            \
      "GT_next_item", "the walk is over and the iterator isn't registered")            \
    X(GT_RAISE_STEP_POSITION_NOT_REGISTERED, "gentree", 933, VORN_CODE_BROKEN_STATE,   \
      "GT_next_position, GT_sort",                                                     \
      "the walk is over and the iterator isn't registered")                            \
    X(GT_RAISE_END_NOT_REGISTERED, "gentree", 958, VORN_CODE_BROKEN_STATE,             \
      "GT_end_iterator, GT_sort", "the iterator isn't registered")                     \
    X(GT_RAISE_LEFT_GREW_BAD_BALANCE, "gentree", 1177, VORN_CODE_BROKEN_STATE,         \
      "GT_insert_item", "a balance is outside -1 to 1 after a left subtree grew")      \
    X(GT_RAISE_RIGHT_GREW_BAD_BALANCE, "gentree", 1232, VORN_CODE_BROKEN_STATE,        \
      "GT_insert_item", "a balance is outside -1 to 1 after a right subtree grew")     \
    X(GT_RAISE_REMOVE_FIRST_EMPTY, "gentree", 1423, VORN_CODE_BROKEN_STATE,            \
      "GT_remove_first_item", "the tree is empty")                                     \
    X(GT_RAISE_REMOVE_HAS_LEFT, "gentree", 1724, VORN_CODE_BROKEN_STATE,               \
      "GT_remove_item, GT_remove_item_global, GT_find_and_remove_item, "               \
      "GT_remove_first_item",                                                          \
      "a node that leaves by its right child has a left child")                        \
    X(GT_RAISE_REMOVE_HAS_RIGHT, "gentree", 1756, VORN_CODE_BROKEN_STATE,              \
      "GT_remove_item, GT_remove_item_global, GT_find_and_remove_item, "               \
      "GT_remove_first_item",                                                          \
      "a node that leaves by its left child has a right child")                        \
    X(GT_RAISE_REMOVE_TWO_CHILDREN, "gentree", 1795, VORN_CODE_BROKEN_STATE,           \
      "GT_remove_item, GT_remove_item_global, GT_find_and_remove_item, "               \
      "GT_remove_first_item",                                                          \
      "a node with two children lacks one or its predecessor has a right child")

/** DA (file "darray"); SA and io_lut reach them through DA. */
#define VORN_RAISES_DA(X)                                                              \
    X(DA_RAISE_CREATE_NO_MEMORY, "darray", 25, VORN_CODE_NO_MEMORY,                    \
      "DA_create, io_lut_create, io_lut_create_read", "no memory for the record")      \
    X(DA_RAISE_EXTEND_NO_MEMORY, "darray", 103, VORN_CODE_NO_MEMORY,                   \
      "DA_extend, DA_setsize, DA_append, DA_insert, DA_put_item, DA_get_item, "        \
      "DA_string, DA_copy, DA_copy_into, SA_add_number, io_lut_create, "               \
      "io_lut_create_read, io_lut_add, io_lut_set",                                    \
      "no memory for the block")                                                       \
    X(DA_RAISE_COPY_NO_MEMORY, "darray", 263, VORN_CODE_NO_MEMORY, "DA_copy",          \
      "no memory for the record")                                                      \
    X(DA_RAISE_COPY_INTO_SIZES_DIFFER, "darray", 281, VORN_CODE_BROKEN_STATE,          \
      "DA_copy_into", "the item sizes of destination and source differ")

/** io_lut (file "plut"). */
#define VORN_RAISES_IO_LUT(X)                                                          \
    X(IO_LUT_RAISE_SET_SLOT_TAKEN, "plut", 85, VORN_CODE_BROKEN_STATE, "io_lut_set",   \
      "a read table without overwrite holds another pointer at the identifier")        \
    X(IO_LUT_RAISE_NO_POINTER, "plut", 105, VORN_CODE_NOT_IN_TABLE, "io_lut_get_ptr",  \
      "the identifier is out of range or a hole")                                      \
    X(IO_LUT_RAISE_READ_NO_ID, "plut", 201, VORN_CODE_NOT_IN_TABLE, "io_lut_get_id",   \
      "no slot of the read table holds the pointer")                                   \
    X(IO_LUT_RAISE_WRITE_NO_ID, "plut", 210, VORN_CODE_NOT_IN_TABLE, "io_lut_get_id",  \
      "the write table holds no identifier for the pointer")

/** CLUT and RGBLUT_init (file "rgblut"). */
#define VORN_RAISES_CLUT(X)                                                            \
    X(CLUT_RAISE_INIT_TWICE, "rgblut", 100, VORN_CODE_BROKEN_STATE, "RGBLUT_init",     \
      "the table was started before")                                                  \
    X(CLUT_RAISE_INIT_TOO_SMALL, "rgblut", 165, VORN_CODE_BROKEN_STATE, "RGBLUT_init", \
      "the table has fewer entries than the named colours")                            \
    X(CLUT_RAISE_ALLOC_NO_TABLE, "rgblut", 243, VORN_CODE_BROKEN_STATE, "CLUT_alloc",  \
      "the table doesn't exist yet")                                                   \
    X(CLUT_RAISE_ALLOC_HARD_CLOSED, "rgblut", 244, VORN_CODE_BROKEN_STATE,             \
      "CLUT_alloc, CLUT_set, CLUT_set_RGB",                                            \
      "a free index is claimed after the first CLUT_new_index")                        \
    X(CLUT_RAISE_ALLOC_NOT_FREE, "rgblut", 245, VORN_CODE_BROKEN_STATE, "CLUT_alloc",  \
      "the index isn't free")                                                          \
    X(CLUT_RAISE_SET_NO_TABLE, "rgblut", 254, VORN_CODE_BROKEN_STATE,                  \
      "CLUT_set, CLUT_set_RGB", "the table doesn't exist yet")                         \
    X(CLUT_RAISE_SET_OUTSIDE, "rgblut", 256, VORN_CODE_BROKEN_STATE,                   \
      "CLUT_set, CLUT_set_RGB", "the index is outside the table")                      \
    X(CLUT_RAISE_NEW_INDEX_NO_TABLE, "rgblut", 277, VORN_CODE_BROKEN_STATE,            \
      "CLUT_new_index", "the table doesn't exist yet")                                 \
    X(CLUT_RAISE_RELEASE_NO_TABLE, "rgblut", 307, VORN_CODE_BROKEN_STATE,              \
      "CLUT_release_index", "the table doesn't exist yet")                             \
    X(CLUT_RAISE_RELEASE_NOT_DYNAMIC, "rgblut", 309, VORN_CODE_BROKEN_STATE,           \
      "CLUT_release_index", "the index isn't dynamic")                                 \
    X(CLUT_RAISE_GET_NO_TABLE, "rgblut", 333, VORN_CODE_BROKEN_STATE, "CLUT_get",      \
      "the table doesn't exist yet")                                                   \
    X(CLUT_RAISE_GET_ID_NO_TABLE, "rgblut", 351, VORN_CODE_BROKEN_STATE, "CLUT_getID", \
      "the table doesn't exist yet")                                                   \
    X(CLUT_RAISE_COPY_NO_TABLE, "rgblut", 363, VORN_CODE_BROKEN_STATE, "CLUT_copy",    \
      "the table doesn't exist yet")                                                   \
    X(CLUT_RAISE_COPY_OUTSIDE, "rgblut", 365, VORN_CODE_BROKEN_STATE, "CLUT_copy",     \
      "an index is outside the table")                                                 \
    X(CLUT_RAISE_COPY_FREE, "rgblut", 366, VORN_CODE_BROKEN_STATE, "CLUT_copy",        \
      "an index is free")

/** Every raise of the library, family by family. */
#define VORN_RAISES(X)                                                                 \
    VORN_RAISES_EL(X) VORN_RAISES_SL(X) VORN_RAISES_GT(X) VORN_RAISES_DA(X)            \
    VORN_RAISES_IO_LUT(X) VORN_RAISES_CLUT(X)

/** The IDs of the table; each stands for its line.  VORN_RAISE_NONE (0) is no
 * raise. */
#define VORN_RAISE_ENUMERATOR(id, file, line, code, operations, condition) id = line,
typedef enum vorn_raise { VORN_RAISES(VORN_RAISE_ENUMERATOR) VORN_RAISE_NONE = 0 } vorn_raise;
#undef VORN_RAISE_ENUMERATOR

/** @} */

#endif /* VORN_RAISES_H */
