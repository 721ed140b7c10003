/* vorn_demo: a host program that uses every family of vorn_container and
 * prints what it did. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

int main(void) {
    demo_gl();
    demo_el();
    demo_sl();
    demo_es();
    demo_gb();
    demo_dbll();
    demo_gt();
    demo_da();
    demo_sa();
    demo_hsh();
    demo_lu();
    demo_io_lut();
    demo_clut();
    demo_gendict();
    demo_rdbdict();
    printf("MM_ blocks still in use: %ld\n", (long)MM_blocks_in_use());
    return MM_blocks_in_use() == 0 ? 0 : 1;
}
