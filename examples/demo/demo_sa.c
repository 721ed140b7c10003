/* SA: a set of selected indices that follows the edits of a list of names. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

static const char *names[] = {"page", "grid", "guide", "note", "markup", "layer"};

/* The sequence is a DA of name pointers; the set holds selected indices. */
static void show(const char *title, DA_array *seq, DA_array *set) {
    const char **items = (const char **)DA_data(seq);
    const int32_t *sel = (const int32_t *)DA_data(set);
    int32_t i;
    printf("  %-20s:", title);
    for (i = 0; i < DA_nitems(seq); ++i)
        printf(SA_check_number(set, i) ? " [%s]" : " %s", items[i]);
    printf("   set:");
    for (i = 0; i < DA_nitems(set); ++i) printf(" %d", (int)sel[i]);
    printf("\n");
}

void demo_sa(void) {
    DA_array *seq = DA_create((int32_t)sizeof(char *), 8);
    DA_array *set = DA_create(4, 4);
    const char *extra = "selection";
    int32_t i;

    printf("SA number sets\n");
    for (i = 0; i < 6; ++i) DA_append(seq, &names[i], 1);
    SA_add_number(set, 4);
    SA_add_number(set, 1);
    SA_add_number(set, 2);
    SA_add_number(set, 1); /* already there: nothing changes */
    show("selected 1, 2, 4", seq, set);

    DA_insert(seq, 2, &extra, 1);
    SA_adapt_for_insert(set, 2);
    show("inserted at 2", seq, set);

    DA_delete(seq, 3, 1);
    SA_adapt_for_remove(set, 3);
    show("removed at 3", seq, set);

    DA_reverse(seq);
    SA_adapt_for_reverse(set, DA_nitems(seq));
    show("reversed", seq, set);

    DA_roll(seq, 4);
    SA_adapt_for_roll(set, 4, DA_nitems(seq));
    show("rolled by 4", seq, set);

    SA_remove_number(set, 0);
    show("deselected 0", seq, set);

    DA_release(set);
    DA_release(seq);
}
