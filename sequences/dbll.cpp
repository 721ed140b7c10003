// DBLL: the list of doubles, an EL list of 8-byte elements.  It calls the EL
// operations and reads the head and nodes directly; the values are read and
// written with byte copies, so no alignment or aliasing is assumed.

#include "vorn_dbll.h"

#include <cmath>
#include <cstring>

#include "checked.hpp"

namespace {

constexpr uint16_t kSize = sizeof(double);
static_assert(kSize == 8);

inline double value_at(const EL_node *n) {
    double v;
    std::memcpy(&v, n->item, sizeof v);
    return v;
}

inline void store_at(EL_node *n, double v) { std::memcpy(n->item, &v, sizeof v); }

inline double distance(double a, double b) { return std::fabs(a - b); }

}  // namespace

extern "C" {

// ---- the EL operations under a second name ----

EL_node *DBLL_advance(EL_list *list, EL_node *pos, int32_t steps) { return EL_advance(list, pos, steps); }
EL_list *DBLL_copy(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return EL_total_copy(list);
}
EL_list *DBLL_copy_inbetween(EL_list *list, EL_node *from, EL_node *to) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_range(__func__, list, from, to));
    return EL_total_copy_inbetween(list, from, to);
}
void DBLL_make_empty(EL_list *list) {
    VORN_CHK(list(__func__, list));
    EL_make_empty(list);
}
int32_t DBLL_next_position(EL_iter *iter, EL_node **pos_out) {
    VORN_CHK(walk(__func__, iter->next));
    return EL_next_position(iter, pos_out);
}
void DBLL_release(EL_list **handle) {
    if (*handle) VORN_CHK(live(__func__, *handle));
    EL_release(handle);
}
int32_t DBLL_remove_at_index(EL_list *list, int32_t index) {
    VORN_CHK(list(__func__, list));
    return EL_remove_at_index(list, index);
}
void DBLL_remove_double(EL_list *list, EL_node *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    EL_remove_item(list, pos);
}
void DBLL_reset_closed(EL_list *list) {
    VORN_CHK(list(__func__, list));
    EL_reset_closed(list);
}
void DBLL_reverse(EL_list *list) {
    VORN_CHK(list(__func__, list));
    EL_reverse(list);
}
void DBLL_roll(EL_list *list, EL_node *pos) {
    VORN_CHK(list(__func__, list));
    EL_roll(list, pos);
}
void DBLL_set_closed(EL_list *list) {
    VORN_CHK(list(__func__, list));
    EL_set_closed(list);
}
int32_t DBLL_size(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return EL_count_items(list);
}
int32_t DBLL_size_inbetween(EL_list *list, EL_node *from, EL_node *to) {
    VORN_CHK(list_range(__func__, list, from, to));
    return EL_count_items_inbetween(list, from, to);
}

// ---- EL operations taking a double by value ----

EL_list *DBLL_create(void) { return EL_create(kSize); }
EL_node *DBLL_add_double(EL_list *list, double value) {
    VORN_CHK(list(__func__, list));
    return EL_append_after_last(list, &value);
}
EL_node *DBLL_insert_after(EL_list *list, EL_node *pos, double value) {
    VORN_CHK(list_pos(__func__, list, pos));
    return EL_insert_after(list, pos, &value);
}
EL_node *DBLL_insert_before(EL_list *list, EL_node *pos, double value) {
    VORN_CHK(list_pos(__func__, list, pos));
    return EL_insert_before(list, pos, &value);
}
EL_node *DBLL_insert_after_index(EL_list *list, int32_t index, double value) {
    VORN_CHK(list(__func__, list));
    return EL_insert_after_index(list, index, &value);
}
EL_node *DBLL_insert_before_index(EL_list *list, int32_t index, double value) {
    VORN_CHK(list(__func__, list));
    return EL_insert_before_index(list, index, &value);
}
void DBLL_replace_double(EL_node *pos, double value) {
    VORN_CHK(on_a_list(__func__, pos));
    EL_replace_item(pos, &value, kSize);
}
void DBLL_replace_doubles_inbetween(EL_list *list, EL_node *from, EL_node *to, EL_list *source) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list(__func__, source));
    VORN_CHK(list_range(__func__, list, from, to));
    EL_replace_items_inbetween(list, from, to, source, kSize);
}
EL_iter DBLL_all_doubles(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return EL_all_items(list);
}
EL_iter DBLL_all_doubles_reversed(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return EL_all_items_reversed(list);
}
EL_iter DBLL_all_doubles_inbetween(EL_list *list, EL_node *from, EL_node *to) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_range(__func__, list, from, to));
    return EL_all_items_inbetween(list, from, to, 1);
}
EL_iter DBLL_all_doubles_inbetween_reversed(EL_list *list, EL_node *from, EL_node *to) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_range(__func__, list, from, to));
    return EL_all_items_inbetween(list, from, to, 0);
}

