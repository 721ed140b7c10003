// GENDICT and RDBDICT: replacement in place, lent values, ownership and deep
// copies, the integer view, topics; the text form: both printed forms byte
// for byte, the reader's outcome table, a round-trip property on random
// dictionaries, corrupted texts, and nesting deeper than a native stack
// could recurse.

#if __has_include(<pthread.h>)
#include <pthread.h>
#define VORN_HAVE_PTHREAD 1
#endif

#include "model_dict.hpp"

namespace {

using namespace dict_model;

template <class F>
std::string stdout_of(F &&f) {
    testing::internal::CaptureStdout();
    f();
    return testing::internal::GetCapturedStdout();
}

class Dict : public vorn_test::LeakChecked {};

TEST_F(Dict, ReplacementInPlaceLentValuesAndCopies) {
    SL_list *d = GENDICT_create(), *sub = GENDICT_create();
    char key[] = "k", text[] = "mine";
    GENDICT_value a = int_val(-7), b;
    EXPECT_EQ(GENDICT_get(d, "k", &a), 0);
    EXPECT_EQ(a.data.integer, -7);  // untouched on a miss
    GENDICT_add(d, key, text_val(text));
    text[0] = 'X';  // the caller keeps its text and key: the entry has copies
    key[0] = 'z';
    GENDICT_add(d, "K", int_val(1));  // case counts
    GENDICT_add(d, "", real_val(2.5));  // the empty key is a key
    GENDICT_add(sub, "x", text_val("inner"));
    GENDICT_add(d, "s", dict_val(sub));
    const int64_t blocks = MM_blocks_in_use();
    GENDICT_add(d, "s", int_val(3));  // a sub-dictionary replaced goes with all it holds
    EXPECT_EQ(MM_blocks_in_use(), blocks - 2);  // its head and its entry
    GENDICT_delete_item(d, "");
    GENDICT_delete_item(d, "missing");
    ASSERT_EQ(GENDICT_get(d, "k", &a) + GENDICT_get(d, "k", &b), 2);
    EXPECT_EQ(a.data.text, b.data.text);  // the dictionary's own pointer, lent
    // The entry's own key, text and sub-dictionary given back are safe.
    GENDICT_add(d, static_cast<GENDICT_item *>(d->first)->key, a);
    ASSERT_EQ(GENDICT_get(d, "k", &a), 1);
    EXPECT_STREQ(a.data.text, "mine");
    sub = GENDICT_create();
    GENDICT_add(sub, "deep", int_val(1));
    GENDICT_add(d, "k", dict_val(sub));
    GENDICT_add(d, "k", dict_val(sub));  // the same handle: kept, not released
    ASSERT_EQ(GENDICT_get(d, "k", &a), 1);
    EXPECT_EQ(GENDICT_get(a.data.dict, "deep", &b), 1);  // a lent handle works
    // A null text and an unknown kind: stored, written, released.
    GENDICT_add(d, "null", text_val(nullptr));
    GENDICT_value odd = text_val(text);
    odd.kind = 9;
    GENDICT_add(d, "odd", odd);
    GENDICT_add(d, "nulldict", dict_val(nullptr));
    EXPECT_EQ(text_of(d), "DICT{\n  [k] = DICT{\n    [deep] = 1\n  }\n  [K] = 1\n  [s] = 3\n  [null] = \"\"\n"
                          "  [odd] =   [nulldict] = DICT{\n  }\n}\n");
    // Copies are independent: change and release the source, the copy keeps its text.
    SL_list *copy = GENDICT_copy(d);
    const std::string before = text_of(d);
    GENDICT_add(a.data.dict, "deep", text_val("changed"));
    GENDICT_add(a.data.dict, "new", int_val(2));
    GENDICT_release(&d);
    EXPECT_EQ(text_of(copy), before);
    GENDICT_release(&copy);
    GENDICT_release(&d);  // a handle holding 0 is left alone
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
    SL_list *d = RDBDICT_create(), *given = GENDICT_create();
    RDBDICT_add(d, "page", "width", int_val(12));
    RDBDICT_add(d, "grid", "width", int_val(5));  // same key, another topic
    RDBDICT_add(d, "page", "title", text_val("cover"));
    RDBDICT_add(d, "page", "width", int_val(13));  // replaced in place
    GENDICT_add(d, "plain", int_val(7));            // a name that is no topic
    RDBDICT_add(d, "plain", "k", dict_val(given));  // refused: `given` stays ours
    GENDICT_release(&given);
    const std::string all = "DICT{\n  [page] = DICT{\n    [width] = 13\n    [title] = \"cover\"\n  }\n"
                            "  [grid] = DICT{\n    [width] = 5\n  }\n  [plain] = 7\n}\n";
    EXPECT_EQ(text_of(d), all);
    GENDICT_value v = int_val(-1);
    EXPECT_EQ(RDBDICT_get(d, "grid", "title", &v) + RDBDICT_get(d, "plain", "k", &v) + RDBDICT_get(d, "none", "k", &v), 0);
    EXPECT_EQ(v.data.integer, -1);
    ASSERT_EQ(RDBDICT_get(d, "page", "width", &v), 1);
    EXPECT_EQ(v.data.integer, 13);
    EXPECT_EQ(RDBDICT_get_topic(d, "page"), static_cast<GENDICT_item *>(d->first)->value.data.dict);
    EXPECT_EQ(RDBDICT_get_topic(d, "plain"), nullptr);
    EXPECT_EQ(RDBDICT_get_topic(d, "none"), nullptr);
    SL_list *copy = RDBDICT_copy(d);
    RDBDICT_delete_key(d, "grid", "width");  // the last key: the topic stays, empty
    RDBDICT_delete_key(d, "none", "width");
    RDBDICT_delete_key(d, "plain", "width");
    RDBDICT_delete_key(d, "page", "none");
    RDBDICT_delete_topic(d, "page");   // with all its keys
    RDBDICT_delete_topic(d, "plain");  // whatever its kind
    EXPECT_EQ(text_of(d), "DICT{\n  [grid] = DICT{\n  }\n}\n");
    RDBDICT_release(&d);
    EXPECT_EQ(d, nullptr);
    EXPECT_EQ(text_of(copy), all);
    RDBDICT_release(&copy);
}

// ---- the text form ---------------------------------------------------------------

TEST_F(Dict, BothFormsByteForByte) {
    SL_list *d = GENDICT_create(), *page = GENDICT_create();
    GENDICT_add(d, "width", int_val(12));
    GENDICT_add(d, "ratio", real_val(1.5));
    GENDICT_add(d, "name", text_val("ab"));
    GENDICT_add(page, "x", int_val(1));
    GENDICT_add(d, "page", dict_val(page));
    const char *dict_form = "DICT{\n  [width] = 12\n  [ratio] = 1.500000\n  [name] = \"ab\"\n"
                            "  [page] = DICT{\n    [x] = 1\n  }\n}\n";
    EXPECT_EQ(text_of(d), dict_form);
    EXPECT_EQ(stdout_of([&] { GENDICT_print(d); }), dict_form);
    EXPECT_EQ(stdout_of([&] { RDBDICT_print(d); }), "width = 12\nratio = 1.500000\nname = \"ab\"\n[page]\n  x = 1\n");
    EXPECT_EQ(stdout_of([&] { GENDICT_print_rdb(d, 2); }),
              "    width = 12\n    ratio = 1.500000\n    name = \"ab\"\n    [page]\n      x = 1\n");
    EXPECT_EQ(stdout_of([&] { GENDICT_print_rdb(d, -1); }), "width = 12\nratio = 1.500000\nname = \"ab\"\n[page]\nx = 1\n");
    // A percent sign is an ordinary byte in both forms.
    GENDICT_add(page, "%s%d", text_val("100%"));
    EXPECT_NE(stdout_of([&] { GENDICT_print(d); }).find("    [%s%d] = \"100%\"\n  }\n}\n"), std::string::npos);
    EXPECT_NE(stdout_of([&] { RDBDICT_print(d); }).find("  %s%d = \"100%\"\n"), std::string::npos);
    GENDICT_release(&d);
    SL_list *empty = GENDICT_create();
    char *buf;
    int32_t len;
    RDBDICT_to_buf(empty, &buf, &len);
    EXPECT_STREQ(buf, "DICT{\n}\n");
    EXPECT_EQ(len, 9);
    EXPECT_EQ(stdout_of([&] { GENDICT_print_rdb(empty, 0); }), "");
    SL_list *again = RDBDICT_from_buf(buf);
    EXPECT_EQ(again ? again->count : -1, 0);
    std::free(buf);
    GENDICT_release(&again);
    GENDICT_release(&empty);
}

// Every outcome of the reader: 0 (an empty `want`), or the dictionary it
// reads, shown by the text it writes back.
TEST_F(Dict, ReaderOutcomes) {
    const std::string n255(320, '7'), n256(321, '7'), long_key(3000, 'k');
    const struct { std::string text, want; } rows[] = {
        {"", ""},
        {"dict{}", ""},
        {"DICT{", ""},
        {"DICT{[a] = 1 ", ""},
        {"DICT{[a]=DICT{x}}", ""},
        {"DICT{[a]=\"open", ""},
        {"DICT{[a]=\"x\"\"y\"}", ""},
        {"DICT{[a]=+1 }", ""},
        {"DICT{[a]=1}", ""},  // the brace belongs to the number token
        {"DICT{[a]=" + n256 + " }", ""},
        {"DICT{}", "DICT{\n}\n"},
        {"  \n DICT{} trailing bytes", "DICT{\n}\n"},
        {"DICT{[a]=}", "DICT{\n}\n"},
        {"DICT{[a]=[b]=2 [c] = }", "DICT{\n  [b] = 2\n}\n"},
        {"DICT{[a]=1e2 [b]=1.5e2 [c]=1.5 [d]=-0.25 }",
         "DICT{\n  [a] = 1\n  [b] = 150.000000\n  [c] = 1.500000\n  [d] = -0.250000\n}\n"},
        {"DICT{[a]=12abc [b]=- [c]=-7x }", "DICT{\n  [a] = 12\n  [b] = 0\n  [c] = -7\n}\n"},
        {"DICT{[a]=1 [b]=2 [a]=\"three\"}", "DICT{\n  [a] = \"three\"\n  [b] = 2\n}\n"},
        {"DICT{[]=\"\"[b]=\"line\nfeed ] [ }\"}", "DICT{\n  [] = \"\"\n  [b] = \"line\nfeed ] [ }\"\n}\n"},
        {"DICT{[a]=DICT{[b]=DICT{}}[c]=2 }", "DICT{\n  [a] = DICT{\n    [b] = DICT{\n    }\n  }\n  [c] = 2\n}\n"},
        {"DICT{[a]=DICT{[x]=1 }[a]=DICT{[y]=2 }}", "DICT{\n  [a] = DICT{\n    [y] = 2\n  }\n}\n"},
        {"DICT{[a]=" + n255 + " [b]=-9999999999 }", "DICT{\n  [a] = 2147483647\n  [b] = -2147483648\n}\n"},
        {"DICT{[" + long_key + "]=1 }", "DICT{\n  [" + long_key + "] = 1\n}\n"},
    };
    for (const auto &r : rows) {
        SL_list *d = read_exact(r.text);
        EXPECT_EQ(d ? text_of(d) : "", r.want) << r.text;
        GENDICT_release(&d);
    }
    EXPECT_EQ(GENDICT_from_buf(nullptr), nullptr);
}

// Random dictionaries read back to the same text, and so do their copies;
// corrupted texts are checked as any text (both outcomes must occur).
TEST_F(Dict, RandomAndCorruptedTexts) {
    int read_ok = 0, refused = 0;
    vorn_test::for_seeds(400, 1, [&](auto &rng) { dict_model::run(rng) ? ++read_ok : ++refused; });
    EXPECT_GT(read_ok, 0);
    EXPECT_GT(refused, 0);
}

// Nesting on a 256 KiB thread stack (where there is one): a hundred thousand
// levels read, copied and released (also on a failure at the bottom), two
// thousand written, read, copied and printed, none of which a recursion with
// a work buffer per level survives.
std::string nested_text(int levels, const char *innermost) {
    std::string t;
    for (int i = 0; i < levels; ++i) t += "DICT{[k]=";
    return t + innermost + std::string(size_t(levels), '}');
}

int depth_of(SL_list *d) {
    int n = 0;
    GENDICT_value v;
    while (GENDICT_get(d, "k", &v) && v.kind == GENDICT_DICT) d = v.data.dict, ++n;
    return n;
}

void *deep_work(void *) {
    SL_list *d = read_exact(nested_text(100000, "\"bottom\"")), *copy = GENDICT_copy(d);
    EXPECT_EQ(depth_of(d), 99999);
    EXPECT_EQ(depth_of(copy), 99999);
    for (SL_list **h : {&d, &copy}) GENDICT_release(h);
    EXPECT_EQ(read_exact(nested_text(100000, "\"open")), nullptr);
    d = read_exact(nested_text(2000, "1 "));
    const std::string text = text_of(d);
    SL_list *back = read_exact(text);
    copy = GENDICT_copy(back);
    GENDICT_print_rdb(copy, 0);
    EXPECT_EQ(text_of(copy), text);
    EXPECT_GT(text.size(), 8000000u);
    EXPECT_EQ(text.compare(0, 16, "DICT{\n  [k] = DI"), 0);
    EXPECT_EQ(text.compare(text.size() - 12, 12, "    }\n  }\n}\n"), 0);
    for (SL_list **h : {&d, &back, &copy}) GENDICT_release(h);
    return nullptr;
}

TEST_F(Dict, DeepNestingNeedsNoNativeStack) {
    testing::internal::CaptureStdout();
#ifdef VORN_HAVE_PTHREAD
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, 256 * 1024), 0);
    pthread_t t;
    ASSERT_EQ(pthread_create(&t, &attr, deep_work, nullptr), 0);
    pthread_join(t, nullptr);
    pthread_attr_destroy(&attr);
#else
    deep_work(nullptr);
#endif
    EXPECT_EQ(testing::internal::GetCapturedStdout().compare(0, 8, "[k]\n  [k"), 0);
}

}  // namespace
