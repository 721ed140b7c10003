/* GT: an ordered tree walked by an iterator while items are removed and
 * inserted under it, then printed lying on its side. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

typedef struct {
    int key;
    const char *name;
} entry;

static int32_t by_key(void *a, void *b) { return ((entry *)a)->key - ((entry *)b)->key; }

static void print_entry(void *item) { Tprintf("%d:%s", ((entry *)item)->key, ((entry *)item)->name); }

static void print_chain(const char *title, GT_tree *tree) {
    GT_iter *it = GT_all_items(tree);
    void *item;
    printf("  %-26s (%d):", title, (int)GT_count_items(tree));
    while (GT_next_item(it, &item)) printf(" %d:%s", ((entry *)item)->key, ((entry *)item)->name);
    printf("\n");
}

void demo_gt(void) {
    static entry items[] = {{50, "page"}, {20, "grid"},  {70, "guide"}, {10, "note"},
                            {30, "mark"}, {60, "layer"}, {80, "sel"},   {30, "mark2"}};
    static entry late[] = {{35, "late"}, {5, "early"}, {95, "tail"}};
    GT_tree *tree = GT_create_with_dupl_allowed(by_key);
    GT_iter *it;
    GT_node *pos;
    void *item;
    size_t i;

    printf("GT ordered tree\n");
    for (i = 0; i < sizeof items / sizeof items[0]; ++i) GT_insert_item(tree, &items[i]);
    print_chain("inserted (30 twice, FIFO)", tree);

    /* The walk holds its next node ahead: the node just delivered may go,
     * and a node inserted directly behind it is delivered next. */
    printf("  walk, changing the tree  :");
    it = GT_all_items(tree);
    while (GT_next_position(it, &pos)) {
        entry *e = (entry *)pos->item;
        printf(" %d:%s", e->key, e->name);
        if (e->key == 30 && e == &items[4]) {
            GT_insert_item(tree, &late[0]); /* 35 lies ahead: seen */
            GT_insert_item(tree, &late[1]); /* 5 lies behind: not seen */
        }
        if (e->key % 20 == 10) GT_remove_item(tree, pos); /* 10, 30, 50, 70 go */
        if (e->key == 80) GT_insert_item(tree, &late[2]); /* 95 behind the last: seen next */
    }
    printf("\n");
    print_chain("after the walk", tree);

    GT_search_item(tree, &items[1], &pos);
    printf("  search key 20            : %s\n", ((entry *)pos->item)->name);
    GT_remove_first_item(tree);
    GT_find_and_remove_item(tree, &late[2]);
    print_chain("first and 95 removed", tree);

    printf("  printout (root at the margin):\n");
    GT_print_tree(tree, print_entry);

    it = GT_all_items(tree);
    GT_next_item(it, &item);
    printf("  leak report with one open walk:\n");
    GT_check();
    GT_end_iterator(it);
    GT_release(&tree);
    printf("  released, handle %s\n", tree ? "live" : "null");
    GT_check();
}
