// ES: last in, first out, byte copies, and the empty stack's answers.
#include <cstring>

#include "support.hpp"

namespace {

class Es : public vorn_test::LeakChecked {};

TEST_F(Es, PushPopInspect) {
    struct Rec {
        int32_t a;
        char tag[3];
    };
    EL_list *s = ES_create(sizeof(Rec));
    Rec buf{-1, "zz"}, r{};
    EXPECT_EQ(ES_is_empty(s), 1);
    EXPECT_EQ(ES_pop(s, &buf), 0);
    EXPECT_EQ(ES_inspect_top(s, &buf), 0);
    EXPECT_EQ(buf.a, -1);  // the buffer is left alone

    for (int32_t i = 0; i < 5; ++i) {
        r = {i, "ab"};
        EXPECT_EQ(ES_push(s, &r), s->last);
    }
    r.a = 99;  // the stack holds copies
    EXPECT_EQ(ES_count_items(s), 5);
    EXPECT_EQ(ES_inspect_top(s, &buf), 1);
    EXPECT_EQ(ES_inspect_top(s, &buf), 1);
    EXPECT_EQ(buf.a, 4);
    EXPECT_EQ(ES_count_items(s), 5);
    for (int32_t i = 4; i >= 0; --i) {
        EXPECT_EQ(ES_pop(s, &buf), 1);
        EXPECT_EQ(buf.a, i);
        EXPECT_STREQ(buf.tag, "ab");
    }
    EXPECT_EQ(ES_is_empty(s), 1);
    EXPECT_EQ(ES_count_items(s), 0);

    ES_push(s, &r);
    ES_push(s, &r);
    ES_make_empty(s);
    EXPECT_EQ(ES_is_empty(s), 1);
    ES_push(s, &r);
    ES_release(&s);
    EXPECT_EQ(s, nullptr);
}

}  // namespace
