// EL: the doubly linked list of fixed-size elements held by value, on the
// shared list machinery.  A node is one MM_ block of the two links plus the
// element; insertion allocates exactly that block and copies the element in,
// removal frees it with the same size.  Raises only at egenlist 555 and 987.

#include "vorn_el.h"

#include <cstring>
#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"
#include "list_frame.hpp"

namespace fr = vorn::frame;

static_assert(std::is_standard_layout_v<EL_node> && std::is_trivially_copyable_v<EL_node>);
static_assert(offsetof(EL_node, prev) == 0 && offsetof(EL_node, next) == sizeof(void *));
static_assert(offsetof(EL_node, item) == 2 * sizeof(void *) && sizeof(EL_node) == 2 * sizeof(void *),
              "the element starts directly behind the links");
static_assert(offsetof(EL_list, first) == 0 && offsetof(EL_list, last) == sizeof(void *));
static_assert(offsetof(EL_list, item_size) == 2 * sizeof(void *));
static_assert(offsetof(EL_iter, current) == 0 && offsetof(EL_iter, forward) == 3 * sizeof(void *));
static_assert(offsetof(EL_iter, item_size) == offsetof(EL_iter, forward) + sizeof(int32_t));

namespace {


inline std::size_t node_bytes(uint16_t item_size) { return sizeof(EL_node) + item_size; }

// The one allocation of an insertion: links left to the linking step.
inline EL_node *new_node(uint16_t item_size, const void *element) {
    EL_node *n = vorn::alloc_record<EL_node>(node_bytes(item_size));
    vorn::copy_bytes(n->item, element, item_size);
    return n;
}

inline void free_node(uint16_t item_size, EL_node *n) { vorn::free_record(n, node_bytes(item_size)); }

EL_list *new_head(uint16_t item_size) {
    EL_list *h = vorn::alloc_record<EL_list>();
    h->first = h->last = nullptr;
    h->item_size = item_size;
    h->count = 0;
    h->closed = 0;
    VORN_CHK(born(h));
    return h;
}

inline void *bytes_of(EL_node *n) { return n->item; }

// A forward walk from `from` to `to` (the walk rules: ends at `to` or at a
// null link, passes the seam of a ring).
inline EL_iter range_walk(EL_list *list, EL_node *from, EL_node *to) {
    EL_iter it = fr::open_walk<EL_iter>(from, to, 1, nullptr);
    it.item_size = list->item_size;
    return it;
}

inline EL_node *insert_after(EL_list *list, EL_node *pos, const void *element) {
    EL_node *n = new_node(list->item_size, element);
    fr::link_after(list, pos, n);
    return n;
}

inline EL_node *insert_before(EL_list *list, EL_node *pos, const void *element) {
    EL_node *n = new_node(list->item_size, element);
    fr::link_before(list, pos, n);
    return n;
}

inline void remove_node(EL_list *list, EL_node *pos) {
    fr::unlink(list, pos);
    free_node(list->item_size, pos);
}

// Appends copies of the elements delivered by `it` to `copy`.
void copy_walk(EL_list *copy, EL_iter it) {
    while (EL_node *n = fr::step<EL_node>(&it, bytes_of))
        fr::link_after_last(copy, new_node(copy->item_size, n->item));
}

}  // namespace

extern "C" {

// ---- creation and ending ----

EL_list *EL_create(uint16_t item_size) { return new_head(item_size); }

// Follows the source from first to last (count items), so a ring is copied
// without touching its links.
EL_list *EL_total_copy(EL_list *list) {
    VORN_CHK(list(__func__, list));
    EL_list *copy = new_head(list->item_size);
    EL_node *n = list->first;
    for (int32_t k = list->count; k > 0; --k, n = n->next)
        fr::link_after_last(copy, new_node(copy->item_size, n->item));
    if (list->closed) fr::set_closed<EL_node>(copy);
    return copy;
}

EL_list *EL_total_copy_inbetween(EL_list *list, EL_node *from, EL_node *to) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_range(__func__, list, from, to));
    EL_list *copy = new_head(list->item_size);
    copy_walk(copy, range_walk(list, from, to));
    return copy;
}

void EL_make_empty(EL_list *list) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_full(__func__, list));
    const uint16_t size = list->item_size;
    fr::drain<EL_node>(list, [size](EL_node *n) { free_node(size, n); });
}

void EL_release(EL_list **handle) {
    if (!*handle) return;
    VORN_CHK(live(__func__, *handle));
    EL_make_empty(*handle);
    VORN_CHK(dies(__func__, *handle));
    vorn::free_record(*handle);
    *handle = nullptr;
}

