// SL: the intrusive list of the caller's records, on the shared list
// machinery.  The records' two leading words are reached through SL_link.
// What SL adds: there are no nodes, so emptying goes through a release
// function, a plain release refuses a list that still holds records, a
// removed record gets null links, and a walk writes its out argument only for
// a record that it delivers.

#include "vorn_sl.h"

#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"
#include "list_frame.hpp"

namespace fr = vorn::frame;
using fr::SL_link;

static_assert(std::is_standard_layout_v<SL_list> && std::is_trivially_copyable_v<SL_list>);
static_assert(offsetof(SL_list, first) == 0 && offsetof(SL_list, last) == sizeof(void *));
static_assert(offsetof(SL_list, count) == 2 * sizeof(void *));
static_assert(offsetof(SL_list, closed) == 2 * sizeof(void *) + sizeof(int32_t));
static_assert(offsetof(SL_iter, current) == 0 && offsetof(SL_iter, forward) == 3 * sizeof(void *));
static_assert(offsetof(SL_link, prev) == 0 && offsetof(SL_link, next) == sizeof(void *));

namespace {


SL_link *link(void *record) { return static_cast<SL_link *>(record); }

void *record_of(SL_link *n) { return n; }

SL_list *new_head() {
    SL_list *h = vorn::alloc_record<SL_list>();
    h->first = h->last = nullptr;
    h->count = 0;
    h->closed = 0;
    VORN_CHK(born(h));
    return h;
}

}  // namespace

extern "C" {

SL_list *SL_create(void) { return new_head(); }

SL_list *SL_total_copy(SL_list *list, SL_copy_fn copy) {
    VORN_CHK(list(__func__, list));
    SL_list *out = new_head();
    SL_link *last = link(list->last);
    for (SL_link *n = link(list->first); n; n = n->next) {
        fr::link_after_last(out, link(copy(n)));
        if (n == last) break;  // a ring is walked once, without opening it
    }
    if (list->closed) fr::set_closed<SL_link>(out);
    return out;
}

void SL_make_empty(SL_list *list, SL_release_fn release) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_full(__func__, list));
    fr::drain<SL_link>(list, [release](SL_link *n) {
        void *word = n;
        release(&word);
    });
}

void SL_release(SL_list **handle) {
    SL_list *list = *handle;
    if (!list) return;
    VORN_CHK(live(__func__, list));
    if (list->count != 0) vorn::raise(vorn::raises::SL_RAISE_RELEASE_NOT_EMPTY);
    VORN_CHK(dies(__func__, list));
    vorn::free_record(list);
    *handle = nullptr;
}

void SL_total_release(SL_list **handle, SL_release_fn release) {
    VORN_CHK(live(__func__, *handle));
    SL_make_empty(*handle, release);
    VORN_CHK(dies(__func__, *handle));
    vorn::free_record(*handle);
    *handle = nullptr;
}

int32_t SL_count_items(SL_list *list) {
    VORN_CHK(list(__func__, list));
    return list->count;
}

int32_t SL_check(SL_list *list, SL_measure_fn measure) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_full(__func__, list));
    int32_t bytes = static_cast<int32_t>(sizeof(SL_list));
    SL_link *first = link(list->first);
    for (SL_link *n = first; n; n = n->next) {
        bytes += measure(n);
        if (n->next == first) break;
    }
    return bytes;
}

void SL_append_after_last(SL_list *list, void *record) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(record_unlinked(__func__, record, nullptr));
    fr::link_after_last(list, link(record));
}

void SL_insert_before_first(SL_list *list, void *record) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(record_unlinked(__func__, record, nullptr));
    fr::link_before_first(list, link(record));
}

void SL_insert_after(SL_list *list, void *pos, void *record) {
    VORN_CHK(list_pos(__func__, list, pos));
    VORN_CHK(record_unlinked(__func__, record, nullptr));
    fr::link_after(list, link(pos), link(record));
}

void SL_insert_before(SL_list *list, void *pos, void *record) {
    VORN_CHK(list_pos(__func__, list, pos));
    VORN_CHK(record_unlinked(__func__, record, nullptr));
    fr::link_before(list, link(pos), link(record));
}

int32_t SL_insert_after_index(SL_list *list, int32_t index, void *record) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(record_unlinked(__func__, record, nullptr));
    SL_link *pos = fr::at_index<SL_link>(list, index);
    if (!pos) return 0;
    fr::link_after(list, pos, link(record));
    return 1;
}

