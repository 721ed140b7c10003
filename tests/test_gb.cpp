// GB against a simple reference (items, count, capacity, inc, closed, bytes
// held), and the worked examples as one table.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
using vorn_test::Rng;

// What a GB_list should hold; an item is its bytes.
struct Model {
    int32_t size = 0;
    std::vector<std::string> items;
    int32_t capacity = 0;
    int16_t inc = 10;
    int16_t closed = 0;

    void set_capacity(int32_t n) {  // the capacity rule
        if (n > static_cast<int32_t>(items.size()) && n != capacity) capacity = n;
    }
    void grow_if_full() {
        if (static_cast<int32_t>(items.size()) == capacity) set_capacity(capacity + inc);
    }
};

std::string item_bytes(int32_t size, uint32_t tag) {
    std::string s(static_cast<size_t>(size), '\0');
    for (int32_t k = 0; k < size; ++k) s[k] = static_cast<char>((tag >> (8 * (k % 4))) ^ k);
    return s;
}

std::vector<std::string> contents(const GB_list &l) {
    std::vector<std::string> out;
    for (int32_t i = 0; i < l.count; ++i)
        out.emplace_back(static_cast<const char *>(l.data) + i * l.item_size, l.item_size);
    return out;
}

void expect_equal(const GB_list &l, const Model &m) {
    ASSERT_EQ(l.item_size, m.size);
    ASSERT_EQ(l.count, static_cast<int32_t>(m.items.size()));
    ASSERT_EQ(GB_count_items(const_cast<GB_list *>(&l)), l.count);
    ASSERT_EQ(l.capacity, m.capacity);
    ASSERT_EQ(l.inc, m.inc);
    ASSERT_EQ(l.closed, m.closed);
    ASSERT_EQ(contents(l), m.items);
}

// Index plus delta, brought into range by whole turns of count on a ring.
int32_t ref_advance(const Model &m, int32_t index, int32_t delta) {
    const int64_t count = static_cast<int64_t>(m.items.size());
    if (count == 0) return -1;
    int64_t to = int64_t{index} + delta;
    if (!m.closed) return to < 0 || to >= count ? -1 : static_cast<int32_t>(to);
    while (to < 0) to += count;
    while (to >= count) to -= count;
    return static_cast<int32_t>(to);
}

class GbModel : public LeakChecked {};

