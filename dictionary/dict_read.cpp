// The reader of the DICT form.  It reads with a stack of open dictionaries on
// the heap instead of recursion, attaches every dictionary, key and text to
// the result as soon as it is made (so a failure releases the one result and
// leaves nothing behind), never looks past the terminating zero, and finds
// repeated keys through a scratch hash table once a dictionary has grown, so
// that reading stays linear in the text.

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "dict_core.hpp"
#include "vorn_gendict.h"
#include "vorn_rdbdict.h"

namespace vorn::dict {
namespace {

constexpr char kOpening[] = "DICT{";
constexpr std::size_t kOpeningLength = sizeof kOpening - 1;
// The longest number the writer produces is -DBL_MAX in "%lf": 309 digits,
// the sign and ".000000", 317 bytes; every finite double written reads back.
constexpr std::size_t kMaxNumberToken = 320;
// Below this many entries a dictionary is searched by its walk.
constexpr int32_t kIndexFrom = 16;

inline bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

inline const char *skip_blanks(const char *p) {
    while (is_blank(*p)) ++p;
    return p;
}

inline bool is_digit(char c) { return c >= '0' && c <= '9'; }

uint32_t hash_key(const char *s) {
    uint32_t h = 2166136261u;  // FNV-1a
    for (; *s; ++s) h = (h ^ static_cast<unsigned char>(*s)) * 16777619u;
    return h;
}

// Entries of the large dictionaries read so far, by (dictionary serial, key).
// Serials are never reused within one read, so a slot of a dictionary that
// was replaced and freed is never compared again.
class KeyIndex {
public:
    KeyIndex() = default;
    KeyIndex(const KeyIndex &) = delete;
    KeyIndex &operator=(const KeyIndex &) = delete;
    ~KeyIndex() { std::free(slots_); }

    GENDICT_item *find(uint32_t serial, const char *key) const {
        if (!slots_) return nullptr;
        const uint32_t h = mix(serial, hash_key(key));
        for (std::size_t i = h & mask_;; i = (i + 1) & mask_) {
            const Slot &s = slots_[i];
            if (!s.item) return nullptr;
            if (s.hash == h && s.serial == serial && std::strcmp(s.item->key, key) == 0)
                return s.item;
        }
    }

    // False if no memory could be had; the index is then unchanged.
    bool insert(uint32_t serial, GENDICT_item *item) {
        if ((used_ + 1) * 2 > capacity() && !grow()) return false;
        place(Slot{item, serial, mix(serial, hash_key(item->key))});
        ++used_;
        return true;
    }

private:
    struct Slot {
        GENDICT_item *item;  // null: free
        uint32_t serial;
        uint32_t hash;
    };

    static uint32_t mix(uint32_t serial, uint32_t h) { return h ^ (serial * 0x9E3779B9u); }
    std::size_t capacity() const { return slots_ ? mask_ + 1 : 0; }

    void place(const Slot &s) {
        std::size_t i = s.hash & mask_;
        while (slots_[i].item) i = (i + 1) & mask_;
        slots_[i] = s;
    }

    bool grow() {
        const std::size_t old_cap = capacity();
        const std::size_t cap = old_cap ? old_cap * 2 : 64;
        Slot *old = slots_;
        Slot *fresh = static_cast<Slot *>(std::calloc(cap, sizeof(Slot)));
        if (!fresh) return false;
        slots_ = fresh;
        mask_ = cap - 1;
        for (std::size_t i = 0; i < old_cap; ++i)
            if (old[i].item) place(old[i]);
        std::free(old);
        return true;
    }

