// The inline read of the DA header and the exported one give the same
// address and leave the array alike, inside the items, past them and past
// the block.
#include "support.hpp"

TEST(DaInline, InlineReadMatchesTheExportedOne) {
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
