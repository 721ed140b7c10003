// vorn_lu: the entry added last lives in the record, the earlier ones in an
// HSH table.  Each operation looks at the slot and the table in a fixed
// order; the slot wins where both hold a key.

#include "vorn_lu.h"

#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"

static_assert(std::is_standard_layout_v<vorn_lu> && std::is_trivially_copyable_v<vorn_lu>);
static_assert(offsetof(vorn_lu, last_value) == sizeof(void *));
static_assert(offsetof(vorn_lu, table) == 2 * sizeof(void *));

namespace {

// Calls f(key, value) for each table entry in slot order; stops early when f
// gives true and then gives true.
template <class F>
bool each_entry(HSH_table *table, F &&f) {
    HSH_iter it = HSH_all_entries(table);
    void *key;
    void *value;
    while (HSH_next(&it, &key, &value))
        if (f(key, value)) return true;
    return false;
}

}  // namespace

extern "C" {

vorn_lu *vorn_lu_create(void) {
    vorn_lu *lu = vorn::alloc_record<vorn_lu>();
    lu->last_key = nullptr;
    lu->last_value = nullptr;
    lu->table = HSH_create(0, 0);
    VORN_CHK(born(lu));
    return lu;
}

void vorn_lu_add(vorn_lu *lu, void *key, void *value) {
    if (lu) VORN_CHK(live(__func__, lu));
    if (!lu) return;
    if (lu->last_key) HSH_set_value(lu->table, lu->last_key, lu->last_value);
    lu->last_key = key;
    lu->last_value = value;
}

void *vorn_lu_get(vorn_lu *lu, void *key) {
    if (lu) VORN_CHK(live(__func__, lu));
    if (!lu) return nullptr;
    if (lu->last_key == key) return lu->last_value;
    return HSH_get_value(lu->table, key);
}

void *vorn_lu_find(vorn_lu *lu, void *value) {
    if (lu) VORN_CHK(live(__func__, lu));
    if (!lu) return nullptr;
    if (lu->last_value && lu->last_value == value) return lu->last_key;
    void *found = nullptr;
    each_entry(lu->table, [&](void *k, void *v) {
        if (v != value) return false;
        found = k;
        return true;
    });
    return found;
}

void vorn_lu_remove(vorn_lu *lu, void *key) {
    if (lu) VORN_CHK(live(__func__, lu));
    if (!lu) return;
    if (lu->last_key == key) {
        lu->last_key = nullptr;
        lu->last_value = nullptr;
        return;
    }
    HSH_remove_entry(lu->table, key);
}

void vorn_lu_apply(vorn_lu *lu, vorn_lu_apply_fn apply) {
    if (lu) VORN_CHK(live(__func__, lu));
    if (!lu || !apply) return;
    if (lu->last_value) apply(lu->last_value);
    each_entry(lu->table, [apply](void *, void *v) {
        apply(v);
        return false;
    });
}

void vorn_lu_release(vorn_lu **handle, vorn_lu_release_fn release) {
    if (!handle || !*handle) return;
    vorn_lu *lu = *handle;
    VORN_CHK(dies(__func__, lu));
    if (release) {
        if (lu->last_value) release(&lu->last_value);
        each_entry(lu->table, [release](void *, void *v) {
            void *copy = v;
            release(&copy);
            return false;
        });
    }
    HSH_release(&lu->table);
    vorn::free_record(lu);
    *handle = nullptr;
}

}  // extern "C"
