// The binding of the containers to the base services: typed blocks and the
// raise path.  Every block is freed with the size it was allocated with, so
// the helpers take the record type and derive the size from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>

#include "vorn_base.h"
#include "vorn_raises.h"

namespace vorn {

// One raise of the table in vorn_raises.h: the identity handed to
// EX_raise_exception_line.  The library spells no file, line or code of a
// raise anywhere else; raise sites name their entry, vorn::raises::ID.
struct RaiseSite {
    const char *file;
    int32_t line;
    int32_t code;
};

namespace raises {
#define VORN_RAISE_SITE(id, file, line, code, operations, condition) \
    inline constexpr RaiseSite id{file, line, code};
VORN_RAISES(VORN_RAISE_SITE)
#undef VORN_RAISE_SITE

// A failure's identity is its file and line: no two entries may share them.
#define VORN_RAISE_ENTRY(id, file, line, code, operations, condition) RaiseSite{file, line, code},
inline constexpr RaiseSite kAll[] = {VORN_RAISES(VORN_RAISE_ENTRY)};
#undef VORN_RAISE_ENTRY
consteval bool identities_distinct() {
    for (const RaiseSite &a : kAll)
        for (const RaiseSite &b : kAll)
            if (&a != &b && a.line == b.line && std::string_view(a.file) == b.file) return false;
    return true;
}
static_assert(identities_distinct(), "two raises of vorn_raises.h share a file and line");
}  // namespace raises

// A block for one T.  Content unspecified; T must be trivially copyable,
// since records are plain C data.
template <class T>
inline T *alloc_record(std::size_t bytes = sizeof(T)) {
    return static_cast<T *>(MM_alloc_item(bytes));
}

template <class T>
inline void free_record(T *record, std::size_t bytes = sizeof(T)) {
    MM_dealloc_item(record, bytes);
}

[[noreturn]] inline void raise(const RaiseSite &site) {
    EX_raise_exception_line(site.file, site.line, site.code);
}

// Copies n bytes of an item; the usual item sizes become fixed-size moves
// instead of a call.
inline void copy_bytes(void *to, const void *from, std::size_t n) {
    switch (n) {
        case 1: std::memcpy(to, from, 1); return;
        case 2: std::memcpy(to, from, 2); return;
        case 4: std::memcpy(to, from, 4); return;
        case 8: std::memcpy(to, from, 8); return;
        case 12: std::memcpy(to, from, 12); return;
        case 16: std::memcpy(to, from, 16); return;
        default: std::memcpy(to, from, n); return;
    }
}

}  // namespace vorn
