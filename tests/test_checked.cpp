// The checked build: every check of vorn_checked.h catches its misuse or its
// corruption with one line through Tprintf and its own raise, and the
// containers stay usable (and releasable) after a misuse was refused.
// Built only when the library is checked; the rest of the suite runs against
// the checked library unchanged and must not trip any check.
#if defined(VORN_CHECKED)

#include "support.hpp"
#include "vorn_checked.h"

namespace {

using vorn_test::Capture;
using vorn_test::catch_raise;

int by_value(void *a, void *b) { return *static_cast<int *>(a) - *static_cast<int *>(b); }

struct Record {
    Record *prev, *next;
    int value;
};

// The containers every case starts from; all are released at the end of
// the case, so a case that corrupts one mends it in `mend`.
struct Scene {
    GL_list *gl = GL_create(), *other = GL_create();
    GL_node *g[3];
    EL_list *el = EL_create(4);
    EL_node *e[2];
    SL_list *sl = SL_create(), *sl2 = SL_create();
    Record rec[2] = {};
    int values[7] = {1, 2, 3, 4, 5, 6, 7};
    GT_tree *gt = GT_create_with_dupl_allowed(by_value);
    GT_node *t[7];
    DA_array *da = DA_create(4, 4);
    HSH_table *hsh = HSH_create(8, 0);
    GB_list gb, gb8;
    SL_list *dict = GENDICT_create();

