// Out of memory: the failure point walks through whole workloads of DA and
// of io_lut read tables, one allocation further each run.  Every failure
// raises its documented line and leaves the documented state (a failed
// growth leaves `data` null with the counts unchanged and the old block to
// the caller), and after cleanup no block is left.  DA_reverse and DA_roll
// stay out: their temporaries are documented as untested.
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::Raised;

struct Step {
    DA_array **grows;  // the array whose block the step may grow; null: a new one
    std::function<void()> run;
};

// Runs one step with the snapshot a failed growth is checked against.  On
// a 103 raise the old block, lost to the array, is given back as its owner
// must; returns the raise, if any.
std::optional<Raised> run_step(const Step &s) {
    if (!s.grows) return vorn_test::catch_raise(s.run);
    DA_array *a = *s.grows;
    const DA_array before = *a;
    auto got = vorn_test::catch_raise(s.run);
    if (got && got->line == 103) {
        EXPECT_EQ(a->data, nullptr);
        EXPECT_EQ(a->nalloc, before.nalloc);
        EXPECT_EQ(a->nitems, before.nitems);
        if (before.data) MM_dealloc_item(before.data, static_cast<size_t>(before.nalloc) * before.item_size);
    }
    return got;
}

// Walks the failure point from the first allocation until a run completes;
// `workload` makes its containers, gives their steps and cleans up.
void walk(const std::function<void(int64_t, std::vector<Raised> &)> &workload, int64_t at_least) {
    int64_t n = 0;
    for (;; ++n) {
        const int64_t blocks = MM_blocks_in_use();
        const int64_t bytes = MM_bytes_in_use();
        std::vector<Raised> raised;
        workload(n, raised);
        MM_fail_after(-1);
        ASSERT_EQ(MM_blocks_in_use(), blocks) << "failure after " << n;
        ASSERT_EQ(MM_bytes_in_use(), bytes) << "failure after " << n;
        ASSERT_LE(raised.size(), 1u);
        if (raised.empty()) break;
        const Raised &r = raised[0];
        EXPECT_EQ(r.code, 4197) << n;
        EXPECT_TRUE(r.file == "darray" && (r.line == 25 || r.line == 103 || r.line == 263))
            << r.file << " " << r.line << " after " << n;
    }
    EXPECT_GE(n, at_least);  // the walk did go through the workload
}

TEST(Oom, DaWorkloadRaisesDocumentedLinesAndLeaksNothing) {
    walk(
        [](int64_t n, std::vector<Raised> &raised) {
            MM_fail_after(n);
            DA_array *a = nullptr, *bytes = nullptr, *c = nullptr;
            if (auto r = vorn_test::catch_raise([&] { a = DA_create(4, 3); bytes = DA_create(1, 2); })) {
                raised.push_back(*r);
                DA_release(a);
                return;
            }
            std::vector<DA_array *> extra;
            int32_t v = 7;
            const std::vector<int32_t> forty(40, 7);
            const std::string sixty(60, 'a');
            const std::vector<Step> steps = {
                {&a, [&] { DA_append(a, forty.data(), 40); }},
                {&a, [&] { DA_insert(a, 5, &v, 1); }},
                {&a, [&] { DA_insert(a, 90, &v, 1); }},
                {&a, [&] { DA_put_item(a, 200, &v); }},
                {&a, [&] { std::memcpy(DA_get_item(a, 260), &v, 4); }},
                {&a, [&] { DA_setsize(a, 400); }},
                {&bytes, [&] { DA_append(bytes, sixty.data(), 60); }},
                {&bytes, [&] { EXPECT_EQ(std::strlen(DA_string(bytes)), 60u); }},
                {nullptr, [&] { extra.push_back(DA_copy(a)); }},
                {nullptr, [&] { extra.push_back(c = DA_create(4, 8)); }},
                {&c, [&] { DA_copy_into(c, a); }},
                {&a, [&] { SA_add_number(a, 1 << 20); }},
            };
            for (const Step &s : steps)
                if (auto r = run_step(s)) {
                    raised.push_back(*r);
                    break;
                }
            if (raised.empty()) {  // a complete run: the contents are right
                EXPECT_EQ(DA_nitems(a), 401);  // 400 and the number added
                EXPECT_EQ(*static_cast<int32_t *>(DA_get_item(a, 200)), 7);
                EXPECT_EQ(DA_equal(extra[0], extra[1]), 1);
            }
            for (DA_array *e : extra) DA_release(e);
            DA_release(a);
            DA_release(bytes);
        },
        12);
}

TEST(Oom, IoLutReadTableRaisesDocumentedLinesAndLeaksNothing) {
    walk(
        [](int64_t n, std::vector<Raised> &raised) {
            io_lut_table *t = io_lut_create_read(1);  // its record is not tested: made first
            MM_fail_after(n);
            int32_t objects[8];
            std::vector<Step> steps;
            for (int i = 0; i < 3000; ++i)
                steps.push_back({&t->pointers, [&t, &objects, i] { io_lut_add(t, &objects[i % 8]); }});
            steps.insert(steps.end(), {
                {&t->pointers, [&] { io_lut_set(t, &objects[1], 5000); }},
                {&t->pointers, [&] { io_lut_set(t, &objects[2], 9000); }},
            });
            for (const Step &s : steps)
                if (auto r = run_step(s)) {
                    raised.push_back(*r);
                    break;
                }
            if (raised.empty()) {
                EXPECT_EQ(io_lut_get_ptr(t, 9000), &objects[2]);
                EXPECT_EQ(io_lut_look_id(t, &objects[1]), 2);
            }
            MM_fail_after(-1);
            io_lut_release(&t);
            EXPECT_EQ(t, nullptr);
        },
        3);
}

}  // namespace
