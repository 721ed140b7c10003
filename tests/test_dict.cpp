// GENDICT and RDBDICT: replacement in place, lent values, ownership and deep
// copies at every depth, the integer view, topics.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;

GENDICT_value val(int32_t kind) {
    GENDICT_value v{};
    v.kind = kind;
    return v;
}
GENDICT_value int_val(int32_t i) { auto v = val(GENDICT_INT); v.data.integer = i; return v; }
GENDICT_value real_val(double d) { auto v = val(GENDICT_DOUBLE); v.data.real = d; return v; }
GENDICT_value text_val(const char *t) { auto v = val(GENDICT_STRING); v.data.text = const_cast<char *>(t); return v; }
GENDICT_value dict_val(SL_list *d) { auto v = val(GENDICT_DICT); v.data.dict = d; return v; }

std::string text_of(SL_list *d) {
    char *buf = nullptr;
    int32_t len = -1;
    GENDICT_to_buf(d, &buf, &len);
    std::string s(buf);
    EXPECT_EQ(len, int32_t(s.size() + 1));
    std::free(buf);
    return s;
}

std::string keys_of(SL_list *d) {
    std::string s;
    for (auto *e = static_cast<GENDICT_item *>(d->first); e; e = e->next) s += e->key, s += ',';
    return s;
}

class Dict : public LeakChecked {};

TEST_F(Dict, NewDictionaryAndReplacementInPlace) {
    SL_list *d = GENDICT_create();
    GENDICT_value out = int_val(-7);
    EXPECT_EQ(GENDICT_get(d, "a", &out), 0);
    EXPECT_EQ(out.data.integer, -7);  // untouched on a miss
    GENDICT_delete_item(d, "a");
    SL_list *c = GENDICT_copy(d);
    EXPECT_EQ(c->count, 0);
    GENDICT_release(&c);
    EXPECT_EQ(c, nullptr);

    GENDICT_add(d, "a", int_val(1));
    GENDICT_add(d, "A", text_val("upper"));  // case counts
    GENDICT_add(d, "", real_val(2.5));       // the empty key is a key
    SL_list *sub = GENDICT_create();
    GENDICT_add(sub, "x", text_val("inner"));
    GENDICT_add(d, "s", dict_val(sub));
    EXPECT_EQ(keys_of(d), "a,A,,s,");
    const int64_t blocks = MM_blocks_in_use();
    // A sub-dictionary replaced by an integer goes with all it holds.
    GENDICT_add(d, "s", int_val(3));
    EXPECT_EQ(MM_blocks_in_use(), blocks - 2);  // its head and its entry
    GENDICT_add(d, "A", int_val(4));            // a text replaced: freed (LeakSanitizer)
    GENDICT_add(d, "a", text_val("now text"));
    EXPECT_EQ(keys_of(d), "a,A,,s,");
    EXPECT_EQ(d->count, 4);
    ASSERT_EQ(GENDICT_get(d, "a", &out), 1);
    EXPECT_EQ(out.kind, GENDICT_STRING);
    EXPECT_STREQ(out.data.text, "now text");
    GENDICT_delete_item(d, "");
    GENDICT_delete_item(d, "missing");
    EXPECT_EQ(keys_of(d), "a,A,s,");
    GENDICT_release(&d);
    EXPECT_EQ(d, nullptr);
    GENDICT_release(&d);  // a handle holding 0 is left alone
}

TEST_F(Dict, LentValuesAndTheEntrysOwnValuesPassedBack) {
    SL_list *d = GENDICT_create();
    char key[] = "k";
    char text[] = "mine";
    GENDICT_add(d, key, text_val(text));
    text[0] = 'X';  // the caller keeps its text: the entry has a copy
    key[0] = 'z';
    GENDICT_value a, b;
    ASSERT_EQ(GENDICT_get(d, "k", &a), 1);
    ASSERT_EQ(GENDICT_get(d, "k", &b), 1);
    EXPECT_EQ(a.data.text, b.data.text);  // the dictionary's own pointer, lent
    EXPECT_STREQ(a.data.text, "mine");
    // The entry's own key, text and sub-dictionary given back are safe.
    auto *e = static_cast<GENDICT_item *>(d->first);
    GENDICT_add(d, e->key, a);
    ASSERT_EQ(GENDICT_get(d, "k", &a), 1);
    EXPECT_STREQ(a.data.text, "mine");
    SL_list *sub = GENDICT_create();
    GENDICT_add(sub, "deep", int_val(1));
    GENDICT_add(d, "k", dict_val(sub));
    GENDICT_add(d, "k", dict_val(sub));  // the same handle: kept, not released
    ASSERT_EQ(GENDICT_get(d, "k", &a), 1);
    EXPECT_EQ(a.data.dict, sub);
    EXPECT_EQ(GENDICT_get(a.data.dict, "deep", &b), 1);  // a lent handle works
    // A null text and an unknown kind: stored, written, released.
    GENDICT_add(d, "null", text_val(nullptr));
    GENDICT_value odd;
    odd.kind = 9;
    odd.data.text = text;
    GENDICT_add(d, "odd", odd);
    GENDICT_add(d, "nulldict", dict_val(nullptr));
    EXPECT_EQ(text_of(d),
              "DICT{\n  [k] = DICT{\n    [deep] = 1\n  }\n  [null] = \"\"\n  [odd] = "
              "  [nulldict] = DICT{\n  }\n}\n");
    SL_list *copy = GENDICT_copy(d);
    EXPECT_EQ(text_of(copy), text_of(d));
    GENDICT_release(&copy);
    GENDICT_release(&d);
}