int32_t EL_count_items(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return list->count;
}

int32_t EL_count_items_inbetween([[maybe_unused]] EL_list *list, EL_node *from, EL_node *to) {
    VORN_CHK(list_range(__func__, list, from, to));
    return fr::count_between(from, to);
}

// ---- insertion ----

EL_node *EL_append_after_last(EL_list *list, const void *element) {
    VORN_CHK(list(__func__, list));
    EL_node *n = new_node(list->item_size, element);
    fr::link_after_last(list, n);
    return n;
}

EL_node *EL_insert_before_first(EL_list *list, const void *element) {
    VORN_CHK(list(__func__, list));
    EL_node *n = new_node(list->item_size, element);
    fr::link_before_first(list, n);
    return n;
}

EL_node *EL_insert_after(EL_list *list, EL_node *pos, const void *element) {
    VORN_CHK(list_pos(__func__, list, pos));
    return insert_after(list, pos, element);
}

EL_node *EL_insert_before(EL_list *list, EL_node *pos, const void *element) {
    VORN_CHK(list_pos(__func__, list, pos));
    return insert_before(list, pos, element);
}

EL_node *EL_insert_after_index(EL_list *list, int32_t index, const void *element) {
    VORN_CHK(list(__func__, list));
    EL_node *pos = fr::at_index<EL_node>(list, index);
    return pos ? insert_after(list, pos, element) : nullptr;
}

EL_node *EL_insert_before_index(EL_list *list, int32_t index, const void *element) {
    VORN_CHK(list(__func__, list));
    EL_node *pos = fr::at_index<EL_node>(list, index);
    return pos ? insert_before(list, pos, element) : nullptr;
}

// ---- access ----

void *EL_get_item_at_index(EL_list *list, int32_t index) {
    VORN_CHK(list(__func__, list));
    EL_node *pos = fr::at_index<EL_node>(list, index);
    return pos ? pos->item : nullptr;
}

EL_node *EL_get_pos_at_index(EL_list *list, int32_t index) {
    VORN_CHK(list(__func__, list));
    return fr::at_index<EL_node>(list, index);
}

int32_t EL_get_index(EL_list *list, EL_node *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    return fr::index_of(list, pos);
}

EL_node *EL_advance(EL_list *, EL_node *pos, int32_t steps) { return fr::advance(pos, steps); }

void EL_replace_item(EL_node *pos, const void *source, int32_t size) {
    VORN_CHK(on_a_list(__func__, pos));
    VORN_CHK(item_size(__func__, pos, size, false));
    vorn::copy_bytes(pos->item, source, static_cast<std::size_t>(size));
}

void EL_replace_items_inbetween(EL_list *list, EL_node *from, EL_node *to, EL_list *source,
                                int32_t size) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list(__func__, source));
    VORN_CHK(list_range(__func__, list, from, to));
    if (from) VORN_CHK(item_size(__func__, from, size, false));
    EL_iter range = range_walk(list, from, to);
    EL_iter src = EL_all_items(source);
    while (EL_node *n = fr::step<EL_node>(&range, bytes_of)) {
        EL_node *s = fr::step<EL_node>(&src, bytes_of);
        if (!s) vorn::raise(vorn::raises::EL_RAISE_REPLACE_SOURCE_SHORT);
        vorn::copy_bytes(n->item, s->item, static_cast<std::size_t>(size));
    }
}

// ---- removal ----

void EL_remove_item(EL_list *list, EL_node *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    remove_node(list, pos);
}

int32_t EL_remove_at_index(EL_list *list, int32_t index) {
    VORN_CHK(list(__func__, list));
    EL_node *pos = fr::at_index<EL_node>(list, index);
    if (!pos) return 0;
    remove_node(list, pos);
    return 1;
}

// The walk is a step ahead, so the item just delivered may go.
void EL_remove_items_inbetween(EL_list *list, EL_node *from, EL_node *to) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_range(__func__, list, from, to));
    EL_iter it = range_walk(list, from, to);
    while (list->count > 0) {
        EL_node *n = fr::step<EL_node>(&it, bytes_of);
        if (!n) break;
        remove_node(list, n);
    }
}

// ---- lists as wholes ----

