/* gl_walk: keep a list of names, walk it, drop items during the walk, find
 * one, walk a part of it backwards and splice a second list in.
 *
 * The job: a host keeps the layers of a page in drawing order and edits the
 * list while it walks it.  A GL list holds pointer-sized item words (here the
 * names) and never owns what they point to.  Exits 0 when every step gave
 * what the comments say and every block was released. */
#include <stdio.h>
#include <string.h>

#include <vorn_container.h>

static int failures = 0;

static void expect(int ok, const char *what) {
    if (!ok) {
        fprintf(stderr, "gl_walk: %s did not hold\n", what);
        ++failures;
    }
}

/* Prints the list and gives it as one text, "a b c", for the checks. */
static const char *show(const char *title, GL_list *list) {
    static char text[256];
    GL_iter it = GL_all_items(list);
    void *item;
    text[0] = '\0';
    while (GL_next_item(&it, &item)) {
        if (text[0]) strcat(text, " ");
        strcat(text, (const char *)item);
    }
    printf("%-26s %d: %s\n", title, (int)GL_count_items(list), text);
    return text;
}

/* A test for the tested walk: names of hidden layers begin with '.'. */
static int32_t is_hidden(void *item) { return ((const char *)item)[0] == '.'; }

int main(void) {
    static const char *layers[] = {"page", ".grid", "guides", ".notes", "markup", "selection"};
    GL_list *list = GL_create();
    GL_list *overlay = GL_create();
    GL_node *pos = NULL;
    GL_iter it;
    void *item;
    size_t i;

    for (i = 0; i < sizeof layers / sizeof layers[0]; ++i)
        GL_append_after_last(list, (void *)layers[i]);
    expect(!strcmp(show("layers in drawing order", list),
                   "page .grid guides .notes markup selection"),
           "appending keeps the order");

    /* The walk is one step ahead of the item it delivered, so the current
     * item may be removed without ending the walk. */
    it = GL_tested_items(list, is_hidden);
    while (GL_next_position(&it, &pos)) GL_remove_item(list, pos);
    expect(!strcmp(show("hidden layers dropped", list), "page guides markup selection"),
           "removal during a tested walk");

    /* A position stays valid while its item is on the list. */
    expect(GL_find_item(list, (void *)layers[2], &pos) == 1, "finding guides");
    GL_insert_after(list, pos, (void *)"rulers");
    show("rulers after guides", list);

    /* A part of the list, backwards: from markup back to guides. */
    {
        GL_node *from = NULL;
        char text[128] = "";
        GL_find_item(list, (void *)layers[4], &from);
        it = GL_all_items_inbetween(list, from, pos, 0);
        while (GL_next_item(&it, &item)) {
            if (text[0]) strcat(text, " ");
            strcat(text, (const char *)item);
        }
        printf("%-26s %s\n", "markup back to guides", text);
        expect(!strcmp(text, "markup rulers guides"), "a backward walk between positions");
    }

    /* Splicing moves the nodes: no allocation, and the second head is
     * released and its handle cleared. */
    GL_append_after_last(overlay, (void *)"cursor");
    GL_append_after_last(overlay, (void *)"tooltip");
    GL_append_list(list, &overlay);
    expect(overlay == NULL, "the spliced list's handle is cleared");
    expect(!strcmp(show("overlay spliced behind", list),
                   "page guides rulers markup selection cursor tooltip"),
           "splicing keeps both orders");

    GL_release(&list);
    expect(list == NULL, "release clears the handle");
    printf("%-26s %ld\n", "blocks still in use", (long)MM_blocks_in_use());
    expect(MM_blocks_in_use() == 0, "every block is released");
    return failures ? 1 : 0;
}