int32_t SL_insert_before_index(SL_list *list, int32_t index, void *record) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(record_unlinked(__func__, record, nullptr));
    SL_link *pos = fr::at_index<SL_link>(list, index);
    if (!pos) return 0;
    fr::link_before(list, pos, link(record));
    return 1;
}

void SL_insert_unique(SL_list *list, void *record) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(record_unlinked(__func__, record, list));
    SL_link *last = link(list->last);
    for (SL_link *n = link(list->first); n; n = n->next) {
        if (n == record) return;
        if (n == last) break;
    }
    fr::link_after_last(list, link(record));
}

void *SL_pos_at_index(SL_list *list, int32_t index) {
    VORN_CHK(list(__func__, list));
    return fr::at_index<SL_link>(list, index);
}

int32_t SL_get_index(SL_list *list, void *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    return fr::index_of(list, link(pos));
}

void *SL_advance(SL_list *, void *pos, int32_t steps) { return fr::advance(link(pos), steps); }

void SL_remove_item(SL_list *list, void *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    SL_link *n = link(pos);
    fr::unlink(list, n);
    n->prev = nullptr;
    n->next = nullptr;
}

int32_t SL_remove_at_index(SL_list *list, int32_t index) {
    VORN_CHK(list(__func__, list));
    SL_link *pos = fr::at_index<SL_link>(list, index);
    if (!pos) return 0;
    SL_remove_item(list, pos);
    return 1;
}

void *SL_append_list(SL_list *list, SL_list **second) {
    SL_list *other = *second;
    VORN_CHK(list(__func__, list));
    VORN_CHK(list(__func__, other));
    const bool ring = list->closed != 0;
    if (ring) fr::reset_closed<SL_link>(list);
    if (other->closed) fr::reset_closed<SL_link>(other);
    SL_link *moved = fr::splice_behind<SL_link>(list, other);
    if (ring) fr::set_closed<SL_link>(list);
    VORN_CHK(dies(__func__, other));
    vorn::free_record(other);
    *second = nullptr;
    return moved;
}

void SL_reverse(SL_list *list) {
    VORN_CHK(list(__func__, list));
    fr::reverse<SL_link>(list);
}

void SL_set_closed(SL_list *list) {
    VORN_CHK(list(__func__, list));
    fr::set_closed<SL_link>(list);
}

void SL_reset_closed(SL_list *list) {
    VORN_CHK(list(__func__, list));
    fr::reset_closed<SL_link>(list);
}

void SL_roll(SL_list *list, void *pos) {
    VORN_CHK(list(__func__, list));
    if (!list->closed) return;
    if (pos && link(pos)->prev) VORN_CHK(list_pos(__func__, list, pos));
    SL_link *n = link(pos);
    if (!n->prev) vorn::raise(vorn::raises::SL_RAISE_ROLL_OFF_RING);
    fr::move_seam(list, n);
}

SL_iter SL_all_items(SL_list *list) {
    VORN_CHK(list(__func__, list));
    return fr::open_walk<SL_iter>(list->first, list->last, 1, nullptr);
}

SL_iter SL_all_items_reversed(SL_list *list) {
    VORN_CHK(list(__func__, list));
    return fr::open_walk<SL_iter>(list->last, list->first, 0, nullptr);
}

SL_iter SL_all_items_inbetween([[maybe_unused]] SL_list *list, void *from, void *to, int32_t forward) {
    VORN_CHK(list_range(__func__, list, from, to));
    return fr::open_walk<SL_iter>(from, to, forward, nullptr);
}

SL_iter SL_tested_items(SL_list *list, SL_test_fn test) {
    VORN_CHK(list(__func__, list));
    return fr::open_walk<SL_iter>(list->first, list->last, 1, test);
}

SL_iter SL_tested_items_reversed(SL_list *list, SL_test_fn test) {
    VORN_CHK(list(__func__, list));
    return fr::open_walk<SL_iter>(list->last, list->first, 0, test);
}

SL_iter SL_tested_items_inbetween([[maybe_unused]] SL_list *list, void *from, void *to,
                                  int32_t forward, SL_test_fn test) {
    VORN_CHK(list_range(__func__, list, from, to));
    return fr::open_walk<SL_iter>(from, to, forward, test);
}

SL_iter SL_empty_iter(void) { return fr::open_walk<SL_iter>(nullptr, nullptr, 1, nullptr); }

// The out argument is written only for the record delivered.
int32_t SL_next_item(SL_iter *iter, void **record_out) {
    VORN_CHK(walk(__func__, iter->next));
    SL_link *n = fr::step<SL_link>(iter, record_of);
    if (!n) return 0;
    *record_out = n;
    return 1;
}

}  // extern "C"
