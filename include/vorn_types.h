/*
 * vorn_types.h - what every header of vorn_container shares: the export
 * macros and the caller function types.
 *
 * VORN_API marks the exported names of libvorn_container, VORN_BASE_API
 * those of the base library; everything else is hidden.  Define VORN_STATIC
 * when linking the static libraries.
 *
 * Caller functions take no context argument.  The library never tests them
 * for null, except that a null test in an iterator record means "no test".
 */
#ifndef VORN_TYPES_H
#define VORN_TYPES_H

#include <stddef.h>
#include <stdint.h>

#if defined(VORN_STATIC)
#  define VORN_API
#  define VORN_BASE_API
#elif defined(_WIN32) || defined(__CYGWIN__)
#  ifdef VORN_CONTAINER_BUILD
#    define VORN_API __declspec(dllexport)
#  else
#    define VORN_API __declspec(dllimport)
#  endif
#  ifdef VORN_BASE_BUILD
#    define VORN_BASE_API __declspec(dllexport)
#  else
#    define VORN_BASE_API __declspec(dllimport)
#  endif
#else
#  define VORN_API __attribute__((visibility("default")))
#  define VORN_BASE_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup types Shared types and export macros
 * The rules of the family stand at the top of vorn_types.h.
 * @{ */

/* Test: non-zero accepts the item (GL: the item word; EL: pointer to the
 * element bytes; SL: the record; GT, DA: the item), 0 passes over it. */
typedef int32_t (*vorn_test_fn)(void *item);
/* Copy (GL, SL): gives the new item word or a pointer to a new record. */
typedef void *(*vorn_copy_fn)(void *item);
/* Release (GL, SL, vorn_lu): receives the address of a word holding the item
 * word or the record's address. */
typedef void (*vorn_release_fn)(void **item_address);
/* Measure (GL, SL): bytes that the item refers to. */
typedef int32_t (*vorn_measure_fn)(void *item);
/* Compare (GT): negative, 0 or positive as a sorts before, with or after b. */
typedef int32_t (*vorn_compare_fn)(void *a, void *b);
/* Print (GT_print_tree). */
typedef void (*vorn_print_fn)(void *item);
/* Apply (vorn_lu_apply). */
typedef void (*vorn_apply_fn)(void *value);
/* Colour callback (RGBLUT_init). */
typedef void (*vorn_colour_fn)(int32_t index, int16_t r, int16_t g, int16_t b);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_TYPES_H */
