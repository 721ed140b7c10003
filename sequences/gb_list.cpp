// GB: a list of fixed-size items in one contiguous block that grows by a
// fixed step.  The record belongs to the caller; only its block is an MM_
// block, always of exactly capacity * item_size bytes.  Raises nothing and
// tests no allocation.

#include "vorn_gb.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"

static_assert(std::is_standard_layout_v<GB_list> && std::is_trivially_copyable_v<GB_list>);
static_assert(offsetof(GB_list, data) == 0 && offsetof(GB_list, item_size) == sizeof(void *));
static_assert(offsetof(GB_list, count) == sizeof(void *) + 4);
static_assert(offsetof(GB_list, capacity) == sizeof(void *) + 8);
static_assert(offsetof(GB_list, inc) == sizeof(void *) + 12 && sizeof(GB_list::inc) == 2);
static_assert(offsetof(GB_list, closed) == sizeof(void *) + 14 && sizeof(GB_list::closed) == 2);

namespace {

constexpr int16_t kDefaultInc = 10;

// Bytes of n items of this list.
std::size_t bytes(const GB_list *l, int64_t n) {
    return static_cast<std::size_t>(n) * static_cast<std::size_t>(l->item_size);
}

unsigned char *slot(const GB_list *l, int32_t i) {
    return static_cast<unsigned char *>(l->data) + bytes(l, i);
}

// The items that can be read from a record: none when it holds no block
// (released, or the consumed other of an append), never more than fit.
int32_t held(const GB_list *l) {
    return l->capacity > 0 ? std::clamp(l->count, 0, l->capacity) : 0;
}

// Gives the record a block of exactly n items, keeping what fits.
void resize_block(GB_list *l, int32_t n) {
    if (l->capacity <= 0)
        l->data = MM_alloc_item(bytes(l, n));
    else
        l->data = MM_realloc_item(l->data, bytes(l, l->capacity), bytes(l, n));
    l->capacity = n;
}

// The capacity rule: nothing when n is not above count or equals capacity.
void set_capacity(GB_list *l, int32_t n) {
    if (n <= l->count || n == l->capacity) return;
    resize_block(l, n);
}

// Room for one more item: a full block grows by inc items (by one should inc
// not be positive, so that the slot at count always exists afterwards).
void grow_if_full(GB_list *l) {
    if (l->count < l->capacity) return;
    set_capacity(l, l->count + std::max<int32_t>(l->inc, 1));
}

void init(GB_list *l, int32_t item_size, int32_t capacity) {
    l->item_size = item_size;
    l->capacity = std::max(capacity, 1);
    l->data = MM_alloc_item(bytes(l, l->capacity));
    l->count = 0;
    l->inc = kDefaultInc;
    l->closed = 0;
}

// Copies n items from src (at index from) into dst (at index to).
void copy_items(GB_list *dst, int32_t to, const GB_list *src, int32_t from, int32_t n) {
    if (n > 0) std::memmove(slot(dst, to), slot(src, from), bytes(dst, n));
}

// A temporary MM_ block of n items, given back when it goes out of scope.
struct Scratch {
    std::size_t size;
    unsigned char *p;
    Scratch(const GB_list *l, int32_t n)
        : size(bytes(l, n)), p(static_cast<unsigned char *>(MM_alloc_item(size))) {}
    ~Scratch() { MM_dealloc_item(p, size); }
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;
};

}  // namespace

