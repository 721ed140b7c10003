// io_lut: read tables (identifier -> pointer) on a DA array of pointer words,
// write tables (pointer -> identifier) on an HSH table.  The kinds are told
// apart by `pointers` being null.

#include "vorn_io_lut.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"

static_assert(std::is_standard_layout_v<io_lut_table> && std::is_trivially_copyable_v<io_lut_table>);
static_assert(offsetof(io_lut_table, pointers) == sizeof(void *));
static_assert(std::is_standard_layout_v<io_lut_iter> && offsetof(io_lut_iter, count) == sizeof(void *));

namespace {

constexpr int32_t kSlotsPerStep = 1024;
constexpr int32_t kWriteMinimum = 1024;
constexpr int32_t kWriteShift = 5;  // leaves the low five bits of a pointer out of the hash

io_lut_table *new_table() {
    io_lut_table *t = vorn::alloc_record<io_lut_table>();
    VORN_CHK(born(t));
    *t = io_lut_table{};
    return t;
}

void **slots(const io_lut_table *t) { return static_cast<void **>(t->pointers->data); }

// The lowest identifier from 1 whose slot equals `pointer` (null matches a
// hole), or 0.
int32_t scan(const io_lut_table *t, void *pointer) {
    void **s = slots(t);
    for (int32_t id = 1; id < t->pointers->nitems; ++id)
        if (s[id] == pointer) return id;
    return 0;
}

// The identifier stored under a non-null pointer; 0 means absent.
int32_t hashed_id(const io_lut_table *t, void *pointer) {
    return static_cast<int32_t>(reinterpret_cast<intptr_t>(HSH_get_value(t->identifiers, pointer)));
}

void *id_word(int32_t id) { return reinterpret_cast<void *>(static_cast<intptr_t>(id)); }

// The pointer of `id` in a read table, or null for an id out of 1..nitems-1
// or a hole.  A write table has no such direction and misses every id.
void *slot_pointer(const io_lut_table *t, int32_t id) {
    if (!t->pointers || id < 1 || id >= t->pointers->nitems) return nullptr;
    return slots(t)[id];
}

}  // namespace

extern "C" {

io_lut_table *io_lut_create(void) { return io_lut_create_read(0); }

io_lut_table *io_lut_create_read(int32_t overwrite) {
    io_lut_table *t = new_table();
    t->read_table = 1;
    t->pointers = DA_create(sizeof(void *), kSlotsPerStep);
    void *null_pointer = nullptr;
    DA_append(t->pointers, &null_pointer, 1);  // slot 0: identifier 0 is the null pointer's
    t->overwrite = overwrite;
    return t;
}

io_lut_table *io_lut_create_write(void) {
    io_lut_table *t = new_table();
    t->identifiers = HSH_create(kWriteMinimum, kWriteShift);
    t->next_id = 1;
    return t;
}

int32_t io_lut_add(io_lut_table *t, void *pointer) {
    VORN_CHK(live(__func__, t));
    if (t->pointers) {
        DA_append(t->pointers, &pointer, 1);
        return DA_nitems(t->pointers) - 1;
    }
    const int32_t id = t->next_id++;
    if (pointer) HSH_set_value(t->identifiers, pointer, id_word(id));
    return id;
}

void io_lut_set(io_lut_table *t, void *pointer, int32_t id) {
    VORN_CHK(live(__func__, t));
    if (t->pointers) {
        if (id < 0) return;
        if (!t->overwrite && id < t->pointers->nitems && slots(t)[id] != pointer)
            vorn::raise(vorn::raises::IO_LUT_RAISE_SET_SLOT_TAKEN);
        DA_put_item(t->pointers, id, &pointer);
        return;
    }
    HSH_set_value(t->identifiers, pointer, id_word(id));
    // In 64 bits: an id of INT32_MAX leaves next_id at INT32_MAX rather than wrapping.
    const int64_t above = std::min<int64_t>(int64_t{id} + 1, INT32_MAX);
    t->next_id = static_cast<int32_t>(std::max<int64_t>(t->next_id, above));
}

void io_lut_remove(io_lut_table *t, void *pointer) {
    VORN_CHK(live(__func__, t));
    if (t->pointers) {
        if (const int32_t id = scan(t, pointer)) slots(t)[id] = nullptr;
        return;
    }
    HSH_remove_entry(t->identifiers, pointer);
}

int32_t io_lut_look_id(io_lut_table *t, void *pointer) {
    VORN_CHK(live(__func__, t));
    if (t->pointers) return scan(t, pointer);
    return pointer ? hashed_id(t, pointer) : 0;
}

int32_t io_lut_get_id(io_lut_table *t, void *pointer) {
    VORN_CHK(live(__func__, t));
    if (t->pointers) {
        const int32_t id = scan(t, pointer);
        if (!id) vorn::raise(vorn::raises::IO_LUT_RAISE_READ_NO_ID);
        return id;
    }
    if (!pointer) return 0;
    const int32_t id = hashed_id(t, pointer);
    if (!id) vorn::raise(vorn::raises::IO_LUT_RAISE_WRITE_NO_ID);
    return id;
}

void *io_lut_look_ptr(io_lut_table *t, int32_t id) {
    VORN_CHK(live(__func__, t));
    return slot_pointer(t, id);
}

void *io_lut_get_ptr(io_lut_table *t, int32_t id) {
    VORN_CHK(live(__func__, t));
    void *p = slot_pointer(t, id);
    if (!p) vorn::raise(vorn::raises::IO_LUT_RAISE_NO_POINTER);
    return p;
}

io_lut_iter io_lut_all_items(io_lut_table *t) {
    VORN_CHK(live(__func__, t));
    io_lut_iter it{nullptr, 0, 1};
    if (t->pointers) {
        it.items = slots(t);
        it.count = t->pointers->nitems;
    }
    return it;
}

void *io_lut_next_item(io_lut_iter *it) {
    while (it->position < it->count && !it->items[it->position]) ++it->position;
    if (it->position >= it->count) return nullptr;
    return it->items[it->position++];
}

void io_lut_release(io_lut_table **handle) {
    if (!handle || !*handle) return;
    io_lut_table *t = *handle;
    VORN_CHK(dies(__func__, t));
    if (t->pointers) DA_release(t->pointers);
    if (t->identifiers) HSH_release(&t->identifiers);
    *handle = nullptr;
    vorn::free_record(t);
}

}  // extern "C"
