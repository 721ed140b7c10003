// The text form: both printed forms byte for byte, the reader's outcome
// table, a round-trip property on random dictionaries, corrupted texts, and
// nesting far deeper than a native stack could recurse.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#if __has_include(<pthread.h>)
#include <pthread.h>
#define VORN_HAVE_PTHREAD 1
#endif

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
using vorn_test::Rng;

std::string text_of(SL_list *d) {
    char *buf = nullptr;
    int32_t len = -1;
    GENDICT_to_buf(d, &buf, &len);
    EXPECT_NE(buf, nullptr);
    if (!buf) return {};
    std::string s(buf);
    EXPECT_EQ(len, int32_t(s.size() + 1));
    std::free(buf);
    return s;
}

// Reads `text` from a block of exactly its size, so that a read past the
// terminating zero is caught by the address sanitizer.
SL_list *read_exact(const std::string &text) {
    char *block = static_cast<char *>(std::malloc(text.size() + 1));
    std::memcpy(block, text.c_str(), text.size() + 1);
    SL_list *d = GENDICT_from_buf(block);
    std::free(block);
    return d;
}

template <class F>
std::string captured(F &&f) {
    testing::internal::CaptureStdout();
    f();
    return testing::internal::GetCapturedStdout();
}

GENDICT_value val(int32_t kind, double real = 0, int32_t integer = 0, const char *text = nullptr,
                  SL_list *dict = nullptr) {
    GENDICT_value v;
    v.kind = kind;
    switch (kind) {
        case GENDICT_INT: v.data.integer = integer; break;
        case GENDICT_DOUBLE: v.data.real = real; break;
        case GENDICT_STRING: v.data.text = const_cast<char *>(text); break;
        default: v.data.dict = dict; break;
    }
    return v;
}

SL_list *example() {
    SL_list *d = GENDICT_create();
    GENDICT_add(d, "width", val(GENDICT_INT, 0, 12));
    GENDICT_add(d, "ratio", val(GENDICT_DOUBLE, 1.5));
    GENDICT_add(d, "name", val(GENDICT_STRING, 0, 0, "ab"));
    SL_list *page = GENDICT_create();
    GENDICT_add(page, "x", val(GENDICT_INT, 0, 1));
    GENDICT_add(d, "page", val(GENDICT_DICT, 0, 0, nullptr, page));
    return d;
}

const char kExampleDict[] =
    "DICT{\n"
    "  [width] = 12\n"
    "  [ratio] = 1.500000\n"
    "  [name] = \"ab\"\n"
    "  [page] = DICT{\n"
    "    [x] = 1\n"
    "  }\n"
    "}\n";

class DictText : public LeakChecked {};

TEST_F(DictText, BothFormsByteForByte) {
    SL_list *d = example();
    EXPECT_EQ(text_of(d), kExampleDict);
    EXPECT_EQ(captured([&] { GENDICT_print(d); }), kExampleDict);
    EXPECT_EQ(captured([&] { RDBDICT_print(d); }),
              "width = 12\nratio = 1.500000\nname = \"ab\"\n[page]\n  x = 1\n");
    EXPECT_EQ(captured([&] { GENDICT_print_rdb(d, 2); }),
              "    width = 12\n    ratio = 1.500000\n    name = \"ab\"\n    [page]\n      x = 1\n");
    EXPECT_EQ(captured([&] { GENDICT_print_rdb(d, -1); }),
              "width = 12\nratio = 1.500000\nname = \"ab\"\n[page]\nx = 1\n");
    // A percent sign is an ordinary byte in both forms.
    GENDICT_add(d, "%s%d", val(GENDICT_STRING, 0, 0, "100%"));
    EXPECT_NE(captured([&] { GENDICT_print(d); }).find("  [%s%d] = \"100%\"\n}\n"), std::string::npos);
    EXPECT_NE(captured([&] { RDBDICT_print(d); }).find("%s%d = \"100%\"\n"), std::string::npos);

    SL_list *back = read_exact(text_of(d));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(text_of(back), text_of(d));
    GENDICT_release(&back);
    GENDICT_release(&d);

    SL_list *empty = GENDICT_create();
    char *buf;
    int32_t len;
    RDBDICT_to_buf(empty, &buf, &len);
    EXPECT_STREQ(buf, "DICT{\n}\n");
    EXPECT_EQ(len, 9);
    EXPECT_EQ(captured([&] { GENDICT_print_rdb(empty, 0); }), "");
    SL_list *again = RDBDICT_from_buf(buf);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->count, 0);
    std::free(buf);
    GENDICT_release(&again);
    GENDICT_release(&empty);
}

