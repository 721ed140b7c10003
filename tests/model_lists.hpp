// The list families against simple references, each driver a template over
// its source of choices (vorn_test::Rng under GoogleTest, vorn_test::Bytes
// under libFuzzer), so that the tests and the fuzzers run the same models
// and checks:
//   el_model  EL against a vector of (node, value): open lists and rings,
//             cuts, openings, copies, ranges, walks through every step and
//             the ES stack forms;
//   sl_model  SL against the order of caller records, open and closed, with
//             its walks, raises, copies and release callbacks;
//   gl_model  GL against a vector of nodes: walks, splicing, copies, ownership;
//   gb_model  GB against items, capacity, inc, closed and the bytes it holds.
// After every operation each driver checks the whole structure (links with
// the ring rule, count, values).  Every call a driver makes is legal or
// raises as documented, and the raise is caught and compared.
#pragma once

#include "support.hpp"

namespace el_model {

// Elements of an odd size: a value and a two-byte tag derived from it, so a
// short copy or a wrong node size shows up.
constexpr uint16_t kSize = 6;
struct Elem {
    unsigned char b[kSize];
};
inline Elem elem(int32_t v) {
    Elem e;
    std::memcpy(e.b, &v, 4);
    e.b[4] = static_cast<unsigned char>(v * 7);
    e.b[5] = static_cast<unsigned char>(~v);
    return e;
}
inline int32_t value_of(const void *bytes) {
    int32_t v;
    std::memcpy(&v, bytes, 4);
    const auto *b = static_cast<const unsigned char *>(bytes);
    EXPECT_EQ(b[4], static_cast<unsigned char>(v * 7));
    EXPECT_EQ(b[5], static_cast<unsigned char>(~v));
    return v;
}
inline int32_t even(void *bytes) { return value_of(bytes) % 2 == 0; }

struct Item {
    EL_node *n;
    int32_t v;
};
using Ref = std::vector<Item>;
using Values = std::vector<int32_t>;

// Head, links (with the ring rule), count and element values.
inline void expect_list(EL_list *l, const Ref &ref, bool closed) {
    ASSERT_EQ(l->item_size, kSize);
    ASSERT_EQ(l->closed, closed ? 1 : 0);
    std::vector<EL_node *> nodes;
    for (const Item &it : ref) nodes.push_back(it.n);
    vorn_test::expect_links(l->first, l->last, l->count, closed, nodes);
    for (size_t i = 0; i < ref.size(); ++i) ASSERT_EQ(value_of(ref[i].n->item), ref[i].v) << i;
}

// What a walk delivers through the copying step; `last` gets what the buffer
// holds afterwards (-1 if nothing was copied).
inline Values copied(EL_iter it, int32_t *last = nullptr) {
    Values out;
    Elem e = elem(-1);
    while (EL_next_item_copy(&it, &e)) out.push_back(value_of(e.b));
    if (last) *last = value_of(e.b);
    return out;
}
inline Values values(EL_list *l) { return copied(EL_all_items(l)); }

// What a walk delivers through a pointer step; `last` gets the out argument
// afterwards (-1 if never written).
using Step = int32_t (*)(EL_iter *, void **);
inline Values stepped(EL_iter it, Step step, int32_t *last) {
    Values out;
    void *p = nullptr;
    while (step(&it, &p) && out.size() < 1000) out.push_back(value_of(p));
    *last = p ? value_of(p) : -1;
    return out;
}

template <class R>
inline void run(R &rng) {
    const bool stack = rng.chance(50);  // the ES forms work on any EL list
    EL_list *l = stack ? ES_create(kSize) : EL_create(kSize);
    Ref ref;
    bool closed = false;
    int32_t fresh = 0;
    auto pick = [&] { return rng.below(static_cast<uint32_t>(ref.size())); };
    auto any_index = [&] { return static_cast<int32_t>(rng.below(ref.size() + 3)) - 1; };
    auto fresh_list = [&](size_t len, Ref &made) {  // a new open list of fresh values
        EL_list *x = EL_create(kSize);
        for (; len > 0; --len) {
            const Elem m = elem(++fresh);
            made.push_back({EL_append_after_last(x, &m), fresh});
        }
        return x;
    };
    Ref spare;
    EL_list *stranger = fresh_list(1, spare);  // its item lies on no list of the run
    while (rng.more()) {
        const int32_t v = ++fresh;
        const Elem e = elem(v);
        const size_t n = ref.size();
        const size_t i = n ? pick() : 0, j = n ? pick() : 0;
        switch (rng.below(23)) {
            case 0: ref.push_back({stack ? ES_push(l, &e) : EL_append_after_last(l, &e), v}); break;
            case 1: ref.insert(ref.begin(), {EL_insert_before_first(l, &e), v}); break;
            case 2:
                if (n) ref.insert(ref.begin() + i + 1, {EL_insert_after(l, ref[i].n, &e), v});
                break;
            case 3:
                if (n) ref.insert(ref.begin() + i, {EL_insert_before(l, ref[i].n, &e), v});
                break;
            case 4:
            case 5: {  // index forms: only an existing item can be addressed
                const int32_t k = any_index();
                const bool hit = k >= 0 && k < static_cast<int32_t>(n), after = rng.chance(50);
                EL_node *p = after ? EL_insert_after_index(l, k, &e) : EL_insert_before_index(l, k, &e);
                ASSERT_EQ(p != nullptr, hit);
                if (hit) ref.insert(ref.begin() + k + (after ? 1 : 0), {p, v});
                break;
            }
            case 6:
                if (n) EL_remove_item(l, ref[i].n), ref.erase(ref.begin() + i);
                break;
            case 7: {
                const int32_t k = any_index();
                const bool hit = k >= 0 && k < static_cast<int32_t>(n);
                ASSERT_EQ(EL_remove_at_index(l, k), hit ? 1 : 0);
                if (hit) ref.erase(ref.begin() + k);
                break;
            }
            case 8: {  // from null: nothing; towards a stranger: to the end, or the whole ring
                const bool foreign = !n || rng.chance(10);
                EL_node *to = foreign ? stranger->first : ref[j].n;
                if (!n || rng.chance(10)) {
                    ASSERT_EQ(EL_count_items_inbetween(l, nullptr, to), 0);
                    EL_replace_items_inbetween(l, nullptr, to, stranger, kSize);  // no raise either
                    EL_remove_items_inbetween(l, nullptr, to);
                    break;
                }
                auto idx = vorn_test::walk_order(n, i, foreign ? (i + n - 1) % n : j, true, closed);
                if (!foreign) {
                    ASSERT_EQ(EL_count_items_inbetween(l, ref[i].n, to), static_cast<int32_t>(idx.size()));
                }
                EL_remove_items_inbetween(l, ref[i].n, to);
                std::sort(idx.rbegin(), idx.rend());
                for (size_t k : idx) ref.erase(ref.begin() + k);
                break;
            }
            case 9:
                closed = !closed;
                closed ? EL_set_closed(l) : EL_reset_closed(l);
                break;
            case 10:
                if (n) {  // roll: a ring moves its seam; an open list only raises at first
                    auto raised = vorn_test::catch_raise([&] { EL_roll(l, ref[i].n); });
                    ASSERT_EQ(vorn_test::describe(raised), vorn_test::expected(!closed && i == 0, vorn::raises::EL_RAISE_ROLL_NO_PREV));
                    if (closed) std::rotate(ref.begin(), ref.begin() + i, ref.end());
                }
                break;
            case 11:
                EL_reverse(l);
                std::reverse(ref.begin(), ref.end());
                break;
            case 12:  // an open list opens as if it were closed
                if (n) {
                    const int32_t at = ref[i].v;
                    ASSERT_EQ(EL_make_open_at_position(l, ref[i].n), ref[i].n);
                    std::rotate(ref.begin(), ref.begin() + i, ref.end());
                    ref.push_back({l->last, at});
                    closed = false;
                }
                break;
            case 13:
                if (n) {  // cut, check both parts, then join them again or drop the end
                    const int32_t at = ref[i].v;
                    EL_list *end = EL_remove_and_get_end_part(l, ref[i].n);
                    Ref tail(ref.begin() + i, ref.end());
                    ref.erase(ref.begin() + i, ref.end());
                    ref.push_back({l->last, at});
                    closed = false;
                    expect_list(end, tail, false);
                    if (rng.chance(50)) {
                        ASSERT_EQ(EL_append_list(l, &end), tail.front().n);
                        ref.insert(ref.end(), tail.begin(), tail.end());
                    } else {
                        EL_release(&end);
                    }
                    ASSERT_EQ(end, nullptr);
                }
                break;
            case 14: {  // a copy holds equal values in new nodes and keeps the ring
                EL_list *c = EL_total_copy(l);
                ASSERT_EQ(c->closed, closed ? 1 : 0);
                ASSERT_EQ(c->count, l->count);
                ASSERT_EQ(values(c), values(l));
                if (n) {
                    ASSERT_NE(c->first, l->first);
                    ASSERT_EQ(c->last->next, closed ? c->first : nullptr);
                }
                EL_release(&c);
                break;
            }
            case 15:
                if (n) {  // an open copy of a range
                    EL_list *c = EL_total_copy_inbetween(l, ref[i].n, ref[j].n);
                    Values want;
                    for (size_t k : vorn_test::walk_order(n, i, j, true, closed)) want.push_back(ref[k].v);
                    ASSERT_EQ((std::pair{c->closed, c->count}), (std::pair{0, static_cast<int32_t>(want.size())}));
                    ASSERT_EQ(values(c), want);
                    EL_release(&c);
                }
                break;
            case 16:
                if (n) {  // position arithmetic
                    const int32_t steps = static_cast<int32_t>(rng.below(2 * n + 3)) - static_cast<int32_t>(n) - 1;
                    const int64_t nn = static_cast<int64_t>(n), to = static_cast<int64_t>(i) + steps,
                                  at = closed ? (to % nn + nn) % nn : to;
                    ASSERT_EQ(EL_advance(l, ref[i].n, steps), at >= 0 && at < nn ? ref[size_t(at)].n : nullptr);
                    ASSERT_EQ(EL_get_index(l, ref[i].n), static_cast<int32_t>(i));
                    const int32_t k = any_index();
                    const bool hit = k >= 0 && k < static_cast<int32_t>(n);
                    ASSERT_EQ(EL_get_pos_at_index(l, k), hit ? ref[k].n : nullptr);
                    ASSERT_EQ(EL_get_item_at_index(l, k), hit ? static_cast<void *>(ref[k].n->item) : nullptr);
                }
                break;
            case 17:
                if (n) {  // overwrite a range from a source list of random length
                    auto idx = vorn_test::walk_order(n, i, j, true, closed);
                    Ref made;
                    const size_t len = rng.below(static_cast<uint32_t>(idx.size()) + 2);
                    EL_list *src = fresh_list(len, made);
                    auto raised = vorn_test::catch_raise(
                        [&] { EL_replace_items_inbetween(l, ref[i].n, ref[j].n, src, kSize); });
                    ASSERT_EQ(vorn_test::describe(raised), vorn_test::expected(len < idx.size(), vorn::raises::EL_RAISE_REPLACE_SOURCE_SHORT));
                    for (size_t k = 0; k < idx.size() && k < len; ++k) ref[idx[k]].v = made[k].v;
                    ASSERT_EQ(src->count, static_cast<int32_t>(len));
                    EL_release(&src);
                }
                break;
            case 18:
                if (rng.chance(10)) {
                    stack ? ES_make_empty(l) : EL_make_empty(l);
                    ref.clear();
                    closed = false;
                }
                break;
            case 19: {  // a ring stays a ring holding both parts
                Ref moved;
                EL_list *more = fresh_list(rng.below(4), moved);
                ASSERT_EQ(EL_append_list(l, &more), moved.empty() ? nullptr : moved.front().n);
                ref.insert(ref.end(), moved.begin(), moved.end());
                break;
            }
            case 20:
                if (n) {  // walks either way, tested or not, through every step
                    const bool forward = rng.chance(50), tested = rng.chance(50);
                    const auto idx = vorn_test::walk_order(n, i, j, forward, closed);
                    Values want;
                    for (size_t k : idx)
                        if (!tested || ref[k].v % 2 == 0) want.push_back(ref[k].v);
                    const EL_iter it = tested ? EL_tested_items_inbetween(l, ref[i].n, ref[j].n, forward, even)
                                              : EL_all_items_inbetween(l, ref[i].n, ref[j].n, forward);
                    ASSERT_EQ(it.item_size, kSize);
                    // The pointer is written before the test: it ends on the final item looked at.
                    int32_t last = 0;
                    ASSERT_EQ(stepped(it, Step{(EL_next_item)}, &last), want);
                    ASSERT_EQ(last, ref[idx.back()].v);
                    ASSERT_EQ(stepped(it, Step{EL_next_item_inline}, &last), want);
                    ASSERT_EQ(last, ref[idx.back()].v);
                    ASSERT_EQ(copied(it, &last), want);  // the buffer holds the last delivered
                    ASSERT_EQ(last, want.empty() ? -1 : want.back());
                }
                break;
            case 21:
                if (n) EL_replace_item(ref[i].n, &e, kSize), ref[i].v = v;
                break;
            case 22: {  // the top is the last item; an empty stack leaves the buffer alone
                Elem top = elem(-1);
                const bool pop = rng.chance(50);
                ASSERT_EQ(pop ? ES_pop(l, &top) : ES_inspect_top(l, &top), n ? 1 : 0);
                ASSERT_EQ(value_of(top.b), n ? ref.back().v : -1);
                if (pop && n) ref.pop_back();
                break;
            }
        }
        ASSERT_EQ((std::pair{ES_count_items(l), ES_is_empty(l)}), (std::pair{int32_t(ref.size()), ref.empty() ? 1 : 0}));
        expect_list(l, ref, closed);
        if (::testing::Test::HasFatalFailure()) return;
    }
    EL_release(&stranger);
    stack ? ES_release(&l) : EL_release(&l);
    EXPECT_EQ(l, nullptr);
    EL_release(&l);  // a handle holding null is left alone
}

}  // namespace el_model

