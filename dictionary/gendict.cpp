// GENDICT: typed entries on the intrusive list.  Entries are MM_ blocks; keys
// and texts live on the standard heap.  Copy and release walk nested
// dictionaries without recursion.

#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"
#include "dict_core.hpp"
#include "vorn_gendict.h"

static_assert(std::is_standard_layout_v<GENDICT_item> && std::is_trivially_copyable_v<GENDICT_item>);
static_assert(offsetof(GENDICT_item, prev) == 0 && offsetof(GENDICT_item, next) == sizeof(void *));
static_assert(offsetof(GENDICT_item, key) == 2 * sizeof(void *));
static_assert(sizeof(GENDICT_value::data) >= sizeof(double));

namespace vorn::dict {

namespace {

// The value as the entry will hold it: a text of its own, and no stray bits
// behind a kind that has no value.
GENDICT_value owned_copy(GENDICT_value v) {
    if (v.kind == GENDICT_STRING) {
        if (v.data.text) v.data.text = copy_text(v.data.text);
    } else if (v.kind < GENDICT_INT || v.kind > GENDICT_DICT) {
        std::memset(&v.data, 0, sizeof v.data);
    }
    return v;
}

// Frees the key, a text and the record; a sub-dictionary is the caller's.
void free_shell(GENDICT_item *e) {
    std::free(e->key);
    if (e->value.kind == GENDICT_STRING) std::free(e->value.data.text);
    vorn::free_record(e);
}

void free_entry(GENDICT_item *e) {
    if (holds_dict(e->value)) release_tree(e->value.data.dict);
    free_shell(e);
}

int32_t clamp_to_int32(double r) {
    if (std::isnan(r)) return 0;
    if (r >= 2147483648.0) return INT32_MAX;
    if (r <= -2147483649.0) return INT32_MIN;
    return static_cast<int32_t>(r);  // drops the fraction
}

// Copies every entry of a tree into the dictionaries on `targets`: the top of
// the stack is the copy of the dictionary being walked.
struct Copier {
    Stack<SL_list *> targets;

    SL_list *enter(GENDICT_item *src, int32_t) {
        GENDICT_value v = src->value;
        SL_list *descend = nullptr;
        if (holds_dict(v)) {
            descend = v.data.dict;
            v.data.dict = SL_create();
        } else {
            v = owned_copy(v);
        }
        append_entry(targets.top(), copy_text(src->key), v);
        if (descend) targets.push(v.data.dict);
        return descend;
    }
    void leave(int32_t) { targets.pop(); }
};

}  // namespace

GENDICT_item *find_entry(const SL_list *d, const char *key) {
    for (GENDICT_item *e = first_entry(d); e; e = e->next)
        if (std::strcmp(e->key, key) == 0) return e;
    return nullptr;
}

GENDICT_item *append_entry(SL_list *d, char *key, GENDICT_value value) {
    GENDICT_item *e = vorn::alloc_record<GENDICT_item>();
    e->key = key;
    e->value = value;
    SL_append_after_last(d, e);
    return e;
}

void replace_value(GENDICT_item *e, GENDICT_value value) {
    const GENDICT_value old = e->value;
    e->value = value;
    if (old.kind == GENDICT_STRING) {
        std::free(old.data.text);
    } else if (holds_dict(old) && !(value.kind == GENDICT_DICT && value.data.dict == old.data.dict)) {
        release_tree(old.data.dict);
    }
}

void release_tree(SL_list *d) {
    while (GENDICT_item *e = first_entry(d)) {
        SL_remove_item(d, e);
        if (holds_dict(e->value)) {
            SL_list *sub = e->value.data.dict;
            SL_append_list(d, &sub);  // its entries go later; its head goes now
        }
        free_shell(e);
    }
    VORN_CHK(dies(__func__, d));
    vorn::free_record(d);
}

}  // namespace vorn::dict

using namespace vorn::dict;

extern "C" {

SL_list *GENDICT_create(void) { return SL_create(); }

void GENDICT_add(SL_list *dict, const char *key, GENDICT_value value) {
    VORN_CHK(list(__func__, dict));
    GENDICT_value own = owned_copy(value);  // before anything old is freed
    if (GENDICT_item *e = find_entry(dict, key))
        replace_value(e, own);  // the key copy that stands is byte for byte the same
    else
        append_entry(dict, copy_text(key), own);
}

int32_t GENDICT_get(SL_list *dict, const char *key, GENDICT_value *out) {
    VORN_CHK(list(__func__, dict));
    GENDICT_item *e = find_entry(dict, key);
    if (!e) return 0;
    *out = e->value;
    return 1;
}

int32_t GENDICT_get_int_val(GENDICT_value value, int32_t *out) {
    switch (value.kind) {
        case GENDICT_INT: *out = value.data.integer; return 1;
        case GENDICT_DOUBLE: {
            const double d = value.data.real;
            *out = clamp_to_int32(d > 0.0 ? d + 0.5 : d - 0.5);
            return 1;
        }
        case GENDICT_STRING: {
            long n = value.data.text ? std::strtol(value.data.text, nullptr, 10) : 0;
            if (n > INT32_MAX) n = INT32_MAX;
            if (n < INT32_MIN) n = INT32_MIN;
            *out = static_cast<int32_t>(n);
            return 1;
        }
        default: return 0;
    }
}

void GENDICT_delete_item(SL_list *dict, const char *key) {
    VORN_CHK(list(__func__, dict));
    GENDICT_item *e = find_entry(dict, key);
    if (!e) return;
    SL_remove_item(dict, e);
    free_entry(e);
}

SL_list *GENDICT_copy(SL_list *dict) {
    VORN_CHK(list(__func__, dict));
    Copier copier;
    SL_list *copy = SL_create();
    copier.targets.push(copy);
    walk_tree(dict, copier);
    return copy;
}

void GENDICT_release(SL_list **handle) {
    if (!*handle) return;
    VORN_CHK(list(__func__, *handle));
    release_tree(*handle);
    *handle = nullptr;
}

}  // extern "C"
