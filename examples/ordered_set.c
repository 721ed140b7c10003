/* An ordered set walked while it changes: the tree's iterators are
 * registered with their tree and corrected on every insertion and removal,
 * so a walk may remove the item it stands on and insert new ones. */
#include <stdint.h>
#include <stdio.h>

#include <vorn_container.h>

static int32_t compare_numbers(void *a, void *b) {
    intptr_t x = (intptr_t)a, y = (intptr_t)b;
    return x < y ? -1 : x > y;
}

int main(void) {
    static const intptr_t start[] = {50, 20, 80, 10, 30, 70, 90};
    GT_tree *set = GT_create_with_dupl_not_allowed(compare_numbers);
    GT_iter *it;
    GT_node *pos;
    void *item;
    size_t i;
    int failures = 0;
    intptr_t expect = 0, sum = 0;

    for (i = 0; i < sizeof start / sizeof start[0]; ++i) GT_insert_item(set, (void *)start[i]);

    /* Walk in order; drop every multiple of 20 as it is met and insert the
     * number + 5 in its place.  The iterator stays valid through both; an
     * item inserted directly behind the one in hand is not delivered by
     * this walk, so 25 and 85 are not met. */
    it = GT_all_items(set);
    printf("walk:");
    while (GT_next_position(it, &pos)) {
        GT_current_item(it, &item);
        printf(" %ld", (long)(intptr_t)item);
        if ((intptr_t)item % 20 == 0) {
            GT_remove_item(set, pos);
            GT_insert_item(set, (void *)((intptr_t)item + 5));
        }
    }
    printf("\n");

    /* What is left, in order: 10 25 30 50 70 85 90 */
    it = GT_all_items(set);
    printf("after:");
    while (GT_next_item(it, &item)) {
        if ((intptr_t)item < expect) ++failures;
        expect = (intptr_t)item;
        sum += expect;
        printf(" %ld", (long)expect);
    }
    printf("\n");
    if (GT_count_items(set) != 7 || sum != 10 + 25 + 30 + 50 + 70 + 85 + 90) ++failures;

    GT_release(&set);
    if (MM_blocks_in_use() != 0) ++failures;
    return failures ? 1 : 0;
}
