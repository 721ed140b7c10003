// DA against a byte-exact model of the whole block, the walk, and the
// failure lines through injected allocation failures.
#include <algorithm>
#include <cstring>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
using vorn_test::Rng;
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
    unsigned char *at(int64_t i) { return block.data() + i * size; }
};

void expect_model(DA_array *a, const Model &m) {
    ASSERT_EQ(DA_nitems(a), m.nitems);
    ASSERT_EQ(DA_nalloc(a), m.nalloc);
    ASSERT_EQ(DA_memsize(a), m.nalloc * m.size);
    ASSERT_EQ(DA_check(a), static_cast<int32_t>(sizeof(DA_array)) + m.nalloc * m.size);
    if (m.nalloc == 0) ASSERT_EQ(DA_data(a), nullptr);
    else ASSERT_EQ(0, std::memcmp(DA_data(a), m.block.data(), m.block.size()));
}

Model fresh_copy(const Model &m, int32_t inc) {
    Model c(m.size, inc);
    if (m.nitems > 0) c.extend(m.nitems);
    std::copy_n(m.block.begin(), m.nitems * m.size, c.block.begin());
    c.nitems = m.nitems;
    return c;
}

class DaModel : public LeakChecked {};

TEST_F(DaModel, RandomOperationsFollowTheModel) {
    const int32_t sizes[] = {1, 3, 4, 8, 16}, incs[] = {1, 2, 5, 16};
    for (uint64_t seed = 1; seed <= 60; ++seed) {
        Rng rng(seed);
        Model m(sizes[seed % 5], incs[(seed / 5) % 4]);
        DA_array *a = DA_create(m.size, m.inc);
        auto random_items = [&](int32_t count) {
            Bytes b(static_cast<size_t>(count * m.size));
            for (auto &c : b) c = static_cast<unsigned char>(rng.below(256));
            return b;
        };
        auto idx = [&](int32_t above) { return static_cast<int32_t>(rng.below(m.nitems + above)); };
        for (int op = 0; op < 300; ++op) {
            const int32_t count = static_cast<int32_t>(rng.below(4));
            Bytes src = random_items(std::max(count, 1));
            switch (rng.below(14)) {
                case 0: case 1:
                    DA_append(a, src.data(), count);
                    if (m.nitems + count > m.nalloc) m.extend(m.nitems + count);
                    std::copy(src.begin(), src.begin() + count * m.size, m.at(m.nitems));
                    m.nitems += count;
                    break;
                case 2: {
                    const int32_t i = idx(4);
                    DA_insert(a, i, src.data(), count);
                    if (i < m.nitems) {
                        if (m.nitems + count > m.nalloc) m.extend(m.nitems + count);
                        std::copy_backward(m.at(i), m.at(m.nitems), m.at(m.nitems + count));
                    } else if (i + count + 1 > m.nalloc) {
                        m.extend(i + count + 1);
                    }
                    std::copy(src.begin(), src.begin() + count * m.size, m.at(i));
                    m.nitems = std::max(m.nitems, i) + count;
                    break;
                }
                case 3:
                    if (m.nitems > 0) {
                        const int32_t i = idx(0), c = std::min(count, m.nitems - i);
                        DA_delete(a, i, c);
                        std::copy(m.at(i + c), m.at(m.nitems), m.at(i));
                        m.nitems -= c;
                    }
                    break;
                case 4: case 5: {
                    const int32_t i = static_cast<int32_t>(rng.below(m.nalloc + 6));
                    const bool zero = rng.chance(25);
                    if (op % 2) DA_put_item(a, i, zero ? nullptr : src.data());
                    else std::memcpy(DA_get_item(a, i), src.data(), m.size);
                    if (i >= m.nalloc) m.extend(i + 1);
                    if (zero && op % 2) std::fill_n(m.at(i), m.size, 0);
                    else std::copy_n(src.begin(), m.size, m.at(i));
                    m.nitems = std::max(m.nitems, i + 1);
                    break;
                }
                case 6: {
                    const int32_t n = idx(8);
                    DA_setsize(a, n);
                    m.extend(n);
                    m.nitems = n;
                    break;
                }
                case 7: {
                    const int32_t n = idx(3);
                    DA_truncate(a, n);
                    m.nitems = std::min(m.nitems, n);
                    break;
                }
                case 8: {
                    const int32_t n = idx(20);
                    DA_extend(a, n);
                    m.extend(n);
                    break;
                }
                case 9:
                    DA_reverse(a);
                    for (int32_t i = 0; i < m.nitems / 2; ++i)
                        std::swap_ranges(m.at(i), m.at(i + 1), m.at(m.nitems - 1 - i));
                    break;
                case 10: {
                    const int32_t shift = static_cast<int32_t>(rng.below(41)) - 20;
                    DA_roll(a, shift);
                    Bytes old(m.at(0), m.at(m.nitems));
                    for (int32_t i = 0; m.nitems > 1 && i < m.nitems; ++i)
                        std::copy_n(old.begin() + ((i + shift % m.nitems + m.nitems) % m.nitems) * m.size,
                                    m.size, m.at(i));
                    break;
                }
                case 11: {
                    DA_array *c = DA_copy(a);
                    expect_model(c, fresh_copy(m, m.inc));
                    ASSERT_EQ(DA_equal(a, c), 1);
                    if (m.nitems > 0) static_cast<unsigned char *>(c->data)[0] ^= 1;
                    ASSERT_EQ(DA_equal(a, c), m.nitems > 0 ? 0 : 1);
                    DA_array *d = DA_create(m.size, 7);
                    DA_append(d, src.data(), 1);
                    DA_copy_into(d, a);
                    expect_model(d, fresh_copy(m, 7));
                    DA_release(c);
                    DA_release(d);
                    break;
                }
                case 12:
                    if (m.size == 1) {
                        m.extend(m.nitems + 1);
                        ASSERT_EQ(DA_string(a), DA_data(a));
                        m.block[m.nitems] = 0;
                    } else if (rng.chance(30)) {
                        DA_clear(a);
                        m = Model(m.size, m.inc);
                    }
                    break;
                default: DA_reset(a); m.nitems = 0; break;
            }
            ASSERT_NO_FATAL_FAILURE(expect_model(a, m)) << "seed " << seed << " op " << op;
        }
        DA_release(a);
    }
}

