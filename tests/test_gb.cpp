// GB against a simple reference (items, capacity, inc, closed, bytes held).
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "support.hpp"

namespace {

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

Items contents(const GB_list &l) {
    Items out;
    for (int32_t i = 0; i < l.count; ++i)
        out.emplace_back(static_cast<const char *>(l.data) + i * l.item_size, l.item_size);
    return out;
}

void expect_equal(const GB_list &l, const Model &m) {
    ASSERT_EQ((std::vector<int32_t>{l.item_size, l.capacity, l.inc, l.closed}),
              (std::vector<int32_t>{m.size, m.capacity, m.inc, m.closed}));
    ASSERT_EQ(contents(l), m.items);
}

// Index plus delta; on a ring brought into range by whole turns of count.
int32_t ref_advance(const Model &m, int64_t to) {
    const int64_t n = m.count();
    if (n == 0 || (!m.closed && (to < 0 || to >= n))) return -1;
    return static_cast<int32_t>((to % n + n) % n);
}

class GbModel : public vorn_test::LeakChecked {};

TEST_F(GbModel, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 60; ++seed) {
        vorn_test::Rng rng(seed);
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
        for (int op = 0; op < 300; ++op) {
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
}

}  // namespace
