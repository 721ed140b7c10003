// The binding of the containers to the base services: typed blocks and the
// raise path.  Every block is freed with the size it was allocated with, so
// the helpers take the record type and derive the size from it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "vorn_base.h"

namespace vorn {

// Failure codes.
inline constexpr int32_t kNoMemory = 4197;      // no memory block obtained
inline constexpr int32_t kBrokenState = 4297;   // broken precondition or inconsistency
inline constexpr int32_t kNotInTable = 4397;    // pointer or identifier not held

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

[[noreturn]] inline void raise(const char *file, int32_t line, int32_t code) {
    EX_raise_exception_line(file, line, code);
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