// Every outcome of the reader: 0, or the dictionary it reads, shown by the
// text it writes back.
TEST_F(DictText, ReaderOutcomes) {
    const std::string n255(320, '7'), n256(321, '7'), long_key(3000, 'k');
    struct Row {
        std::string text;
        const char *want;  // null: the reader gives 0
    };
    const Row rows[] = {
        {"", nullptr},
        {"dict{}", nullptr},
        {"DICT{", nullptr},
        {"DICT{[a] = 1 ", nullptr},
        {"DICT{[a]=DICT{x}}", nullptr},
        {"DICT{[a]=\"open", nullptr},
        {"DICT{[a]=\"x\"\"y\"}", nullptr},
        {"DICT{[a]=+1 }", nullptr},
        {"DICT{[a]=1}", nullptr},  // the brace belongs to the number token
        {"DICT{[a]=" + n256 + " }", nullptr},
        {"DICT{}", "DICT{\n}\n"},
        {"  \n DICT{} trailing bytes", "DICT{\n}\n"},
        {"DICT{[a]=}", "DICT{\n}\n"},
        {"DICT{[a]=[b]=2 [c] = }", "DICT{\n  [b] = 2\n}\n"},
        {"DICT{[a]=1e2 [b]=1.5e2 [c]=1.5 [d]=-0.25 }",
         "DICT{\n  [a] = 1\n  [b] = 150.000000\n  [c] = 1.500000\n  [d] = -0.250000\n}\n"},
        {"DICT{[a]=12abc [b]=- [c]=-7x }", "DICT{\n  [a] = 12\n  [b] = 0\n  [c] = -7\n}\n"},
        {"DICT{[a]=1 [b]=2 [a]=\"three\"}", "DICT{\n  [a] = \"three\"\n  [b] = 2\n}\n"},
        {"DICT{[]=\"\"[b]=\"line\nfeed ] [ }\"}",
         "DICT{\n  [] = \"\"\n  [b] = \"line\nfeed ] [ }\"\n}\n"},
        {"DICT{[a]=DICT{[b]=DICT{}}[c]=2 }",
         "DICT{\n  [a] = DICT{\n    [b] = DICT{\n    }\n  }\n  [c] = 2\n}\n"},
        {"DICT{[a]=DICT{[x]=1 }[a]=DICT{[y]=2 }}", "DICT{\n  [a] = DICT{\n    [y] = 2\n  }\n}\n"},
        {"DICT{[a]=" + n255 + " [b]=-9999999999 }",
         "DICT{\n  [a] = 2147483647\n  [b] = -2147483648\n}\n"},
        {"DICT{[" + long_key + "]=1 }", nullptr},  // checked below
    };
    for (const Row &r : rows) {
        SL_list *d = read_exact(r.text);
        if (r.text.find(long_key) != std::string::npos) {
            ASSERT_NE(d, nullptr);
            EXPECT_EQ(text_of(d), "DICT{\n  [" + long_key + "] = 1\n}\n");
        } else if (!r.want) {
            EXPECT_EQ(d, nullptr) << r.text;
        } else {
            EXPECT_NE(d, nullptr) << r.text;
            if (d) {
                EXPECT_EQ(text_of(d), r.want) << r.text;
            }
        }
        GENDICT_release(&d);
    }
    EXPECT_EQ(GENDICT_from_buf(nullptr), nullptr);
}

