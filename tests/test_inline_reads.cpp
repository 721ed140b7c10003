// The inline reads of the DA and HSH headers give the same results as the
// exported calls and leave the containers alike.
#include <map>

#include "support.hpp"

TEST(InlineReads, DaReadMatchesTheExportedOne) {
    for (int32_t index : {0, 3, 4, 9, 10, 25}) {
        DA_array *a = DA_create(sizeof(int32_t), 10);
        DA_array *b = DA_create(sizeof(int32_t), 10);
        for (int32_t i = 0; i < 4; ++i) DA_append(a, &i, 1), DA_append(b, &i, 1);
        char *via_call = static_cast<char *>((DA_get_item)(a, index));
        char *inline_read = static_cast<char *>(DA_get_item_inline(b, index));
        EXPECT_EQ(via_call - static_cast<char *>(a->data), inline_read - static_cast<char *>(b->data));
        EXPECT_EQ(a->nitems, b->nitems);
        EXPECT_EQ(a->nalloc, b->nalloc);
        DA_release(a);
        DA_release(b);
    }
}

// Keys from a small range, so that runs form and wrap around the end of
// the arrays; shifts 0 and 3; every key of the range looked up both ways.
TEST(InlineReads, HshLookupMatchesTheExportedOne) {
    vorn_test::Rng rng(11);
    for (int32_t shift : {0, 3}) {
        HSH_table *t = HSH_create(8, shift);
        for (int op = 0; op < 3000; ++op) {
            void *k = reinterpret_cast<void *>(static_cast<uintptr_t>(rng.below(200)) << shift);
            if (rng.chance(60))
                HSH_set_value(t, k, reinterpret_cast<void *>(static_cast<uintptr_t>(op)));
            else
                HSH_remove_entry(t, k);
            if (op % 100) continue;
            for (uintptr_t q = 0; q < 200; ++q) {
                void *key = reinterpret_cast<void *>(q << shift);
                ASSERT_EQ(HSH_get_value_inline(t, key), (HSH_get_value)(t, key));
                ASSERT_EQ(HSH_contains_key_inline(t, key), (HSH_contains_key)(t, key));
            }
        }
        HSH_release(&t);
    }
}
