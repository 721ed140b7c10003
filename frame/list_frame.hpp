// The machinery that the linked list families (GL, EL, SL) share: linking
// and unlinking with the ring rules, the walk step, index lookup, advance,
// position-to-index, roll, reverse, splicing.  Each family supplies its head,
// node and iterator records; this file holds the logic once for the
// library.  One step is copied on purpose: the inline walks that vorn_gl.h and
// vorn_el.h give hosts (GL_next_item_inline, EL_next_item_inline) repeat the
// walk step in C, and must change with `step` here.
//
// Requirements on the records (checked at compile time where possible):
//  - a node N begins with `prev` and `next` pointers to N (SL uses
//    `SL_link`, a view of the two leading words of the caller's record);
//  - a head H has `first`, `last` (N* or void*) and `int32_t count`, and
//    optionally `int32_t closed`; a head without `closed` is always open;
//  - an iterator record I has `current`, `next`, `last` (N* or void*),
//    `int32_t forward` and a `test` function pointer.
//
// Ring rules: on a closed list last->next is first and first->prev is last.
// `first` and `last` mark where the ring is entered.  Insertion at either end
// keeps the ring whole; a first item inserted into an empty ring is linked to
// itself.  Removal keeps the ring whole; at count 0 first and last become
// null and `closed` stays set.
#pragma once

#include <cstdint>
#include <utility>

#include "checked.hpp"

