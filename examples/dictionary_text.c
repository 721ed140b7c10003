/* A dictionary saved to text and read back: a topic dictionary is written
 * in the DICT text form, read into a new dictionary, and both give the same
 * text. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <vorn_container.h>

static GENDICT_value integer(int32_t v) {
    GENDICT_value value;
    value.kind = GENDICT_INT;
    value.data.integer = v;
    return value;
}

static GENDICT_value text(const char *t) {
    GENDICT_value value;
    value.kind = GENDICT_STRING;
    value.data.text = (char *)t; /* copied by the dictionary */
    return value;
}

int main(void) {
    SL_list *settings = RDBDICT_create();
    SL_list *loaded;
    char *saved = NULL, *again = NULL;
    int32_t saved_length = 0, again_length = 0;
    GENDICT_value value;
    int failures = 0;

    RDBDICT_add(settings, "grid", "spacing", integer(12));
    RDBDICT_add(settings, "grid", "colour", text("light gray"));
    RDBDICT_add(settings, "guides", "visible", integer(1));

    RDBDICT_to_buf(settings, &saved, &saved_length); /* a malloc block: ours to free */
    printf("%s", saved);

    loaded = RDBDICT_from_buf(saved);
    if (!loaded) return 1;
    if (!RDBDICT_get(loaded, "grid", "spacing", &value) || value.data.integer != 12) ++failures;
    RDBDICT_to_buf(loaded, &again, &again_length);
    if (again_length != saved_length || strcmp(saved, again) != 0) ++failures;
    printf("read back: %s\n", failures ? "different" : "the same text");

    free(saved);
    free(again);
    RDBDICT_release(&settings);
    RDBDICT_release(&loaded);
    if (MM_blocks_in_use() != 0) ++failures;
    return failures ? 1 : 0;
}
