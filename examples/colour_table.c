/* The colour table's start-up: the table is made once per process with a
 * callback that hears every colour written, then a host takes dynamic
 * indices for its own colours and gives them back. */
#include <stdio.h>

#include <vorn_container.h>

static int g_heard;

static void on_colour(int32_t index, int16_t r, int16_t g, int16_t b) {
    (void)index, (void)r, (void)g, (void)b;
    ++g_heard;
}

int main(void) {
    int16_t r, g, b;
    int32_t mine;
    int failures = 0;

    RGBLUT_init(256, on_colour);
    printf("start-up wrote %d colours\n", g_heard);

    CLUT_get(GE_OBJ_PAGE, &r, &g, &b);
    printf("page colour (index %d): %d %d %d\n", (int)GE_OBJ_PAGE, r, g, b);

    mine = CLUT_new_index();
    CLUT_set(mine, 255, 128, 0);
    CLUT_get(mine, &r, &g, &b);
    printf("dynamic index %d: %d %d %d\n", (int)mine, r, g, b);
    if (r != 255 || g != 128 || b != 0) ++failures;
    if (CLUT_getID(255, 128, 0) != mine) ++failures;
    CLUT_release_index(mine);

    CLUT_statistics();
    return failures ? 1 : 0;
}
