/* DBLL: guide positions kept ascending and unique, searched and thinned. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

static void print_doubles(const char *title, EL_list *list) {
    EL_iter it = DBLL_all_doubles(list);
    double d;
    printf("  %-28s (%d):", title, (int)DBLL_size(list));
    while (DBLL_next_double(&it, &d)) printf(" %g", d);
    printf("\n");
}

void demo_dbll(void) {
    static const double guides[] = {40.0, 10.0, 25.0, 10.1, 70.0, 25.0};
    EL_list *list = DBLL_create_with_two(0.0, 100.0);
    double distance;
    int32_t index;
    size_t i;

    printf("DBLL list of doubles\n");
    for (i = 0; i < sizeof guides / sizeof guides[0]; ++i)
        printf("  add %-5g unique within 0.5: %d\n", guides[i],
               (int)DBLL_add_double_unique(list, guides[i], 0.5));
    print_doubles("guides", list);

    index = DBLL_find_index_of_nearest(list, 27.0, 2.0, &distance);
    printf("  nearest to 27 within 2x2: index %d, distance %g\n", (int)index, distance);

    DBLL_add_double(list, 99.0);
    DBLL_add_double(list, 41.0);
    print_doubles("two more, unsorted", list);
    DBLL_remove_double_occ(list, 5.0);
    print_doubles("sorted, thinned to 5 apart", list);
    DBLL_add_to_all(list, -10.0);
    print_doubles("shifted by -10", list);
    printf("  begin %g, end %g, bytes %d\n", DBLL_begin_value(list), DBLL_end_value(list),
           (int)DBLL_check(list));
    DBLL_release(&list);
}
