// The memory blocks of the base services.
//
// Every block is released with the exact size it was taken with and carries
// no header, so small blocks come from size-class slabs: a block of class c
// is one slot of c bytes in a 64 KiB span, and a free slot holds nothing but
// the link to the next free slot.  Each thread keeps a cache of free slots
// per class in front of the shared level; taking and giving back a small
// block is a pointer pop or push on the calling thread.  A block may be
// released on another thread than the one that took it: it simply joins the
// releasing thread's cache.  The shared level keeps free slots on their own
// spans, so that a thread refills with neighbours in memory.  Blocks above
// kMaxSmall bytes go to the system; those of 2 MiB and more are huge-page
// mappings that resizing grows in place, and released ones are kept, a few,
// for the next large block.
//
// The counters are per thread (written by their owner only) and summed on
// request; the failure injection is one process-wide countdown.
//
// Address and undefined-behaviour sanitizer builds define VORN_MM_SYSTEM and
// send every block to the system allocator, so that AddressSanitizer and
// valgrind see each block.  The checked mode (VORN_MM_CHECKED) records every
// live block with its size and stops the process at a release or resize
// with a wrong size.

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <unordered_map>

#include "vorn_base.h"

#if defined(__linux__)
#include <sys/mman.h>
#define VORN_HUGE_PAGES 1
#endif

#if defined(__GNUC__) && !defined(_WIN32)
#define VORN_TLS_FAST __attribute__((tls_model("initial-exec")))
#else
#define VORN_TLS_FAST
#endif

namespace {

[[noreturn]] void out_of_memory(size_t size) {
    std::fprintf(stderr, "vorn_base: out of memory for a block of %zu bytes\n", size);
    std::fflush(stderr);
    std::abort();
}

// ---- failure injection -------------------------------------------------------------

std::atomic<int64_t> g_fail_after{-1};

// True when this allocation is the injected failure.  One-shot: after the
// failing allocation the injection is off again.
inline bool inject_failure() {
    int64_t n = g_fail_after.load(std::memory_order_relaxed);
    if (n < 0) return false;  // the common case: one relaxed load
    while (n >= 0) {
        const int64_t next = n == 0 ? -1 : n - 1;
        if (g_fail_after.compare_exchange_weak(n, next, std::memory_order_relaxed)) return n == 0;
    }
    return false;
}

// ---- checked mode -------------------------------------------------------------------

#ifdef VORN_MM_CHECKED
std::mutex &registry_mutex() {
    static auto *m = new std::mutex();  // never destroyed: used until the process ends
    return *m;
}
std::unordered_map<const void *, size_t> &registry() {
    static auto *r = new std::unordered_map<const void *, size_t>();
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
    std::lock_guard<std::mutex> lock(registry_mutex());
    registry()[block] = size;
}

void check_and_forget(const char *what, const void *block, size_t size) {
    std::lock_guard<std::mutex> lock(registry_mutex());
    auto it = registry().find(block);
    if (it == registry().end()) checked_failure(what, block, size, 0, false);
    if (it->second != size) checked_failure(what, block, size, it->second, true);
    registry().erase(it);
}
#else
inline void record_block(const void *, size_t) {}
inline void check_and_forget(const char *, const void *, size_t) {}
#endif

// ---- counters --------------------------------------------------------------------------

// One thread's share of the counters.  Only the owner writes; any thread may
// read, hence relaxed atomics (plain moves on the usual platforms).
struct Counters {
    std::atomic<int64_t> blocks{0};
    std::atomic<int64_t> bytes{0};
    Counters *next_live = nullptr;

