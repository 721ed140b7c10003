/* GL: a list of words, walked, changed while walked, spliced. */
#include <stdio.h>
#include <string.h>

#include <vorn_container.h>

#include "demo.h"

static int32_t is_long_name(void *item) { return strlen((const char *)item) > 4; }

static void print_list(const char *title, GL_list *list) {
    GL_iter it = GL_all_items(list);
    void *item;
    printf("  %-22s (%d):", title, (int)GL_count_items(list));
    while (GL_next_item(&it, &item)) printf(" %s", (const char *)item);
    printf("\n");
}

void demo_gl(void) {
    static const char *names[] = {"page", "grid", "guide", "note", "markup", "selection"};
    GL_list *list = GL_create();
    GL_list *more = GL_create();
    GL_iter it;
    GL_node *pos;
    void *item;
    size_t i;

    printf("GL pointer list\n");
    for (i = 0; i < 4; ++i) GL_append_after_last(list, (void *)names[i]);
    print_list("appended", list);

    GL_find_item(list, (void *)names[1], &pos);
    GL_insert_after(list, pos, (void *)"layer");
    GL_move_before_first(list, list->last);
    print_list("insert, move to front", list);

    printf("  %-22s     :", "names longer than 4");
    it = GL_tested_items(list, is_long_name);
    while (GL_next_item(&it, &item)) printf(" %s", (const char *)item);
    printf("\n");

    /* The walk is a step ahead: removing the current item is safe. */
    it = GL_all_items(list);
    while (GL_next_position(&it, &pos))
        if (strlen((const char *)pos->item) == 4) GL_remove_item(list, pos);
    print_list("without 4-letter names", list);

    GL_append_after_last(more, (void *)names[4]);
    GL_append_after_last(more, (void *)names[5]);
    GL_append_list(list, &more);
    print_list("spliced", list);
    printf("  second handle after the splice: %s\n", more ? "live" : "null");

    GL_release(&list);
}
