/*
 * vorn_checked.h - the checked build of the library (VORN_CHECKED).
 *
 * A library configured with -DVORN_CHECKED=ON exports the same functions
 * with the same records.  Before its work each operation checks what its
 * header leaves to the caller.  The containers' own invariants are checked
 * where that is cheap: the head of a list (count against first and last,
 * the ends' outer links) on entry to every list operation, the links around
 * every position given; the chain order and the balances along the path
 * after a GT insertion, the root and ends after a GT removal; the probe run
 * around an HSH slot after a change; DA counts within capacity.  A full
 * check of the container at hand runs inside the operations that walk it
 * whole anyway (GL_check, SL_check, the lists' *_make_empty, GT_count_items)
 * and otherwise once VORN_CHECKED_PERIOD checked operations of the thread
 * have passed since its last full check, and at least 8 per item that one
 * visited, so that its cost stays a constant share of each operation.
 *
 * A problem caught prints one line through Tprintf,
 *   "vorn_container: OPERATION: what is wrong"
 * naming the argument by its address, then raises
 *   EX_raise_exception_line("vorn_checked", LINE, CODE)
 * with CODE 9001 for a caller's misuse and 9002 for a broken invariant, and
 * the LINE of the check from the table below.  A raise that the normal build
 * documents is left to the library and keeps its own file, line and code.
 *
 * What is tracked, in side tables of the library (the public records keep
 * their layouts): the live handles of GL, EL, SL, GT, DA, HSH, vorn_lu and
 * io_lut and the GT walks; the list that holds each GL and EL node and each
 * linked SL record.  A splice merges the two lists' sets in constant time;
 * the end part cut off by EL_remove_and_get_end_part is moved item by item.
 * The tables take one process-wide lock, so containers of different threads
 * stay apart; they hold about one word per 16 bytes of memory that ever
 * held a node, and they stay until the process ends.
 *
 * The inline forms of the headers (DA_get_item, HSH_get_value,
 * HSH_contains_key, the GL and EL walk steps) are off in a host compiled
 * with VORN_CHECKED defined, so that it calls the checked exports (their
 * *_inline names stay and call the exports too); the installed package of a
 * checked build defines VORN_CHECKED for its consumers.
 *
 * The families built on others check at their own entry and name their own
 * operation: ES and DBLL as EL lists, SA as a DA array, GENDICT and RDBDICT
 * as SL lists (a dictionary released is a released handle).  GB records
 * are the caller's, so no liveness is tracked for them; each GB operation
 * checks the record's sanity before and after a change, and that the
 * records of GB_copy_into and GB_append_block agree.  An index out of range
 * of a GB operation is left alone: the header gives it a harmless meaning.
 * Not covered yet: CLUT runs unchecked; vorn_lu and io_lut check their
 * handles only.
 */
#ifndef VORN_CHECKED_H
#define VORN_CHECKED_H

/* The fewest checked operations between two full checks; fixed when the
 * library is built. */
#ifndef VORN_CHECKED_PERIOD
#define VORN_CHECKED_PERIOD 4096
#endif

#define VORN_CHECKED_FILE "vorn_checked"
#define VORN_CHECKED_MISUSE 9001
#define VORN_CHECKED_BROKEN 9002

/* X(name, file, line, code, operations, condition) */
#define VORN_RAISES_CHECKED(X)                                                              \
    X(CHK_HANDLE_NOT_LIVE, "vorn_checked", 101, 9001,                                       \
      "every GL, EL, SL, GT, DA, HSH, vorn_lu and io_lut operation given a handle, and "    \
      "those of ES, DBLL, SA, GENDICT and RDBDICT",                                         \
      "the handle is null, was never created or is of another family")                      \
    X(CHK_HANDLE_RELEASED, "vorn_checked", 102, 9001,                                       \
      "every GL, EL, SL, GT, DA, HSH, vorn_lu and io_lut operation given a handle, and "    \
      "those of ES, DBLL, SA, GENDICT and RDBDICT",                                         \
      "the handle was released already (use after release, double release)")                \
    X(CHK_POSITION_FOREIGN, "vorn_checked", 103, 9001,                                      \
      "GL, EL, SL and DBLL operations given a position",                                    \
      "the position is null or is not on the list given")                                   \
    X(CHK_RECORD_LINKED, "vorn_checked", 104, 9001, "SL insertions",                        \
      "the record is already linked into a list")                                           \
    X(CHK_WALK_STALE, "vorn_checked", 105, 9001, "GL_next_*, EL_next_*, SL_next_item",      \
      "the walk's next position is on no list (its item was removed)")                      \
    X(CHK_ITEM_SIZE, "vorn_checked", 106, 9001, "EL_replace_item, EL_next_item_copy",       \
      "the size given or held by the walk is not the list's item size")                     \
    X(CHK_INDEX_RANGE, "vorn_checked", 107, 9001,                                           \
      "DA_put_item, DA_get_item, DA_insert, DA_delete",                                     \
      "a negative index or count, or a range beyond nitems")                                \
    X(CHK_GT_WALK_DEAD, "vorn_checked", 108, 9001,                                          \
      "GT_current_item, GT_from_* (the source walk)",                                       \
      "the GT walk was ended or used up")                                                   \
    X(CHK_GB_NO_BLOCK, "vorn_checked", 109, 9001,                                           \
      "GB item operations (append, insert, replace, remove, reverse, roll, open, cut)",     \
      "the record holds no block (capacity 0) but a count other than 0")                    \
    X(CHK_GB_PAIR, "vorn_checked", 110, 9001, "GB_copy_into, GB_append_block",              \
      "the records differ in item size, or GB_append_block is given one record twice")      \
    X(CHK_LINKS, "vorn_checked", 201, 9002, "GL, EL and SL operations",                     \
      "prev and next links disagree around a position or along the list")                   \
    X(CHK_COUNT, "vorn_checked", 202, 9002, "GL, EL, SL and HSH operations",                \
      "the count disagrees with the items held, or first/last with the count")              \
    X(CHK_GT_BALANCE, "vorn_checked", 203, 9002, "GT operations",                           \
      "a balance is not height(right) - height(left) in -1 .. 1")                           \
    X(CHK_GT_ORDER, "vorn_checked", 204, 9002, "GT operations",                             \
      "the chain is out of compare order or differs from the tree's order")                 \
    X(CHK_HSH_PROBE, "vorn_checked", 205, 9002, "HSH operations",                           \
      "a key stands behind an empty slot of its probe run, or the count is over the limit") \
    X(CHK_DA_COUNT, "vorn_checked", 206, 9002, "DA operations",                             \
      "nitems is outside 0 .. nalloc or the block disagrees with nalloc")                   \
    X(CHK_GB_RECORD, "vorn_checked", 207, 9002, "GB operations, before and after a change", \
      "item_size is not positive, capacity is negative, or a record holding a block has "   \
      "count outside 0 .. capacity or no data")

#endif /* VORN_CHECKED_H */
