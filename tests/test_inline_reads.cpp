// The header's inline DA append gives the same results as the exported
// call and leaves the arrays alike, also on a failed growth.  (The inline
// reads are compared with the exported ones inside the DA and HSH models.)

#include "support.hpp"

#if !defined(VORN_NO_INLINE_WALKS) && !defined(VORN_CHECKED)  // the DA inline forms exist
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