std::vector<int32_t> ints(DA_array *a) {
    const auto *p = static_cast<const int32_t *>(DA_data(a));
    return std::vector<int32_t>(p, p + DA_nitems(a));
}

DA_array *tens(int32_t n) {  // 10, 20, ... n items, increment 4
    DA_array *a = DA_create(4, 4);
    for (int32_t v = 10; v <= 10 * n; v += 10) DA_append(a, &v, 1);
    return a;
}

int g_calls;
int32_t refuse(void *) { return ++g_calls, 0; }
int32_t odd_tens(void *item) { return (*static_cast<int32_t *>(item) / 10) % 2; }

TEST_F(DaModel, WalksFollowIndicesAgainstThePresentCount) {
    struct Case {
        const char *name;
        DA_iter (*start)(DA_array *);
        void (*after_first)(DA_array *);  // applied once the first item came
        std::vector<int32_t> want;
    };
    const Case cases[] = {
        {"all", DA_all_items, nullptr, {10, 20, 30, 40, 50}},
        {"tested", [](DA_array *a) { return DA_tested_items(a, odd_tens); }, nullptr, {10, 30, 50}},
        {"down, from beyond the end", [](DA_array *a) { return DA_iter{a, 0, 7, 1, nullptr}; },
         nullptr, {50, 40, 30, 20}},
        {"from below 0", [](DA_array *a) { return DA_iter{a, 1, -3, 1, nullptr}; }, nullptr, {10, 20}},
        {"truncated", DA_all_items, [](DA_array *a) { DA_truncate(a, 2); }, {10, 20}},
        {"delivered deleted", DA_all_items, [](DA_array *a) { DA_delete(a, 0, 1); }, {10, 30, 40, 50}},
        {"appended", DA_all_items, [](DA_array *a) { DA_append(a, &a->nitems, 1); },
         {10, 20, 30, 40, 50}},
    };
    for (const Case &c : cases) {
        DA_array *a = tens(5);
        DA_iter it = c.start(a);
        std::vector<int32_t> got;
        void *item;
        while (DA_next(&it, &item)) {
            got.push_back(*static_cast<int32_t *>(item));
            if (got.size() == 1 && c.after_first) c.after_first(a);
        }
        EXPECT_EQ(got, c.want) << c.name;
        EXPECT_EQ(item, nullptr) << c.name;
        item = &got;
        EXPECT_EQ(DA_next(&it, &item), 0) << c.name;  // an ended walk stays ended
        EXPECT_EQ(item, nullptr) << c.name;
        DA_release(a);
    }
    DA_array *a = tens(4);
    g_calls = 0;
    DA_iter it = DA_tested_items(a, refuse);
    void *item = a;
    EXPECT_EQ(DA_next(&it, &item), 0);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(g_calls, 4);
    DA_reset(a);
    it = DA_all_items(a);
    EXPECT_EQ(it.last, -1);
    EXPECT_EQ(DA_next(&it, &item), 0);
    DA_release(a);
}