    Scene() {
        GB_init(&gb, 4, 2), GB_init(&gb8, 8, 1);
        GB_append_after_last(&gb, values);
        for (int i = 0; i < 3; ++i) g[i] = GL_append_after_last(gl, &values[i]);
        GL_append_after_last(other, &values[3]);
        for (int i = 0; i < 2; ++i) e[i] = EL_append_after_last(el, &values[i]);
        SL_append_after_last(sl, &rec[0]);
        for (int i = 0; i < 7; ++i) GT_insert_item(gt, &values[i]);
        GT_iter *walk = GT_all_items(gt);
        for (int i = 0; i < 7; ++i) GT_next_position(walk, &t[i]);
        GT_end_iterator(walk);
        DA_append(da, values, 3);
        HSH_set_value(hsh, reinterpret_cast<void *>(1), values);  // home 1, slot 1
        HSH_set_value(hsh, reinterpret_cast<void *>(9), values);  // home 1, slot 2
    }
    ~Scene() {
        GL_release(&gl), GL_release(&other), EL_release(&el);
        SL_remove_item(sl, &rec[0]);
        SL_release(&sl), SL_release(&sl2), GT_release(&gt), DA_release(da), HSH_release(&hsh);
        GB_release(&gb), GB_release(&gb8), GENDICT_release(&dict);
    }
};

struct Case {
    const char *check;  // the name in VORN_RAISES_CHECKED
    const char *op;     // the operation the line names
    const char *what;   // a part of what the line says
    std::function<void(Scene &)> act;
    std::function<void(Scene &)> mend = [](Scene &) {};
};

// Line and code of each check, by name, from the header's table.
const std::map<std::string, std::pair<int32_t, int32_t>> &identities() {
    static const std::map<std::string, std::pair<int32_t, int32_t>> rows = {
#define VORN_CHK_ROW(name, file, line, code, ops, cond) {#name, {line, code}},
        VORN_RAISES_CHECKED(VORN_CHK_ROW)
#undef VORN_CHK_ROW
    };
    return rows;
}

void *key(uintptr_t k) { return reinterpret_cast<void *>(k); }

const std::vector<Case> &cases() {
    static const std::vector<Case> table = {
        // caller's misuse
        {"CHK_HANDLE_NOT_LIVE", "GL_count_items", "is not a live GL list",
         [](Scene &) { GL_list fake{}; GL_count_items(&fake); }},
        {"CHK_HANDLE_NOT_LIVE", "DA_nitems", "is not a live DA array",
         [](Scene &s) { DA_nitems(reinterpret_cast<DA_array *>(s.hsh)); }},
        {"CHK_HANDLE_RELEASED", "GL_release", "GL list 0x",
         [](Scene &) { GL_list *l = GL_create(), *copy = l; GL_release(&l); GL_release(&copy); }},
        {"CHK_HANDLE_RELEASED", "HSH_get_value", "HSH table 0x",
         [](Scene &) { HSH_table *h = HSH_create(8, 0), *copy = h; HSH_release(&h); HSH_get_value(copy, key(1)); }},
        {"CHK_HANDLE_RELEASED", "GT_insert_item", "GT tree 0x",
         [](Scene &s) { GT_tree *t = GT_create_with_dupl_allowed(by_value), *copy = t; GT_release(&t); GT_insert_item(copy, s.values); }},
        {"CHK_HANDLE_RELEASED", "io_lut_look_id", "io_lut table 0x",
         [](Scene &) { io_lut_table *t = io_lut_create_write(), *copy = t; io_lut_release(&t); io_lut_look_id(copy, key(1)); }},
        {"CHK_POSITION_FOREIGN", "GL_remove_item", "is not in list",
         [](Scene &s) { GL_remove_item(s.gl, s.other->first); }},
        {"CHK_POSITION_FOREIGN", "EL_insert_after", "is not in list",
         [](Scene &s) { EL_insert_after(s.el, nullptr, s.values); }},
        {"CHK_POSITION_FOREIGN", "SL_remove_item", "is not in list",
         [](Scene &s) { SL_remove_item(s.sl, &s.rec[1]); }},
        {"CHK_POSITION_FOREIGN", "GL_swap_item", "is on no list",
         [](Scene &s) { GL_node n{}; void *w = s.values; GL_swap_item(&n, &w); }},
        {"CHK_RECORD_LINKED", "SL_append_after_last", "is already linked into list",
         [](Scene &s) { SL_append_after_last(s.sl2, &s.rec[0]); }},
        {"CHK_WALK_STALE", "GL_next_item", "is on no list",
         [](Scene &s) { GL_iter w = GL_all_items(s.gl); void *item; GL_next_item(&w, &item); GL_remove_item(s.gl, s.g[1]); GL_next_item(&w, &item); },
         [](Scene &s) { s.g[1] = GL_insert_after(s.gl, s.g[0], &s.values[1]); }},
        {"CHK_ITEM_SIZE", "EL_replace_item", "does not fit the item size 4",
         [](Scene &s) { char big[8] = {}; EL_replace_item(s.e[0], big, 8); }},
        {"CHK_ITEM_SIZE", "EL_next_item_copy", "does not fit the item size 4",
         [](Scene &s) { EL_iter w = EL_all_items(s.el); w.item_size = 2; char b[4]; EL_next_item_copy(&w, b); }},
        {"CHK_INDEX_RANGE", "DA_delete", "reach beyond the 3 items",
         [](Scene &s) { DA_delete(s.da, 2, 2); }},
        {"CHK_INDEX_RANGE", "DA_get_item", "index -1 is negative",
         [](Scene &s) { DA_get_item(s.da, -1); }},  // the header's inline form is off
        {"CHK_HANDLE_NOT_LIVE", "SA_add_number", "is not a live DA array",
         [](Scene &s) { SA_add_number(reinterpret_cast<DA_array *>(s.hsh), 1); }},
        {"CHK_HANDLE_RELEASED", "RDBDICT_get_topic", "SL list 0x",
         [](Scene &) { SL_list *d = RDBDICT_create(), *copy = d; RDBDICT_release(&d); RDBDICT_get_topic(copy, "t"); }},
        {"CHK_HANDLE_RELEASED", "GENDICT_to_buf", "SL list 0x",
         [](Scene &) { SL_list *d = GENDICT_create(), *copy = d; GENDICT_release(&d); char *b; int32_t n; GENDICT_to_buf(copy, &b, &n); }},
        {"CHK_HANDLE_NOT_LIVE", "GENDICT_add", "is not a live SL list",
         [](Scene &s) { GENDICT_add(reinterpret_cast<SL_list *>(s.el), "k", GENDICT_value{}); }},
        {"CHK_HANDLE_RELEASED", "ES_pop", "EL list 0x",
         [](Scene &) { EL_list *e = ES_create(4), *copy = e; ES_release(&e); int v; ES_pop(copy, &v); }},
        {"CHK_POSITION_FOREIGN", "DBLL_insert_after", "is not in list",
         [](Scene &s) { DBLL_insert_after(s.el, nullptr, 1.0); }},
        {"CHK_GB_NO_BLOCK", "GB_append_after_last", "holds no block but count 1",
         [](Scene &s) { GB_release(&s.gb); GB_append_after_last(&s.gb, s.values); },
         [](Scene &s) { GB_make_empty(&s.gb); }},
        {"CHK_GB_PAIR", "GB_append_block", "item size 4, record",
         [](Scene &s) { GB_append_block(&s.gb, &s.gb8); }},
        {"CHK_GB_PAIR", "GB_append_block", "is given twice",
         [](Scene &s) { GB_append_block(&s.gb, &s.gb); }},
        {"CHK_GB_PAIR", "GB_copy_into", "item size 8, record",
         [](Scene &s) { GB_copy_into(&s.gb8, &s.gb); }},
        {"CHK_GT_WALK_DEAD", "GT_current_item", "was ended or used up",
         [](Scene &s) { GT_iter *w = GT_all_items(s.gt); void *item; GT_end_iterator(w); GT_current_item(w, &item); }},
        // broken invariants
        {"CHK_LINKS", "GL_remove_item", "the links around position",
         [](Scene &s) { s.g[2]->prev = s.g[0]; GL_remove_item(s.gl, s.g[1]); },
         [](Scene &s) { s.g[2]->prev = s.g[1]; }},
        {"CHK_COUNT", "GL_count_items", "holds count 5 but 3 items",  // by the periodic full check
         [](Scene &s) { s.gl->count = 5; for (int i = 0; i < (1 << 22); ++i) GL_count_items(s.gl); },
         [](Scene &s) { s.gl->count = 3; }},
        {"CHK_COUNT", "EL_count_items", "holds count 0 with first",
         [](Scene &s) { s.el->count = 0; EL_count_items(s.el); },
         [](Scene &s) { s.el->count = 2; }},
        {"CHK_GT_BALANCE", "GT_count_items", "has balance 1, its heights differ by 0",
         [](Scene &s) { s.gt->root->balance = 1; GT_count_items(s.gt); },
         [](Scene &s) { s.gt->root->balance = 0; }},
        {"CHK_GT_ORDER", "GT_count_items", "is out of order",
         [](Scene &s) { std::swap(s.t[0]->item, s.t[1]->item); GT_count_items(s.gt); },
         [](Scene &s) { std::swap(s.t[0]->item, s.t[1]->item); }},
        {"CHK_HSH_PROBE", "HSH_set_value", "key 0x9 of table",  // 9 moved behind the empty slot 3
         [](Scene &s) { std::swap(s.hsh->keys[2], s.hsh->keys[4]); HSH_set_value(s.hsh, key(12), s.values); },
         [](Scene &s) { for (int i = 0; i < s.hsh->size; ++i) s.hsh->keys[i] = nullptr; s.hsh->count = 0; }},
        {"CHK_GB_RECORD", "GB_remove_item", "count 3, capacity 2",
         [](Scene &s) { s.gb.count = 3; GB_remove_item(&s.gb, 0); },
         [](Scene &s) { s.gb.count = 1; }},
        {"CHK_DA_COUNT", "DA_append", "holds nitems 5, nalloc 4",
         [](Scene &s) { s.da->nitems = 5; DA_append(s.da, s.values, 1); },
         [](Scene &s) { s.da->nitems = 3; }},
    };
    return table;
}

// Each case raises its check's identity after printing exactly one line
// that names the operation and says what is wrong; the scene is released
// cleanly afterwards.
TEST(Checked, EachCheckCatchesItsCase) {
    const auto &identity = identities();
    std::set<std::string> covered;
    for (const Case &c : cases()) {
        SCOPED_TRACE(std::string(c.check) + " in " + c.op);
        ASSERT_EQ(identity.count(c.check), 1u);
        covered.insert(c.check);
        Scene scene;
        Capture out;
        const auto got = catch_raise([&] { c.act(scene); });
        const std::string line = out.take();
        const auto [want_line, want_code] = identity.at(c.check);
        EXPECT_EQ(vorn_test::describe(got),
                  vorn_test::describe(vorn_test::Raised{VORN_CHECKED_FILE, want_line, want_code}));
        EXPECT_EQ(line.rfind(std::string("vorn_container: ") + c.op + ": ", 0), 0u) << line;
        EXPECT_NE(line.find(c.what), std::string::npos) << line;
        EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
        c.mend(scene);
    }
    EXPECT_EQ(covered.size(), identity.size()) << "a check without its case";
}

// Splices, cuts and rings keep the side tables right: positions moved to
// another list are that list's, positions cut off are the new list's.
TEST(Checked, MembershipFollowsSplicesAndCuts) {
    Capture quiet;
    const int32_t foreign = identities().at("CHK_POSITION_FOREIGN").first;
    GL_list *a = GL_create(), *b = GL_create(), *c = GL_create();
    int v = 0;
    GL_node *pa = GL_append_after_last(a, &v), *pb = GL_append_after_last(b, &v), *pc = GL_append_after_last(c, &v);
    GL_append_list(b, &c);
    GL_append_list(a, &b);
    for (GL_node *p : {pa, pb, pc}) EXPECT_EQ(catch_raise([&] { GL_move_before_first(a, p); }), std::nullopt);
    GL_list *fresh = GL_create();
    EXPECT_RAISES(GL_remove_item(fresh, pb), (vorn::RaiseSite{VORN_CHECKED_FILE, foreign, VORN_CHECKED_MISUSE}));
    GL_release(&fresh);
    GL_release(&a);

    EL_list *el = EL_create(4);
    EL_node *n[4];
    for (int i = 0; i < 4; ++i) n[i] = EL_append_after_last(el, &i);
    EL_set_closed(el);
    EL_list *end = EL_remove_and_get_end_part(el, n[2]);
    EXPECT_RAISES(EL_remove_item(el, n[3]), (vorn::RaiseSite{VORN_CHECKED_FILE, foreign, VORN_CHECKED_MISUSE}));
    EXPECT_EQ(catch_raise([&] { EL_remove_item(end, n[3]); }), std::nullopt);
    EXPECT_EQ(catch_raise([&] { EL_get_index(el, n[1]); }), std::nullopt);
    EL_release(&end);
    EL_release(&el);
}

}  // namespace

#endif  // VORN_CHECKED