// Random dictionaries of the kinds that survive the text form.
std::string random_bytes(Rng &rng, const char *banned, uint32_t max_len) {
    static const char alphabet[] = "abcXYZ019 _-.[]{}\"=\n\t%DICT";
    std::string s;
    for (uint32_t n = rng.below(max_len + 1); n > 0; --n) {
        const char c = alphabet[rng.below(sizeof alphabet - 1)];
        if (!std::strchr(banned, c)) s += c;
    }
    return s;
}

SL_list *random_dict(Rng &rng, int depth) {
    SL_list *d = GENDICT_create();
    for (uint32_t n = rng.below(depth ? 6 : 30); n > 0; --n) {
        const std::string key = random_bytes(rng, "]", 6);
        switch (rng.below(depth < 4 ? 4 : 3)) {
            case 0: {
                const int32_t i = rng.chance(10) ? INT32_MIN : int32_t(rng.next());
                GENDICT_add(d, key.c_str(), val(GENDICT_INT, 0, i));
                break;
            }
            case 1: {
                const double r = double(int64_t(rng.next() % 2000000000001ull) - 1000000000000) / 1e6;
                GENDICT_add(d, key.c_str(), val(GENDICT_DOUBLE, rng.chance(5) ? 1e200 : r));
                break;
            }
            case 2: {
                const std::string t = random_bytes(rng, "\"", 12);
                GENDICT_add(d, key.c_str(), val(GENDICT_STRING, 0, 0, t.c_str()));
                break;
            }
            default:
                GENDICT_add(d, key.c_str(), val(GENDICT_DICT, 0, 0, nullptr, random_dict(rng, depth + 1)));
        }
    }
    return d;
}

// Same keys, kinds and values in the same order, at every depth.
void expect_same(SL_list *a, SL_list *b) {
    ASSERT_EQ(a->count, b->count);
    auto *x = static_cast<GENDICT_item *>(a->first);
    auto *y = static_cast<GENDICT_item *>(b->first);
    for (; x; x = x->next, y = y->next) {
        ASSERT_STREQ(x->key, y->key);
        ASSERT_EQ(x->value.kind, y->value.kind) << x->key;
        switch (x->value.kind) {
            case GENDICT_INT: ASSERT_EQ(x->value.data.integer, y->value.data.integer); break;
            case GENDICT_DOUBLE:
                ASSERT_NEAR(x->value.data.real, y->value.data.real,
                            5e-7 + std::fabs(x->value.data.real) * 1e-15);
                break;
            case GENDICT_STRING: ASSERT_STREQ(x->value.data.text, y->value.data.text); break;
            default: expect_same(x->value.data.dict, y->value.data.dict);
        }
    }
}

// Random dictionaries read back equal and copy to the same text; corrupted,
// whatever comes back must be a dictionary whose own text reads back to the
// same bytes, and nothing may leak or be read out of bounds.
bool all_finite(SL_list *d) {
    for (auto *e = static_cast<GENDICT_item *>(d->first); e; e = e->next) {
        if (e->value.kind == GENDICT_DOUBLE && !std::isfinite(e->value.data.real)) return false;
        if (e->value.kind == GENDICT_DICT && !all_finite(e->value.data.dict)) return false;
    }
    return true;
}

