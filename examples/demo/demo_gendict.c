/* GENDICT: typed values under text keys, nested, replaced in place, copied
 * deep, and written in the DICT form. */
#include <stdio.h>

#include <vorn_container.h>

#include "demo.h"

static GENDICT_value int_value(int32_t i) {
    GENDICT_value v;
    v.kind = GENDICT_INT;
    v.data.integer = i;
    return v;
}

void demo_gendict(void) {
    SL_list *doc = GENDICT_create();
    SL_list *page = GENDICT_create();
    SL_list *copy;
    GENDICT_value v;
    int32_t rounded = 0;

    printf("GENDICT typed dictionary\n");
    GENDICT_add(page, "width", int_value(210));
    GENDICT_add(page, "height", int_value(297));
    GENDICT_add(doc, "title", (GENDICT_value){GENDICT_STRING, {.text = "Floor plan"}});
    GENDICT_add(doc, "scale", (GENDICT_value){GENDICT_DOUBLE, {.real = 2.5}});
    GENDICT_add(doc, "page", (GENDICT_value){GENDICT_DICT, {.dict = page}}); /* owned now */

    copy = GENDICT_copy(doc);
    GENDICT_add(page, "width", int_value(297)); /* replaced in place, the copy keeps 210 */
    GENDICT_get(doc, "scale", &v);
    GENDICT_get_int_val(v, &rounded);
    printf("  scale %.1f rounds to %d; the copy's page is independent:\n", v.data.real,
           (int)rounded);
    GENDICT_print(copy);
    printf("  the original after the change:\n");
    GENDICT_print(doc);

    GENDICT_release(&copy);
    GENDICT_release(&doc);
    printf("  released, handle %s\n", doc ? "live" : "null");
}
