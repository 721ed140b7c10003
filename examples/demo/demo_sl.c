/* SL: the caller's own records chained without nodes, closed into a ring,
 * rolled, walked with a test, and released through a callback. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

/* A record that can stand on an SL list: the two links come first. */
typedef struct layer {
    struct layer *prev;
    struct layer *next;
    const char *name;
    int32_t visible;
} layer;

static int32_t is_visible(void *record) { return ((layer *)record)->visible; }

static void print_ring(const char *title, SL_list *list) {
    SL_iter it = SL_all_items(list);
    void *record;
    printf("  %-24s (%d):", title, (int)SL_count_items(list));
    while (SL_next_item(&it, &record)) printf(" %s", ((layer *)record)->name);
    printf("\n");
}

static void drop(void **record_address) { *record_address = NULL; } /* records are on the stack */

void demo_sl(void) {
    layer layers[5] = {{NULL, NULL, "page", 1},
                       {NULL, NULL, "grid", 0},
                       {NULL, NULL, "guides", 1},
                       {NULL, NULL, "notes", 0},
                       {NULL, NULL, "selection", 1}};
    SL_list *list = SL_create();
    SL_iter it;
    void *record;
    int i;

    printf("SL intrusive list\n");
    for (i = 0; i < 4; ++i) SL_append_after_last(list, &layers[i]);
    SL_insert_before_index(list, 2, &layers[4]);
    print_ring("records, no nodes", list);

    SL_set_closed(list);
    SL_roll(list, &layers[3]);
    print_ring("ring rolled to notes", list);
    printf("  two steps back from page: %s\n",
           ((layer *)SL_advance(list, &layers[0], -2))->name);

    printf("  %-24s     :", "visible, reversed");
    it = SL_tested_items_reversed(list, is_visible);
    while (SL_next_item(&it, &record)) printf(" %s", ((layer *)record)->name);
    printf("\n");

    SL_remove_item(list, &layers[1]);
    printf("  grid removed, links now %s\n", layers[1].prev || layers[1].next ? "set" : "null");
    SL_total_release(&list, drop);
    printf("  released, handle %s\n", list ? "live" : "null");
}
