/* HSH: objects keyed by address, growth, shrinking and a walk. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

static void print_shape(const char *title, const HSH_table *t) {
    printf("  %-28s size %4d  count %3d  limits %d..%d  shift %d\n", title, (int)t->size,
           (int)t->count, (int)t->low_limit, (int)t->high_limit, (int)t->shift);
}

void demo_hsh(void) {
    static double objects[200]; /* stand-ins for the host's objects */
    HSH_table *table = HSH_create(0, 3); /* 8-byte objects: skip the low 3 bits */
    HSH_iter it;
    void *key, *value;
    int i, found = 0, walked = 0;

    printf("HSH hash table\n");
    print_shape("new", table);
    for (i = 0; i < 200; ++i) HSH_set_value(table, &objects[i], (void *)(intptr_t)(i + 1));
    print_shape("200 objects", table);
    for (i = 0; i < 200; ++i) found += HSH_get_value(table, &objects[i]) == (void *)(intptr_t)(i + 1);
    printf("  all values found: %s; key 0 stored: %s\n", found == 200 ? "yes" : "no",
           HSH_set_value(table, NULL, (void *)1) ? "yes" : "no");
    for (i = 0; i < 190; ++i) HSH_remove_entry(table, &objects[i]);
    print_shape("190 removed", table);
    printf("  walk:");
    it = HSH_all_entries(table);
    while (HSH_next(&it, &key, &value)) {
        printf(" %d", (int)(intptr_t)value);
        ++walked;
    }
    printf("  (%d entries)\n", walked);
    HSH_release(&table);
    printf("  handle after release: %s\n", table ? "live" : "null");
}
