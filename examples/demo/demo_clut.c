/* CLUT: the process-wide colour table started with a callback, named
 * colours, dynamic indices taken and given back, and the statistics. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

static int heard;

static void on_colour(int32_t index, int16_t r, int16_t g, int16_t b) {
    /* The first writes and the copies into the page colour, as examples. */
    if (heard < 3 || index == GE_OBJ_PAGE)
        printf("  callback %2d: index %2d <- %3d %3d %3d\n", heard + 1, (int)index, r, g, b);
    ++heard;
}

static void show(const char *name, int32_t index) {
    int16_t r, g, b;
    CLUT_get(index, &r, &g, &b);
    printf("  %-18s index %3d = %3d %3d %3d\n", name, (int)index, r, g, b);
}

void demo_clut(void) {
    int32_t a, b, c, i;

    printf("CLUT colour table\n");
    /* The table starts once per process; 256 entries with a callback. */
    RGBLUT_init(256, on_colour);
    printf("  start-up: the callback heard %d writes\n", heard);
    show("GE_OBJ_PAGE", GE_OBJ_PAGE);
    show("GE_LGRAY (system)", GE_LGRAY);
    printf("  pure blue is first found at index %d\n", (int)CLUT_getID(0, 0, 255));

    /* A hard index may still be claimed until the first dynamic one. */
    CLUT_set(40, 10, 20, 30);
    a = CLUT_new_index();
    b = CLUT_new_index();
    c = CLUT_new_index();
    CLUT_set_RGB(a, 1.0f, 0.5f, 0.25f);
    CLUT_copy(b, GE_MAG);
    printf("  dynamic indices: %d %d %d\n", (int)a, (int)b, (int)c);
    show("dynamic a", a);
    show("dynamic b", b); /* a copy of GE_MAG */
    CLUT_release_index(b);
    printf("  after releasing %d the next new index is %d\n", (int)b, (int)CLUT_new_index());

    /* A full table hands out GE_GREEN, which can be given back harmlessly. */
    for (i = 0; i < 300 && (a = CLUT_new_index()) != GE_GREEN; ++i) {
    }
    printf("  table full: new index gives GE_GREEN (%d)\n", (int)a);
    CLUT_release_index(a);
    CLUT_statistics();
}
