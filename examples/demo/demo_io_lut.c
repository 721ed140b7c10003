/* io_lut: identifiers for writing objects out and pointers for reading them
 * back. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

void demo_io_lut(void) {
    static const char *objects[] = {"page", "grid", "guide", "note"};
    io_lut_table *out = io_lut_create_write();
    io_lut_table *in = io_lut_create();
    io_lut_iter it;
    void *p;
    int i;

    printf("io_lut pointer tables\n");
    printf("  writing:");
    for (i = 0; i < 4; ++i) printf(" %s=%d", objects[i], (int)io_lut_add(out, (void *)objects[i]));
    io_lut_set(out, (void *)"markup", 10);
    printf("; markup set to 10, next add gives %d\n", (int)io_lut_add(out, (void *)"layer"));
    printf("  id of grid %d, of null %d\n", (int)io_lut_get_id(out, (void *)objects[1]),
           (int)io_lut_look_id(out, NULL));

    /* Reading back: the identifiers come in the order written. */
    for (i = 0; i < 4; ++i) io_lut_set(in, (void *)objects[i], io_lut_look_id(out, (void *)objects[i]));
    io_lut_remove(in, (void *)objects[2]);
    printf("  read table, guide removed:");
    it = io_lut_all_items(in);
    while ((p = io_lut_next_item(&it)) != NULL) printf(" %s", (const char *)p);
    printf("; id 3 looks up %s\n", io_lut_look_ptr(in, 3) ? "a pointer" : "nothing");

    io_lut_release(&out);
    io_lut_release(&in);
}
