// The inline forms of the DA and HSH headers (the reads, and DA's append)
// give the same results as the exported calls and leave the containers
// alike.
#include <cstring>
#include <map>
#include <string>
#include <utility>

#include "support.hpp"

#if !defined(VORN_NO_INLINE_WALKS) && !defined(VORN_CHECKED)  // the DA inline forms exist
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

// Twin arrays, one appended to inline and one through the exported call,
// with counts -1 to 5 (into room and past it): same bytes, counts, capacity.
// The last round needs growth under an injected failure: the same raise,
// and the old blocks, which a failed growth leaves to the caller, go by hand.
TEST(InlineReads, DaAppendMatchesTheExportedOne) {
    const char src[64] = "abcdefghijklmnopqrstuvwxyz0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (int32_t item_size : {1, 4, 8, 12}) {
        for (int32_t step : {1, 3, 8}) {
            DA_array *t[2] = {DA_create(item_size, step), DA_create(item_size, step)};
            for (int32_t round = 0; round < 40; ++round) {
                const bool last = round == 39;
                const int32_t count = last ? t[0]->nalloc - t[0]->nitems + 1 : round % 7 - 1;
                void *old[2] = {t[0]->data, t[1]->data};
                std::string raised[2];
                for (int k = 0; k < 2; ++k) {
                    MM_fail_after(last ? 0 : -1);
                    raised[k] = vorn_test::describe(vorn_test::catch_raise(
                        [&] { k ? DA_append_inline(t[k], src, count) : (DA_append)(t[k], src, count); }));
                }
                MM_fail_after(-1);
                ASSERT_EQ(raised[0], raised[1]);
                ASSERT_EQ(std::pair(t[0]->nitems, t[0]->nalloc), std::pair(t[1]->nitems, t[1]->nalloc));
                const auto bytes = static_cast<size_t>(DA_memsize(t[0]));
                for (int k = 0; last && k < 2; ++k) MM_dealloc_item(old[k], bytes);
                ASSERT_TRUE(last || !bytes || !memcmp(t[0]->data, t[1]->data, bytes));
            }
            ASSERT_FALSE(t[0]->data || t[1]->data);  // the failed growth, both ways
            DA_release(t[0]);
            DA_release(t[1]);
        }
    }
}
#endif

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
