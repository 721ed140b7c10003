// vorn_lu against a reference slot and map: where each entry lives (slot or
// table) after each operation, and the order in which the operations look
// at both places (the table's own order is its walk's).
#include <cstdint>
#include <map>
#include <vector>

#include "support.hpp"

namespace {

using Words = std::vector<void *>;
using Map = std::map<void *, void *>;

void *w(uintptr_t v) { return reinterpret_cast<void *>(v); }
Words g_seen;
void record_value(void *v) { g_seen.push_back(v); }
void record_address(void **a) { g_seen.push_back(*a); }

class Lu : public vorn_test::LeakChecked {};

TEST_F(Lu, RandomOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 40; ++seed) {
        vorn_test::Rng rng(seed);
        vorn_lu *lu = vorn_lu_create();
        ASSERT_EQ(lu->table->size, 8);
        void *slot_key = nullptr, *slot_value = nullptr;
        Map table;
        auto table_order = [&] {  // (key, value) in slot order
            std::vector<std::pair<void *, void *>> out;
            HSH_iter it = HSH_all_entries(lu->table);
            void *k, *v;
            while (HSH_next(&it, &k, &v)) out.emplace_back(k, v);
            return out;
        };
        auto values = [&] {  // the slot's value if not 0, then the table's, 0 included
            Words out;
            if (slot_value) out.push_back(slot_value);
            for (auto [tk, tv] : table_order()) out.push_back(tv);
            g_seen.clear();
            return out;
        };
        for (int op = 0; op < 500; ++op) {
            void *k = w(rng.below(rng.chance(70) ? 6 : 48)), *v = w(rng.below(4));  // 0 occurs as both
            switch (rng.below(5)) {
                case 0:
                case 1:
                    vorn_lu_add(lu, k, v);
                    if (slot_key) table[slot_key] = slot_value;
                    slot_key = k, slot_value = v;
                    break;
                case 2:
                    ASSERT_EQ(vorn_lu_get(lu, k), slot_key == k ? slot_value : table.count(k) ? table[k] : nullptr);
                    break;
                case 3: {
                    void *want = nullptr;
                    if (slot_value && slot_value == v) want = slot_key;
                    else
                        for (auto [tk, tv] : table_order())
                            if (tv == v && !want) want = tk;
                    ASSERT_EQ(vorn_lu_find(lu, v), want);
                    break;
                }
                default:
                    vorn_lu_remove(lu, k);  // one place alone
                    if (slot_key == k) slot_key = slot_value = nullptr;
                    else table.erase(k);
            }
            ASSERT_EQ(lu->last_key, slot_key);
            ASSERT_EQ(lu->last_value, slot_value);
            const auto order = table_order();
            ASSERT_EQ(Map(order.begin(), order.end()), table);
            if (op % 50 == 0) {
                const Words want = values();
                vorn_lu_apply(lu, record_value);
                ASSERT_EQ(g_seen, want);
            }
        }
        vorn_lu_add(nullptr, w(1), w(1)), vorn_lu_remove(nullptr, w(1)), vorn_lu_apply(nullptr, record_value);
        vorn_lu_apply(lu, nullptr), vorn_lu_release(nullptr, nullptr);  // null arguments do nothing
        EXPECT_EQ(vorn_lu_get(nullptr, w(1)), nullptr);
        EXPECT_EQ(vorn_lu_find(nullptr, w(1)), nullptr);
        const Words want = values();
        vorn_lu_release(&lu, record_address);
        EXPECT_EQ(g_seen, want);
        vorn_lu_release(&lu, nullptr);  // a handle holding null does nothing
    }
}

}  // namespace
