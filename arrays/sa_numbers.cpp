// SA: ascending sets of 32-bit numbers in a DA array of item size 4, carried
// along the edits of a sequence that the caller holds.  Every change of
// shape goes through the DA operations; the adapt operations rewrite the
// numbers in place in the block.

#include "vorn_sa.h"

#include <cstdint>

#include "checked.hpp"

namespace {

struct Found {
    bool hit;
    int32_t at;  // the index found, or where the number belongs
};

inline int32_t *numbers(DA_array *set) { return static_cast<int32_t *>(set->data); }

// Binary search over the block: low 0, high nitems - 1, mid cut toward zero.
Found search(DA_array *set, int32_t number) {
    const int32_t *v = numbers(set);
    int32_t low = 0, high = set->nitems - 1;
    while (low <= high) {
        const int32_t mid = low + (high - low) / 2;  // (low + high) / 2 without overflow
        if (v[mid] > number)
            high = mid - 1;
        else if (v[mid] < number)
            low = mid + 1;
        else
            return {true, mid};
    }
    return {false, low};
}

// Applies f to every number from index `from` on, in index order.
template <class F>
void rewrite(DA_array *set, int32_t from, F f) {
    int32_t *v = numbers(set);
    for (int32_t i = from; i < set->nitems; ++i) v[i] = f(v[i]);
}

}  // namespace

extern "C" {

void SA_add_number(DA_array *set, int32_t number) {
    VORN_CHK(da(__func__, set));
    const Found f = search(set, number);
    if (!f.hit) DA_insert(set, f.at, &number, 1);
}

int32_t SA_check_number(DA_array *set, int32_t number) {
    VORN_CHK(da(__func__, set));
    return search(set, number).hit ? 1 : 0;
}

void SA_remove_number(DA_array *set, int32_t number) {
    VORN_CHK(da(__func__, set));
    const Found f = search(set, number);
    if (f.hit) DA_delete(set, f.at, 1);
}

void SA_adapt_for_insert(DA_array *set, int32_t index) {
    VORN_CHK(da(__func__, set));
    // The numbers below `index` come first and keep their values.
    rewrite(set, search(set, index).at, [](int32_t v) { return v + 1; });
}

void SA_adapt_for_remove(DA_array *set, int32_t index) {
    VORN_CHK(da(__func__, set));
    SA_remove_number(set, index);
    // After the removal the numbers above `index` start where it stood.
    rewrite(set, search(set, index).at, [](int32_t v) { return v - 1; });
}

void SA_adapt_for_reverse(DA_array *set, int32_t count) {
    VORN_CHK(da(__func__, set));
    rewrite(set, 0, [count](int32_t v) {
        return static_cast<int32_t>(int64_t{count} - v - 1);
    });
    DA_reverse(set);  // the mirrored numbers descend
}

void SA_adapt_for_roll(DA_array *set, int32_t shift, int32_t count) {
    VORN_CHK(da(__func__, set));
    const int32_t n = set->nitems;
    if (n == 0) return;
    const int32_t wrapped = search(set, shift).at;  // members below shift, before the change
    rewrite(set, 0, [shift, count](int32_t v) {
        return static_cast<int32_t>((int64_t{v} - shift + count) % count);
    });
    // The wrapped numbers are now the largest and stand first.
    if (wrapped > 0 && wrapped < n) DA_roll(set, wrapped);
}

}  // extern "C"