// ---- the family's own ----

EL_list *DBLL_create_with_two(double begin_value, double end_value) {
    EL_list *list = DBLL_create();
    EL_append_after_last(list, &begin_value);
    EL_append_after_last(list, &end_value);
    return list;
}

int32_t DBLL_is_empty(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return !list->first && !list->last;
}

double DBLL_begin_value(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return list->first ? value_at(list->first) : 0.0;
}
double DBLL_end_value(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return list->last ? value_at(list->last) : 0.0;
}

void DBLL_set_begin_value(EL_list *list, double value) {
    VORN_CHK(list(__func__, list));
    if (list->first) store_at(list->first, value);
}
void DBLL_set_end_value(EL_list *list, double value) {
    VORN_CHK(list(__func__, list));
    if (list->last) store_at(list->last, value);
}

int32_t DBLL_next_double(EL_iter *iter, double *value) {
    VORN_CHK(walk(__func__, iter->next));
    EL_node *pos;
    if (!EL_next_position(iter, &pos)) return 0;
    *value = value_at(pos);
    return 1;
}

int32_t DBLL_check(EL_list *list) {
    VORN_CHK(list(__func__, list));
    return list->count * static_cast<int32_t>(sizeof(EL_node) + kSize);
}

void DBLL_add_to_all(EL_list *list, double delta) {
    VORN_CHK(list(__func__, list));
    EL_iter it = EL_all_items(list);
    EL_node *n;
    while (EL_next_position(&it, &n)) store_at(n, value_at(n) + delta);
}

// Passes from first to last (on an open list: to the null link) until one
// makes no exchange.  Only a strictly greater left value moves, so the sort
// ends with NaNs present too: every exchange removes one inversion.
void DBLL_sort(EL_list *list) {
    VORN_CHK(list(__func__, list));
    if (!list->first || list->first == list->last) return;
    for (int32_t exchanges = 1; exchanges > 0;) {
        exchanges = 0;
        for (EL_node *n = list->first; n != list->last; n = n->next) {
            const double left = value_at(n), right = value_at(n->next);
            if (left > right) {
                store_at(n, right);
                store_at(n->next, left);
                ++exchanges;
            }
        }
    }
}

int32_t DBLL_add_double_unique(EL_list *list, double value, double tolerance) {
    VORN_CHK(list(__func__, list));
    EL_node *n;
    const bool backward = list->count > 8 && distance(value, value_at(list->first)) >
                                                 distance(value, value_at(list->last));
    if (backward) {
        EL_iter it = EL_all_items_reversed(list);
        while (EL_next_position(&it, &n)) {
            const double w = value_at(n);
            if (tolerance >= distance(value, w)) return 0;
            if (value > w) {
                EL_insert_after(list, n, &value);
                return 1;
            }
        }
    } else {
        EL_iter it = EL_all_items(list);
        while (EL_next_position(&it, &n)) {
            const double w = value_at(n);
            if (tolerance >= distance(value, w)) return 0;
            if (w > value) {
                EL_insert_before(list, n, &value);
                return 1;
            }
        }
    }
    EL_append_after_last(list, &value);
    return 0;
}

int32_t DBLL_find_index_of_nearest(EL_list *list, double value, double tolerance,
                                   double *distance_out) {
    VORN_CHK(list(__func__, list));
    double best = tolerance * 2.0;
    int32_t found = -1, index = 0;
    EL_iter it = EL_all_items(list);
    EL_node *n;
    for (; EL_next_position(&it, &n); ++index) {
        const double d = distance(value_at(n), value);
        if (d < best) {
            best = d;
            found = index;
        }
    }
    *distance_out = best;
    return found;
}

// Each candidate is measured against the last value kept.  The walk is a step
// ahead of `candidate`, so candidate (or kept) may be removed behind it; last
// is never removed, so the walk stays valid.
void DBLL_remove_double_occ(EL_list *list, double tolerance) {
    VORN_CHK(list(__func__, list));
    DBLL_sort(list);
    EL_iter it = EL_all_items(list);
    EL_node *first, *kept, *candidate, *following;
    if (list->count < 2 || !EL_next_position(&it, &first) || !EL_next_position(&it, &candidate))
        return;
    kept = first;
    for (;;) {
        const bool more = EL_next_position(&it, &following) != 0;
        if (tolerance > distance(value_at(candidate), value_at(kept))) {
            if (more)
                EL_remove_item(list, candidate);
            else if (kept != first)
                EL_remove_item(list, kept);
        } else {
            kept = candidate;
        }
        if (!more) return;
        candidate = following;
    }
}

}  // extern "C"