TEST_F(GbModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 60; ++seed) {
        Rng rng(seed);
        const int64_t bytes_before = MM_bytes_in_use();
        Model m;
        m.size = static_cast<int32_t>(1 + rng.below(12));
        uint32_t tag = 0;
        auto fresh = [&] { return item_bytes(m.size, ++tag); };
        auto any_index = [&] { return static_cast<int32_t>(rng.below(m.items.size() + 3)) - 1; };
        auto in_range = [&](int32_t i, size_t end) { return i >= 0 && i < static_cast<int32_t>(end); };
        GB_list l;
        const int32_t first_capacity = static_cast<int32_t>(rng.below(6)) - 2;
        GB_init(&l, m.size, first_capacity);
        m.capacity = std::max(first_capacity, 1);
        for (int op = 0; op < 300; ++op) {
            const int32_t count = static_cast<int32_t>(m.items.size());
            switch (rng.below(17)) {
                case 0: {
                    std::string it = fresh();
                    m.grow_if_full();
                    ASSERT_EQ(GB_append_after_last(&l, it.data()), count);
                    m.items.push_back(it);
                    break;
                }
                case 1: {
                    std::string it = fresh();
                    int32_t i = any_index();
                    GB_insert_item(&l, i, it.data());
                    if (in_range(i, m.items.size() + 1)) {
                        m.grow_if_full();
                        m.items.insert(m.items.begin() + i, it);
                    }
                    break;
                }
                case 2: {
                    std::string it = fresh();
                    int32_t i = any_index();
                    GB_replace_item(&l, i, it.data());
                    if (in_range(i, m.items.size())) m.items[i] = it;
                    break;
                }
                case 3: {
                    int32_t i = any_index();
                    GB_remove_item(&l, i);
                    if (in_range(i, m.items.size())) m.items.erase(m.items.begin() + i);
                    break;
                }
                case 4:
                    GB_remove_last_item(&l);
                    if (count) m.items.pop_back();
                    break;
                case 5:
                    m.inc = static_cast<int16_t>(1 + rng.below(5));
                    GB_set_inc(&l, m.inc);
                    break;
                case 6: {
                    int32_t n = count - 2 + static_cast<int32_t>(rng.below(18));
                    GB_set_number_of_elements(&l, n);
                    m.set_capacity(n);
                    break;
                }
                case 7:
                    GB_reverse(&l);
                    std::reverse(m.items.begin(), m.items.end());
                    break;
                case 8:
                    m.closed = !m.closed;
                    m.closed ? GB_set_closed(&l) : GB_reset_closed(&l);
                    break;
                case 9: {
                    int32_t n = static_cast<int32_t>(rng.below(6 * count + 7)) - 3 * count - 3;
                    GB_roll(&l, n);
                    if (m.closed && count >= 2) {
                        std::vector<std::string> r(m.items.size());
                        for (int32_t i = 0; i < count; ++i) r[i] = m.items[((i + n) % count + count) % count];
                        m.items = r;
                    }
                    break;
                }
                case 10: {
                    int32_t i = any_index();
                    GB_make_open_at_position(&l, i);
                    if (m.closed && in_range(i, m.items.size())) {
                        m.grow_if_full();
                        std::vector<std::string> r(m.items.begin() + i, m.items.end());
                        r.insert(r.end(), m.items.begin(), m.items.begin() + i + 1);
                        m.items = r;
                        m.closed = 0;
                    }
                    break;
                }
                case 11: {
                    GB_list dest, untouched;
                    std::memset(&dest, 0x5A, sizeof dest);
                    untouched = dest;
                    int32_t i = any_index();
                    GB_remove_and_get_end_part(&dest, &l, i);
                    if (m.closed || !in_range(i, m.items.size())) {
                        ASSERT_EQ(std::memcmp(&dest, &untouched, sizeof dest), 0);
                        break;
                    }
                    Model d{m.size, {m.items.begin() + i, m.items.end()}, count - i, m.inc, 0};
                    expect_equal(dest, d);
                    GB_release(&dest);
                    m.items.resize(static_cast<size_t>(i) + 1);
                    break;
                }
                case 12:
                case 13: {  // GB_append_block of a fresh record, or GB_copy_into from one
                    GB_list other;
                    GB_init(&other, m.size, static_cast<int32_t>(rng.below(4)));
                    std::vector<std::string> more;
                    for (uint32_t k = rng.below(7); k > 0; --k) {
                        more.push_back(fresh());
                        GB_append_after_last(&other, more.back().data());
                    }
                    const int32_t k = static_cast<int32_t>(more.size());
                    if (rng.chance(50)) {
                        void *data = other.data;
                        ASSERT_EQ(GB_append_block(&l, &other), count);
                        ASSERT_EQ(other.capacity, 0);
                        ASSERT_EQ(other.count, k);
                        ASSERT_EQ(other.data, data);
                        if (m.capacity < count + k) m.capacity = count + k;
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
                case 14: {
                    GB_list c;
                    GB_copy(&c, &l);
                    Model cm = m;
                    cm.capacity = std::max(count, 1);
                    expect_equal(c, cm);
                    GB_release(&c);
                    break;
                }
                case 15: {
                    int32_t i = any_index();
                    int32_t delta = static_cast<int32_t>(rng.below(8 * count + 9)) - 4 * count - 4;
                    ASSERT_EQ(GB_advance(&l, i, delta), ref_advance(m, i, delta)) << i << " " << delta;
                    ASSERT_EQ(GB_get_index(&l, i), i);
                    break;
                }
                case 16:
                    if (rng.chance(30)) {  // a released record is made empty and grows again
                        GB_release(&l);
                        m.capacity = 0;
                    }
                    GB_make_empty(&l);
                    m.items.clear();
                    break;
            }
            expect_equal(l, m);
            ASSERT_EQ(MM_bytes_in_use() - bytes_before, int64_t{m.capacity} * m.size);
            if (::testing::Test::HasFatalFailure()) return;
        }
        GB_release(&l);
    }
}

// ---- the worked examples ----------------------------------------------------------

enum class Op { Fill, Roll, Open, Cut };

struct Worked {
    const char *name;
    Op op;
    const char *start;  // one-byte items
    int16_t closed;
    int32_t arg;        // Fill: the initial capacity; otherwise n or the index
    std::string want;
    std::string want_dest;           // Cut: the end part ("" when not written)
    std::vector<int32_t> capacities; // Fill: capacity after each append
};

TEST_F(GbModel, WorkedExamplesTable) {
    std::vector<int32_t> caps;
    for (int i = 1; i <= 22; ++i) caps.push_back(i == 1 ? 1 : i <= 11 ? 11 : i <= 21 ? 21 : 31);
    const std::vector<Worked> cases = {
        {"capacities 1, 11, 21", Op::Fill, "", 0, 1, "", "", caps},
        {"initial capacity 0 gives 1", Op::Fill, "", 0, 0, "", "", caps},
        {"initial capacity -5 gives 1", Op::Fill, "", 0, -5, "", "", caps},
        {"roll by 2", Op::Roll, "abcde", 1, 2, "cdeab", "", {}},
        {"roll by 7", Op::Roll, "abcde", 1, 7, "cdeab", "", {}},
        {"roll by -1", Op::Roll, "abcde", 1, -1, "eabcd", "", {}},
        {"roll by 3 (left half moves)", Op::Roll, "abcde", 1, 3, "deabc", "", {}},
        {"roll by 0", Op::Roll, "abcde", 1, 0, "abcde", "", {}},
        {"roll by -10", Op::Roll, "abcde", 1, -10, "abcde", "", {}},
        {"roll on an open list", Op::Roll, "abcde", 0, 2, "abcde", "", {}},
        {"open at 2", Op::Open, "abcd", 1, 2, "cdabc", "", {}},
        {"open at 0", Op::Open, "abcd", 1, 0, "abcda", "", {}},
        {"open when full", Op::Open, "abcdefghij", 1, 9, "jabcdefghij", "", {}},
        {"open an open list", Op::Open, "abcd", 0, 2, "abcd", "", {}},
        {"cut at 2", Op::Cut, "abcd", 0, 2, "abc", "cd", {}},
        {"cut at the last index", Op::Cut, "abcd", 0, 3, "abcd", "d", {}},
        {"cut a closed list", Op::Cut, "abcd", 1, 2, "abcd", "", {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        GB_list l;
        GB_init(&l, 1, c.op == Op::Fill ? c.arg : 10);
        for (const char *p = c.start; *p; ++p) GB_append_after_last(&l, p);
        l.closed = c.closed;
        GB_list dest{};
        std::vector<int32_t> seen;
        switch (c.op) {
            case Op::Fill:
                for (size_t i = 0; i < c.capacities.size(); ++i) {
                    GB_append_after_last(&l, "x");
                    seen.push_back(l.capacity);
                }
                EXPECT_EQ(seen, c.capacities);
                break;
            case Op::Roll: GB_roll(&l, c.arg); break;
            case Op::Open: GB_make_open_at_position(&l, c.arg); break;
            case Op::Cut: GB_remove_and_get_end_part(&dest, &l, c.arg); break;
        }
        if (c.op != Op::Fill) {
            EXPECT_EQ(std::string(static_cast<const char *>(l.data), l.count), c.want);
            EXPECT_EQ(l.closed, c.op == Op::Open ? 0 : c.closed);
            EXPECT_EQ(std::string(static_cast<const char *>(dest.data), dest.count), c.want_dest);
            EXPECT_EQ(dest.capacity, static_cast<int32_t>(c.want_dest.size()));
        }
        GB_release(&l);
        GB_release(&dest);
    }
}

// ---- the choices where the caller breaks a limit -----------------------------------

TEST_F(GbModel, BrokenLimitsStayInsideTheBlock) {
    GB_list l, other;
    GB_init(&l, 4, 1);
    GB_set_inc(&l, 0);  // a full block grows by one item
    for (int32_t v = 1; v <= 3; ++v) EXPECT_EQ(GB_append_after_last(&l, &v), v - 1);
    EXPECT_EQ(l.capacity, 3);
    int32_t x = 9;
    GB_insert_item(&l, 4, &x);
    GB_insert_item(&l, -1, &x);
    GB_replace_item(&l, 3, &x);
    GB_remove_item(&l, 3);
    EXPECT_EQ(l.count, 3);
    EXPECT_EQ(static_cast<int32_t *>(l.data)[2], 3);
    GB_make_empty(&l);
    GB_remove_last_item(&l);
    EXPECT_EQ(l.count, 0);

    // A released record keeps its count; as the other of an append it adds nothing.
    GB_init(&other, 4, 2);
    GB_append_after_last(&other, &x);
    GB_release(&other);
    EXPECT_EQ(other.count, 1);
    EXPECT_EQ(GB_append_block(&l, &other), 0);
    EXPECT_EQ(l.count, 0);
    // A released record copied from counts as empty.
    GB_copy_into(&l, &other);
    EXPECT_EQ(l.count, 0);
    GB_release(&l);
}

}  // namespace
