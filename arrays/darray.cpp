// DA: the dynamic array of fixed-size items in one MM_ block.
//
// The per-item path (DA_append, DA_put_item, DA_get_item, DA_string) is a
// capacity test and a copy of item_size bytes; growth lives out of line, and
// copies of the common small sizes compile to plain loads and stores.
// Byte counts are worked out in size_t (item counts are 32-bit), so no
// product of a count and an item size overflows on the way to the block.

#include "vorn_da.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"

static_assert(std::is_standard_layout_v<DA_array> && std::is_trivially_copyable_v<DA_array>);
static_assert(offsetof(DA_array, item_size) == 0 && offsetof(DA_array, increment) == 4);
static_assert(offsetof(DA_array, nalloc) == 8 && offsetof(DA_array, nitems) == 12);
static_assert(offsetof(DA_array, data) == 16);
static_assert(std::is_standard_layout_v<DA_iter> && std::is_trivially_copyable_v<DA_iter>);
static_assert(offsetof(DA_iter, array) == 0 && offsetof(DA_iter, forward) == sizeof(void *));
static_assert(offsetof(DA_iter, index) == sizeof(void *) + 4);
static_assert(offsetof(DA_iter, last) == sizeof(void *) + 8);

namespace {

inline std::size_t bytes_of(int64_t items, int32_t item_size) {
    return static_cast<std::size_t>(items) * static_cast<std::size_t>(item_size);
}

inline char *block(const DA_array *a) { return static_cast<char *>(a->data); }

inline char *slot(const DA_array *a, int64_t index) {
    return block(a) + bytes_of(index, a->item_size);
}

// The growth rule: capacity becomes the smallest whole number of steps that
// holds `count` items (worked out as ((count - 1) / increment + 1) *
// increment, division toward zero), if that exceeds the present capacity.
// The added bytes are zeroed.  Growth without the raise: when no block was
// obtained it gives false, `data` is left null and the counts keep their
// values; `extend` (below) then raises, DA_copy frees its record first.
bool grow(DA_array *a, int32_t count) {
    const int64_t step = a->increment;
    // 64-bit arithmetic: the result is the 32-bit rule for every count whose
    // capacity fits, and no count can overflow on the way.
    const auto wanted = static_cast<int32_t>(((int64_t{count} - 1) / step + 1) * step);
    if (wanted <= a->nalloc) return true;
    const std::size_t had = a->data ? bytes_of(a->nalloc, a->item_size) : 0;
    const std::size_t want = bytes_of(wanted, a->item_size);
    a->data = a->data ? MM_realloc_item(a->data, had, want) : MM_alloc_item(want);
    if (!a->data) return false;
    std::memset(block(a) + had, 0, want - had);
    a->nalloc = wanted;
    return true;
}

[[gnu::noinline]] void extend(DA_array *a, int32_t count) {
    if (!grow(a, count)) vorn::raise(vorn::raises::DA_RAISE_EXTEND_NO_MEMORY);
}

inline void ensure(DA_array *a, int64_t needed) {
    if (needed > a->nalloc) [[unlikely]]
        extend(a, static_cast<int32_t>(needed));
}

DA_array *new_array(int32_t item_size, int32_t increment, const vorn::RaiseSite &no_memory) {
    DA_array *a = vorn::alloc_record<DA_array>();
    if (!a) vorn::raise(no_memory);
    *a = DA_array{item_size, increment, 0, 0, nullptr};
    VORN_CHK(born(a));
    return a;
}

// Any count, with growth: nitems + count > nalloc asks for nitems + count.
[[gnu::noinline]] void append_general(DA_array *a, const void *items, int32_t count) {
    if (count <= 0) return;
    const int32_t n = a->nitems;
    ensure(a, int64_t{n} + count);
    vorn::copy_bytes(slot(a, n), items, bytes_of(count, a->item_size));
    a->nitems = n + count;
}

// Stores one item at `index`, lengthening the array; a null item zeroes the
// slot.  DA_put_item and DA_get_item test the capacity themselves and call
// the *_grown forms only to grow, so that their fast paths need no frame.
void store_at(DA_array *a, int32_t index, const void *item) {
    if (index >= a->nitems) a->nitems = index + 1;
    char *to = slot(a, index);
    const std::size_t size = static_cast<std::size_t>(a->item_size);
    if (item)
        vorn::copy_bytes(to, item, size);
    else
        std::memset(to, 0, size);
}

[[gnu::noinline]] void put_grown(DA_array *a, int32_t index, const void *item) {
    extend(a, index + 1);
    store_at(a, index, item);
}

[[gnu::noinline]] void *get_grown(DA_array *a, int32_t index) {
    extend(a, index + 1);
    if (index >= a->nitems) a->nitems = index + 1;
    return slot(a, index);
}

void free_block(DA_array *a) {
    if (a->data) MM_dealloc_item(a->data, bytes_of(a->nalloc, a->item_size));
    a->data = nullptr;
    a->nalloc = 0;
    a->nitems = 0;
}

// Gives an empty array (no items, no block) the items of `from`: capacity
// under its own increment, rounded up from the count.
void take_items(DA_array *to, const DA_array *from) {
    const int32_t n = from->nitems;
    if (n <= 0) return;
    extend(to, n);
    std::memcpy(to->data, from->data, bytes_of(n, from->item_size));
    to->nitems = n;
}

}  // namespace

