// What the dictionary sources share: entry helpers, the release of a whole
// tree of dictionaries, a heap stack and the depth-first walk on it.
//
// Nothing here recurses: nested dictionaries are walked with an explicit
// stack on the standard heap (a few slots inline), or, for release, with no
// stack at all, so a million levels of nesting cost heap, not native stack.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "vorn_gendict.h"

namespace vorn::dict {

inline GENDICT_item *first_entry(const SL_list *d) { return static_cast<GENDICT_item *>(d->first); }

inline bool holds_dict(const GENDICT_value &v) { return v.kind == GENDICT_DICT && v.data.dict; }

// A zero-terminated copy of n bytes on the standard heap (malloc), or null.
inline char *copy_text(const char *s, std::size_t n) {
    char *t = static_cast<char *>(std::malloc(n + 1));
    if (!t) return nullptr;
    std::memcpy(t, s, n);
    t[n] = '\0';
    return t;
}
inline char *copy_text(const char *s) { return copy_text(s, std::strlen(s)); }

// The entry of `key` in `d`, or null: a walk from the first entry.
GENDICT_item *find_entry(const SL_list *d, const char *key);

// Appends a new entry that takes over `key` and what `value` refers to.
GENDICT_item *append_entry(SL_list *d, char *key, GENDICT_value value);

// Puts `value` (whose text or dictionary the entry takes over) into `e` and
// then releases the old value, unless it is the very dictionary kept.
void replace_value(GENDICT_item *e, GENDICT_value value);

// Releases `d` with every entry at every depth, and its head.  Each
// sub-dictionary met is spliced behind the entries still to go, so the walk
// needs no stack.
void release_tree(SL_list *d);

// A LIFO stack of trivially copyable T on the standard heap, with `Inline`
// slots on the owner's frame so shallow walks allocate nothing.
template <class T, std::size_t Inline = 16>
class Stack {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    Stack() = default;
    Stack(const Stack &) = delete;
    Stack &operator=(const Stack &) = delete;
    ~Stack() {
        if (data_ != inline_) std::free(data_);
    }

    // False, with the stack unchanged, if no memory could be had.
    [[nodiscard]] bool try_push(const T &v) {
        if (size_ == cap_ && !grow()) return false;
        data_[size_++] = v;
        return true;
    }
    // For walks that have no way to report a failure: out of memory for the
    // scratch stack ends the process rather than corrupt anything.
    void push(const T &v) {
        if (!try_push(v)) std::abort();
    }
    T &top() { return data_[size_ - 1]; }
    T pop() { return data_[--size_]; }
    bool empty() const { return size_ == 0; }

private:
    bool grow() {
        const std::size_t cap = cap_ * 2;
        T *data;
        if (data_ == inline_) {
            data = static_cast<T *>(std::malloc(cap * sizeof(T)));
            if (data) std::memcpy(static_cast<void *>(data), inline_, size_ * sizeof(T));
        } else {
            data = static_cast<T *>(std::realloc(static_cast<void *>(data_), cap * sizeof(T)));
        }
        if (!data) return false;
        data_ = data;
        cap_ = cap;
        return true;
    }

    T inline_[Inline];
    T *data_ = inline_;
    std::size_t size_ = 0;
    std::size_t cap_ = Inline;
};

// Depth-first walk of `root` and every sub-dictionary, entries in list order.
// `v.enter(entry, depth)` is called for each entry (depth 0 at the top) and
// gives the sub-dictionary to descend into, or null; `v.leave(depth)` is
// called when the entries of a sub-dictionary at `depth` are done.
template <class Visitor>
void walk_tree(SL_list *root, Visitor &v) {
    Stack<GENDICT_item *> open;
    GENDICT_item *e = first_entry(root);
    int32_t depth = 0;
    for (;;) {
        if (!e) {
            if (open.empty()) return;
            v.leave(depth);
            e = open.pop()->next;
            --depth;
            continue;
        }
        if (SL_list *sub = v.enter(e, depth)) {
            open.push(e);
            ++depth;
            e = first_entry(sub);
            continue;
        }
        e = e->next;
    }
}

}  // namespace vorn::dict