extern "C" {

void GB_init(GB_list *list, int32_t item_size, int32_t initial_capacity) {
    init(list, item_size, initial_capacity);
    VORN_CHK(gb(__func__, list));
}

void GB_copy(GB_list *dest, GB_list *src) {
    VORN_CHK(gb(__func__, src));
    const int32_t n = held(src);
    init(dest, src->item_size, n);
    dest->count = n;
    dest->inc = src->inc;
    dest->closed = src->closed;
    copy_items(dest, 0, src, 0, n);
    VORN_CHK(gb(__func__, dest));
}

void GB_copy_into(GB_list *dest, GB_list *src) {
    VORN_CHK(gb(__func__, dest));
    VORN_CHK(gb(__func__, src));
    VORN_CHK(gb_pair(__func__, dest, src, false));
    const int32_t n = held(src);
    set_capacity(dest, n);
    if (dest->capacity < n) resize_block(dest, n);  // only a dest holding no block
    dest->count = n;
    dest->closed = src->closed;
    copy_items(dest, 0, src, 0, n);
    VORN_CHK(gb(__func__, dest));
}

void GB_release(GB_list *list) {
    VORN_CHK(gb(__func__, list));
    if (list->capacity > 0) MM_dealloc_item(list->data, bytes(list, list->capacity));
    list->capacity = 0;
}

void GB_make_empty(GB_list *list) {
    VORN_CHK(gb(__func__, list));
    list->count = 0;
}

int32_t GB_count_items(GB_list *list) {
    VORN_CHK(gb(__func__, list));
    return list->count;
}

void GB_set_inc(GB_list *list, int16_t inc) {
    VORN_CHK(gb(__func__, list));
    list->inc = inc;
}

void GB_set_number_of_elements(GB_list *list, int32_t n) {
    VORN_CHK(gb(__func__, list));
    set_capacity(list, n);
    VORN_CHK(gb(__func__, list));
}

int32_t GB_append_after_last(GB_list *list, const void *item) {
    VORN_CHK(gb(__func__, list, true));
    grow_if_full(list);
    const int32_t at = list->count++;
    vorn::copy_bytes(slot(list, at), item, bytes(list, 1));
    VORN_CHK(gb(__func__, list));
    return at;
}

void GB_insert_item(GB_list *list, int32_t index, const void *item) {
    VORN_CHK(gb(__func__, list, true));
    if (index < 0 || index > list->count) return;
    grow_if_full(list);
    copy_items(list, index + 1, list, index, list->count - index);
    vorn::copy_bytes(slot(list, index), item, bytes(list, 1));
    ++list->count;
    VORN_CHK(gb(__func__, list));
}

void GB_replace_item(GB_list *list, int32_t index, const void *item) {
    VORN_CHK(gb(__func__, list, true));
    if (index < 0 || index >= list->count) return;
    vorn::copy_bytes(slot(list, index), item, bytes(list, 1));
    VORN_CHK(gb(__func__, list));
}

void GB_remove_item(GB_list *list, int32_t index) {
    VORN_CHK(gb(__func__, list, true));
    if (index < 0 || index >= list->count) return;
    copy_items(list, index, list, index + 1, list->count - index - 1);
    --list->count;
    VORN_CHK(gb(__func__, list));
}

void GB_remove_last_item(GB_list *list) {
    VORN_CHK(gb(__func__, list, true));
    if (list->count > 0) --list->count;
    VORN_CHK(gb(__func__, list));
}

int32_t GB_append_block(GB_list *list, GB_list *other) {
    VORN_CHK(gb(__func__, list, true));
    VORN_CHK(gb(__func__, other));
    VORN_CHK(gb_pair(__func__, list, other, true));
    const int32_t before = list->count;
    const int32_t n = held(other);
    if (list->capacity < before + n) resize_block(list, before + n);
    copy_items(list, before, other, 0, n);
    list->count = before + n;
    GB_release(other);
    VORN_CHK(gb(__func__, list));
    return before;
}

int32_t GB_get_index([[maybe_unused]] GB_list *list, int32_t index) {
    VORN_CHK(gb(__func__, list));
    return index;
}

int32_t GB_advance(GB_list *list, int32_t index, int32_t delta) {
    VORN_CHK(gb(__func__, list));
    const int64_t count = list->count;
    if (count <= 0) return -1;
    int64_t to = int64_t{index} + delta;  // no overflow on the way
    if (!list->closed) return to < 0 || to >= count ? -1 : static_cast<int32_t>(to);
    to %= count;
    if (to < 0) to += count;
    return static_cast<int32_t>(to);
}

void GB_reverse(GB_list *list) {
    VORN_CHK(gb(__func__, list, true));
    const int32_t half = list->count / 2;
    if (half == 0) return;
    Scratch tmp(list, 1);
    const std::size_t one = bytes(list, 1);
    for (int32_t i = 0; i < half; ++i) {
        unsigned char *a = slot(list, i);
        unsigned char *b = slot(list, list->count - 1 - i);
        std::memcpy(tmp.p, a, one);
        std::memcpy(a, b, one);
        std::memcpy(b, tmp.p, one);
    }
    VORN_CHK(gb(__func__, list));
}

void GB_set_closed(GB_list *list) {
    VORN_CHK(gb(__func__, list));
    list->closed = 1;
}

void GB_reset_closed(GB_list *list) {
    VORN_CHK(gb(__func__, list));
    list->closed = 0;
}

void GB_roll(GB_list *list, int32_t n) {
    VORN_CHK(gb(__func__, list, true));
    const int32_t count = list->count;
    if (!list->closed || count < 2) return;
    // The rotation to the right, in 0 to count - 1.
    const int32_t s = static_cast<int32_t>(((int64_t{count} - n) % count + count) % count);
    if (s == 0) return;
    unsigned char *base = slot(list, 0);
    if (s <= count / 2) {
        // The last s items wait aside while the others move up by s.
        Scratch tmp(list, s);
        std::memcpy(tmp.p, slot(list, count - s), bytes(list, s));
        std::memmove(slot(list, s), base, bytes(list, count - s));
        std::memcpy(base, tmp.p, bytes(list, s));
    } else {
        // The first count - s items wait aside while the last s move down.
        const int32_t k = count - s;
        Scratch tmp(list, k);
        std::memcpy(tmp.p, base, bytes(list, k));
        std::memmove(base, slot(list, k), bytes(list, s));
        std::memcpy(slot(list, s), tmp.p, bytes(list, k));
    }
    VORN_CHK(gb(__func__, list));
}

void GB_make_open_at_position(GB_list *list, int32_t index) {
    VORN_CHK(gb(__func__, list, true));
    if (index < 0 || index >= list->count || !list->closed) return;
    grow_if_full(list);
    const int32_t count = list->count;
    Scratch tmp(list, count);
    std::memcpy(tmp.p, slot(list, 0), bytes(list, count));
    // index .. end to the front, then 0 .. index inclusive behind them.
    std::memcpy(slot(list, 0), tmp.p + bytes(list, index), bytes(list, count - index));
    std::memcpy(slot(list, count - index), tmp.p, bytes(list, index + 1));
    list->count = count + 1;
    list->closed = 0;
    VORN_CHK(gb(__func__, list));
}

void GB_remove_and_get_end_part(GB_list *dest, GB_list *list, int32_t index) {
    VORN_CHK(gb(__func__, list, true));
    if (index < 0 || index >= list->count || list->closed) return;
    const int32_t n = list->count - index;
    init(dest, list->item_size, n);
    dest->count = n;
    dest->inc = list->inc;
    dest->closed = list->closed;
    copy_items(dest, 0, list, index, n);
    list->count = index + 1;
    VORN_CHK(gb(__func__, list));
}

}  // extern "C"
