// HSH: open addressing with linear probing over power-of-two arrays.  The
// home slot is a bit field of the key's low 32 bits, cut out with a shift and
// the mask; no division and no hash function.  The lookups are one inlined
// probe loop over the keys array; everything that allocates (the resize) is
// kept out of line.

#include "vorn_hsh.h"

#include <cstring>
#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"

static_assert(std::is_standard_layout_v<HSH_table> && std::is_trivially_copyable_v<HSH_table>);
static_assert(offsetof(HSH_table, min_size) == 0 && offsetof(HSH_table, mask) == 20);
static_assert(offsetof(HSH_table, wanted_shift) == 28 && offsetof(HSH_table, keys) == 32);
static_assert(offsetof(HSH_iter, table) == 0 && offsetof(HSH_iter, index) == sizeof(void *));

namespace {

constexpr int32_t kSmallest = 8;
// The largest size: twice this would leave the 32-bit signed range.
constexpr int32_t kLargest = int32_t{1} << 30;

using Slot = uint32_t;

// The home slot: the key's bit field from `shift`, within the low 32 bits.
// `shift` never exceeds 32 - log2(size), so the field never reaches past bit
// 31 and a sign-preserving shift of a 32-bit word would cut out the same bits.
inline Slot home_of(const HSH_table *t, const void *key) {
    return (static_cast<uint32_t>(reinterpret_cast<uintptr_t>(key)) >> t->shift) & t->mask;
}

// The slot holding `key`, or -1.  Key 0 misses: the probe ends at the first
// empty slot before it can match.
inline int32_t find_slot(const HSH_table *t, const void *key) {
    void *const *keys = t->keys;
    const uint32_t mask = t->mask;
    Slot i = home_of(t, key);
    for (void *k; (k = keys[i]) != nullptr; i = (i + 1) & mask)
        if (k == key) return static_cast<int32_t>(i);
    return -1;
}

// The first empty slot of `key`'s probe sequence.  For keys known to be
// absent (rehashing), where no comparison is needed.
inline Slot free_slot(const HSH_table *t, const void *key) {
    Slot i = home_of(t, key);
    while (t->keys[i]) i = (i + 1) & t->mask;
    return i;
}

int32_t log2_of(int32_t size) {
    int32_t n = 0;
    while ((int32_t{1} << n) < size) ++n;
    return n;
}

// 8, doubled while below `wanted`, below `floor` or below `need`.
int32_t size_for(uint64_t wanted, uint64_t floor, uint64_t need) {
    uint64_t s = kSmallest;
    while (s < kLargest && (s < wanted || s < floor || s < need)) s *= 2;
    return static_cast<int32_t>(s);
}

void **new_words(int32_t n) {
    void **w = static_cast<void **>(MM_alloc_item(sizeof(void *) * static_cast<size_t>(n)));
    std::memset(w, 0, sizeof(void *) * static_cast<size_t>(n));
    return w;
}

void free_words(void **w, int32_t n) { MM_dealloc_item(w, sizeof(void *) * static_cast<size_t>(n)); }

// Fresh zeroed arrays of `size` slots, with mask, shift and limits to match;
// `count` becomes 0.  `size` is a power of two, at least min_size.
void prepare(HSH_table *t, int32_t size) {
    t->size = size;
    t->mask = static_cast<uint32_t>(size) - 1;
    const int32_t widest = 32 - log2_of(size);
    t->shift = t->wanted_shift < 0 ? 0 : (t->wanted_shift < widest ? t->wanted_shift : widest);
    t->low_limit = size > t->min_size ? size / 4 : 0;
    t->high_limit = static_cast<int32_t>(static_cast<int64_t>(size) * 7 / 8);
    t->count = 0;
    t->keys = new_words(size);
    t->values = new_words(size);
}

// Rehashes every entry, in old slot order, into arrays of the size that
// `wanted` asks for (never below min_size nor below count + 1).
[[gnu::noinline]] void resize(HSH_table *t, int64_t wanted) {
    void **old_keys = t->keys;
    void **old_values = t->values;
    const int32_t old_size = t->size;
    const int32_t count = t->count;
    prepare(t, size_for(static_cast<uint64_t>(wanted), static_cast<uint64_t>(t->min_size),
                        static_cast<uint64_t>(count) + 1));
    // The new high limit lies above `count` for both callers (a doubling at
    // the high limit, a halving below the low limit), so no growth can start
    // in the middle of this loop.
    for (int32_t s = 0; s < old_size; ++s) {
        if (!old_keys[s]) continue;
        const Slot j = free_slot(t, old_keys[s]);
        t->keys[j] = old_keys[s];
        t->values[j] = old_values[s];
        ++t->count;
    }
    free_words(old_keys, old_size);
    free_words(old_values, old_size);
}

// The slow half of an insertion: the key is new and `count` is at the high
// limit.  Grows and gives the key's empty slot in the new arrays; at the
// largest size, where no growth is possible, the table fills past its high
// limit while one empty slot remains, and beyond that gives -1.
[[gnu::noinline]] int32_t grow_for(HSH_table *t, const void *key) {
    if (t->size < kLargest) {
        resize(t, int64_t{t->size} * 2);
        return static_cast<int32_t>(free_slot(t, key));
    }
    if (t->count >= t->size - 1) return -1;
    return static_cast<int32_t>(free_slot(t, key));
}

// The removal repair.  Slot `hole` has just been emptied.  Going backward
// from the tail of the run behind the hole, the first entry whose probe would
// meet the hole before its own slot moves into the hole; its slot is the new
// hole and the scan starts again from the tail.  This is the layout that
// taking each entry out and putting it back would give, worked out from the
// distances alone: the probe of an entry at slot i from its home meets the
// hole first exactly when the hole lies on the way from home to i.  The
// forward pass that finds the tail also finds the first entry to move (the
// last one meeting the hole), so a run where nothing moves, the usual case
// for keys that sit at their home slots, costs one pass.
void repair(HSH_table *t, Slot hole) {
    void **keys = t->keys;
    void **values = t->values;
    const uint32_t mask = t->mask;
    const auto meets_hole = [&](Slot i, Slot h) {
        return ((i - home_of(t, keys[i])) & mask) >= ((i - h) & mask);
    };
    const auto move_into = [&](Slot from, Slot to) {
        keys[to] = keys[from];
        values[to] = values[from];
        keys[from] = nullptr;
    };
    Slot end = (hole + 1) & mask, first_move = hole;
    for (; keys[end]; end = (end + 1) & mask)
        if (meets_hole(end, hole)) first_move = end;
    if (first_move == hole) return;
    const Slot tail = (end - 1) & mask;
    move_into(first_move, hole);
    hole = first_move;
    for (Slot i = tail; i != hole;) {
        if (meets_hole(i, hole)) {
            move_into(i, hole);
            hole = i;
            i = tail;
        } else {
            i = (i - 1) & mask;
        }
    }
}

}  // namespace