    void add(int64_t nblocks, int64_t nbytes) {
        blocks.store(blocks.load(std::memory_order_relaxed) + nblocks, std::memory_order_relaxed);
        bytes.store(bytes.load(std::memory_order_relaxed) + nbytes, std::memory_order_relaxed);
    }
};

// The counters of all live threads, and what ended threads left behind.
struct CounterRegistry {
    std::mutex mutex;
    Counters *live = nullptr;
    std::atomic<int64_t> retired_blocks{0};
    std::atomic<int64_t> retired_bytes{0};
};
CounterRegistry &counter_registry() {
    static auto *r = new CounterRegistry();  // never destroyed
    return *r;
}

// ---- size classes ------------------------------------------------------------------------

constexpr size_t kGrain = sizeof(void *) < 8 ? sizeof(void *) : 8;  // slot size step
constexpr size_t kMaxSmall = 512;
constexpr size_t kClasses = kMaxSmall / kGrain + 1;
constexpr size_t kSpanBytes = 64 * 1024;
constexpr size_t kHugePage = size_t{2} << 20;  // the usual huge page of x86-64 and arm64
[[maybe_unused]] constexpr uint32_t kCacheLimit = 512;  // free slots a thread keeps per class
constexpr uint32_t kTransfer = 256;     // slots a full bin gives back at once

// A slot of size s (s <= kMaxSmall) belongs to class ceil(s / kGrain); class
// 0 (size 0) shares the smallest slot.  A slot's address is a multiple of
// the largest power of two (up to 16) that divides its class size, and the
// size of any type is a multiple of its alignment, so every block is aligned
// for what fits in it.
[[maybe_unused]] constexpr size_t class_of(size_t size) { return size == 0 ? 1 : (size + kGrain - 1) / kGrain; }
constexpr size_t slot_size(size_t cls) { return cls * kGrain; }
static_assert(slot_size(1) >= sizeof(void *), "a free slot holds its link");

struct FreeSlot {
    FreeSlot *next;
};

// Spans are aligned to their size, so the span of a slot is its address with
// the low bits cleared.  A span begins with this record; its slots follow.
// Free slots that no thread holds lie on their own span's list, so the
// slots that a thread takes in one refill are neighbours in memory: a list
// or tree built after a large release is as compact as one built on fresh
// spans, which is what keeps its walks and searches in the cache.
struct SpanHead {
    FreeSlot *free = nullptr;       // free slots held by no thread
    SpanHead *next_partial = nullptr;
    uint32_t nfree = 0;
    uint32_t capacity = 0;          // slots in the span
    bool listed = false;            // on its class's list of spans with free slots
    bool bumping = true;            // a thread still hands out its untouched slots
};
constexpr size_t kSpanHead = 32;  // keeps every slot as aligned as the span's first
static_assert(sizeof(SpanHead) <= kSpanHead);

inline SpanHead *span_of(const void *slot) {
    return reinterpret_cast<SpanHead *>(reinterpret_cast<uintptr_t>(slot) & ~(kSpanBytes - 1));
}

// The shared level of one class: the spans with free slots, newest first.
struct SharedBin {
    std::mutex mutex;
    SpanHead *partial = nullptr;
};
SharedBin *shared_bins() {
    static auto *bins = new SharedBin[kClasses];  // never destroyed
    return bins;
}

// Puts the first `limit` slots of a chain of free slots back on their spans,
// a run of neighbours of one span at a time, and gives the rest of the
// chain.  The caller holds the class's lock.
FreeSlot *return_to_spans(SharedBin &sb, FreeSlot *f, uint32_t limit = UINT32_MAX) {
    while (f && limit) {
        SpanHead *span = span_of(f);
        FreeSlot *last = f;
        uint32_t n = 1;
        for (FreeSlot *g = last->next; n < limit && g && span_of(g) == span; g = g->next)
            last = g, ++n;
        FreeSlot *rest = last->next;
        last->next = span->free;
        span->free = f;
        span->nfree += n;
        limit -= n;
        if (!span->listed) {
            span->listed = true;
            span->next_partial = sb.partial;
            sb.partial = span;
        }
        f = rest;
    }
    return f;
}

// A thread's bin: the slots this thread freed (LIFO, at most kCacheLimit),
// then the free slots it took whole from one span, then the untouched rest
// of its newest span.
struct Bin {
    FreeSlot *head = nullptr;
    uint32_t count = 0;
    FreeSlot *spare = nullptr;
    char *bump = nullptr;
    char *bump_end = nullptr;
};

struct ThreadCache {
    Bin bins[kClasses];
    Counters counters;
};

// Spans are cut from chunks of kChunkBytes taken from the system and never
// given back: their slots circulate through the lists.  On Linux a chunk is
// an anonymous mapping aligned to its size, and every chunk after the first
// is advised as huge-page memory, so a process with many small blocks walks
// its lists and trees with few TLB misses while a process with few small
// blocks never holds a whole huge page for them.  Elsewhere a chunk is a
// malloc block, aligned by hand to the span size.
constexpr size_t kChunkBytes = kHugePage;
static_assert(kChunkBytes % kSpanBytes == 0);

struct SpanArena {
    std::mutex mutex;
    char *next = nullptr;
    char *end = nullptr;
    size_t chunks = 0;
};
SpanArena &span_arena() {
    static auto *a = new SpanArena();  // never destroyed
    return *a;
}

char *new_chunk(size_t ordinal) {
#ifdef VORN_HUGE_PAGES
    // Map twice the size and cut off the unaligned ends.
    void *raw = mmap(nullptr, 2 * kChunkBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS,
                     -1, 0);
    if (raw == MAP_FAILED) return nullptr;
    const auto at = reinterpret_cast<uintptr_t>(raw);
    const auto aligned = (at + kChunkBytes - 1) & ~(kChunkBytes - 1);
    if (aligned > at) munmap(raw, aligned - at);
    if (aligned + kChunkBytes < at + 2 * kChunkBytes)
        munmap(reinterpret_cast<void *>(aligned + kChunkBytes), at + kChunkBytes - aligned);
    if (ordinal > 0) (void)madvise(reinterpret_cast<void *>(aligned), kChunkBytes, MADV_HUGEPAGE);
    return reinterpret_cast<char *>(aligned);
#else
    (void)ordinal;
    const auto at = reinterpret_cast<uintptr_t>(std::malloc(kChunkBytes + kSpanBytes));
    if (!at) return nullptr;
    return reinterpret_cast<char *>((at + kSpanBytes - 1) & ~(kSpanBytes - 1));
#endif
}

// A fresh span for slots of class `cls`; its slots are handed out by bump.
[[maybe_unused]] void new_span(Bin &b, size_t cls) {
    const size_t slot = slot_size(cls);
    char *span;
    {
        SpanArena &a = span_arena();
        std::lock_guard<std::mutex> lock(a.mutex);
        if (a.next == a.end) {
            char *chunk = new_chunk(a.chunks);
            if (!chunk) out_of_memory(kSpanBytes);
            ++a.chunks;
            a.next = chunk;
            a.end = chunk + kChunkBytes;
        }
        span = a.next;
        a.next += kSpanBytes;
    }
    auto *head = new (span) SpanHead();
    head->capacity = static_cast<uint32_t>((kSpanBytes - kSpanHead) / slot);
    b.bump = span + kSpanHead;
    b.bump_end = b.bump + head->capacity * slot;
}

// The bin's bump span, which has handed out all its untouched slots, stops
// bumping; then the bin takes all free slots of one span, or a fresh span:
// constant time under the lock, whatever the number of slots.  A span whose
// slots are all free is handed out by bump again, in address order, as a
// fresh one would be.
[[maybe_unused]] void refill(Bin &b, size_t cls) {
    SharedBin &sb = shared_bins()[cls];
    {
        std::lock_guard<std::mutex> lock(sb.mutex);
        if (b.bump_end) span_of(b.bump_end - 1)->bumping = false;
        b.bump = b.bump_end = nullptr;
        if (SpanHead *span = sb.partial) {
            sb.partial = span->next_partial;
            span->listed = false;
            if (span->nfree == span->capacity && !span->bumping) {
                span->bumping = true;
                b.bump = reinterpret_cast<char *>(span) + kSpanHead;
                b.bump_end = b.bump + span->capacity * slot_size(cls);
            } else {
                b.spare = span->free;
            }
            span->free = nullptr;
            span->nfree = 0;
            return;
        }
    }
    new_span(b, cls);
}

// Gives kTransfer slots of a full thread bin back to their spans.
[[maybe_unused]] void give_back(Bin &b, size_t cls) {
    SharedBin &sb = shared_bins()[cls];
    std::lock_guard<std::mutex> lock(sb.mutex);
    b.head = return_to_spans(sb, b.head, kTransfer);
    b.count -= kTransfer;
}

// Thread end: every cached and untouched slot goes back to its span and the
// counters to the retired totals.
void retire(ThreadCache *tc) {
    for (size_t cls = 1; cls < kClasses; ++cls) {
        Bin &b = tc->bins[cls];
        const size_t slot = slot_size(cls);
        SharedBin &sb = shared_bins()[cls];
        std::lock_guard<std::mutex> lock(sb.mutex);
        if (b.bump_end) span_of(b.bump_end - 1)->bumping = false;
        for (; b.bump && b.bump + slot <= b.bump_end; b.bump += slot) {
            auto *f = reinterpret_cast<FreeSlot *>(b.bump);
            f->next = b.head;
            b.head = f;
        }
        return_to_spans(sb, b.head);
        return_to_spans(sb, b.spare);
        b.head = b.spare = nullptr;
    }
    CounterRegistry &r = counter_registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    for (Counters **p = &r.live; *p; p = &(*p)->next_live) {
        if (*p == &tc->counters) {
            *p = tc->counters.next_live;
            break;
        }
    }
    r.retired_blocks.fetch_add(tc->counters.blocks.load(std::memory_order_relaxed));
    r.retired_bytes.fetch_add(tc->counters.bytes.load(std::memory_order_relaxed));
    tc->~ThreadCache();
    std::free(tc);
}

thread_local ThreadCache *t_cache VORN_TLS_FAST = nullptr;
thread_local bool t_reaped VORN_TLS_FAST = false;

// Hands the cache back when its thread ends.  A block taken after that (by a
// destructor running later at thread end) gets a cache that is not reaped.
struct CacheReaper {
    ~CacheReaper() {
        if (t_cache) retire(t_cache);
        t_cache = nullptr;
        t_reaped = true;
    }
};
thread_local CacheReaper t_reaper;

ThreadCache *make_cache() {
    void *raw = std::malloc(sizeof(ThreadCache));
    if (!raw) out_of_memory(sizeof(ThreadCache));
    auto *tc = new (raw) ThreadCache();
    {
        CounterRegistry &r = counter_registry();
        std::lock_guard<std::mutex> lock(r.mutex);
        tc->counters.next_live = r.live;
        r.live = &tc->counters;
    }
    t_cache = tc;
    if (!t_reaped) (void)&t_reaper;  // touching it registers its destructor for this thread
    return tc;
}

inline ThreadCache &cache() {
    ThreadCache *tc = t_cache;
    return tc ? *tc : *make_cache();
}

// ---- large blocks ----------------------------------------------------------------------

// Blocks of kHugeMin bytes and more (the arrays of big hash tables, DA and
// GB blocks) are, on Linux, mappings of their own: aligned to a huge page and
// advised as huge-page memory, so random access into them costs no TLB miss
// per 4 KiB page, and resized with mremap, which grows them in place or moves
// their pages without copying.  Being whole mappings, they never change the
// advice of memory that the rest of the process gets from malloc.  Smaller
// large blocks, and all large blocks elsewhere, are malloc blocks.
constexpr size_t kHugeMin = kHugePage;

#ifdef VORN_HUGE_PAGES
constexpr size_t kPage = 4096;
constexpr size_t mapped_length(size_t size) { return (size + kPage - 1) & ~(kPage - 1); }

void *map_huge(size_t size) {
    const size_t len = mapped_length(size);
    void *raw = mmap(nullptr, len + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS,
                     -1, 0);
    if (raw == MAP_FAILED) return nullptr;
    const auto at = reinterpret_cast<uintptr_t>(raw);
    const auto aligned = (at + kHugePage - 1) & ~(kHugePage - 1);
    if (aligned > at) munmap(raw, aligned - at);
    const uintptr_t tail = at + len + kHugePage - (aligned + len);
    if (tail) munmap(reinterpret_cast<void *>(aligned + len), tail);
    (void)madvise(reinterpret_cast<void *>(aligned), len, MADV_HUGEPAGE);
    return reinterpret_cast<void *>(aligned);
}

// Released mappings are kept for reuse, up to kKeepCount of them and
// kKeepBytes in all, so that a container built, released and built again
// touches no fresh page: a fault on a huge-page mapping may wait for the
// kernel to compact memory.  A kept mapping may serve a smaller request, and
// a growing block may be copied onto one, so a live mapping can be longer
// than its block; the length of each is recorded.  The oldest kept
// mapping goes back to the system first.
constexpr int kKeepCount = 8;
constexpr size_t kKeepBytes = size_t{128} << 20;

struct Mappings {
    std::mutex mutex;
    std::unordered_map<void *, size_t> live;  // address -> mapped length
    struct Kept {
        void *at;
        size_t length;
    } kept[kKeepCount];
    int nkept = 0;
    size_t kept_bytes = 0;

