/*
 * fixture.c - builds every container in the states a debugger must show
 * right, then stops in fixture_ready() for gdb to print them.  Item words
 * are small numbers so that the printed text holds no address.  The gdb
 * scripts damage containers themselves where they test corruption.
 */
#include <stdint.h>
#include <vorn_container.h>

#define W(n) ((void *)(intptr_t)(n))

struct point {
    struct point *prev, *next;
    int32_t x, y;
};

GL_list *gl_empty, *gl_five, *gl_long;
EL_list *el_bytes, *el_ring, *el_empty_ring, *dbll;
SL_list *sl_points, *sl_ring;
GB_list gb_ints, gb_moved;
DA_array *da_ints, *da_empty;
GT_tree *gt_dupl, *gt_empty;
GT_iter *gt_walk, *gt_fresh, *gt_orphan;
HSH_table *hsh;
vorn_lu *lu, *lu_empty;
io_lut_table *lut_read, *lut_write;
SL_list *dict, *rdb;
GENDICT_value value_int, value_text, value_dict;
GENDICT_item *entry;
CLUT_colour colour;
struct point points[4], ring_points[3];
static char objects[4][32]; /* io_lut pointers: printed masked */

/* The item words of the small containers, in insertion order. */
static const int32_t words[] = {5, 3, 9, 3, 7};
enum { NWORDS = sizeof words / sizeof words[0] };

static int32_t compare_words(void *a, void *b)
{
    return (int32_t)((intptr_t)a - (intptr_t)b);
}

void fixture_ready(void) {}

static void build_lists(void)
{
    gl_empty = GL_create();
    gl_five = GL_create();
    el_bytes = EL_create(4);
    el_ring = EL_create(2);
    el_empty_ring = EL_create(4);
    dbll = DBLL_create();
    sl_points = SL_create();
    sl_ring = SL_create();
    GB_init(&gb_ints, 4, 2);
    GB_init(&gb_moved, 4, 1);
    GB_append_after_last(&gb_moved, &words[0]);
    da_ints = DA_create(4, 8);
    da_empty = DA_create(16, 4);
    for (int i = 0; i < NWORDS; i++) {
        GL_append_after_last(gl_five, W(words[i]));
        EL_append_after_last(el_bytes, &words[i]);
        DBLL_add_double(dbll, words[i] / 4.0);
        GB_append_after_last(&gb_ints, &words[i]);
        DA_append(da_ints, &words[i], 1);
        if (i < 4) {
            points[i].x = words[i];
            points[i].y = -words[i];
            SL_append_after_last(sl_points, &points[i]);
        }
        if (i < 3) {
            int16_t half = (int16_t)(words[i] * 257);
            EL_append_after_last(el_ring, &half);
            ring_points[i].x = i;
            SL_append_after_last(sl_ring, &ring_points[i]);
        }
    }
    gl_long = GL_create();
    for (int i = 0; i < 1000; i++) GL_append_after_last(gl_long, W(i));
    GB_append_block(&gb_ints, &gb_moved); /* gb_moved: no block, count kept */
    EL_set_closed(el_ring);
    EL_set_closed(el_empty_ring);
    SL_set_closed(sl_ring);
}

static void build_tree(void)
{
    void *item;
    gt_dupl = GT_create_with_dupl_allowed(compare_words);
    gt_empty = GT_create_with_dupl_not_allowed(compare_words);
    for (int i = 0; i < NWORDS; i++) GT_insert_item(gt_dupl, W(words[i]));
    gt_walk = GT_all_items(gt_dupl);
    GT_next_item(gt_walk, &item);
    GT_next_item(gt_walk, &item);
    gt_fresh = GT_all_items(gt_dupl);
    GT_tree *doomed = GT_create_with_dupl_allowed(compare_words);
    GT_insert_item(doomed, W(1));
    gt_orphan = GT_all_items(doomed);
    GT_release(&doomed);
}

static void build_lookups(void)
{
    hsh = HSH_create(8, 0);
    lu = vorn_lu_create();
    lu_empty = vorn_lu_create();
    lut_read = io_lut_create();
    lut_write = io_lut_create_write();
    for (int i = 0; i < NWORDS; i++) {
        HSH_set_value(hsh, W(words[i]), W(words[i] * 10));
        vorn_lu_add(lu, W(words[i] + 100), W(words[i]));
    }
    for (int i = 0; i < 4; i++) {
        io_lut_add(lut_read, objects[i]);
        io_lut_add(lut_write, objects[i]);
    }
    io_lut_remove(lut_read, objects[1]);
}

/* The dictionaries come from their text form, entries in order. */
static void build_dictionaries(void)
{
    dict = GENDICT_from_buf("DICT{[count]=3 [ratio]=0.5 [name]=\"outer\" "
                            "[nested]=DICT{[depth]=2 [label]=\"inner\"} [empty]=DICT{}}");
    rdb = RDBDICT_from_buf("DICT{[page]=DICT{[width]=210 [unit]=\"mm\"} [grid]=DICT{[step]=2.5 }}");
    value_int = (GENDICT_value){.kind = GENDICT_INT, .data.integer = -4};
    value_text = (GENDICT_value){.kind = GENDICT_STRING, .data.text = "text"};
    value_dict = (GENDICT_value){.kind = GENDICT_DICT, .data.dict = dict};
    entry = (GENDICT_item *)dict->last;
}

int main(void)
{
    build_lists();
    build_tree();
    build_lookups();
    build_dictionaries();
    RGBLUT_init(0, NULL);
    CLUT_set(CLUT_new_index(), 1, 2, 3);
    CLUT_get(GE_SELECTION_BLUE, &colour.r, &colour.g, &colour.b);
    fixture_ready();
    return 0;
}