    Slot *slots_ = nullptr;
    std::size_t mask_ = 0;
    std::size_t used_ = 0;
};

// A dictionary still open in the text.
struct Open {
    SL_list *dict;
    uint32_t serial;
    bool indexed;  // its entries are in the KeyIndex
};

class Reader {
public:
    // Reads the entries of `root`, whose opening has been read, up to the
    // closing of `root`.  False on any failure; what was read stays in
    // `root` for the caller to release.
    bool run(SL_list *root, const char *p) {
        if (!open_.try_push(Open{root, serial_++, false})) return false;
        for (;;) {
            p = skip_blanks(p);
            if (*p == '}') {
                ++p;
                open_.pop();
                if (open_.empty()) return true;
                continue;
            }
            if (*p != '[') return false;  // the end of the text included
            const char *key = p + 1;
            const char *key_end = std::strchr(key, ']');
            if (!key_end) return false;  // a key left open
            p = skip_blanks(key_end + 1);
            if (*p != '=') return false;
            p = skip_blanks(p + 1);
            const std::size_t key_length = static_cast<std::size_t>(key_end - key);

            GENDICT_value v;
            const char *after;
            if (*p == 'D' && std::strncmp(p, kOpening, kOpeningLength) == 0) {
                v.kind = GENDICT_DICT;
                v.data.dict = SL_create();
                if (!put(key, key_length, v)) return false;
                if (!open_.try_push(Open{v.data.dict, serial_++, false})) return false;
                p += kOpeningLength;
                continue;
            } else if (*p == '"') {
                const char *end = std::strchr(p + 1, '"');
                if (!end) return false;  // a string left open
                v.kind = GENDICT_STRING;
                v.data.text = copy_text(p + 1, static_cast<std::size_t>(end - p - 1));
                if (!v.data.text) return false;
                after = end + 1;
            } else if (*p == '-' || is_digit(*p)) {
                after = p;
                while (*after && !is_blank(*after)) {
                    if (static_cast<std::size_t>(after - p) == kMaxNumberToken) return false;
                    ++after;
                }
                v = convert_number(p, after);
            } else {
                continue;  // no value: the key is dropped, "[" or "}" must follow
            }
            if (!put(key, key_length, v)) return false;
            p = after;
        }
    }

private:
    // Stores the value under the key in the innermost open dictionary, as
    // GENDICT_add would, taking over the value's text or dictionary.  On
    // failure the value has been released.
    bool put(const char *key_bytes, std::size_t key_length, GENDICT_value v) {
        char *key = copy_text(key_bytes, key_length);
        if (!key) {
            release_value(v);
            return false;
        }
        Open &o = open_.top();
        GENDICT_item *e = o.indexed ? index_.find(o.serial, key) : find_entry(o.dict, key);
        if (e) {
            std::free(key);
            replace_value(e, v);
            return true;
        }
        e = append_entry(o.dict, key, v);
        if (o.indexed) return index_.insert(o.serial, e);
        if (o.dict->count < kIndexFrom) return true;
        o.indexed = true;
        for (GENDICT_item *x = first_entry(o.dict); x; x = x->next)
            if (!index_.insert(o.serial, x)) return false;
        return true;
    }

    static void release_value(GENDICT_value v) {
        if (v.kind == GENDICT_STRING) std::free(v.data.text);
        if (holds_dict(v)) release_tree(v.data.dict);
    }

    // A token with a point is a double as strtod reads it (the token ends at
    // a blank or the terminating zero, neither of which strtod goes past);
    // otherwise an optional minus sign and decimal digits, clamped to 32
    // bits.  Bytes that do not convert are consumed with the token.
    static GENDICT_value convert_number(const char *p, const char *end) {
        GENDICT_value v;
        if (std::memchr(p, '.', static_cast<std::size_t>(end - p))) {
            v.kind = GENDICT_DOUBLE;
            v.data.real = std::strtod(p, nullptr);
            return v;
        }
        const bool negative = *p == '-';
        int64_t n = 0;
        for (const char *q = p + negative; q < end && is_digit(*q); ++q) {
            n = n * 10 + (*q - '0');
            if (n > INT64_C(2147483648)) n = INT64_C(2147483648);
        }
        if (negative) n = -n;
        v.kind = GENDICT_INT;
        v.data.integer = static_cast<int32_t>(n > INT32_MAX ? INT32_MAX : n);
        return v;
    }

    Stack<Open> open_;
    KeyIndex index_;
    uint32_t serial_ = 0;
};

SL_list *read_dict(const char *text) {
    if (!text) return nullptr;
    const char *p = skip_blanks(text);
    // A string or number at the top level is no dictionary: 0 either way.
    if (std::strncmp(p, kOpening, kOpeningLength) != 0) return nullptr;
    SL_list *root = SL_create();
    Reader reader;
    if (reader.run(root, p + kOpeningLength)) return root;
    release_tree(root);
    return nullptr;
}

}  // namespace
}  // namespace vorn::dict

extern "C" {

SL_list *GENDICT_from_buf(const char *text) { return vorn::dict::read_dict(text); }

SL_list *RDBDICT_from_buf(const char *text) { return vorn::dict::read_dict(text); }

}  // extern "C"