namespace sl_model {

struct Rec {
    Rec *prev;
    Rec *next;
    int32_t value;
};
using Recs = std::vector<Rec *>;

inline int32_t value_of(void *r) { return static_cast<Rec *>(r)->value; }
inline int32_t is_even(void *r) { return static_cast<Rec *>(r)->value % 2 == 0; }

// What a walk delivers; `out` is the out argument afterwards.
inline Recs walk(SL_iter it, void **out = nullptr) {
    Recs got;
    void *r = out ? *out : nullptr;
    while (SL_next_item(&it, &r)) got.push_back(static_cast<Rec *>(r));
    if (out) *out = r;
    return got;
}

// Records that are MM_ blocks, so that the leak check sees every one.
inline Rec *new_rec(int32_t v) { return new (MM_alloc_item(sizeof(Rec))) Rec{nullptr, nullptr, v}; }
inline void *copy_rec(void *r) { return new_rec(static_cast<Rec *>(r)->value * 10); }
inline int g_released = 0;
inline void free_rec(void **word) {
    ++g_released;
    MM_dealloc_item(*word, sizeof(Rec));
    *word = nullptr;
}
inline void forget_rec(void **word) { ++g_released, *word = nullptr; }

template <class R>
inline void run(R &rng) {
    std::vector<Rec> pool(48);
    for (size_t i = 0; i < pool.size(); ++i) pool[i] = Rec{nullptr, nullptr, int32_t(i)};
    SL_list *l = SL_create();
    Recs ref;
    bool closed = false;
    auto on_list = [&](Rec *r) { return std::find(ref.begin(), ref.end(), r) != ref.end(); };
    auto spare = [&]() -> Rec * {
        for (uint32_t tries = 0; tries < 8; ++tries) {
            Rec *r = &pool[rng.below(uint32_t(pool.size()))];
            if (!on_list(r)) return r;
        }
        return nullptr;
    };
    auto at = [&](Rec *p) { return std::find(ref.begin(), ref.end(), p); };
    while (rng.more()) {
        const int32_t size = int32_t(ref.size());
        const int32_t index = int32_t(rng.below(uint32_t(size + 3))) - 1;  // -1 .. count+1
        Rec *fresh = spare(), *p = size ? ref[rng.below(uint32_t(size))] : nullptr;
        switch (rng.below(16)) {
            case 0:
                if (fresh) SL_append_after_last(l, fresh), ref.push_back(fresh);
                break;
            case 1:
                if (fresh) SL_insert_before_first(l, fresh), ref.insert(ref.begin(), fresh);
                break;
            case 2:
                if (fresh && p) SL_insert_after(l, p, fresh), ref.insert(at(p) + 1, fresh);
                break;
            case 3:
                if (fresh && p) SL_insert_before(l, p, fresh), ref.insert(at(p), fresh);
                break;
            case 4:
                if (fresh) {
                    const bool ok = index >= 0 && index < size, after = rng.chance(50);
                    ASSERT_EQ(after ? SL_insert_after_index(l, index, fresh) : SL_insert_before_index(l, index, fresh),
                              ok ? 1 : 0);
                    if (ok) ref.insert(ref.begin() + index + after, fresh);
                    else ASSERT_TRUE(!fresh->prev && !fresh->next);  // untouched
                }
                break;
            case 5:  // unique: a record on the list, or a fresh one (appended, on rings too)
                if (Rec *r = p && rng.chance(50) ? p : fresh) {
                    if (!on_list(r)) ref.push_back(r);
                    SL_insert_unique(l, r);
                }
                break;
            case 6:
            case 7:
                if (p) {
                    SL_remove_item(l, p);
                    ref.erase(at(p));
                    ASSERT_TRUE(!p->prev && !p->next);
                }
                break;
            case 8: {
                const bool ok = index >= 0 && index < size;
                Rec *q = ok ? ref[size_t(index)] : nullptr;
                ASSERT_EQ(SL_pos_at_index(l, index), q);
                ASSERT_EQ(SL_remove_at_index(l, index), ok ? 1 : 0);
                if (ok) ref.erase(at(q));
                break;
            }
            case 9:
                closed = !closed;
                closed ? SL_set_closed(l) : SL_reset_closed(l);
                break;
            case 10:
                SL_reverse(l);
                std::reverse(ref.begin(), ref.end());
                break;
            case 11: {  // open: nothing, not even a look; ring: a stranger raises
                Rec *q = p && rng.chance(80) ? p : fresh;
                if (!q) break;
                const auto raised = vorn_test::catch_raise([&] { SL_roll(l, q); });
                ASSERT_EQ(vorn_test::describe(raised), vorn_test::expected(closed && !on_list(q), vorn::raises::SL_RAISE_ROLL_OFF_RING));
                if (closed && on_list(q)) std::rotate(ref.begin(), at(q), ref.end());
                break;
            }
            case 12:
                if (p) {
                    const int32_t i = int32_t(at(p) - ref.begin());
                    ASSERT_EQ(SL_get_index(l, p), i);
                    const int32_t steps = int32_t(rng.below(2 * uint32_t(size) + 1)) - size, to = i + steps;
                    Rec *want = closed ? ref[size_t(((to % size) + size) % size)]
                                       : (to >= 0 && to < size ? ref[size_t(to)] : nullptr);
                    ASSERT_EQ(SL_advance(nullptr, p, steps), want);
                }
                break;
            case 13: {  // append a list of spare records, open or closed: a ring stays one
                SL_list *other = SL_create();
                Recs more;
                for (uint32_t k = rng.below(4); k > 0; --k) {
                    Rec *r = spare();
                    if (!r || std::find(more.begin(), more.end(), r) != more.end()) continue;
                    SL_append_after_last(other, r);
                    more.push_back(r);
                }
                if (rng.chance(30)) SL_set_closed(other);
                ASSERT_EQ(SL_append_list(l, &other), more.empty() ? nullptr : more.front());
                ASSERT_EQ(other, nullptr);
                ref.insert(ref.end(), more.begin(), more.end());
                break;
            }
            case 14: {
                int32_t sum = 0;
                for (Rec *r : ref) sum += r->value;
                ASSERT_EQ(SL_check(l, value_of), int32_t(sizeof(SL_list)) + sum);
                ASSERT_EQ(walk(SL_all_items(l)), ref);
                ASSERT_EQ(walk(SL_all_items_reversed(l)), Recs(ref.rbegin(), ref.rend()));
                Recs even;
                std::copy_if(ref.begin(), ref.end(), std::back_inserter(even), is_even);
                ASSERT_EQ(walk(SL_tested_items(l, is_even)), even);
                std::reverse(even.begin(), even.end());
                ASSERT_EQ(walk(SL_tested_items_reversed(l, is_even)), even);
                break;
            }
            case 15:
                if (p) {  // either way, tested or not; behind `to` an open list runs to its end
                    Rec *to = ref[rng.below(uint32_t(size))];
                    const bool forward = rng.chance(50), tested = rng.chance(50);
                    Recs want;
                    for (size_t k : vorn_test::walk_order(ref.size(), at(p) - ref.begin(), at(to) - ref.begin(), forward, closed))
                        if (!tested || is_even(ref[k])) want.push_back(ref[k]);
                    void *out = &pool;
                    ASSERT_EQ(walk(tested ? SL_tested_items_inbetween(l, p, to, forward, is_even)
                                          : SL_all_items_inbetween(l, p, to, forward), &out), want);
                    ASSERT_EQ(out, want.empty() ? static_cast<void *>(&pool) : want.back());  // only when delivered
                }
                break;
        }
        ASSERT_EQ(SL_count_items(l), l->count);
        ASSERT_EQ(l->closed, closed ? 1 : 0);
        vorn_test::expect_links(l->first, l->last, l->count, closed, ref);
    }
    if (rng.chance(12))  // an empty list (open or closed) at the end
        while (!ref.empty()) SL_remove_item(l, ref.back()), ref.pop_back();
    SL_list *held = l;
    if (!ref.empty()) EXPECT_RAISES(SL_release(&held), vorn::raises::SL_RAISE_RELEASE_NOT_EMPTY);
    EXPECT_EQ(held, l);  // nothing freed, handle kept
    // A total copy (closed as the list is) holds what the callback gives,
    // in order; emptying hands every record to the callback once.
    SL_list *c = SL_total_copy(l, copy_rec);
    ASSERT_EQ(c->closed, closed ? 1 : 0);
    int32_t sum = 0;
    std::vector<int32_t> want, got;
    for (Rec *r : ref) want.push_back(r->value * 10), sum += r->value * 10;
    for (Rec *r : walk(SL_all_items(c))) got.push_back(r->value);
    ASSERT_EQ(got, want);
    ASSERT_EQ(SL_check(c, ref.empty() ? nullptr : value_of), int32_t(sizeof(SL_list)) + sum);  // ends on a ring
    g_released = 0;
    SL_total_release(&c, free_rec);
    SL_make_empty(l, forget_rec);
    EXPECT_EQ(g_released, int(2 * ref.size()));
    EXPECT_EQ(l->closed, 0);
    EXPECT_EQ(l->first, nullptr);
    SL_release(&l);
    SL_release(&l);  // a handle holding null is left alone
    ASSERT_EQ(l, nullptr);
}

}  // namespace sl_model

