// The arrays against models, each driver a template over its source of
// choices (vorn_test::Rng under GoogleTest, vorn_test::Bytes under
// libFuzzer): DA against a byte-exact model of its whole block (items,
// stale bytes, zeroes, the growth rule, copies), SA's number sets against the marked
// items of a sequence edited by insert, delete, reverse and roll.
#pragma once

#include "support.hpp"

namespace arrays_model {

using Bytes = std::vector<unsigned char>;

// The whole block as the growth rule predicts it: items, stale bytes, zeroes.
struct Model {
    int32_t size, inc, nalloc = 0, nitems = 0;
    Bytes block;
    Model(int32_t s, int32_t i) : size(s), inc(i) {}
    void extend(int64_t n) {
        const int64_t wanted = ((n - 1) / inc + 1) * inc;
        if (wanted <= nalloc) return;
        block.resize(static_cast<size_t>(wanted * size), 0);
        nalloc = static_cast<int32_t>(wanted);
    }
    void grow(int64_t n) { if (n > nalloc) extend(n); }
    unsigned char *at(int64_t i) { return block.data() + i * size; }
};

inline void expect_model(DA_array *a, const Model &m) {
    ASSERT_EQ((std::vector<int32_t>{DA_nitems(a), DA_nalloc(a), DA_memsize(a), DA_check(a)}),
              (std::vector<int32_t>{m.nitems, m.nalloc, m.nalloc * m.size,
                                    static_cast<int32_t>(sizeof(DA_array)) + m.nalloc * m.size}));
    if (m.nalloc == 0) ASSERT_EQ(DA_data(a), nullptr);
    else ASSERT_EQ(0, std::memcmp(DA_data(a), m.block.data(), m.block.size()));
}

inline Model copied(Model m, int32_t inc) {  // a fresh array holding m's items
    Model c(m.size, inc);
    if (m.nitems > 0) c.extend(m.nitems);
    std::copy(m.at(0), m.at(m.nitems), c.block.begin());
    c.nitems = m.nitems;
    return c;
}

template <class R>
inline void run_da(R &rng) {
    const int32_t sizes[] = {1, 3, 4, 8, 16}, incs[] = {1, 2, 5, 16};
    Model m(sizes[rng.below(5)], incs[rng.below(4)]);
    DA_array *a = DA_create(m.size, m.inc);
    while (rng.more()) {
        if (m.nalloc > 1024) {  // a long input stays fast: every check compares the whole block
            DA_clear(a);
            m = Model(m.size, m.inc);
        }
        const auto count = static_cast<int32_t>(rng.below(4));
        const auto i = static_cast<int32_t>(rng.below(m.nitems + 4));
        Bytes src(static_cast<size_t>(4 * m.size));
        for (auto &c : src) c = static_cast<unsigned char>(rng.below(256));
        auto put = [&](int32_t at, int32_t n) { std::copy_n(src.data(), n * m.size, m.at(at)); };
        switch (rng.below(13)) {
            case 0: case 1:  // the header's inline form (where it has one) and the exported call alike
                i % 2 ? DA_append(a, src.data(), count) : (DA_append)(a, src.data(), count);
                m.grow(m.nitems + count);
                put(m.nitems, count);
                m.nitems += count;
                break;
            case 2:
                DA_insert(a, i, src.data(), count);
                if (i < m.nitems) {
                    m.grow(m.nitems + count);
                    std::copy_backward(m.at(i), m.at(m.nitems), m.at(m.nitems + count));
                } else {
                    m.grow(i + count + 1);  // one slot more than the items need
                }
                put(i, count);
                m.nitems = std::max(m.nitems, i) + count;
                break;
            case 3:
                if (i < m.nitems) {
                    const int32_t c = std::min(count, m.nitems - i);
                    DA_delete(a, i, c);
                    std::copy(m.at(i + c), m.at(m.nitems), m.at(i));
                    m.nitems -= c;
                }
                break;
            case 4: case 5: {  // past the end too: both lengthen
                const int32_t at = static_cast<int32_t>(rng.below(m.nalloc + 6));
                const bool by_put = rng.chance(50), zero = by_put && rng.chance(25);
                if (by_put) DA_put_item(a, at, zero ? nullptr : src.data());
                else std::memcpy(at % 2 ? (DA_get_item)(a, at) : DA_get_item(a, at), src.data(), m.size);
                m.grow(at + 1);
                if (zero) std::fill_n(src.begin(), m.size, 0);
                put(at, 1);
                m.nitems = std::max(m.nitems, at + 1);
                break;
            }
            case 6: DA_setsize(a, i); m.extend(i); m.nitems = i; break;
            case 7: DA_truncate(a, i); m.nitems = std::min(m.nitems, i); break;
            case 8: DA_extend(a, i * 3); m.extend(i * 3); break;
            case 9:
                DA_reverse(a);
                for (int32_t k = 0; k < m.nitems / 2; ++k)
                    std::swap_ranges(m.at(k), m.at(k + 1), m.at(m.nitems - 1 - k));
                break;
            case 10: {
                const int32_t shift = i * 7 - 20, n = m.nitems;
                DA_roll(a, shift);
                const Bytes old(m.at(0), m.at(n));
                for (int32_t k = 0; n > 1 && k < n; ++k)  // item (k + shift) mod n comes to k
                    std::copy_n(&old[((k + shift % n + n) % n) * m.size], m.size, m.at(k));
                break;
            }
            case 11: {
                DA_array *c = DA_copy(a), *d = DA_create(m.size, 7);
                expect_model(c, copied(m, m.inc));
                ASSERT_EQ(DA_equal(a, c), 1);
                if (m.nitems > 0) static_cast<unsigned char *>(c->data)[m.size - 1] ^= 1;
                ASSERT_EQ(DA_equal(a, c), m.nitems > 0 ? 0 : 1);
                DA_append(d, src.data(), 4);
                DA_copy_into(d, a);
                expect_model(d, copied(m, 7));
                DA_copy_into(c, c);  // the same array twice ends empty, its block freed first
                ASSERT_TRUE(DA_nitems(c) == 0 && DA_data(c) == nullptr);
                DA_array *other = DA_create(m.size + 1, 4);  // another item size: a raise, nothing changed
                DA_append(other, src.data(), 1);
                EXPECT_RAISES(DA_copy_into(other, a), vorn::raises::DA_RAISE_COPY_INTO_SIZES_DIFFER);
                ASSERT_EQ(std::pair(DA_nitems(other), DA_nalloc(other)), std::pair(1, 4));
                DA_reset(other);
                ASSERT_EQ(DA_equal(other, c), 0);  // both empty, item sizes differ
                for (DA_array *x : {c, d, other}) DA_release(x);
                break;
            }
            default:
                if (m.size == 1) {  // the terminator lies at byte offset nitems
                    m.grow(m.nitems + 1);
                    const char *text = DA_string(a);
                    ASSERT_EQ(text, DA_data(a));
                    m.block[m.nitems] = 0;
                } else if (rng.chance(30)) {
                    DA_clear(a);
                    m = Model(m.size, m.inc);
                } else {
                    DA_reset(a);
                    m.nitems = 0;
                }
        }
        ASSERT_NO_FATAL_FAILURE(expect_model(a, m));
    }
    DA_release(a);
}

// ---- SA against a marked sequence: the sequence is a DA of item ids edited
// by insert, delete, reverse and roll; the set must always hold the indices
// of the marked ids, in ascending order.
inline std::vector<int32_t> ints(DA_array *a) {
    const auto *p = static_cast<const int32_t *>(DA_data(a));
    return p ? std::vector<int32_t>(p, p + DA_nitems(a)) : std::vector<int32_t>{};
}

inline int32_t id_at(DA_array *seq, int32_t i) { return *static_cast<int32_t *>(DA_get_item(seq, i)); }

template <class R>
inline void run_sa(R &rng) {
    DA_array *seq = DA_create(4, 8), *set = DA_create(4, 1 + static_cast<int32_t>(rng.below(5)));
    std::set<int32_t> marked;  // ids
    int32_t next_id = 0;
    while (rng.more()) {
        const int32_t len = DA_nitems(seq), i = static_cast<int32_t>(rng.below(len + 1));
        const bool on_item = i < len, was = on_item && marked.count(id_at(seq, i));
        switch (rng.below(7)) {
            case 0: case 1:
                DA_insert(seq, i, &next_id, 1);
                ++next_id;
                SA_adapt_for_insert(set, i);
                break;
            case 2:
                if (!on_item) break;
                marked.erase(id_at(seq, i));
                DA_delete(seq, i, 1);
                SA_adapt_for_remove(set, i);
                break;
            case 3: DA_reverse(seq); SA_adapt_for_reverse(set, len); break;
            case 4: DA_roll(seq, i); SA_adapt_for_roll(set, i, len); break;  // shift 0 .. len
            default:
                if (!on_item) break;
                ASSERT_EQ(SA_check_number(set, i), was ? 1 : 0);
                if (was && rng.chance(50)) {
                    SA_remove_number(set, i);
                    marked.erase(id_at(seq, i));
                } else {
                    SA_add_number(set, i);  // a second add changes nothing
                    marked.insert(id_at(seq, i));
                }
        }
        std::vector<int32_t> want;
        for (int32_t k = 0; k < DA_nitems(seq); ++k)
            if (marked.count(id_at(seq, k))) want.push_back(k);
        ASSERT_EQ(ints(set), want);
        if (rng.chance(2)) {  // negative numbers are ordinary members
            DA_array *low = DA_create(4, 2);
            std::vector<int32_t> neg;
            for (int32_t v : want) {
                SA_add_number(low, -v - 1);
                neg.insert(neg.begin(), -v - 1);
            }
            ASSERT_EQ(ints(low), neg);
            DA_release(low);
        }
    }
    DA_release(seq);
    DA_release(set);
}

}  // namespace arrays_model
