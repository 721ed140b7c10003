/* EL: points held by value, a ring opened at a position, a list cut in two. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

typedef struct {
    int16_t x, y;
} point;

static void print_points(const char *title, EL_list *list) {
    EL_iter it = EL_all_items(list);
    point p;
    printf("  %-24s (%d%s):", title, (int)EL_count_items(list), list->closed ? ", ring" : "");
    while (EL_next_item_copy(&it, &p)) printf(" (%d,%d)", p.x, p.y);
    printf("\n");
}

void demo_el(void) {
    EL_list *outline = EL_create((uint16_t)sizeof(point));
    EL_list *tail;
    EL_node *corner;
    point p;
    int16_t i;

    printf("EL element list\n");
    for (i = 0; i < 4; ++i) {
        p.x = (int16_t)(i * 10);
        p.y = (int16_t)(i % 2 ? 5 : 0);
        EL_append_after_last(outline, &p);
    }
    p.x = 15;
    p.y = 9;
    EL_insert_after_index(outline, 1, &p);
    print_points("appended, inserted at 1", outline);

    EL_set_closed(outline);
    corner = EL_get_pos_at_index(outline, 2);
    EL_roll(outline, corner);
    print_points("closed, rolled to index 2", outline);
    printf("  the old first, 3 steps on, is now at index %d\n",
           (int)EL_get_index(outline, EL_advance(outline, corner, 3)));

    EL_make_open_at_position(outline, EL_get_pos_at_index(outline, 1));
    print_points("opened at index 1", outline);

    tail = EL_remove_and_get_end_part(outline, EL_get_pos_at_index(outline, 3));
    print_points("cut at 3: front", outline);
    print_points("cut at 3: end part", tail);

    EL_reverse(tail);
    EL_append_list(outline, &tail);
    print_points("end reversed, rejoined", outline);
    EL_remove_items_inbetween(outline, EL_get_pos_at_index(outline, 1),
                              EL_get_pos_at_index(outline, 3));
    print_points("removed 1 to 3", outline);

    EL_release(&outline);
}
