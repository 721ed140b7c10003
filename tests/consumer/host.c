/* A host program built against an installed vorn_container: it uses a list
 * and the base services' counters, and exits 0 when both behaved. */
#include <stdio.h>
#include <string.h>

#include <vorn_container.h>

int main(void) {
    GL_list *list = GL_create();
    GL_iter it;
    void *item;
    char text[64] = "";

    GL_append_after_last(list, (void *)"installed");
    GL_append_after_last(list, (void *)"copy");
    it = GL_all_items(list);
    while (GL_next_item(&it, &item)) {
        if (text[0]) strcat(text, " ");
        strcat(text, (const char *)item);
    }
    GL_release(&list);
    printf("host: %s, %d pointer bits, %ld blocks in use\n", text, (int)(8 * sizeof(void *)),
           (long)MM_blocks_in_use());
    return strcmp(text, "installed copy") == 0 && list == NULL && MM_blocks_in_use() == 0 ? 0 : 1;
}