EL_node *EL_append_list(EL_list *list, EL_list **second) {
    EL_list *other = *second;
    VORN_CHK(list(__func__, list));
    VORN_CHK(list(__func__, other));
    const bool ring = list->closed != 0;
    if (ring) fr::reset_closed<EL_node>(list);
    if (other->closed) fr::reset_closed<EL_node>(other);
    EL_node *moved = fr::splice_behind<EL_node>(list, other);
    if (ring) fr::set_closed<EL_node>(list);
    VORN_CHK(dies(__func__, other));
    vorn::free_record(other);
    *second = nullptr;
    return moved;
}

void EL_reverse(EL_list *list) {
    VORN_CHK(list(__func__, list));
    fr::reverse<EL_node>(list);
}

void EL_set_closed(EL_list *list) {
    VORN_CHK(list(__func__, list));
    fr::set_closed<EL_node>(list);
}

void EL_reset_closed(EL_list *list) {
    VORN_CHK(list(__func__, list));
    fr::reset_closed<EL_node>(list);
}

void EL_roll(EL_list *list, EL_node *pos) {
    VORN_CHK(list(__func__, list));
    if (pos && pos->prev) VORN_CHK(list_pos(__func__, list, pos));
    if (!pos->prev) vorn::raise(vorn::raises::EL_RAISE_ROLL_NO_PREV);
    if (list->closed) fr::move_seam(list, pos);
}

EL_node *EL_make_open_at_position(EL_list *list, EL_node *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    if (!list->closed) fr::set_closed<EL_node>(list);
    EL_node *twin = insert_before(list, pos, pos->item);
    list->first = pos;
    list->last = twin;
    pos->prev = nullptr;
    twin->next = nullptr;
    list->closed = 0;
    return pos;
}

// The items before `pos` stay with the source, ended by a copy of its
// element; `pos` and everything behind it go to the new head.  Counts follow
// from the index of `pos`, one walk of the front part.
EL_list *EL_remove_and_get_end_part(EL_list *list, EL_node *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    const int32_t before = fr::index_of(list, pos);
    const int32_t total = list->count;
    EL_node *twin = insert_before(list, pos, pos->item);
    if (list->closed) fr::reset_closed<EL_node>(list);

    EL_list *end = new_head(list->item_size);
    end->first = pos;
    end->last = list->last;
    end->count = total - before;
    pos->prev = nullptr;

    list->last = twin;
    twin->next = nullptr;
    list->count = before + 1;
    VORN_CHK(on_split(end));
    return end;
}

// ---- walks ----

EL_iter EL_all_items(EL_list *list) {
    VORN_CHK(list(__func__, list));
    EL_iter it = fr::open_walk<EL_iter>(list->first, list->last, 1, nullptr);
    it.item_size = list->item_size;
    return it;
}

EL_iter EL_all_items_reversed(EL_list *list) {
    VORN_CHK(list(__func__, list));
    EL_iter it = fr::open_walk<EL_iter>(list->last, list->first, 0, nullptr);
    it.item_size = list->item_size;
    return it;
}

EL_iter EL_all_items_inbetween(EL_list *list, EL_node *from, EL_node *to, int32_t forward) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_range(__func__, list, from, to));
    EL_iter it = fr::open_walk<EL_iter>(from, to, forward, nullptr);
    it.item_size = list->item_size;
    return it;
}

EL_iter EL_tested_items_inbetween(EL_list *list, EL_node *from, EL_node *to, int32_t forward,
                                  EL_test_fn test) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_range(__func__, list, from, to));
    EL_iter it = fr::open_walk<EL_iter>(from, to, forward, test);
    it.item_size = list->item_size;
    return it;
}

// The out argument is written for every item reached, before its test.
int32_t EL_next_item(EL_iter *iter, void **item_out) {
    VORN_CHK(walk(__func__, iter->next));
    return fr::step<EL_node>(iter, bytes_of, [item_out](EL_node *n) { *item_out = n->item; }) !=
           nullptr;
}

int32_t EL_next_position(EL_iter *iter, EL_node **pos_out) {
    VORN_CHK(walk(__func__, iter->next));
    return fr::step<EL_node>(iter, bytes_of, [pos_out](EL_node *n) { *pos_out = n; }) != nullptr;
}

// The buffer is written for an accepted item only.
int32_t EL_next_item_copy(EL_iter *iter, void *buffer) {
    VORN_CHK(walk(__func__, iter->next));
    if (iter->next) VORN_CHK(item_size(__func__, iter->next, iter->item_size, true));
    EL_node *n = fr::step<EL_node>(iter, bytes_of);
    if (!n) return 0;
    vorn::copy_bytes(buffer, n->item, static_cast<std::size_t>(iter->item_size));
    return 1;
}

}  // extern "C"