    // The smallest kept mapping of at least `length` bytes, taken out of the
    // keep; {nullptr, 0} when none is that long.  Called under the mutex.
    Kept take_kept(size_t length) {
        int best = -1;
        for (int i = 0; i < nkept; ++i)
            if (kept[i].length >= length && (best < 0 || kept[i].length < kept[best].length)) best = i;
        if (best < 0) return {nullptr, 0};
        const Kept k = kept[best];
        for (int i = best; i + 1 < nkept; ++i) kept[i] = kept[i + 1];
        --nkept;
        kept_bytes -= k.length;
        return k;
    }
};

Mappings &mappings() {
    static Mappings *m = new Mappings;  // never destroyed: blocks may be released at exit
    return *m;
}

void *take_huge(size_t size) {
    const size_t need = mapped_length(size);
    Mappings &m = mappings();
    {
        std::lock_guard<std::mutex> lock(m.mutex);
        if (const Mappings::Kept k = m.take_kept(need); k.at) {
            m.live[k.at] = k.length;
            return k.at;
        }
    }
    void *at = map_huge(size);
    if (!at) return nullptr;
    std::lock_guard<std::mutex> lock(m.mutex);
    m.live[at] = need;
    return at;
}

void give_huge(void *block) {
    Mappings &m = mappings();
    std::lock_guard<std::mutex> lock(m.mutex);
    const auto it = m.live.find(block);
    const size_t length = it->second;
    m.live.erase(it);
    if (length > kKeepBytes) {
        munmap(block, length);
        return;
    }
    while (m.nkept == kKeepCount || m.kept_bytes + length > kKeepBytes) {
        munmap(m.kept[0].at, m.kept[0].length);
        m.kept_bytes -= m.kept[0].length;
        for (int i = 0; i + 1 < m.nkept; ++i) m.kept[i] = m.kept[i + 1];
        --m.nkept;
    }
    m.kept[m.nkept++] = {block, length};
    m.kept_bytes += length;
}

// A block that still fits its mapping stays, unless it shrinks to below half
// of it: then the tail goes back; one that grows is copied onto a kept mapping long
// enough, its own mapping joining the keep, or else grown by mremap, in
// place where the address space allows.  (mremap moves only whole
// mappings, so a block is never moved onto part of another.)
void *resize_huge(void *block, size_t old_size, size_t new_size) {
    const size_t need = mapped_length(new_size);
    Mappings &m = mappings();
    std::unique_lock<std::mutex> lock(m.mutex);
    const size_t length = m.live.at(block);
    void *moved = MAP_FAILED;
    if (need <= length) {
        if (new_size >= old_size || need * 2 >= length) return block;
        moved = mremap(block, length, need, 0);
    } else if (const Mappings::Kept k = m.take_kept(need); k.at) {
        m.live[k.at] = k.length;
        lock.unlock();
        std::memcpy(k.at, block, old_size);
        give_huge(block);
        return k.at;
    } else {
        moved = mremap(block, length, need, MREMAP_MAYMOVE);
    }
    if (moved == MAP_FAILED) return nullptr;
    m.live.erase(block);
    m.live[moved] = need;
    return moved;
}

[[maybe_unused]] void *take_large(size_t size) {
    return size < kHugeMin ? std::malloc(size) : take_huge(size);
}

[[maybe_unused]] void give_large(void *block, size_t size) {
    if (size < kHugeMin)
        std::free(block);
    else
        give_huge(block);
}

[[maybe_unused]] void *resize_large(void *block, size_t old_size, size_t new_size) {
    if (old_size < kHugeMin && new_size < kHugeMin) return std::realloc(block, new_size);
    if (old_size >= kHugeMin && new_size >= kHugeMin) return resize_huge(block, old_size, new_size);
    void *moved = take_large(new_size);
    if (moved) {
        std::memcpy(moved, block, old_size < new_size ? old_size : new_size);
        give_large(block, old_size);
    }
    return moved;
}
#else
[[maybe_unused]] void *take_large(size_t size) { return std::malloc(size); }
[[maybe_unused]] void give_large(void *block, size_t) { std::free(block); }
[[maybe_unused]] void *resize_large(void *block, size_t, size_t new_size) {
    return std::realloc(block, new_size);
}
#endif

// ---- taking and giving back ----------------------------------------------------------------

#ifdef VORN_MM_SYSTEM
inline void *take(ThreadCache &, size_t size) { return std::malloc(size ? size : 1); }
inline void give(ThreadCache &, void *block, size_t) { std::free(block); }
#else
inline void *take(ThreadCache &tc, size_t size) {
    if (size > kMaxSmall) return take_large(size);
    const size_t cls = class_of(size);
    Bin &b = tc.bins[cls];
    if (FreeSlot *f = b.head) {
        b.head = f->next;
        --b.count;
        return f;
    }
    if (FreeSlot *f = b.spare) {
        b.spare = f->next;
        return f;
    }
    const size_t slot = slot_size(cls);
    if (b.bump == b.bump_end) {
        refill(b, cls);
        if (FreeSlot *f = b.spare) {
            b.spare = f->next;
            return f;
        }
    }
    void *block = b.bump;
    b.bump += slot;
    return block;
}

inline void give(ThreadCache &tc, void *block, size_t size) {
    if (size > kMaxSmall) return give_large(block, size);
    const size_t cls = class_of(size);
    Bin &b = tc.bins[cls];
    auto *f = static_cast<FreeSlot *>(block);
    f->next = b.head;
    b.head = f;
    if (++b.count > kCacheLimit) give_back(b, cls);
}
#endif

}  // namespace

