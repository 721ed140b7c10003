/*
 * vorn_base.h - the base services every container stands on.
 *
 * Memory blocks (MM_*), raising of failures (EX_*), formatted diagnostics
 * (Tprintf), a debug trap and the one platform call of the colour table
 * (GetSysColor).  The stand-in library VornBaseShared implements them; a host
 * that has the real VornBaseShared links that instead.
 *
 * Contract relied on by every container:
 *  - A block is always freed or resized with exactly the size it was
 *    allocated (or last resized) with; blocks carry no header.
 *  - MM_alloc_item / MM_realloc_item return null only while a failure is
 *    being injected with MM_fail_after.
 *  - EX_raise_exception_line never returns.
 *
 * All services are thread-safe: containers of different threads may allocate
 * and free at the same time, and a block may be freed on another thread.
 *
 * How the stand-in serves blocks (a matter of speed, not of contract): blocks
 * of up to 512 bytes are slots of size-class slabs with a per-thread cache,
 * no header and no search; a thread refills from one slab at a time, so the
 * nodes of a list or tree built together lie together.  Memory that once
 * held small blocks stays with the slabs until the process ends.  Larger
 * blocks come from malloc, and on Linux those of 2 MiB and more are mappings
 * of their own backed by huge pages where the system allows, which
 * MM_realloc_item grows in place or moves without copying; up to eight
 * released ones (128 MiB in all) are kept for the next such block, so a
 * container built again touches no fresh page.
 */
#ifndef VORN_BASE_H
#define VORN_BASE_H

#include <stddef.h>
#include <stdint.h>

#include "vorn_types.h"

#if defined(__cplusplus)
#  define VORN_NORETURN [[noreturn]]
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#  define VORN_NORETURN _Noreturn
#elif defined(__GNUC__)
#  define VORN_NORETURN __attribute__((noreturn))
#elif defined(_MSC_VER)
#  define VORN_NORETURN __declspec(noreturn)
#else
#  define VORN_NORETURN
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup base Base services (VornBaseShared)
 * The rules of the family stand at the top of vorn_base.h.
 * @{ */

/* ---- memory blocks -------------------------------------------------------- */

/* A new block of `size` bytes, content unspecified.  Null only when a
 * failure is injected (MM_fail_after).  A size of 0 gives a valid block. */
VORN_BASE_API void *MM_alloc_item(size_t size);

/* Resizes `block` from `old_size` to `new_size` bytes (smaller or larger);
 * content survives up to the smaller size and the result replaces `block`.
 * A growing call returns null only when a failure is injected; the old block
 * then stays valid and unchanged. */
VORN_BASE_API void *MM_realloc_item(void *block, size_t old_size, size_t new_size);

/* Frees `block`, whose size must be exactly the one it was allocated or last
 * resized with.  A null block is ignored.  In the checked mode a wrong size
 * or an unknown block stops the process with a message on standard error. */
VORN_BASE_API void MM_dealloc_item(void *block, size_t size);

/* ---- failures ------------------------------------------------------------- */

/* Raises the failure (file, line, code).  Calls the raise handler; if none is
 * set, or the handler returns, writes
 *   "vorn_container: raised FILE line LINE code CODE"
 * to standard error and aborts.  Never returns. */
VORN_NORETURN VORN_BASE_API void EX_raise_exception_line(const char *file, int32_t line,
                                                         int32_t code);

/* The diagnostics printer; starts as printf and is read anew at every use,
 * so a host may redirect the library's messages by assigning it. */
VORN_BASE_API extern int (*Tprintf)(const char *format, ...);

/* A debug trap; the stand-in does nothing and returns. */
VORN_BASE_API void debug_break(void);

/* The stand-in of the Windows system colour call: 0x00BBGGRR.  15 gives
 * 240,240,240; 13 gives 0,120,215; 14 gives 255,255,255; any other index
 * gives 0.  On Windows the real call of user32 is used instead. */
#if !defined(_WIN32)
VORN_BASE_API uint32_t GetSysColor(int32_t index);
#endif

/* ---- hooks for hosts and tests ------------------------------------------- */

/* A raise handler may return (the raise then aborts), or leave by longjmp or
 * by a C++ exception; the container is then in the documented state at the
 * raise. */
typedef void (*EX_raise_handler)(const char *file, int32_t line, int32_t code);

/* Sets the raise handler (null: none) and gives back the previous one. */
VORN_BASE_API EX_raise_handler EX_set_raise_handler(EX_raise_handler h);

/* Blocks of the MM_ services not yet freed, and their bytes. */
VORN_BASE_API int64_t MM_blocks_in_use(void);
VORN_BASE_API int64_t MM_bytes_in_use(void);

/* After the next `n` successful allocations (MM_alloc_item and growing
 * MM_realloc_item) the following one returns null, once; -1 turns the
 * injection off.  The count is process-wide. */
VORN_BASE_API void MM_fail_after(int64_t n);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_BASE_H */
