// ES: last in, first out, byte copies, and the empty stack's answers.
#include "support.hpp"

namespace {

class Es : public vorn_test::LeakChecked {};

TEST_F(Es, PushPopInspect) {
    EL_list *s = ES_create(sizeof(int32_t));
    int32_t buf = -1;
    EXPECT_EQ(ES_pop(s, &buf) + ES_inspect_top(s, &buf), 0);
    EXPECT_EQ(buf, -1);  // the buffer is left alone
    for (int32_t i = 0; i < 5; ++i) EXPECT_EQ(ES_push(s, &i), s->last);
    EXPECT_EQ(ES_inspect_top(s, &buf), 1);
    EXPECT_EQ(buf, 4);
    for (int32_t i = 4; i >= 0; --i) {
        EXPECT_EQ(ES_pop(s, &buf), 1);
        EXPECT_EQ(buf, i);
    }
    EXPECT_EQ(ES_is_empty(s), 1);
    ES_push(s, &buf);
    ES_release(&s);
    EXPECT_EQ(s, nullptr);
}

}  // namespace
