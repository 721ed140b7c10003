/* RDBDICT: values by topic and key, written to a block in the DICT form,
 * read back from it and printed in the RDB form. */
#include <stdio.h>
#include <stdlib.h>

#include <vorn_container.h>

#include "demo.h"

static GENDICT_value text_value(const char *t) {
    GENDICT_value v;
    v.kind = GENDICT_STRING;
    v.data.text = (char *)t;
    return v;
}

static GENDICT_value number_value(double d) {
    GENDICT_value v;
    v.kind = GENDICT_DOUBLE;
    v.data.real = d;
    return v;
}

void demo_rdbdict(void) {
    SL_list *settings = RDBDICT_create();
    SL_list *back;
    GENDICT_value v;
    char *text = NULL;
    int32_t length = 0;

    printf("RDBDICT topic dictionary\n");
    RDBDICT_add(settings, "grid", "colour", text_value("light grey"));
    RDBDICT_add(settings, "grid", "spacing", number_value(12.5));
    RDBDICT_add(settings, "guides", "colour", text_value("cyan"));
    RDBDICT_add(settings, "guides", "snap", number_value(4));
    RDBDICT_add(settings, "grid", "spacing", number_value(10)); /* replaced in place */

    RDBDICT_to_buf(settings, &text, &length);
    printf("  DICT form, %d bytes with the terminating zero:\n%s", (int)length, text);

    back = RDBDICT_from_buf(text);
    free(text); /* the block is the caller's, from malloc */
    if (!back) {
        printf("  the text did not read back\n");
    } else {
        printf("  read back, RDB form:\n");
        RDBDICT_print(back);
        if (RDBDICT_get(back, "guides", "colour", &v))
            printf("  guides/colour = %s\n", v.data.text);
        RDBDICT_release(&back);
    }
    printf("  an unterminated text reads as %s\n",
           RDBDICT_from_buf("DICT{ [grid] = DICT{ [colour] = \"open") ? "a dictionary" : "0");
    RDBDICT_release(&settings);
}
