// The C++ layer: walks against a reference while the loop removes items,
// the end of GT walks on break, return and exception, comparators, raises as
// vorn::error, owners and dictionaries.  Built as C++20 and as C++17.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <vector>

#include "vorn_container.hpp"

namespace {

// Every test leaves no MM_ block behind: every record of the library (a GT
// iterator an owner or a walk forgot to end too) is one.
class Cpp : public ::testing::Test {
protected:
    void SetUp() override { blocks_ = MM_blocks_in_use(); }
    void TearDown() override { EXPECT_EQ(MM_blocks_in_use(), blocks_); }
    int64_t blocks_ = 0;
};

template <class Range, class T>
void expect_walk(Range &&r, const std::vector<T> &want, const char *what) {
    std::vector<T> got;
    for (auto &&x : r) got.push_back(x);
    EXPECT_EQ(got, want) << what;
}

struct Elem {
    int32_t key;
    double weight;
    bool operator==(const Elem &o) const { return key == o.key && weight == o.weight; }
};
struct Rec {
    Rec *prev, *next;
    int32_t key;
};

// Each family: random items, a loop that removes the items the reference
// drops while it walks, then the walk of what is left, forward and copied.
TEST_F(Cpp, WalksRemovingTheCurrentItemMatchTheReference) {
    for (uint32_t seed = 1; seed <= 40; ++seed) {
        std::mt19937 rng(seed);
        std::vector<int32_t> keys(rng() % 60);
        for (auto &k : keys) k = static_cast<int32_t>(rng() % 41) - 20;
        const auto drop = [m = int32_t(rng() % 4 + 2)](int32_t k) { return k % m == 0; };
        std::vector<int32_t> kept;
        std::copy_if(keys.begin(), keys.end(), std::back_inserter(kept), [&](int32_t k) { return !drop(k); });
        std::vector<int32_t> sorted_kept = kept;
        std::sort(sorted_kept.begin(), sorted_kept.end());

        vorn::gl_list gl;
        vorn::el_list<Elem> el;
        vorn::da_array<int32_t> da(3);
        vorn::gt_tree<int32_t, vorn::compare_integers> gt;
        std::vector<Rec> recs(keys.size());  // outlives the list that holds them
        vorn::sl_list sl;
        std::vector<Elem> elems;
        for (size_t i = 0; i < keys.size(); ++i) {
            GL_append_after_last(gl.get(), vorn::to_word(keys[i]));
            const Elem e{keys[i], keys[i] * 0.5};
            EL_append_after_last(el.get(), &e);
            DA_append(da.get(), &keys[i], 1);
            gt.insert(keys[i]);
            recs[i].key = keys[i];
            SL_append_after_last(sl.get(), &recs[i]);
            if (!drop(keys[i])) elems.push_back(e);
        }
        for (GL_node *n : vorn::positions(gl))
            if (drop(vorn::from_word<int32_t>(n->item))) GL_remove_item(gl.get(), n);
        for (EL_node *n : vorn::positions(el.get()))
            if (drop(reinterpret_cast<Elem *>(n->item)->key)) EL_remove_item(el.get(), n);
        for (Rec &r : vorn::items<Rec>(sl))
            if (drop(r.key)) SL_remove_item(sl.get(), &r);
        for (GT_node *n : vorn::positions(gt.get()))
            if (drop(vorn::from_word<int32_t>(n->item))) GT_remove_item(gt.get(), n);
        expect_walk(vorn::items<int32_t>(gl), kept, "GL");
        expect_walk(vorn::items(el), elems, "EL");
        std::vector<int32_t> sl_keys;
        for (const Rec &r : vorn::items<Rec>(sl)) sl_keys.push_back(r.key);
        EXPECT_EQ(sl_keys, kept) << "SL";
        expect_walk(vorn::items(gt), sorted_kept, "GT");
        expect_walk(vorn::items(da), keys, "DA");
        std::vector<int32_t> sorted_keys = keys;
        std::sort(sorted_keys.begin(), sorted_keys.end());
        std::sort(vorn::contiguous(da).begin(), vorn::contiguous(da).end());
        expect_walk(vorn::items(da), sorted_keys, "DA sorted in place");
        expect_walk(vorn::walk<int32_t>(GL_all_items_reversed(gl.get())),
                    std::vector<int32_t>(kept.rbegin(), kept.rend()), "GL reversed");

        // A copy of an iterator taken mid-walk delivers the same rest.
        auto it = vorn::items<int32_t>(gl.get()).begin();
        for (size_t i = 0; i < kept.size() / 2; ++i) ++it;
        std::vector<int32_t> rest_a, rest_b;
        for (auto copy = it; copy != vorn::sentinel{}; copy++) rest_a.push_back(*copy);
        for (; it != vorn::sentinel{}; ++it) rest_b.push_back(*it);
        EXPECT_EQ(rest_a, std::vector<int32_t>(kept.begin() + long(kept.size() / 2), kept.end()));
        EXPECT_EQ(rest_a, rest_b);
    }
}

// A GT walk left by break, return, an exception from the loop's body or a
// raise inside it, or outliving its tree, ends its registered iterator.
TEST_F(Cpp, GtWalksEndTheirIteratorHoweverTheLoopIsLeft) {
    const std::vector<std::function<void(GT_tree *)>> exits = {
        [](GT_tree *t) { for (int v : vorn::items<int>(t)) if (v == 3) break; },
        [](GT_tree *t) { for (int v : vorn::items<int>(t)) if (v == 2) return; },
        [](GT_tree *t) { for (int v : vorn::items<int>(t)) if (v == 4) throw std::runtime_error("body"); },
        [](GT_tree *t) {
            vorn::throwing_raises guard;
            for (int v : vorn::items<int>(t)) GT_find_and_remove_item(t, vorn::to_word(v + 10));
        },
        [](GT_tree *t) { auto w = vorn::walk<int>(GT_all_items_conditional(t, [](void *) { return 1; })); },
        [](GT_tree *t) { auto w = vorn::items<int>(t); (void)w.begin(); auto moved = std::move(w); },
    };
    for (size_t i = 0; i < exits.size(); ++i) {
        vorn::gt_tree<int, vorn::compare_integers> tree;
        for (int v : {5, 1, 4, 2, 3}) tree.insert(v);
        try {
            exits[i](tree.get());
        } catch (const std::exception &) {
        }
        EXPECT_EQ(tree.get()->iterators->count, 0) << "exit " << i;
    }
    // A walk that outlives its tree holds an orphan, which it frees.
    auto *t = new vorn::gt_tree<int, vorn::compare_integers>();
    t->insert(1);
    auto w = vorn::items(*t);
    delete t;
    EXPECT_EQ(w.begin() == vorn::sentinel{}, true);
}

// Comparators through the trampoline order like std::sort with the same
// order, both in the strcmp style and the std::less style.
struct ByAbs {
    bool operator()(int a, int b) const { return std::abs(a) < std::abs(b); }
};
TEST_F(Cpp, TreesOrderByTheirComparator) {
    std::mt19937 rng(7);
    std::vector<int> v(200);
    for (auto &x : v) x = static_cast<int>(rng() % 2001) - 1000;
    auto check = [&](auto &&tree, auto less, const char *what) {
        for (int x : v) tree.insert(x);
        std::vector<int> want = v;
        std::stable_sort(want.begin(), want.end(), less);
        expect_walk(vorn::items(tree), want, what);
    };
    check(vorn::gt_tree<int, vorn::compare_integers>(), std::less<int>(), "integers");
    check(vorn::gt_tree<int, ByAbs>(), ByAbs(), "less style");
#if __cplusplus >= 202002L
    check(vorn::make_tree<int>([](int a, int b) { return b <=> a; }), std::greater<int>(), "lambda");
#endif
    const char *words[] = {"pear", "apple", "fig", "apple", "kiwi"};
    vorn::gt_tree<const char *, vorn::compare_cstrings> texts(vorn::duplicates::not_allowed);
    for (const char *w : words) texts.insert(w);
    std::vector<std::string> got;
    for (const char *w : vorn::items(texts)) got.emplace_back(w);
    EXPECT_EQ(got, (std::vector<std::string>{"apple", "fig", "kiwi", "pear"}));
    EXPECT_NE(texts.search("kiwi"), nullptr);
    EXPECT_EQ(texts.search("plum"), nullptr);
}

// Raises come as vorn::error named from the table; the previous handler is
// back once the guard is gone.
TEST_F(Cpp, RaisesThrowErrorsNamedFromTheTable) {
    struct Row {
        const char *id, *file;
        int32_t line, code;
        const char *operation, *condition;
    };
#define ROW(id, file, line, code, op, cond) Row{#id, file, line, code, op, cond},
    const Row table[] = {VORN_RAISES(ROW)};
#undef ROW
    const std::vector<std::pair<const char *, std::function<void()>>> cases = {
        {"GT_RAISE_REMOVE_FIRST_EMPTY", [] { GT_remove_first_item(vorn::gt_tree<int>().get()); }},
        {"EL_RAISE_ROLL_NO_PREV", [] { vorn::dbll_list l; DBLL_roll(l.get(), DBLL_add_double(l.get(), 1)); }},
        {"DA_RAISE_COPY_INTO_SIZES_DIFFER", [] { DA_copy_into(vorn::da_array<int>().get(), vorn::da_array<double>().get()); }},
        {"IO_LUT_RAISE_NO_POINTER", [] { io_lut_get_ptr(vorn::io_lut_read().get(), 3); }},
        {"SL_RAISE_RELEASE_NOT_EMPTY", [] {
             Rec a{};
             vorn::sl_list l;
             SL_append_after_last(l.get(), &a);
             SL_list *h = l.get();
             SL_release(&h);
         }},
    };
    const EX_raise_handler before = EX_set_raise_handler(nullptr);
    for (const auto &[name, provoke] : cases) {
        const std::string id = name;  // a plain variable: lambdas capture it
        const Row *want = std::find_if(std::begin(table), std::end(table), [&](const Row &r) { return r.id == id; });
        ASSERT_NE(want, std::end(table));
        try {
            vorn::throwing_raises guard;
            provoke();
            ADD_FAILURE() << id << " did not raise";
        } catch (const vorn::error &e) {
            EXPECT_EQ(std::string(e.file()) + " " + std::to_string(e.line()) + " " + std::to_string(e.code()),
                      std::string(want->file) + " " + std::to_string(want->line) + " " + std::to_string(want->code));
            EXPECT_STREQ(e.operation(), want->operation);
            EXPECT_NE(std::string(e.what()).find(std::string(want->operation) + ": " + want->condition), std::string::npos);
        }
        EXPECT_EQ(EX_set_raise_handler(nullptr), nullptr) << id;
    }
    EXPECT_STREQ(vorn::error("gentree", 1, 2).what(), "gentree line 1 code 2");
    EX_set_raise_handler(before);
}

// Owners: adoption with the item size checked, moves, detach and the
// operations that take a handle's address.
TEST_F(Cpp, OwnersReleaseExactlyWhatTheyHold) {
    EL_list *wrong = EL_create(3);
    EXPECT_THROW(vorn::el_list<Elem>(vorn::adopt, wrong), std::invalid_argument);
    vorn::el_list<char[3]> right(vorn::adopt, wrong);
    vorn::gl_list a, b;
    GL_append_after_last(b.get(), vorn::to_word(7));
    GL_append_list(a.get(), b.address());
    EXPECT_FALSE(b);
    vorn::gl_list c = std::move(a);
    expect_walk(vorn::items<int>(c), std::vector<int>{7}, "moved");
    GL_list *raw = c.detach();
    c = vorn::gl_list(vorn::adopt, raw);
    vorn::gb_list<int> g;
    for (int i = 0; i < 25; ++i) GB_append_after_last(g.get(), &i);
    vorn::gb_list<int> h = std::move(g);
    EXPECT_EQ(vorn::items(g).size(), 0u);
    EXPECT_EQ(vorn::items(h).size(), 25u);
    vorn::hsh_table t;
    for (uintptr_t k = 1; k <= 20; ++k) HSH_set_value(t.get(), vorn::to_word(k), vorn::to_word(k * k));
    std::map<uintptr_t, uintptr_t> seen;
    for (auto [k, v] : vorn::entries<uintptr_t, uintptr_t>(t)) seen[k] = v;
    EXPECT_EQ(seen.size(), 20u);
    EXPECT_EQ(seen[9], 81u);
    vorn::io_lut_read r;
    int objects[3];
    for (int &o : objects) io_lut_add(r.get(), &o);
    io_lut_remove(r.get(), &objects[1]);
    expect_walk(vorn::items<int *>(r.get()), std::vector<int *>{&objects[0], &objects[2]}, "io_lut");
    vorn::lookup lu;
    vorn_lu_add(lu.get(), vorn::to_word(1), vorn::to_word(2));
}

// Dictionaries built and read with C++ strings; the text form reads back.
TEST_F(Cpp, DictionariesBuildAndReadWithStrings) {
    vorn::dict d;
    d.set("count", 3);
    d.set("ratio", 0.25);
    d.set(std::string("name"), std::string_view("grid lines", 4));
    vorn::dict sub;
    sub.set("inner", "x");
    d.set("sub", std::move(sub));
    EXPECT_FALSE(sub);
    EXPECT_EQ(vorn::get<int32_t>(*d.find("count")), 3);
    EXPECT_EQ(vorn::get<std::string_view>(*d.find("name")), "grid");
    EXPECT_EQ(d.find("ratio")->to_int(), 0);
    EXPECT_THROW(vorn::get<double>(*d.find("count")), vorn::bad_value_kind);
    const vorn::dict_view inner = vorn::get<vorn::dict_view>(*d.find("sub"));
    EXPECT_EQ(inner.find("inner")->visit([](auto x) { return std::is_same_v<decltype(x), std::string_view>; }), true);
    const vorn::dict back = vorn::dict::from_text(d.to_text());
    EXPECT_EQ(back.to_text(), d.to_text());
    EXPECT_FALSE(vorn::dict::from_text("not a dictionary"));
    d.erase("count");
    EXPECT_FALSE(d.contains("count"));

    vorn::rdb_dict r;
    r.set("view", "zoom", 2.0);
    r.set("view", "title", "page");
    r.view().set("plain", 1);
    vorn::dict kept;
    r.set("plain", "k", std::move(kept));  // no topic: the dictionary stays ours
    EXPECT_TRUE(kept);
    EXPECT_EQ(vorn::get<double>(*r.find("view", "zoom")), 2.0);
    EXPECT_EQ(r.topic("view").size(), 2);
    EXPECT_FALSE(r.topic("plain"));
    EXPECT_EQ(vorn::rdb_dict::from_text(r.to_text()).to_text(), r.to_text());
}

#if defined(__cpp_lib_ranges)
using Walk = decltype(vorn::items<int>(static_cast<GL_list *>(nullptr)));
static_assert(std::ranges::forward_range<Walk> && std::ranges::borrowed_range<Walk> && std::ranges::view<Walk>);
static_assert(std::ranges::forward_range<decltype(vorn::items<Elem>(static_cast<EL_list *>(nullptr)))>);
static_assert(std::ranges::forward_range<decltype(vorn::items<Rec>(static_cast<SL_list *>(nullptr)))>);
static_assert(std::ranges::forward_range<decltype(vorn::items<int>(static_cast<DA_array *>(nullptr)))>);
static_assert(std::ranges::contiguous_range<decltype(vorn::items<int>(static_cast<GB_list *>(nullptr)))>);
static_assert(std::ranges::contiguous_range<decltype(vorn::contiguous<int>(static_cast<DA_array *>(nullptr)))>);
static_assert(std::ranges::forward_range<decltype(vorn::entries<int>(static_cast<HSH_table *>(nullptr)))>);
using TreeWalk = vorn::gt_walk<int>;
static_assert(std::ranges::input_range<TreeWalk> && !std::ranges::forward_range<TreeWalk>);
static_assert(std::is_same_v<std::ranges::range_reference_t<decltype(vorn::items<Elem>(static_cast<EL_list *>(nullptr)))>, Elem &>);
#endif

}  // namespace
