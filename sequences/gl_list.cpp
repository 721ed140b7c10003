// GL: the open doubly linked list of pointer-sized item words, on the shared
// list machinery.  Raises nothing and tests no allocation.

#include "vorn_gl.h"

#include <type_traits>

#include "base_binding.hpp"
#include "checked.hpp"
#include "list_frame.hpp"

namespace fr = vorn::frame;

static_assert(std::is_standard_layout_v<GL_node> && std::is_trivially_copyable_v<GL_node>);
static_assert(offsetof(GL_node, prev) == 0 && offsetof(GL_node, next) == sizeof(void *));
static_assert(offsetof(GL_node, item) == 2 * sizeof(void *));
static_assert(offsetof(GL_list, first) == 0 && offsetof(GL_list, count) == 2 * sizeof(void *));
static_assert(offsetof(GL_iter, current) == 0 && offsetof(GL_iter, forward) == 3 * sizeof(void *));

namespace {

GL_node *new_node(void *item) {
    GL_node *n = vorn::alloc_record<GL_node>();
    n->item = item;
    return n;
}

void free_node(GL_node *n) { vorn::free_record(n); }

GL_list *new_head() {
    GL_list *h = vorn::alloc_record<GL_list>();
    h->first = h->last = nullptr;
    h->count = 0;
    VORN_CHK(born(h));
    return h;
}

void *word_of(GL_node *n) { return n->item; }

}  // namespace

extern "C" {

GL_list *GL_create(void) { return new_head(); }

GL_list *GL_copy(GL_list *list) {
    VORN_CHK(list(__func__, list));
    GL_list *copy = new_head();
    for (GL_node *n = list->first; n; n = n->next) fr::link_after_last(copy, new_node(n->item));
    return copy;
}

GL_list *GL_total_copy(GL_list *list, GL_copy_fn copy_fn) {
    VORN_CHK(list(__func__, list));
    GL_list *copy = new_head();
    for (GL_node *n = list->first; n; n = n->next) {
        void *word = copy_fn(n->item);  // before the node is allocated
        fr::link_after_last(copy, new_node(word));
    }
    return copy;
}

void GL_make_empty(GL_list *list) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_full(__func__, list));
    fr::drain<GL_node>(list, free_node);
}

void GL_total_make_empty(GL_list *list, GL_release_fn release) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_full(__func__, list));
    // The next link is read after the release function has returned.
    fr::drain<GL_node>(list, free_node, [release](GL_node *n) { release(&n->item); });
}

void GL_release(GL_list **handle) {
    if (!*handle) return;
    VORN_CHK(live(__func__, *handle));
    GL_make_empty(*handle);
    VORN_CHK(dies(__func__, *handle));
    vorn::free_record(*handle);
    *handle = nullptr;
}

void GL_total_release(GL_list **handle, GL_release_fn release) {
    VORN_CHK(live(__func__, *handle));
    GL_total_make_empty(*handle, release);
    VORN_CHK(dies(__func__, *handle));
    vorn::free_record(*handle);
    *handle = nullptr;
}

int32_t GL_count_items(GL_list *list) {
    VORN_CHK(list(__func__, list));
    return list->count;
}

int32_t GL_check(GL_list *list, GL_measure_fn measure) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list_full(__func__, list));
    int32_t bytes = static_cast<int32_t>(sizeof(GL_list));
    for (GL_node *n = list->first; n; n = n->next)
        bytes += static_cast<int32_t>(sizeof(GL_node)) + measure(n->item);
    return bytes;
}

GL_node *GL_append_after_last(GL_list *list, void *item) {
    VORN_CHK(list(__func__, list));
    GL_node *n = new_node(item);
    fr::link_after_last(list, n);
    return n;
}

GL_node *GL_insert_before_first(GL_list *list, void *item) {
    VORN_CHK(list(__func__, list));
    GL_node *n = new_node(item);
    fr::link_before_first(list, n);
    return n;
}

GL_node *GL_insert_after(GL_list *list, GL_node *pos, void *item) {
    VORN_CHK(list_pos(__func__, list, pos));
    GL_node *n = new_node(item);
    fr::link_after(list, pos, n);
    return n;
}