TEST_F(DictText, RandomAndCorruptedTexts) {
    static const char inserts[] = "[]{}\"= \nD-1.";
    int read_ok = 0, refused = 0;
    for (uint64_t seed = 1; seed <= 400; ++seed) {
        Rng rng(seed);
        SL_list *d = random_dict(rng, 0);
        std::string text = text_of(d);
        SL_list *read = read_exact(text);
        ASSERT_NE(read, nullptr) << text;
        expect_same(d, read);
        SL_list *copy = GENDICT_copy(read);
        EXPECT_EQ(text_of(copy), text);
        GENDICT_release(&copy);
        GENDICT_release(&read);
        GENDICT_release(&d);
        for (uint32_t k = 1 + rng.below(4); k > 0 && !text.empty(); --k) {
            const size_t at = rng.below(uint32_t(text.size()));
            switch (rng.below(5)) {
                case 0: text.resize(at); break;
                case 1: text.erase(at, 1 + rng.below(8)); break;
                case 2: text[at] = inserts[rng.below(sizeof inserts - 1)]; break;
                case 3: text.insert(at, 1, inserts[rng.below(sizeof inserts - 1)]); break;
                default: text[at] = char(rng.below(256) | 1); break;  // any byte but zero
            }
        }
        SL_list *got = read_exact(text);
        if (!got) {
            ++refused;
            continue;
        }
        ++read_ok;
        if (!all_finite(got)) {  // an infinity is written as a word no reader takes
            GENDICT_release(&got);
            continue;
        }
        const std::string again = text_of(got);
        SL_list *back = read_exact(again);
        ASSERT_NE(back, nullptr) << again;
        EXPECT_EQ(text_of(back), again);
        GENDICT_release(&back);
        GENDICT_release(&got);
    }
    EXPECT_GT(read_ok, 0);
    EXPECT_GT(refused, 0);
}

// Nesting: a hundred thousand levels are read, copied and released, and
// two thousand levels written and read on a 256 KiB thread stack, none of
// which a recursion with a work buffer per level would survive.
std::string nested_text(int levels, const char *innermost) {
    std::string t;
    for (int i = 0; i < levels; ++i) t += "DICT{[k]=";
    t += innermost;
    t.append(size_t(levels), '}');
    return t;
}

int depth_of(SL_list *d) {
    int n = 0;
    GENDICT_value v;
    while (GENDICT_get(d, "k", &v) && v.kind == GENDICT_DICT) d = v.data.dict, ++n;
    return n;
}

TEST_F(DictText, DeepNestingNeedsNoNativeStack) {
    const int levels = 100000;
    SL_list *d = read_exact(nested_text(levels, "\"bottom\""));
    ASSERT_NE(d, nullptr);
    EXPECT_EQ(depth_of(d), levels - 1);
    SL_list *copy = GENDICT_copy(d);
    EXPECT_EQ(depth_of(copy), levels - 1);
    GENDICT_release(&d);
    GENDICT_release(&copy);
    // A failure at the bottom releases every level.
    EXPECT_EQ(read_exact(nested_text(levels, "\"open")), nullptr);
}

#ifdef VORN_HAVE_PTHREAD
void *write_and_read_deep(void *out) {
    SL_list *d = GENDICT_from_buf(nested_text(2000, "1 ").c_str());
    std::string *text = static_cast<std::string *>(out);
    if (d) {
        char *buf;
        int32_t len;
        GENDICT_to_buf(d, &buf, &len);
        SL_list *back = GENDICT_from_buf(buf);
        SL_list *copy = GENDICT_copy(back);
        GENDICT_print_rdb(copy, 0);
        char *buf2;
        GENDICT_to_buf(copy, &buf2, &len);
        *text = std::strcmp(buf, buf2) == 0 ? buf : "texts differ";
        std::free(buf);
        std::free(buf2);
        GENDICT_release(&back);
        GENDICT_release(&copy);
        GENDICT_release(&d);
    }
    return nullptr;
}

TEST_F(DictText, DeepNestingOnASmallThreadStack) {
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, 256 * 1024), 0);
    std::string text;
    pthread_t t;
    testing::internal::CaptureStdout();
    ASSERT_EQ(pthread_create(&t, &attr, write_and_read_deep, &text), 0);
    pthread_join(t, nullptr);
    const std::string rdb = testing::internal::GetCapturedStdout();
    pthread_attr_destroy(&attr);
    ASSERT_GT(text.size(), 8000000u);
    EXPECT_EQ(text.compare(0, 16, "DICT{\n  [k] = DI"), 0);
    EXPECT_EQ(text.compare(text.size() - 12, 12, "    }\n  }\n}\n"), 0);
    EXPECT_EQ(rdb.compare(0, 8, "[k]\n  [k"), 0);
}
#endif

}  // namespace
