// ES: a stack on an EL list whose top is the list's `last`.  It calls the EL
// operations and reads the head directly.

#include "vorn_es.h"

#include "base_binding.hpp"
#include "checked.hpp"

extern "C" {

EL_list *ES_create(uint16_t item_size) { return EL_create(item_size); }
void ES_release(EL_list **handle) {
    if (*handle) VORN_CHK(live(__func__, *handle));
    EL_release(handle);
}
void ES_make_empty(EL_list *stack) {
    VORN_CHK(list(__func__, stack));
    EL_make_empty(stack);
}
int32_t ES_count_items(EL_list *stack) {
    VORN_CHK(list(__func__, stack));
    return EL_count_items(stack);
}
EL_node *ES_push(EL_list *stack, const void *element) {
    VORN_CHK(list(__func__, stack));
    return EL_append_after_last(stack, element);
}
int32_t ES_is_empty(EL_list *stack) {
    VORN_CHK(list(__func__, stack));
    return !stack->first && !stack->last;
}

int32_t ES_inspect_top(EL_list *stack, void *buffer) {
    VORN_CHK(list(__func__, stack));
    if (!stack->last) return 0;
    vorn::copy_bytes(buffer, stack->last->item, stack->item_size);
    return 1;
}

int32_t ES_pop(EL_list *stack, void *buffer) {
    VORN_CHK(list(__func__, stack));
    if (!ES_inspect_top(stack, buffer)) return 0;
    EL_remove_item(stack, stack->last);
    return 1;
}

}  // extern "C"