extern "C" {

// ---- life and size ----------------------------------------------------------

DA_array *DA_create(int32_t item_size, int32_t increment) {
    return new_array(item_size, increment, vorn::raises::DA_RAISE_CREATE_NO_MEMORY);
}

void DA_release(DA_array *array) {
    if (!array) return;
    VORN_CHK(dies(__func__, array));
    free_block(array);
    vorn::free_record(array);
}

void DA_clear(DA_array *array) {
    VORN_CHK(da(__func__, array));
    free_block(array);
}

void DA_reset(DA_array *array) {
    VORN_CHK(da(__func__, array));
    array->nitems = 0;
}

void DA_truncate(DA_array *array, int32_t count) {
    VORN_CHK(da_index(__func__, array, count));
    if (count < array->nitems) array->nitems = count;
}

void DA_setsize(DA_array *array, int32_t count) {
    VORN_CHK(da_index(__func__, array, count));
    extend(array, count);
    array->nitems = count;
}

void DA_extend(DA_array *array, int32_t count) {
    VORN_CHK(da(__func__, array));
    extend(array, count);
}

int32_t DA_nitems(DA_array *array) {
    VORN_CHK(da(__func__, array));
    return array->nitems;
}

int32_t DA_nalloc(DA_array *array) {
    VORN_CHK(da(__func__, array));
    return array->nalloc;
}

int32_t DA_memsize(DA_array *array) {
    if (array) VORN_CHK(da(__func__, array));
    return array ? static_cast<int32_t>(bytes_of(array->nalloc, array->item_size)) : 0;
}

int32_t DA_check(DA_array *array) {
    VORN_CHK(da(__func__, array));
    std::size_t held = sizeof(DA_array);
    if (array->data) held += bytes_of(array->nalloc, array->item_size);
    return static_cast<int32_t>(held);
}

void *DA_data(DA_array *array) {
    VORN_CHK(da(__func__, array));
    return array->data;
}

// ---- items ------------------------------------------------------------------

// The per-item path: one capacity test and the copy, in a function that
// needs no frame; everything else is in append_general.
void DA_append(DA_array *array, const void *items, int32_t count) {
    VORN_CHK(da(__func__, array));
    const int32_t n = array->nitems;
    if (count == 1 && n < array->nalloc) [[likely]] {
        array->nitems = n + 1;
        vorn::copy_bytes(slot(array, n), items, static_cast<std::size_t>(array->item_size));
        return;
    }
    append_general(array, items, count);
}

void DA_insert(DA_array *array, int32_t index, const void *items, int32_t count) {
    VORN_CHK(da_index(__func__, array, index));
    const int32_t n = array->nitems;
    const int32_t size = array->item_size;
    if (index < n) {
        ensure(array, int64_t{n} + count);
        if (count <= 0) return;
        std::memmove(slot(array, int64_t{index} + count), slot(array, index),
                     bytes_of(n - index, size));
        vorn::copy_bytes(slot(array, index), items, bytes_of(count, size));
        array->nitems = n + count;
    } else {
        // One slot more than the items occupy is asked for here.
        ensure(array, int64_t{index} + count + 1);
        if (count > 0) vorn::copy_bytes(slot(array, index), items, bytes_of(count, size));
        array->nitems = index + std::max(count, 0);
    }
}

void DA_delete(DA_array *array, int32_t index, int32_t count) {
    VORN_CHK(da_range(__func__, array, index, count));
    if (count <= 0) return;
    const int32_t behind = array->nitems - index - count;
    if (behind > 0)
        std::memmove(slot(array, index), slot(array, int64_t{index} + count),
                     bytes_of(behind, array->item_size));
    array->nitems -= count;
}

void DA_put_item(DA_array *array, int32_t index, const void *item) {
    VORN_CHK(da_index(__func__, array, index));
    if (index >= array->nalloc) [[unlikely]]
        return put_grown(array, index, item);
    store_at(array, index, item);
}

void *DA_get_item(DA_array *array, int32_t index) {
    VORN_CHK(da_index(__func__, array, index));
    if (index >= array->nalloc) [[unlikely]]
        return get_grown(array, index);
    if (index >= array->nitems) array->nitems = index + 1;
    return slot(array, index);
}

char *DA_string(DA_array *array) {
    VORN_CHK(da(__func__, array));
    const int32_t n = array->nitems;
    if (n >= array->nalloc) [[unlikely]]
        extend(array, n + 1);
    char *text = block(array);
    text[n] = '\0';  // a byte offset: the terminator serves item_size 1
    return text;
}

// ---- whole arrays -----------------------------------------------------------

DA_array *DA_copy(DA_array *array) {
    VORN_CHK(da(__func__, array));
    DA_array *copy = new_array(array->item_size, array->increment, vorn::raises::DA_RAISE_COPY_NO_MEMORY);
    // A block that cannot be had takes the new record with it, so that the
    // raise leaves nothing allocated.
    if (array->nitems > 0 && !grow(copy, array->nitems)) {
        VORN_CHK(forget(copy));
        vorn::free_record(copy);
        vorn::raise(vorn::raises::DA_RAISE_EXTEND_NO_MEMORY);
    }
    take_items(copy, array);
    return copy;
}

void DA_copy_into(DA_array *destination, DA_array *source) {
    VORN_CHK(da(__func__, destination));
    VORN_CHK(da(__func__, source));
    if (destination->item_size != source->item_size)
        vorn::raise(vorn::raises::DA_RAISE_COPY_INTO_SIZES_DIFFER);
    free_block(destination);
    take_items(destination, source);  // so the same array twice ends empty
}

int32_t DA_equal(DA_array *a, DA_array *b) {
    VORN_CHK(da(__func__, a));
    VORN_CHK(da(__func__, b));
    if (a->item_size != b->item_size || a->nitems != b->nitems) return 0;
    if (a->nitems <= 0) return 1;
    return std::memcmp(a->data, b->data, bytes_of(a->nitems, a->item_size)) == 0 ? 1 : 0;
}

void DA_reverse(DA_array *array) {
    VORN_CHK(da(__func__, array));
    const int32_t n = array->nitems;
    const std::size_t size = static_cast<std::size_t>(array->item_size);
    void *temp = MM_alloc_item(size);  // one item's worth, on every call
    for (int32_t i = 0; i < n / 2; ++i) {
        char *low = slot(array, i);
        char *high = slot(array, n - 1 - i);
        std::memcpy(temp, low, size);
        std::memcpy(low, high, size);
        std::memcpy(high, temp, size);
    }
    MM_dealloc_item(temp, size);
}

// The smaller part goes through the temporary, which so never exceeds half
// the array; the larger part moves in place.
void DA_roll(DA_array *array, int32_t shift) {
    VORN_CHK(da(__func__, array));
    const int32_t n = array->nitems;
    if (n <= 1) return;
    // r items go from the end to the front: the remainder of -shift by n.
    const auto r = static_cast<int32_t>(((-int64_t{shift}) % n + n) % n);
    if (r == 0) return;
    const int32_t m = n - r, size = array->item_size;
    char *p = block(array);
    const bool tail_saved = r <= n / 2;
    const std::size_t saved = bytes_of(tail_saved ? r : m, size);
    void *temp = MM_alloc_item(saved);
    if (tail_saved) {  // the last r items wait while the first m move up
        std::memcpy(temp, slot(array, m), saved);
        std::memmove(slot(array, r), p, bytes_of(m, size));
        std::memcpy(p, temp, saved);
    } else {  // the first m items wait while the last r move down
        std::memcpy(temp, p, saved);
        std::memmove(p, slot(array, m), bytes_of(r, size));
        std::memcpy(slot(array, r), temp, saved);
    }
    MM_dealloc_item(temp, saved);
}

// ---- walking ----------------------------------------------------------------

DA_iter DA_all_items(DA_array *array) {
    VORN_CHK(da(__func__, array));
    return DA_iter{array, 1, 0, array->nitems - 1, nullptr};
}

DA_iter DA_tested_items(DA_array *array, DA_test_fn test) {
    VORN_CHK(da(__func__, array));
    return DA_iter{array, 1, 0, array->nitems - 1, test};
}

int32_t DA_next(DA_iter *iterator, void **item) {
    VORN_CHK(da(__func__, iterator->array));
    *item = nullptr;
    DA_iter &it = *iterator;
    const int64_t n = it.array->nitems;  // read once for the call
    const int64_t last = it.last;
    int64_t index = it.index;
    void *found = nullptr;
    if (it.forward) {
        while (index <= last) {
            if (index >= n) {  // no index ahead is held any more
                index = last + 1;
                break;
            }
            if (index < 0) {  // indices below 0 deliver nothing
                index = std::min<int64_t>(0, last + 1);
                continue;
            }
            void *candidate = slot(it.array, index++);
            if (!it.test || it.test(candidate)) {
                found = candidate;
                break;
            }
        }
    } else {
        while (index >= last) {
            if (index < 0) {
                index = last - 1;
                break;
            }
            if (index >= n) {  // indices at or beyond nitems deliver nothing
                index = std::max(n - 1, last - 1);
                continue;
            }
            void *candidate = slot(it.array, index--);
            if (!it.test || it.test(candidate)) {
                found = candidate;
                break;
            }
        }
    }
    it.index = static_cast<int32_t>(index);
    *item = found;
    return found ? 1 : 0;
}

}  // extern "C"
