// vorn_lu: where each entry lives (slot or table) after each operation, and
// the order in which the operations look at both places.
#include <cstdint>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;

void *w(uintptr_t v) { return reinterpret_cast<void *>(v); }

std::vector<void *> applied;
void record_value(void *v) { applied.push_back(v); }
void record_address(void **a) { applied.push_back(*a); }

class Lu : public LeakChecked {
protected:
    void SetUp() override {
        LeakChecked::SetUp();
        applied.clear();
        lu = vorn_lu_create();
    }
    void TearDown() override {
        vorn_lu_release(&lu, nullptr);
        LeakChecked::TearDown();
    }
    // Slot contents and the table's view of a key.
    void expect(void *slot_key, void *slot_value, int32_t table_count) {
        EXPECT_EQ(lu->last_key, slot_key);
        EXPECT_EQ(lu->last_value, slot_value);
        EXPECT_EQ(lu->table->count, table_count);
    }
    std::vector<void *> apply_all() {
        applied.clear();
        vorn_lu_apply(lu, record_value);
        return applied;
    }
    vorn_lu *lu = nullptr;
};

TEST_F(Lu, NewLookupIsEmptyEverywhere) {
    EXPECT_EQ(lu->table->size, 8);
    EXPECT_EQ(lu->table->shift, 0);
    EXPECT_EQ(vorn_lu_get(lu, w(4)), nullptr);
    EXPECT_EQ(vorn_lu_get(lu, nullptr), nullptr);
    EXPECT_EQ(vorn_lu_find(lu, w(1)), nullptr);
    EXPECT_TRUE(apply_all().empty());
    EXPECT_EQ(vorn_lu_find(nullptr, w(1)), nullptr);
    vorn_lu_apply(nullptr, record_value);
    vorn_lu_apply(lu, nullptr);
}

TEST_F(Lu, LastEntryStaysInTheSlotUntilTheNextAdd) {
    vorn_lu_add(lu, w(0xA), w(1));
    expect(w(0xA), w(1), 0);
    vorn_lu_add(lu, w(0xB), w(2));
    expect(w(0xB), w(2), 1);
    EXPECT_EQ(HSH_get_value(lu->table, w(0xA)), w(1));
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), w(1));
    EXPECT_EQ(vorn_lu_get(lu, w(0xB)), w(2));
    EXPECT_EQ(vorn_lu_find(lu, w(2)), w(0xB));
    EXPECT_EQ(vorn_lu_find(lu, w(1)), w(0xA));

    vorn_lu_add(lu, w(0xA), w(3));  // the table keeps a with 1 until the slot spills
    EXPECT_EQ(HSH_get_value(lu->table, w(0xA)), w(1));
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), w(3));
    vorn_lu_add(lu, w(0xC), w(4));
    EXPECT_EQ(HSH_get_value(lu->table, w(0xA)), w(3));
}

TEST_F(Lu, SameKeyTwiceAndRemoveLooksAtOnePlace) {
    vorn_lu_add(lu, w(0xA), w(1));
    vorn_lu_add(lu, w(0xA), w(2));
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), w(2));
    EXPECT_EQ(apply_all(), (std::vector<void *>{w(2), w(1)}));
    vorn_lu_remove(lu, w(0xA));  // clears the slot alone
    expect(nullptr, nullptr, 1);
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), w(1));
    vorn_lu_remove(lu, w(0xA));
    expect(nullptr, nullptr, 0);
    EXPECT_EQ(vorn_lu_get(lu, w(0xA)), nullptr);
}

TEST_F(Lu, KeyZeroAndValueZero) {
    vorn_lu_add(lu, nullptr, w(7));  // lives in the slot only
    EXPECT_EQ(vorn_lu_get(lu, nullptr), w(7));
    vorn_lu_add(lu, w(0xA), nullptr);  // drops key 0: a slot keyed 0 counts as empty
    expect(w(0xA), nullptr, 0);
    EXPECT_EQ(vorn_lu_find(lu, nullptr), nullptr);  // value 0 in the slot is never matched
    EXPECT_TRUE(apply_all().empty());
    vorn_lu_add(lu, w(0xB), w(5));  // value 0 now in the table: both walks include it
    EXPECT_EQ(vorn_lu_find(lu, nullptr), w(0xA));
    EXPECT_EQ(apply_all(), (std::vector<void *>{w(5), nullptr}));
    applied.clear();
    vorn_lu_release(&lu, record_address);
    EXPECT_EQ(applied, (std::vector<void *>{w(5), nullptr}));
    EXPECT_EQ(lu, nullptr);
}

TEST_F(Lu, FindGivesTheFirstTableSlotAndTheTableGrows) {
    for (uintptr_t k = 1; k <= 40; ++k) vorn_lu_add(lu, w(k), w(k % 3 + 1));
    EXPECT_EQ(lu->table->count, 39);
    EXPECT_EQ(lu->table->size, 64);
    EXPECT_EQ(vorn_lu_find(lu, w(3)), w(2));  // slot order: key k sits in slot k
    EXPECT_EQ(vorn_lu_find(lu, w(1)), w(3));
    EXPECT_EQ(vorn_lu_find(lu, w(2)), w(40));  // the slot (40 with 2) wins over key 1
    for (uintptr_t k = 1; k <= 40; ++k) EXPECT_EQ(vorn_lu_get(lu, w(k)), w(k % 3 + 1));
}

}  // namespace
