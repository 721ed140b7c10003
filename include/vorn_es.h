/*
 * vorn_es.h - ES, the stack of fixed-size elements.
 *
 * A stack is an EL_list (vorn_el.h): its top is the list's `last`, its
 * bottom `first`.  Every EL walk and operation works on it, and
 * EL_all_items_reversed goes from top to bottom.  Elements are byte copies:
 * a pushed element is copied in, and inspect and pop copy item_size bytes
 * into the caller's buffer, which must hold that many.  Nothing here raises;
 * an empty stack answers 0.
 */
#ifndef VORN_ES_H
#define VORN_ES_H

#include "vorn_el.h"

#ifdef __cplusplus
extern "C" {
#endif

/** \defgroup family_es ES: element stack
 * The rules of the family stand at the top of vorn_es.h.
 * @{ */

/* A new empty stack of elements of `item_size` bytes (EL_create). */
VORN_API EL_list *ES_create(uint16_t item_size);
/* Frees every element and the stack and sets *handle to null (EL_release). */
VORN_API void ES_release(EL_list **handle);
/* Frees every element; the stack stays usable (EL_make_empty). */
VORN_API void ES_make_empty(EL_list *stack);
/* The number of elements, without a walk. */
VORN_API int32_t ES_count_items(EL_list *stack);
/* Copies the element onto a new top (EL_append_after_last); gives its
 * position.  Constant time, one allocation. */
VORN_API EL_node *ES_push(EL_list *stack, const void *element);
/* 1 when first and last are both null, else 0. */
VORN_API int32_t ES_is_empty(EL_list *stack);
/* Copies the top element into `buffer` and gives 1; on an empty stack gives
 * 0 and leaves the buffer alone. */
VORN_API int32_t ES_inspect_top(EL_list *stack, void *buffer);
/* As ES_inspect_top, then removes the top (EL_remove_item). */
VORN_API int32_t ES_pop(EL_list *stack, void *buffer);

/** @} */

#ifdef __cplusplus
}
#endif

#endif /* VORN_ES_H */