namespace vorn::frame {

// The two leading words of an intrusive record.  may_alias: the caller's
// record has its own struct type, and these words are read through this view.
struct
#if defined(__GNUC__)
    __attribute__((may_alias))
#endif
    SL_link {
    SL_link *prev;
    SL_link *next;
};

// A callback that does nothing, the default of the optional hooks below.
inline constexpr auto no_visit = [](auto *) {};

template <class H>
concept HasClosed = requires(H h) { h.closed; };

// Typed access to first/last, whatever the head declares them as.
template <class N, class H>
inline N *first_of(const H *h) {
    return static_cast<N *>(h->first);
}
template <class N, class H>
inline N *last_of(const H *h) {
    return static_cast<N *>(h->last);
}

template <class H>
inline bool is_ring(const H *h) {
    if constexpr (HasClosed<H>)
        return h->closed != 0;
    else
        return false;
}

// ---- linking ---------------------------------------------------------------

template <class N, class H>
inline void link_into_empty(H *h, N *n) {
    N *self = is_ring(h) ? n : nullptr;
    n->prev = self;
    n->next = self;
    h->first = n;
    h->last = n;
    h->count = 1;
    VORN_CHK(on_link(h, n));
}

// n becomes last; on a ring first->prev follows.
template <class N, class H>
inline void link_after_last(H *h, N *n) {
    N *last = last_of<N>(h);
    if (!last) return link_into_empty(h, n);
    N *first = first_of<N>(h);
    const bool ring = is_ring(h);
    n->prev = last;
    n->next = ring ? first : nullptr;
    last->next = n;
    if (ring) first->prev = n;
    h->last = n;
    ++h->count;
    VORN_CHK(on_link(h, n));
}

// n becomes first; on a ring last->next follows.
template <class N, class H>
inline void link_before_first(H *h, N *n) {
    N *first = first_of<N>(h);
    if (!first) return link_into_empty(h, n);
    N *last = last_of<N>(h);
    const bool ring = is_ring(h);
    n->next = first;
    n->prev = ring ? last : nullptr;
    first->prev = n;
    if (ring) last->next = n;
    h->first = n;
    ++h->count;
    VORN_CHK(on_link(h, n));
}

// n follows pos; at last this is link_after_last.
template <class N, class H>
inline void link_after(H *h, N *pos, N *n) {
    if (pos == last_of<N>(h)) return link_after_last(h, n);
    n->prev = pos;
    n->next = pos->next;
    pos->next->prev = n;
    pos->next = n;
    ++h->count;
    VORN_CHK(on_link(h, n));
}

// n precedes pos; at first this is link_before_first.
template <class N, class H>
inline void link_before(H *h, N *pos, N *n) {
    if (pos == first_of<N>(h)) return link_before_first(h, n);
    n->next = pos;
    n->prev = pos->prev;
    pos->prev->next = n;
    pos->prev = n;
    ++h->count;
    VORN_CHK(on_link(h, n));
}

// Unlinks pos, keeping a ring whole.  The links of pos are left as they were
// (SL clears them itself).  At count 0 first and last become null.
template <class N, class H>
inline void unlink(H *h, N *pos) {
    const bool ring = is_ring(h);
    if (pos == first_of<N>(h)) {
        h->first = pos->next;
        if (ring) last_of<N>(h)->next = first_of<N>(h);
    } else {
        pos->prev->next = pos->next;
    }
    if (pos == last_of<N>(h)) {
        h->last = pos->prev;
        if (ring) first_of<N>(h)->prev = last_of<N>(h);
    } else {
        pos->next->prev = pos->prev;
    }
    if (--h->count == 0) {
        h->first = nullptr;
        h->last = nullptr;
    }
    VORN_CHK(on_unlink(h, pos, h->count));
}

// ---- rings -------------------------------------------------------------------

template <class N, class H>
inline void set_closed(H *h) {
    N *first = first_of<N>(h);
    N *last = last_of<N>(h);
    if (first) first->prev = last;
    if (last) last->next = first;
    h->closed = 1;
}

template <class N, class H>
inline void reset_closed(H *h) {
    N *first = first_of<N>(h);
    N *last = last_of<N>(h);
    if (first) first->prev = nullptr;
    if (last) last->next = nullptr;
    h->closed = 0;
}

// Moves the seam: pos becomes first and its prev becomes last.  No link
// changes.  The caller has checked that pos->prev is not null.
template <class N, class H>
inline void move_seam(H *h, N *pos) {
    h->first = pos;
    h->last = pos->prev;
}

// Opens a ring, swaps prev and next in every item, swaps first and last and
// closes the ring again.  Positions stay with their items.
template <class N, class H>
inline void reverse(H *h) {
    const bool ring = is_ring(h);
    if constexpr (HasClosed<H>)
        if (ring) reset_closed<N>(h);
    for (N *n = first_of<N>(h); n;) {
        N *after = n->next;
        std::swap(n->prev, n->next);
        n = after;
    }
    std::swap(h->first, h->last);
    if constexpr (HasClosed<H>)
        if (ring) set_closed<N>(h);
}

// Empties the list after opening a ring: for every item from first to the
// end, `before_next` is called, then the item's next link is read, then
// `dispose` is called.  So `before_next` may write to the item (GL's release
// function) and `dispose` may free it.  The head is left empty and open.
template <class N, class H, class Dispose, class BeforeNext = decltype(no_visit)>
inline void drain(H *h, const Dispose &dispose, const BeforeNext &before_next = no_visit) {
    if constexpr (HasClosed<H>)
        if (is_ring(h)) reset_closed<N>(h);
    for (N *n = first_of<N>(h); n;) {
        before_next(n);
        N *after = n->next;
        VORN_CHK(on_drain(h, n));
        dispose(n);
        n = after;
    }
    VORN_CHK(on_drain(h, nullptr));
    h->first = nullptr;
    h->last = nullptr;
    h->count = 0;
}

// ---- positions and indices ------------------------------------------------------

// Zero-based index lookup from first along next, ending at the index, at last
// or at a null link; never wraps.  Negative or >= count finds nothing.
template <class N, class H>
inline N *at_index(const H *h, int32_t index) {
    if (index < 0) return nullptr;
    N *last = last_of<N>(h);
    int32_t i = 0;
    for (N *n = first_of<N>(h); n; n = n->next, ++i) {
        if (i == index) return n;
        if (n == last) break;
    }
    return nullptr;
}

// Follows next (steps > 0) or prev (steps < 0) links; null on a null link.
template <class N>
inline N *advance(N *pos, int32_t steps) {
    for (; pos && steps > 0; --steps) pos = pos->next;
    for (; pos && steps < 0; ++steps) pos = pos->prev;
    return pos;
}

// Counts the prev links from pos back to first; pos must be on the list.
template <class N, class H>
inline int32_t index_of(const H *h, const N *pos) {
    const N *first = first_of<N>(h);
    int32_t i = 0;
    for (; pos != first; pos = pos->prev) ++i;
    return i;
}

// ---- splicing ---------------------------------------------------------------------

// Moves every item of `second` behind those of `h`, in constant time.  Gives
// the first item moved, or null when `second` is empty.  Both lists open.
// The caller frees the second head.
template <class N, class H>
inline N *splice_behind(H *h, H *second) {
    N *moved = first_of<N>(second);
    if (!moved) return nullptr;
    VORN_CHK(on_splice(h, second));
    if (!first_of<N>(h)) {
        h->first = second->first;
        h->last = second->last;
        h->count = second->count;
    } else {
        N *last = last_of<N>(h);
        last->next = moved;
        moved->prev = last;
        h->last = second->last;
        h->count += second->count;
    }
    return moved;
}

// Moves every item of `second`, in their order, ahead of those of `h`.
template <class N, class H>
inline void splice_in_front(H *h, H *second) {
    N *moved_last = last_of<N>(second);
    if (!moved_last) return;
    VORN_CHK(on_splice(h, second));
    if (!first_of<N>(h)) {
        h->first = second->first;
        h->last = second->last;
        h->count = second->count;
    } else {
        N *first = first_of<N>(h);
        first->prev = moved_last;
        moved_last->next = first;
        h->first = second->first;
        h->count += second->count;
    }
}

// ---- walks ----------------------------------------------------------------------------

// Opens a walk: current null, the given next/last/forward/test.
template <class I>
inline I open_walk(decltype(I::next) next, decltype(I::last) last, int32_t forward,
                   decltype(I::test) test) {
    I it{};
    it.current = nullptr;
    it.next = next;
    it.last = last;
    it.forward = forward;
    it.test = test;
    return it;
}

// One step of a walk.  The walk is one step ahead of its caller: `next` is
// fixed before the item is delivered, so the item at `current` may be removed
// between two steps.  Gives the accepted node, or null when the walk is over.
// `test_arg` maps a node to what the family's test function receives;
// `visit`, called with every node reached before its test runs, lets the
// families whose out argument is written before the test do so.
template <class N, class I, class Arg, class Visit = decltype(no_visit)>
inline N *step(I *it, const Arg &test_arg, const Visit &visit = no_visit) {
    for (;;) {
        N *n = static_cast<N *>(it->next);
        if (!n) return nullptr;
        it->current = n;
        if (n == static_cast<N *>(it->last))
            it->next = nullptr;
        else
            it->next = it->forward ? n->next : n->prev;
        visit(n);
        if (!it->test || it->test(test_arg(n))) return n;
    }
}

// Counts what a forward walk from `from` to `to` delivers; 0 if from is null.
template <class N>
inline int32_t count_between(N *from, N *to) {
    int32_t k = 0;
    for (N *n = from; n; n = n->next) {
        ++k;
        if (n == to) break;
    }
    return k;
}

}  // namespace vorn::frame
