// The inline reads of the DA and HSH headers give the same results as the
// exported calls and leave the containers alike.
#include <cstring>
#include <map>
#include <optional>

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

// Appends of every count class (none, negative, into room, past the room,
// exactly filling it) to twin arrays, one through the inline form and one
// through the exported call: same bytes, counts, capacity and raise.  The
// last round arms an injected failure, which only a growth meets; the old
// blocks, which a failed growth leaves to the caller, are freed by hand.
TEST(InlineReads, DaAppendMatchesTheExportedOne) {
    const char src[64] = "abcdefghijklmnopqrstuvwxyz0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (int32_t item_size : {1, 4, 8, 12}) {
        for (int32_t step : {1, 3, 8}) {
            DA_array *twins[2] = {DA_create(item_size, step), DA_create(item_size, step)};
            for (int32_t round = 0; round < 40; ++round) {
                const bool last = round == 39;
                const int32_t count = last ? twins[0]->nalloc - twins[0]->nitems + 1 : round % 7 - 1;
                void *old[2] = {twins[0]->data, twins[1]->data};
                std::optional<vorn_test::Raised> raised[2];
                for (int k = 0; k < 2; ++k) {
                    MM_fail_after(last ? 0 : -1);
                    raised[k] = vorn_test::catch_raise([&] {
                        k ? DA_append_inline(twins[k], src, count) : (DA_append)(twins[k], src, count);
                    });
                    MM_fail_after(-1);
                }
                ASSERT_EQ(vorn_test::describe(raised[0]), vorn_test::describe(raised[1]));
                ASSERT_EQ(twins[0]->nitems, twins[1]->nitems);
                ASSERT_EQ(twins[0]->nalloc, twins[1]->nalloc);
                if (last) {
                    ASSERT_TRUE(raised[0] && !twins[0]->data && !twins[1]->data);
                    for (int k = 0; k < 2; ++k) MM_dealloc_item(old[k], static_cast<size_t>(DA_memsize(twins[k])));
                } else if (twins[0]->data) {
                    ASSERT_EQ(0, memcmp(twins[0]->data, twins[1]->data, static_cast<size_t>(DA_memsize(twins[0]))));
                }
            }
            DA_release(twins[0]);
            DA_release(twins[1]);
        }
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