extern "C" {

HSH_table *HSH_create(uint32_t min_size, int32_t shift) {
    HSH_table *t = vorn::alloc_record<HSH_table>();
    std::memset(t, 0, sizeof *t);
    t->min_size = size_for(min_size, 0, 0);
    t->wanted_shift = shift;
    prepare(t, t->min_size);
    VORN_CHK(born(t));
    return t;
}

void *HSH_set_value(HSH_table *t, void *key, void *value) {
    VORN_CHK(hsh(__func__, t));
    if (!key) return nullptr;
    void **keys = t->keys;
    const uint32_t mask = t->mask;
    Slot i = home_of(t, key);
    for (void *k; (k = keys[i]) != nullptr; i = (i + 1) & mask) {
        if (k == key) {
            t->values[i] = value;
            return value;
        }
    }
    if (t->count >= t->high_limit) {
        const int32_t j = grow_for(t, key);
        if (j < 0) return nullptr;
        i = static_cast<Slot>(j);
    }
    ++t->count;
    t->keys[i] = key;
    t->values[i] = value;  // read after a possible resize
    VORN_CHK(hsh_around(__func__, t, key));
    return value;
}

void *HSH_get_value(HSH_table *t, void *key) {
    VORN_CHK(hsh(__func__, t));
    void *const *keys = t->keys;
    const uint32_t mask = t->mask;
    for (Slot i = home_of(t, key); keys[i]; i = (i + 1) & mask)
        if (keys[i] == key) return t->values[i];
    return nullptr;
}

int32_t HSH_contains_key(HSH_table *t, void *key) {
    VORN_CHK(hsh(__func__, t));
    return find_slot(t, key) >= 0;
}

void HSH_remove_entry(HSH_table *t, void *key) {
    VORN_CHK(hsh(__func__, t));
    const int32_t h = find_slot(t, key);
    if (h < 0) return;
    t->keys[h] = nullptr;  // the value word stays behind, without meaning
    --t->count;
    if (t->count < t->low_limit) {
        resize(t, t->size / 2);  // rehashing leaves nothing to repair
        return;
    }
    repair(t, static_cast<Slot>(h));
    VORN_CHK(hsh_around(__func__, t, key));
}

HSH_iter HSH_all_entries(HSH_table *t) {
    VORN_CHK(hsh(__func__, t));
    HSH_iter it;
    it.table = t;
    it.index = t->count ? 0 : t->size;
    return it;
}

int32_t HSH_next(HSH_iter *it, void **key, void **value) {
    VORN_CHK(hsh(__func__, it->table));
    const HSH_table *t = it->table;
    if (it->index < 0) it->index = 0;  // a record filled by hand: never read before the array
    for (; it->index < t->size; ++it->index) {
        const int32_t s = it->index;
        if (!t->keys[s]) continue;
        if (key) *key = t->keys[s];
        if (value) *value = t->values[s];
        it->index = s + 1;
        return 1;
    }
    return 0;
}

void HSH_release(HSH_table **handle) {
    if (!handle || !*handle) return;
    HSH_table *t = *handle;
    VORN_CHK(dies(__func__, t));
    free_words(t->keys, t->size);
    free_words(t->values, t->size);
    vorn::free_record(t);
    *handle = nullptr;
}

}  // extern "C"
