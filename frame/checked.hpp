// The hooks of the checked build.  Each exported operation of a checked
// family calls VORN_CHK(...) first (and where needed last); in the normal
// build the macro is empty and no code or table exists.  What the hooks
// check and how a problem is reported is described in vorn_checked.h; the
// side tables live in checked.cpp.
#pragma once

#if defined(VORN_CHECKED)

#include <atomic>
#include <cstdint>

#include "vorn_checked.h"
#include "vorn_da.h"
#include "vorn_el.h"
#include "vorn_gb.h"
#include "vorn_gl.h"
#include "vorn_gt.h"
#include "vorn_hsh.h"
#include "vorn_io_lut.h"
#include "vorn_lu.h"
#include "vorn_sl.h"

#if defined(__GNUC__)
#pragma GCC visibility push(hidden)
#endif

namespace vorn::checked {

enum class Kind : uint8_t { GL = 1, EL, SL, GT, GT_walk, DA, HSH, LU, IO_LUT };

// The per-thread state read on every call: plain data, so __thread needs
// no initialisation wrapper, and the initial-exec model reads it without a
// call into the dynamic loader.
#if defined(__GNUC__)
#define VORN_CHK_TLS __thread __attribute__((tls_model("initial-exec")))
#else
#define VORN_CHK_TLS thread_local
#endif

// The handles this thread found live lately, with the count of deaths at
// the time: while no handle has died since, a handle found there is live.
struct LiveMemo {
    const void *handle;
    Kind kind;
    uint64_t epoch;
};
extern VORN_CHK_TLS LiveMemo live_memo[4];
extern std::atomic<uint64_t> deaths;
inline LiveMemo &memo_of(const void *handle) { return live_memo[(reinterpret_cast<uintptr_t>(handle) >> 4) & 3]; }
inline bool known_live(const void *handle, Kind kind) {
    const LiveMemo &m = memo_of(handle);
    return handle && m.handle == handle && m.kind == kind && m.epoch == deaths.load(std::memory_order_acquire);
}

// Checked operations of this thread, and the count at which a full check
// of the container at hand is next due: VORN_CHECKED_PERIOD operations
// after the last one at the least.
extern VORN_CHK_TLS uint64_t operations;
extern VORN_CHK_TLS uint64_t next_full_check;
inline bool full_check_due() { return ++operations >= next_full_check; }

// ---- handles ----
void born(const void *handle, Kind kind);
void dies(const char *op, const void *handle, Kind kind);  // checks, then forgets
void forget(const void *handle);                           // no check (GT walks)
void live(const char *op, const void *handle, Kind kind);

inline Kind kind_of(const GL_list *) { return Kind::GL; }
inline Kind kind_of(const EL_list *) { return Kind::EL; }
inline Kind kind_of(const SL_list *) { return Kind::SL; }
inline Kind kind_of(const GT_tree *) { return Kind::GT; }
inline Kind kind_of(const GT_iter *) { return Kind::GT_walk; }
inline Kind kind_of(const DA_array *) { return Kind::DA; }
inline Kind kind_of(const HSH_table *) { return Kind::HSH; }
inline Kind kind_of(const vorn_lu *) { return Kind::LU; }
inline Kind kind_of(const io_lut_table *) { return Kind::IO_LUT; }
template <class T>
void born(const T *handle) {
    born(handle, kind_of(handle));
}
template <class T>
void dies(const char *op, const T *handle) {
    dies(op, handle, kind_of(handle));
}
template <class T>
void live(const char *op, const T *handle) {
    live(op, handle, kind_of(handle));
}

// ---- list membership, kept by the list machinery ----
void on_link(const void *head, const void *node);
void on_unlink(const void *head, const void *node, int32_t count_left);
void on_drain(const void *head, const void *node);
void on_splice(const void *head, const void *second);
void on_split(const EL_list *end);  // the items of `end` left another list

// ---- the linked lists: the handle is live, then its shape; `pos` is on it ----
void list(const char *op, const GL_list *l);
void list(const char *op, const EL_list *l);
void list(const char *op, const SL_list *l);
void list_pos(const char *op, const GL_list *l, const void *pos);
void list_pos(const char *op, const EL_list *l, const void *pos);
void list_pos(const char *op, const SL_list *l, const void *pos);
// A walk's start: not read by every family, so a null list or `from`
// passes; otherwise `from` must be on the list.  `to` is not checked: a
// removal over a range stops when the list is empty, wherever `to` lies.
void list_range(const char *op, const void *l, const void *from, const void *to);
void list_full(const char *op, const GL_list *l);
void list_full(const char *op, const EL_list *l);
void list_full(const char *op, const SL_list *l);
void record_unlinked(const char *op, const void *record, const void *allowed);
void walk(const char *op, const void *next);
void on_a_list(const char *op, const void *pos);
void item_size(const char *op, const EL_node *pos, int32_t size, bool exact);

// ---- GT ----
// A null tree passes.  gt_live checks the handle alone, gt also the tree's
// shape after a change (never before one: the tree's own raises for a
// broken balance come first).
void gt_live(const char *op, const GT_tree *t);
void gt(const char *op, const GT_tree *t);
void gt_inserted(const char *op, const GT_tree *t, const GT_node *n);
void gt_full(const char *op, const GT_tree *t);
void gt_walk(const char *op, const GT_iter *it);

// ---- DA and HSH ----
void da_slow(const char *op, const DA_array *a);
void index_negative(const char *op, const DA_array *a, int32_t index);
// The fast path of the cheapest operations stays in the caller; anything
// unusual goes to the full checks out of line.
inline void da(const char *op, const DA_array *a) {
    if (!known_live(a, Kind::DA) || a->nitems < 0 || a->nitems > a->nalloc || (a->nalloc > 0 && !a->data))
        da_slow(op, a);
}
// An index (a count, for DA_truncate and DA_setsize) must not be negative;
// a range to delete must lie within the items.
inline void da_index(const char *op, const DA_array *a, int32_t index) {
    da(op, a);
    if (index < 0) index_negative(op, a, index);
}
void da_range(const char *op, const DA_array *a, int32_t index, int32_t count);
void hsh_slow(const char *op, const HSH_table *t);
inline void hsh(const char *op, const HSH_table *t) {
    if (!known_live(t, Kind::HSH) || t->count < 0 || t->count > t->high_limit || full_check_due())
        hsh_slow(op, t);
}
void hsh_around(const char *op, const HSH_table *t, const void *key);

// ---- GB (records of the caller: no liveness is tracked) ----
// The record's sanity; with `items`, a record without a block must show
// count 0, as the item operations expect.
void gb_slow(const char *op, const GB_list *l, bool items);
inline void gb(const char *op, const GB_list *l, bool items = false) {
    if (!l || l->item_size <= 0 || l->capacity < 0 ||
        (l->capacity > 0 ? l->count < 0 || l->count > l->capacity || !l->data : items && l->count != 0))
        gb_slow(op, l, items);
}
// Two records of one operation: the same item size and, when `distinct`,
// not one record twice.
void gb_pair(const char *op, const GB_list *l, const GB_list *other, bool distinct);

}  // namespace vorn::checked

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#define VORN_CHK(call) ::vorn::checked::call

#else
#define VORN_CHK(call) ((void)0)
#endif
