// The dictionaries and their text form against themselves: random
// dictionaries of every kind must write a text that reads back to the same
// text (and so must their copies); any text at all, read, must give a
// dictionary whose own text reads back to the same bytes, and nothing may
// leak or be read out of bounds.  The driver and the checker serve the
// GoogleTest cases (vorn_test::Rng) and the fuzzer (vorn_test::Bytes, or
// the raw input as a text).
#pragma once

#include "support.hpp"

namespace dict_model {

inline GENDICT_value val(int32_t kind) {
    GENDICT_value v{};
    v.kind = kind;
    return v;
}
inline GENDICT_value int_val(int32_t i) { auto v = val(GENDICT_INT); v.data.integer = i; return v; }
inline GENDICT_value real_val(double d) { auto v = val(GENDICT_DOUBLE); v.data.real = d; return v; }
inline GENDICT_value text_val(const char *t) { auto v = val(GENDICT_STRING); v.data.text = const_cast<char *>(t); return v; }
inline GENDICT_value dict_val(SL_list *d) { auto v = val(GENDICT_DICT); v.data.dict = d; return v; }

inline std::string text_of(SL_list *d) {
    char *buf = nullptr;
    int32_t len = -1;
    GENDICT_to_buf(d, &buf, &len);
    if (!buf) return "no buffer";
    std::string s(buf);
    EXPECT_EQ(len, int32_t(s.size() + 1));
    std::free(buf);
    return s;
}

// Reads `text` from a block of exactly its size, so that a read past the
// terminating zero is caught by the address sanitizer.
inline SL_list *read_exact(const std::string &text) {
    char *block = static_cast<char *>(std::malloc(text.size() + 1));
    std::memcpy(block, text.c_str(), text.size() + 1);
    SL_list *d = GENDICT_from_buf(block);
    std::free(block);
    return d;
}

template <class R>
inline std::string random_bytes(R &rng, const char *banned, uint32_t max_len) {
    static const char alphabet[] = "abcXYZ019 _-.[]{}\"=\n\t%DICT";
    std::string s;
    for (uint32_t n = rng.below(max_len + 1); n > 0; --n) {
        const char c = alphabet[rng.below(sizeof alphabet - 1)];
        if (!std::strchr(banned, c)) s += c;
    }
    return s;
}

// Random dictionaries of the kinds that survive the text form.
template <class R>
inline SL_list *random_dict(R &rng, int depth) {
    SL_list *d = GENDICT_create();
    for (uint32_t n = rng.below(depth ? 6 : 48); n > 0; --n) {  // past 32 keys the reader's index grows
        const std::string key = random_bytes(rng, "]", 6);
        switch (rng.below(depth < 4 ? 4 : 3)) {
            case 0: GENDICT_add(d, key.c_str(), int_val(rng.chance(10) ? INT32_MIN : int32_t(rng.next()))); break;
            case 1: {
                const double r = double(int64_t(rng.next() % 2000000000001ull) - 1000000000000) / 1e6;
                GENDICT_add(d, key.c_str(), real_val(rng.chance(5) ? 1e200 : r));
                break;
            }
            case 2: GENDICT_add(d, key.c_str(), text_val(random_bytes(rng, "\"", 12).c_str())); break;
            default: GENDICT_add(d, key.c_str(), dict_val(random_dict(rng, depth + 1)));
        }
    }
    return d;
}

// Whether a text holds a value written in a form the reader does not take
// back: a non-finite double ("inf", "nan"), or (conservatively) any token
// longer than the reader's 320-byte number limit.
inline bool unreadable_number(const std::string &t) {
    if (t.find("inf") != std::string::npos || t.find("nan") != std::string::npos) return true;
    size_t run = 0;
    for (char c : t)
        if ((run = (c == ' ' || c == '\n') ? 0 : run + 1) > 320) return true;
    return false;
}

// Any text: whatever the reader gives back must write a text that reads
// back to the very same bytes.  Gives whether the text was read.
inline bool check_any_text(const std::string &text) {
    SL_list *got = read_exact(text);
    if (!got) return false;
    const std::string again = text_of(got);
    if (!unreadable_number(again)) {
        SL_list *back = read_exact(again);
        EXPECT_EQ(back ? text_of(back) : "refused", again);
        GENDICT_release(&back);
    }
    GENDICT_release(&got);
    return true;
}

// A random dictionary, its text read back and copied, then the text
// corrupted by a few edits and checked as any text.  Gives whether the
// corrupted text was read.
template <class R>
inline bool run(R &rng) {
    static const char inserts[] = "[]{}\"= \nD-1.";
    SL_list *d = random_dict(rng, 0);
    std::string text = text_of(d);
    SL_list *read = read_exact(text), *copy = read ? GENDICT_copy(read) : nullptr;
    EXPECT_NE(read, nullptr) << text;
    EXPECT_EQ(read ? text_of(read) : "", text);
    EXPECT_EQ(copy ? text_of(copy) : "", text);
    for (SL_list **h : {&copy, &read, &d}) GENDICT_release(h);
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
    return check_any_text(text);
}

}  // namespace dict_model
