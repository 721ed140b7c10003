/* GB: a list of fixed-size items in one block, reached by index. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

static void print_list(const char *title, GB_list *list) {
    const char *items = (const char *)list->data;
    int32_t i;
    printf("  %-24s count %2d, capacity %2d%s:", title, (int)list->count, (int)list->capacity,
           list->closed ? ", ring" : "");
    for (i = 0; i < list->count; ++i) printf(" %c", items[i]);
    printf("\n");
}

void demo_gb(void) {
    GB_list list, tail;
    char c;

    printf("GB block list\n");
    GB_init(&list, 1, 1); /* the record is ours; GB_init gives it a block */
    for (c = 'a'; c <= 'e'; ++c) GB_append_after_last(&list, &c);
    print_list("appended a..e", &list); /* grew by 10 items, not by a factor */

    GB_set_closed(&list);
    printf("  advance 4 by +3 on the ring: %d\n", (int)GB_advance(&list, 4, 3));
    GB_roll(&list, 2);
    print_list("rolled by 2", &list);
    GB_make_open_at_position(&list, 3);
    print_list("opened at 3", &list);

    GB_remove_and_get_end_part(&tail, &list, 2);
    print_list("cut at 2, first part", &list);
    print_list("cut at 2, end part", &tail);
    GB_reverse(&tail);
    GB_append_block(&list, &tail); /* consumes the block of tail */
    print_list("end part reversed, added", &list);
    printf("  tail after the append: capacity %d\n", (int)tail.capacity);

    GB_release(&list);
}