namespace gl_model {

using Words = std::vector<uintptr_t>;

inline void *word(uintptr_t v) { return reinterpret_cast<void *>(v); }
inline uintptr_t num(void *w) { return reinterpret_cast<uintptr_t>(w); }
inline int32_t accept_odd(void *item) { return num(item) & 1; }

// What a walk delivers through `step`; `out` gets the out argument afterwards.
using Step = int32_t (*)(GL_iter *, void **);
inline Words walk(GL_iter it, Step step = Step{(GL_next_item)}, void **out = nullptr) {
    Words got;
    void *w = out ? *out : nullptr;
    while (step(&it, &w) && got.size() < 1000) got.push_back(num(w));
    if (out) *out = w;
    return got;
}

inline int g_released;
inline void release_word(void **address) {
    ++g_released;
    *address = nullptr;  // allowed: the word dies with its node
}
inline void *copy_plus_100(void *item) { return word(num(item) + 100); }
inline int32_t measure_word(void *item) { return static_cast<int32_t>(num(item)); }

template <class R>
inline void run(R &rng) {
    GL_list *l = GL_create();
    std::vector<GL_node *> ref;
    auto at = [&](GL_node *p) { return std::find(ref.begin(), ref.end(), p); };
    auto holding = [&](void *w) { return std::find_if(ref.begin(), ref.end(), [&](GL_node *n) { return n->item == w; }); };
    while (rng.more()) {
        void *w = word(rng.below(16));  // small words: duplicates and 0 occur
        GL_node *p = ref.empty() ? nullptr : ref[rng.below(static_cast<uint32_t>(ref.size()))];
        switch (rng.below(13)) {
            case 0: ref.push_back(GL_append_after_last(l, w)); break;
            case 1: ref.insert(ref.begin(), GL_insert_before_first(l, w)); break;
            case 2:
                if (p) ref.insert(at(p) + 1, GL_insert_after(l, p, w));
                break;
            case 3:
                if (p) ref.insert(at(p), GL_insert_before(l, p, w));
                break;
            case 4: {
                const bool held = holding(w) != ref.end();
                GL_node *q = GL_insert_unique(l, w);
                ASSERT_EQ(q == nullptr, held);
                if (!held) ref.push_back(q);
                break;
            }
            case 5: {
                auto hit = holding(w);
                GL_node *q = reinterpret_cast<GL_node *>(1);
                ASSERT_EQ(GL_find_item(l, w, &q), hit != ref.end() ? 1 : 0);
                ASSERT_EQ(q, hit != ref.end() ? *hit : nullptr);
                break;
            }
            case 6:
            case 7:
                if (p) ref.erase(at(p)), GL_remove_item(l, p);
                break;
            case 8:
                if (p) ref.erase(at(p)), ref.insert(ref.begin(), p), GL_move_before_first(l, p);
                break;
            case 9: {  // splice a fresh list behind or in front
                GL_list *other = GL_create();
                std::vector<GL_node *> more;
                for (uint32_t k = rng.below(4); k > 0; --k)
                    more.push_back(GL_append_after_last(other, word(rng.below(16))));
                if (rng.chance(50)) {
                    ASSERT_EQ(GL_append_list(l, &other), more.empty() ? nullptr : more.front());
                    ref.insert(ref.end(), more.begin(), more.end());
                } else {
                    GL_append_list_in_front(l, &other);
                    ref.insert(ref.begin(), more.begin(), more.end());
                }
                ASSERT_EQ(other, nullptr);
                break;
            }
            case 10:
                if (p) {
                    void *old = p->item, *in = w;
                    GL_swap_item(p, &in);
                    ASSERT_EQ(in, old);
                    ASSERT_EQ(p->item, w);
                }
                break;
            case 11:
                if (rng.chance(5)) GL_make_empty(l), ref.clear();
                break;
            case 12:
                if (p) {  // either way, tested or not, through both steps; a walk that is over stays over
                    GL_node *to = ref[rng.below(static_cast<uint32_t>(ref.size()))];
                    const bool forward = rng.chance(50), tested = rng.chance(50);
                    const auto idx = vorn_test::walk_order(ref.size(), at(p) - ref.begin(), at(to) - ref.begin(), forward, false);
                    Words want;
                    for (size_t k : idx)
                        if (!tested || accept_odd(ref[k]->item)) want.push_back(num(ref[k]->item));
                    GL_iter it = tested ? GL_tested_items_inbetween(l, p, to, forward, accept_odd)
                                        : GL_all_items_inbetween(l, p, to, forward);
                    for (Step step : {Step{(GL_next_item)}, Step{GL_next_item_inline}}) {
                        void *out = word(99);
                        ASSERT_EQ(walk(it, step, &out), want);
                        ASSERT_EQ(out, ref[idx.back()]->item);  // written before the test: the final word looked at
                    }
                }
                break;
        }
        ASSERT_EQ(GL_count_items(l), l->count);
        vorn_test::expect_links(l->first, l->last, l->count, false, ref);
        if (::testing::Test::HasFatalFailure()) return;
    }
    // A copy holds the words (a total copy what the callback gives for
    // them) in order, in new nodes; the total operations hand every word
    // to the callback once; the check measures every word.
    const bool total = rng.chance(50);
    GL_list *c = total ? GL_total_copy(l, copy_plus_100) : GL_copy(l);
    uintptr_t sum = 0;
    GL_node *n = c->first;
    for (GL_node *r : ref) {
        ASSERT_TRUE(n && n != r);
        ASSERT_EQ(num(n->item), num(r->item) + (total ? 100 : 0));
        sum += num(r->item), n = n->next;
    }
    ASSERT_EQ(n, nullptr);
    EXPECT_EQ(GL_check(l, ref.empty() ? nullptr : measure_word),  // not called on an empty list
              static_cast<int32_t>(sizeof(GL_list) + ref.size() * sizeof(GL_node) + sum));
    g_released = 0;
    GL_total_make_empty(c, release_word);
    EXPECT_EQ(c->count, 0);
    GL_total_release(&l, release_word);
    EXPECT_EQ(g_released, static_cast<int>(2 * ref.size()));
    EXPECT_EQ(l, nullptr);
    GL_release(&c);
}

}  // namespace gl_model

