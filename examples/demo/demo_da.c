/* DA: growth in whole steps, text that grows, edits, and a filtered walk. */
#include <stdio.h>
#include <string.h>

#include <vorn_container.h>

#include "demo.h"

static int32_t is_even(void *item) { return *(int32_t *)item % 2 == 0; }

static void print_numbers(const char *title, DA_array *a) {
    const int32_t *v = (const int32_t *)DA_data(a);
    int32_t i;
    printf("  %-24s (%d of %d):", title, (int)DA_nitems(a), (int)DA_nalloc(a));
    for (i = 0; i < DA_nitems(a); ++i) printf(" %d", (int)v[i]);
    printf("\n");
}

void demo_da(void) {
    DA_array *text = DA_create(1, 16);
    DA_array *numbers = DA_create(4, 4);
    DA_array *copy;
    DA_iter it;
    void *item;
    int32_t v, batch[3] = {100, 200, 300};

    printf("DA dynamic array\n");
    printf("  new array: capacity %d, block %s, %d bytes held\n", (int)DA_nalloc(numbers),
           DA_data(numbers) ? "present" : "none", (int)DA_check(numbers));

    DA_append(text, "grid", 4);
    DA_append(text, " and ", 5);
    DA_append(text, "guides", 6);
    printf("  text: \"%s\", %d bytes of capacity %d\n", DA_string(text), (int)DA_nitems(text),
           (int)DA_nalloc(text));

    for (v = 1; v <= 5; ++v) DA_append(numbers, &v, 1);
    print_numbers("appended 1..5, step 4", numbers);
    DA_insert(numbers, 2, batch, 3);
    print_numbers("inserted 3 at index 2", numbers);
    DA_delete(numbers, 0, 2);
    print_numbers("deleted 2 at index 0", numbers);
    *(int32_t *)DA_get_item(numbers, 9) = 9;
    print_numbers("read past the end at 9", numbers);
    DA_roll(numbers, 2);
    print_numbers("rolled by 2", numbers);
    DA_reverse(numbers);
    print_numbers("reversed", numbers);

    printf("  %-24s           :", "even items, walked");
    it = DA_tested_items(numbers, is_even);
    while (DA_next(&it, &item)) printf(" %d", (int)*(int32_t *)item);
    printf("\n");

    copy = DA_copy(numbers);
    printf("  copy: capacity %d, equal %d\n", (int)DA_nalloc(copy), (int)DA_equal(copy, numbers));
    DA_put_item(copy, 0, NULL);
    printf("  after zeroing its slot 0: equal %d\n", (int)DA_equal(copy, numbers));

    DA_release(copy);
    DA_release(numbers);
    DA_release(text);
}
