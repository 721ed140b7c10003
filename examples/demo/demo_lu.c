/* vorn_lu: the entry added last waits in its slot. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

static void print_value(void *value) { printf(" %s", (const char *)value); }

void demo_lu(void) {
    static const char *names[] = {"page", "grid", "guide"};
    static int keys[3];
    vorn_lu *lu = vorn_lu_create();
    int i;

    printf("vorn_lu lookup\n");
    for (i = 0; i < 3; ++i) {
        vorn_lu_add(lu, &keys[i], (void *)names[i]);
        printf("  added %-6s slot holds %-6s table holds %d\n", names[i],
               (const char *)lu->last_value, (int)lu->table->count);
    }
    vorn_lu_add(lu, &keys[0], (void *)"sheet"); /* the table keeps "page" for now */
    printf("  first key gives %s (slot), table still has %s\n", (const char *)vorn_lu_get(lu, &keys[0]),
           (const char *)HSH_get_value(lu->table, &keys[0]));
    printf("  key of \"grid\" is key number %d\n", (int)((int *)vorn_lu_find(lu, (void *)names[1]) - keys));
    printf("  all values:");
    vorn_lu_apply(lu, print_value);
    printf("\n");
    vorn_lu_remove(lu, &keys[0]); /* clears the slot alone */
    printf("  after one remove the first key gives %s\n", (const char *)vorn_lu_get(lu, &keys[0]));
    vorn_lu_release(&lu, NULL);
}