extern "C" {

void *MM_alloc_item(size_t size) {
    if (inject_failure()) return nullptr;
    ThreadCache &tc = cache();
    void *block = take(tc, size);
    if (!block) out_of_memory(size);
    record_block(block, size);
    tc.counters.add(1, static_cast<int64_t>(size));
    return block;
}

void *MM_realloc_item(void *block, size_t old_size, size_t new_size) {
    if (!block) return MM_alloc_item(new_size);
    if (new_size > old_size && inject_failure()) return nullptr;
    check_and_forget("MM_realloc_item", block, old_size);
    ThreadCache &tc = cache();
    void *moved;
#ifdef VORN_MM_SYSTEM
    moved = std::realloc(block, new_size ? new_size : 1);
#else
    if (old_size > kMaxSmall && new_size > kMaxSmall) {
        moved = resize_large(block, old_size, new_size);  // grown in place where possible
    } else if (old_size <= kMaxSmall && new_size <= kMaxSmall &&
               class_of(old_size) == class_of(new_size)) {
        moved = block;  // the slot already fits
    } else {
        moved = take(tc, new_size);
        if (moved) {
            std::memcpy(moved, block, old_size < new_size ? old_size : new_size);
            give(tc, block, old_size);
        }
    }
#endif
    if (!moved) out_of_memory(new_size);
    record_block(moved, new_size);
    tc.counters.add(0, static_cast<int64_t>(new_size) - static_cast<int64_t>(old_size));
    return moved;
}

void MM_dealloc_item(void *block, size_t size) {
    if (!block) return;
    check_and_forget("MM_dealloc_item", block, size);
    ThreadCache &tc = cache();
    give(tc, block, size);
    tc.counters.add(-1, -static_cast<int64_t>(size));
}

int64_t MM_blocks_in_use(void) {
    CounterRegistry &r = counter_registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    int64_t n = r.retired_blocks.load();
    for (Counters *c = r.live; c; c = c->next_live) n += c->blocks.load(std::memory_order_relaxed);
    return n;
}

int64_t MM_bytes_in_use(void) {
    CounterRegistry &r = counter_registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    int64_t n = r.retired_bytes.load();
    for (Counters *c = r.live; c; c = c->next_live) n += c->bytes.load(std::memory_order_relaxed);
    return n;
}

void MM_fail_after(int64_t n) { g_fail_after.store(n < 0 ? -1 : n, std::memory_order_relaxed); }

}  // extern "C"