TEST_F(DaModel, RollReverseAndCopyIntoItself) {
    DA_array *a = tens(5);
    const std::pair<int32_t, std::vector<int32_t>> rolls[] = {
        {1, {20, 30, 40, 50, 10}}, {-1, {10, 20, 30, 40, 50}}, {4, {50, 10, 20, 30, 40}},
        {-7, {30, 40, 50, 10, 20}}, {10, {30, 40, 50, 10, 20}}};
    for (const auto &[shift, want] : rolls) {
        DA_roll(a, shift);
        EXPECT_EQ(ints(a), want) << shift;
    }
    // Nothing to move allocates nothing: the armed failure is still pending.
    MM_fail_after(0);
    DA_roll(a, 5);
    EXPECT_RAISES(DA_create(1, 1), "darray", 25, 4197);
    // The reverse temporary is taken even with nothing to swap.
    DA_array *one = DA_create(4, 1);
    MM_fail_after(0);
    DA_reverse(one);
    EXPECT_FALSE(vorn_test::catch_raise([] { DA_release(DA_create(1, 1)); }));
    DA_copy_into(a, a);
    EXPECT_EQ(DA_nitems(a), 0);
    EXPECT_EQ(DA_data(a), nullptr);
    DA_release(one);
    DA_release(a);
}

// Every growing operation raises line 103; data is then null and the counts
// stay.  The block that could not grow is still the caller's to free.
TEST_F(DaModel, FailuresRaiseWithTheDocumentedState) {
    MM_fail_after(0);
    EXPECT_RAISES(DA_create(4, 8), "darray", 25, 4197);
    DA_array *src = tens(6);
    MM_fail_after(0);
    EXPECT_RAISES(DA_copy(src), "darray", 263, 4197);
    int32_t v = 7;
    void (*const growers[])(DA_array *, DA_array *, int32_t *) = {
        [](DA_array *a, DA_array *, int32_t *p) { DA_append(a, p, 1); },
        [](DA_array *a, DA_array *, int32_t *p) { DA_insert(a, 0, p, 1); },
        [](DA_array *a, DA_array *, int32_t *p) { DA_insert(a, a->nitems, p, 0); },
        [](DA_array *a, DA_array *, int32_t *p) { DA_put_item(a, a->nalloc, p); },
        [](DA_array *a, DA_array *, int32_t *) { DA_get_item(a, a->nalloc); },
        [](DA_array *a, DA_array *, int32_t *) { DA_setsize(a, a->nalloc + 1); },
        [](DA_array *a, DA_array *, int32_t *) { DA_string(a); },
        [](DA_array *a, DA_array *s, int32_t *) { DA_copy_into(a, s); },
    };
    for (size_t g = 0; g < std::size(growers); ++g) {
        for (int32_t full : {0, 4}) {
            DA_array *a = DA_create(4, 4);
            for (int32_t i = 0; i < full; ++i) DA_append(a, &v, 1);
            void *old = DA_data(a);
            MM_fail_after(0);
            EXPECT_RAISES(growers[g](a, src, &v), "darray", 103, 4197);
            const bool emptied = g + 1 == std::size(growers);  // copy_into freed it first
            EXPECT_EQ(DA_data(a), nullptr);
            EXPECT_EQ(DA_nalloc(a), emptied ? 0 : full) << g;
            EXPECT_EQ(DA_nitems(a), emptied ? 0 : full) << g;
            if (!emptied) MM_dealloc_item(old, static_cast<size_t>(full) * 4);
            DA_release(a);
        }
    }
    DA_array *bytes = DA_create(1, 4);
    DA_append(bytes, "ab", 2);
    EXPECT_RAISES(DA_copy_into(bytes, src), "darray", 281, 4297);
    EXPECT_EQ(std::string(DA_string(bytes)), "ab");
    EXPECT_EQ(DA_nalloc(bytes), 4);
    DA_array *other = DA_create(2, 4);
    DA_reset(bytes);
    EXPECT_EQ(DA_equal(other, bytes), 0);  // item sizes differ, both empty
    DA_release(other);
    DA_release(bytes);
    DA_release(src);
}

}  // namespace
