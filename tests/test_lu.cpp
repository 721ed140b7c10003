// vorn_lu: where each entry lives (slot or table) after each operation, and
// the order in which the operations look at both places.
#include <cstdint>
#include <vector>

#include "support.hpp"

namespace {

void *w(uintptr_t v) { return reinterpret_cast<void *>(v); }

std::vector<void *> seen;
void record_value(void *v) { seen.push_back(v); }
void record_address(void **a) { seen.push_back(*a); }

class Lu : public vorn_test::LeakChecked {
protected:
    void SetUp() override {
        vorn_test::LeakChecked::SetUp();
        lu = vorn_lu_create();
    }
    void TearDown() override {
        vorn_lu_release(&lu, nullptr);
        vorn_test::LeakChecked::TearDown();
    }
    std::vector<void *> applied() {
        seen.clear();
        vorn_lu_apply(lu, record_value);
        return seen;
    }
    vorn_lu *lu = nullptr;
};

TEST_F(Lu, NewLookupAndNullArguments) {
    EXPECT_EQ(lu->table->size, 8);
    EXPECT_EQ(vorn_lu_get(lu, w(4)), nullptr);
    EXPECT_EQ(vorn_lu_get(lu, nullptr), nullptr);  // from the empty slot
    EXPECT_EQ(vorn_lu_find(lu, w(1)), nullptr);
    EXPECT_TRUE(applied().empty());
    EXPECT_EQ(vorn_lu_find(nullptr, w(1)), nullptr);
    vorn_lu_apply(nullptr, record_value), vorn_lu_apply(lu, nullptr), vorn_lu_release(nullptr, nullptr);
}

TEST_F(Lu, LastEntryStaysInTheSlotUntilTheNextAdd) {
    vorn_lu_add(lu, w(0xA), w(1));
    vorn_lu_add(lu, w(0xB), w(2));
    EXPECT_EQ(lu->last_key, w(0xB));
    EXPECT_EQ(HSH_get_value(lu->table, w(0xA)), w(1));
    EXPECT_EQ(HSH_contains_key(lu->table, w(0xB)), 0);
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), w(1));
    EXPECT_EQ(vorn_lu_get(lu, w(0xB)), w(2));
    EXPECT_EQ(vorn_lu_find(lu, w(2)), w(0xB));
    EXPECT_EQ(vorn_lu_find(lu, w(1)), w(0xA));
    vorn_lu_add(lu, w(0xA), w(3));  // the new key is not looked up
    EXPECT_EQ(HSH_get_value(lu->table, w(0xA)), w(1));
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), w(3));  // the slot wins
    vorn_lu_add(lu, w(0xC), w(4));             // the spill overwrites the table's a
    EXPECT_EQ(HSH_get_value(lu->table, w(0xA)), w(3));
}

TEST_F(Lu, RemoveLooksAtOnePlaceAlone) {
    vorn_lu_add(lu, w(0xA), w(1));
    vorn_lu_add(lu, w(0xA), w(2));
    EXPECT_EQ(applied(), (std::vector<void *>{w(2), w(1)}));
    vorn_lu_remove(lu, w(0xA));  // clears the slot, the table keeps a with 1
    EXPECT_EQ(lu->last_key, nullptr);
    EXPECT_EQ(lu->last_value, nullptr);
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), w(1));
    vorn_lu_remove(lu, w(0xA));
    EXPECT_EQ(lu->table->count, 0);
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), nullptr);
}

TEST_F(Lu, KeyZeroAndValueZero) {
    vorn_lu_add(lu, nullptr, w(7));  // lives in the slot only
    EXPECT_EQ(vorn_lu_get(lu, nullptr), w(7));
    vorn_lu_add(lu, w(0xA), nullptr);  // drops key 0: a slot keyed 0 counts as empty
    EXPECT_EQ(lu->table->count, 0);
    EXPECT_EQ(vorn_lu_find(lu, nullptr), nullptr);  // value 0 in the slot is never matched
    EXPECT_TRUE(applied().empty());
    vorn_lu_add(lu, w(0xB), w(5));  // value 0 now in the table: both walks include it
    EXPECT_EQ(vorn_lu_find(lu, nullptr), w(0xA));
    EXPECT_EQ(applied(), (std::vector<void *>{w(5), nullptr}));
    seen.clear();
    vorn_lu_release(&lu, record_address);
    EXPECT_EQ(seen, (std::vector<void *>{w(5), nullptr}));
    EXPECT_EQ(lu, nullptr);
}

TEST_F(Lu, FindTakesTheFirstTableSlotAfterTheSlot) {
    for (uintptr_t k = 1; k <= 40; ++k) vorn_lu_add(lu, w(k), w(k % 3 + 1));  // the table grows to 64
    EXPECT_EQ(lu->table->size, 64);
    EXPECT_EQ(vorn_lu_find(lu, w(3)), w(2));   // key k sits in slot k
    EXPECT_EQ(vorn_lu_find(lu, w(2)), w(40));  // the slot (40 with 2) before key 1
    for (uintptr_t k = 1; k <= 40; ++k) EXPECT_EQ(vorn_lu_get(lu, w(k)), w(k % 3 + 1));
}

}  // namespace