GL_node *GL_insert_before(GL_list *list, GL_node *pos, void *item) {
    VORN_CHK(list_pos(__func__, list, pos));
    GL_node *n = new_node(item);
    fr::link_before(list, pos, n);
    return n;
}

GL_node *GL_insert_unique(GL_list *list, void *item) {
    VORN_CHK(list(__func__, list));
    GL_node *found;
    if (GL_find_item(list, item, &found)) return nullptr;
    return GL_append_after_last(list, item);
}

int32_t GL_find_item(GL_list *list, void *item, GL_node **pos_out) {
    VORN_CHK(list(__func__, list));
    for (GL_node *n = list->first; n; n = n->next) {
        if (n->item == item) {
            *pos_out = n;
            return 1;
        }
    }
    *pos_out = nullptr;
    return 0;
}

void GL_swap_item(GL_node *pos, void **word) {
    VORN_CHK(on_a_list(__func__, pos));
    void *old = pos->item;
    pos->item = *word;
    *word = old;
}

void GL_move_before_first(GL_list *list, GL_node *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    if (pos == list->first) return;
    fr::unlink(list, pos);
    fr::link_before_first(list, pos);
}

void GL_remove_item(GL_list *list, GL_node *pos) {
    VORN_CHK(list_pos(__func__, list, pos));
    fr::unlink(list, pos);
    free_node(pos);
}

GL_node *GL_append_list(GL_list *list, GL_list **second) {
    VORN_CHK(list(__func__, list));
    VORN_CHK(list(__func__, *second));
    GL_node *moved = fr::splice_behind<GL_node>(list, *second);
    VORN_CHK(dies(__func__, *second));
    vorn::free_record(*second);
    *second = nullptr;
    return moved;
}

void GL_append_list_in_front(GL_list *list, GL_list **second) {
    if (!list || !second || !*second) return;
    VORN_CHK(list(__func__, list));
    VORN_CHK(list(__func__, *second));
    fr::splice_in_front<GL_node>(list, *second);
    VORN_CHK(dies(__func__, *second));
    vorn::free_record(*second);
    *second = nullptr;
}

GL_iter GL_all_items(GL_list *list) {
    VORN_CHK(list(__func__, list));
    return fr::open_walk<GL_iter>(list->first, list->last, 1, nullptr);
}

GL_iter GL_all_items_reversed(GL_list *list) {
    VORN_CHK(list(__func__, list));
    return fr::open_walk<GL_iter>(list->last, list->first, 0, nullptr);
}

GL_iter GL_all_items_inbetween([[maybe_unused]] GL_list *list, GL_node *from, GL_node *to,
                               int32_t forward) {
    VORN_CHK(list_range(__func__, list, from, to));
    return fr::open_walk<GL_iter>(from, to, forward, nullptr);
}

GL_iter GL_tested_items(GL_list *list, GL_test_fn test) {
    VORN_CHK(list(__func__, list));
    return fr::open_walk<GL_iter>(list->first, list->last, 1, test);
}

GL_iter GL_tested_items_inbetween([[maybe_unused]] GL_list *list, GL_node *from, GL_node *to,
                                  int32_t forward, GL_test_fn test) {
    VORN_CHK(list_range(__func__, list, from, to));
    return fr::open_walk<GL_iter>(from, to, forward, test);
}

GL_iter GL_empty_iter(void) {
    return fr::open_walk<GL_iter>(nullptr, nullptr, 1, nullptr);
}

// The out argument is written for every item reached, before its test.
int32_t GL_next_item(GL_iter *iter, void **item_out) {
    VORN_CHK(walk(__func__, iter->next));
    return fr::step<GL_node>(iter, word_of, [item_out](GL_node *n) { *item_out = n->item; }) !=
           nullptr;
}

int32_t GL_next_position(GL_iter *iter, GL_node **pos_out) {
    VORN_CHK(walk(__func__, iter->next));
    return fr::step<GL_node>(iter, word_of, [pos_out](GL_node *n) { *pos_out = n; }) != nullptr;
}

}  // extern "C"