// Copies are independent at every depth: change and release the source
// level by level, the copy keeps its text.
TEST_F(Dict, CopiesShareNothingAtAnyDepth) {
    SL_list *root = GENDICT_create();
    SL_list *level = root;
    for (int i = 0; i < 4; ++i) {
        GENDICT_add(level, "t", text_val("text"));
        GENDICT_add(level, "n", int_val(i));
        SL_list *next = GENDICT_create();
        GENDICT_add(level, "d", dict_val(next));
        level = next;
    }
    SL_list *copy = GENDICT_copy(root);
    const std::string before = text_of(copy);
    EXPECT_EQ(before, text_of(root));
    GENDICT_value v;
    for (SL_list *l = root; GENDICT_get(l, "d", &v); l = v.data.dict) {
        GENDICT_value t;
        ASSERT_EQ(GENDICT_get(l, "t", &t), 1);
        t.data.text[0] = 'X';  // write through the lent text of the source
        GENDICT_add(l, "t", text_val("changed"));
        GENDICT_add(l, "n", int_val(99));
        GENDICT_add(l, "new", int_val(1));
    }
    EXPECT_EQ(text_of(copy), before);
    GENDICT_release(&root);
    EXPECT_EQ(text_of(copy), before);
    GENDICT_release(&copy);
}

TEST(DictIntView, FollowsTheKindTable) {
    const struct { GENDICT_value v; int32_t result, want; } rows[] = {
        {int_val(-5), 1, -5},
        {real_val(2.5), 1, 3},
        {real_val(-2.5), 1, -3},
        {real_val(0.4), 1, 0},
        {real_val(0.49999999999999994), 1, 1},  // the half is added first
        {real_val(1e12), 1, INT32_MAX},
        {real_val(std::nan("")), 1, 0},
        {text_val("42"), 1, 42},
        {text_val("  -17 apples"), 1, -17},
        {text_val(nullptr), 1, 0},
        {text_val("99999999999"), 1, INT32_MAX},
        {GENDICT_value{0, {0}}, 0, 1234},
    };
    for (const auto &r : rows) {
        int32_t out = 1234;
        EXPECT_EQ(GENDICT_get_int_val(r.v, &out), r.result) << r.v.kind;
        EXPECT_EQ(out, r.want) << r.v.kind;
    }
}

TEST_F(Dict, TopicsAndKeys) {
    SL_list *d = RDBDICT_create();
    RDBDICT_add(d, "page", "width", int_val(12));
    RDBDICT_add(d, "grid", "width", int_val(5));  // same key, another topic
    RDBDICT_add(d, "page", "title", text_val("cover"));
    RDBDICT_add(d, "page", "width", int_val(13));  // replaced in place
    GENDICT_add(d, "plain", int_val(7));            // a name that is no topic
    SL_list *given = GENDICT_create();
    RDBDICT_add(d, "plain", "k", dict_val(given));  // refused: `given` stays ours
    GENDICT_release(&given);
    GENDICT_value v = int_val(-1);
    ASSERT_EQ(RDBDICT_get(d, "page", "width", &v), 1);
    EXPECT_EQ(v.data.integer, 13);
    ASSERT_EQ(RDBDICT_get(d, "grid", "width", &v), 1);
    EXPECT_EQ(v.data.integer, 5);
    v = int_val(-1);
    EXPECT_EQ(RDBDICT_get(d, "grid", "title", &v), 0);
    EXPECT_EQ(RDBDICT_get(d, "plain", "k", &v), 0);
    EXPECT_EQ(RDBDICT_get(d, "none", "k", &v), 0);
    EXPECT_EQ(v.data.integer, -1);
    EXPECT_EQ(RDBDICT_get_topic(d, "plain"), nullptr);
    EXPECT_EQ(RDBDICT_get_topic(d, "none"), nullptr);
    EXPECT_EQ(keys_of(d), "page,grid,plain,");
    EXPECT_EQ(keys_of(RDBDICT_get_topic(d, "page")), "width,title,");

    SL_list *copy = RDBDICT_copy(d);
    RDBDICT_delete_key(d, "grid", "width");  // the last key: the topic stays, empty
    ASSERT_NE(RDBDICT_get_topic(d, "grid"), nullptr);
    EXPECT_EQ(RDBDICT_get_topic(d, "grid")->count, 0);
    RDBDICT_delete_key(d, "none", "width");
    RDBDICT_delete_key(d, "plain", "width");
    RDBDICT_delete_key(d, "page", "none");
    RDBDICT_delete_topic(d, "page");   // with all its keys
    RDBDICT_delete_topic(d, "plain");  // whatever its kind
    EXPECT_EQ(keys_of(d), "grid,");
    RDBDICT_release(&d);
    EXPECT_EQ(d, nullptr);
    EXPECT_EQ(RDBDICT_get(copy, "grid", "width", &v), 1);
    EXPECT_EQ(v.data.integer, 5);
    EXPECT_EQ(keys_of(copy), "page,grid,plain,");
    RDBDICT_release(&copy);
}

}  // namespace