namespace gb_model {

using Items = std::vector<std::string>;  // an item is its bytes

struct Model {
    int32_t size = 0, capacity = 0;
    int16_t inc = 10, closed = 0;
    Items items;
    int32_t count() const { return static_cast<int32_t>(items.size()); }
    void set_capacity(int32_t n) {  // the capacity rule
        if (n > count() && n != capacity) capacity = n;
    }
    void grow_if_full() {  // an inc of 0 or less grows by one item
        if (count() == capacity) set_capacity(capacity + std::max<int16_t>(inc, 1));
    }
};

inline Items contents(const GB_list &l) {
    Items out;
    for (int32_t i = 0; i < l.count; ++i)
        out.emplace_back(static_cast<const char *>(l.data) + i * l.item_size, l.item_size);
    return out;
}

inline void expect_equal(const GB_list &l, const Model &m) {
    ASSERT_EQ((std::vector<int32_t>{l.item_size, l.capacity, l.inc, l.closed}),
              (std::vector<int32_t>{m.size, m.capacity, m.inc, m.closed}));
    ASSERT_EQ(contents(l), m.items);
}

// Index plus delta; on a ring brought into range by whole turns of count.
inline int32_t ref_advance(const Model &m, int64_t to) {
    const int64_t n = m.count();
    if (n == 0 || (!m.closed && (to < 0 || to >= n))) return -1;
    return static_cast<int32_t>((to % n + n) % n);
}

template <class R>
inline void run(R &rng) {
    const int64_t bytes_before = MM_bytes_in_use();
    Model m;
    m.size = static_cast<int32_t>(1 + rng.below(12));
    uint32_t tag = 0;
    auto fresh = [&] {  // distinct bytes for every new item
        std::string s(static_cast<size_t>(m.size), '\0');
        ++tag;
        for (int32_t k = 0; k < m.size; ++k) s[k] = static_cast<char>((tag >> (8 * (k % 4))) ^ k);
        return s;
    };
    auto any_index = [&] { return static_cast<int32_t>(rng.below(m.items.size() + 3)) - 1; };
    auto around = [&](int32_t span) { return static_cast<int32_t>(rng.below(2 * span + 1)) - span; };
    GB_list l;
    const int32_t first_capacity = around(2);
    GB_init(&l, m.size, first_capacity);
    m.capacity = std::max(first_capacity, 1);
    while (rng.more()) {
        const int32_t count = m.count(), i = any_index();
        const bool item_index = i >= 0 && i < count;
        std::string it = fresh();
        switch (rng.below(16)) {
            case 0:
                m.grow_if_full();
                ASSERT_EQ(GB_append_after_last(&l, it.data()), count);
                m.items.push_back(it);
                break;
            case 1:
                GB_insert_item(&l, i, it.data());  // out of range: nothing happens
                if (i >= 0 && i <= count) m.grow_if_full(), m.items.insert(m.items.begin() + i, it);
                break;
            case 2:
                GB_replace_item(&l, i, it.data());
                if (item_index) m.items[i] = it;
                break;
            case 3:
                GB_remove_item(&l, i);
                if (item_index) m.items.erase(m.items.begin() + i);
                break;
            case 4:
                GB_remove_last_item(&l);  // on an empty list: nothing happens
                if (count) m.items.pop_back();
                break;
            case 5: GB_set_inc(&l, m.inc = static_cast<int16_t>(rng.below(5))); break;
            case 6: {
                const int32_t n = count + around(8);
                GB_set_number_of_elements(&l, n);
                m.set_capacity(n);
                break;
            }
            case 7: GB_reverse(&l), std::reverse(m.items.begin(), m.items.end()); break;
            case 8: (m.closed = !m.closed) ? GB_set_closed(&l) : GB_reset_closed(&l); break;
            case 9: {
                const int32_t n = around(3 * count + 3);
                GB_roll(&l, n);
                if (!m.closed || count < 2) break;
                Items r;  // item i becomes old item (i + n) mod count
                for (int32_t k = 0; k < count; ++k) r.push_back(m.items[((k + n) % count + count) % count]);
                m.items = r;
                break;
            }
            case 10: {
                GB_make_open_at_position(&l, i);
                if (!m.closed || !item_index) break;
                m.grow_if_full();
                Items r(m.items.begin() + i, m.items.end());
                r.insert(r.end(), m.items.begin(), m.items.begin() + i + 1);
                m.items = r;
                m.closed = 0;
                break;
            }
            case 11: {
                GB_list dest, untouched;
                std::memset(&dest, 0x5A, sizeof dest);
                untouched = dest;
                GB_remove_and_get_end_part(&dest, &l, i);
                if (m.closed || !item_index) {
                    ASSERT_EQ(std::memcmp(&dest, &untouched, sizeof dest), 0);
                    break;
                }
                expect_equal(dest, Model{m.size, count - i, m.inc, 0, {m.items.begin() + i, m.items.end()}});
                GB_release(&dest);
                m.items.resize(static_cast<size_t>(i) + 1);
                break;
            }
            case 12: {  // GB_append_block of a fresh record, or GB_copy_into from one
                GB_list other;
                GB_init(&other, m.size, around(2));
                Items more;
                for (uint32_t k = rng.below(7); k > 0; --k) {
                    more.push_back(fresh());
                    GB_append_after_last(&other, more.back().data());
                }
                const int32_t shown = other.count;
                if (rng.chance(15)) GB_release(&other), more.clear();  // holds no items now
                const int32_t k = static_cast<int32_t>(more.size());
                if (rng.chance(50)) {
                    const void *data = other.data;
                    ASSERT_EQ(GB_append_block(&l, &other), count);
                    ASSERT_TRUE(other.capacity == 0 && other.count == shown && other.data == data);
                    m.capacity = std::max(m.capacity, count + k);
                    m.items.insert(m.items.end(), more.begin(), more.end());
                } else {
                    other.closed = static_cast<int16_t>(rng.below(2));
                    GB_copy_into(&l, &other);
                    m.set_capacity(k);
                    m.items = more;
                    m.closed = other.closed;
                    GB_release(&other);
                }
                break;
            }
            case 13: {
                GB_list c;
                GB_copy(&c, &l);
                Model cm = m;
                cm.capacity = std::max(count, 1);
                expect_equal(c, cm);
                GB_release(&c);
                break;
            }
            case 14: {
                const int32_t delta = around(4 * count + 4);
                ASSERT_EQ(GB_advance(&l, i, delta), ref_advance(m, int64_t{i} + delta));
                ASSERT_EQ(GB_get_index(&l, i), i);
                break;
            }
            case 15:
                if (rng.chance(30)) GB_release(&l), m.capacity = 0;  // grows a new block
                GB_make_empty(&l);
                m.items.clear();
                break;
        }
        expect_equal(l, m);
        ASSERT_EQ(GB_count_items(&l), m.count());
        ASSERT_EQ(MM_bytes_in_use() - bytes_before, int64_t{m.capacity} * m.size);
    }
    GB_release(&l);
}

}  // namespace gb_model

