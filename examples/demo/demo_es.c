/* ES: a stack of undo records, pushed and popped by value. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

typedef struct {
    int32_t action;
    double amount;
} undo;

void demo_es(void) {
    EL_list *stack = ES_create((uint16_t)sizeof(undo));
    undo u;
    int32_t i;

    printf("ES element stack\n");
    for (i = 1; i <= 3; ++i) {
        u.action = i;
        u.amount = i * 1.5;
        ES_push(stack, &u);
    }
    ES_inspect_top(stack, &u);
    printf("  pushed %d, top is action %d\n", (int)ES_count_items(stack), (int)u.action);
    printf("  popped:");
    while (ES_pop(stack, &u)) printf(" %d (%.1f)", (int)u.action, u.amount);
    printf("\n  empty: %d, pop on empty: %d\n", (int)ES_is_empty(stack), (int)ES_pop(stack, &u));
    ES_release(&stack);
}
