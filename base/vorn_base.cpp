// The stand-in of the base services: memory blocks with exact-size release,
// the raise path, Tprintf, debug_break and GetSysColor.
//
// Thread safety: the counters and the failure injection are atomics; the
// checked mode's block registry is guarded by a mutex.  The raise handler is
// one process-wide word, set by hosts and tests before they start work.

#include "vorn_base.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <unordered_map>

namespace {

std::atomic<int64_t> g_blocks{0};
std::atomic<int64_t> g_bytes{0};
std::atomic<int64_t> g_fail_after{-1};
std::atomic<EX_raise_handler> g_handler{nullptr};

// True when this allocation is the injected failure.  The countdown is
// one-shot: after the failing allocation the injection is off again.
bool inject_failure() {
    int64_t n = g_fail_after.load(std::memory_order_relaxed);
    while (n >= 0) {
        const int64_t next = n == 0 ? -1 : n - 1;
        if (g_fail_after.compare_exchange_weak(n, next, std::memory_order_relaxed))
            return n == 0;
    }
    return false;
}

#ifdef VORN_MM_CHECKED
// The checked mode records every live block with its size, so that a release
// or resize with a wrong size, or of a block the services never gave out,
// stops the process at the faulty call instead of corrupting the heap later.
std::mutex g_registry_mutex;
std::unordered_map<const void *, size_t> &registry() {
    static auto *r = new std::unordered_map<const void *, size_t>();  // never destroyed
    return *r;
}

[[noreturn]] void checked_failure(const char *what, const void *block, size_t given,
                                  size_t recorded, bool known) {
    if (known)
        std::fprintf(stderr, "vorn_base: %s of block %p with size %zu; its size is %zu\n", what,
                     block, given, recorded);
    else
        std::fprintf(stderr, "vorn_base: %s of block %p (size %zu) that is not in use\n", what,
                     block, given);
    std::fflush(stderr);
    std::abort();
}

void record_block(const void *block, size_t size) {
    std::lock_guard<std::mutex> lock(g_registry_mutex);
    registry()[block] = size;
}

void check_and_forget(const char *what, const void *block, size_t size) {
    std::lock_guard<std::mutex> lock(g_registry_mutex);
    auto it = registry().find(block);
    if (it == registry().end()) checked_failure(what, block, size, 0, false);
    if (it->second != size) checked_failure(what, block, size, it->second, true);
    registry().erase(it);
}
#else
inline void record_block(const void *, size_t) {}
inline void check_and_forget(const char *, const void *, size_t) {}
#endif

void count_in(size_t size) {
    g_blocks.fetch_add(1, std::memory_order_relaxed);
    g_bytes.fetch_add(static_cast<int64_t>(size), std::memory_order_relaxed);
}

void count_out(size_t size) {
    g_blocks.fetch_sub(1, std::memory_order_relaxed);
    g_bytes.fetch_sub(static_cast<int64_t>(size), std::memory_order_relaxed);
}

}  // namespace

extern "C" {

int (*Tprintf)(const char *format, ...) = std::printf;

void *MM_alloc_item(size_t size) {
    if (inject_failure()) return nullptr;
    void *block = std::malloc(size ? size : 1);
    if (!block) {
        std::fprintf(stderr, "vorn_base: out of memory for a block of %zu bytes\n", size);
        std::abort();
    }
    record_block(block, size);
    count_in(size);
    return block;
}

void *MM_realloc_item(void *block, size_t old_size, size_t new_size) {
    if (!block) return MM_alloc_item(new_size);
    if (new_size > old_size && inject_failure()) return nullptr;
    check_and_forget("MM_realloc_item", block, old_size);
    void *grown = std::realloc(block, new_size ? new_size : 1);
    if (!grown) {
        std::fprintf(stderr, "vorn_base: out of memory resizing a block to %zu bytes\n",
                     new_size);
        std::abort();
    }
    record_block(grown, new_size);
    g_bytes.fetch_add(static_cast<int64_t>(new_size) - static_cast<int64_t>(old_size),
                      std::memory_order_relaxed);
    return grown;
}

void MM_dealloc_item(void *block, size_t size) {
    if (!block) return;
    check_and_forget("MM_dealloc_item", block, size);
    count_out(size);
    std::free(block);
}

void EX_raise_exception_line(const char *file, int32_t line, int32_t code) {
    if (EX_raise_handler h = g_handler.load()) h(file, line, code);
    std::fprintf(stderr, "vorn_container: raised %s line %d code %d\n", file ? file : "(null)",
                 static_cast<int>(line), static_cast<int>(code));
    std::fflush(stderr);
    std::abort();
}

void debug_break(void) {}

#if !defined(_WIN32)
uint32_t GetSysColor(int32_t index) {
    auto rgb = [](uint32_t r, uint32_t g, uint32_t b) { return r | (g << 8) | (b << 16); };
    switch (index) {
        case 13: return rgb(0, 120, 215);    // highlight
        case 14: return rgb(255, 255, 255);  // highlight text
        case 15: return rgb(240, 240, 240);  // button face
        default: return 0;
    }
}
#endif

EX_raise_handler EX_set_raise_handler(EX_raise_handler h) { return g_handler.exchange(h); }

int64_t MM_blocks_in_use(void) { return g_blocks.load(std::memory_order_relaxed); }

int64_t MM_bytes_in_use(void) { return g_bytes.load(std::memory_order_relaxed); }

void MM_fail_after(int64_t n) { g_fail_after.store(n < 0 ? -1 : n, std::memory_order_relaxed); }

}  // extern "C"
