// Out of memory: the failure point walks through whole workloads of DA and
// of io_lut read tables, one allocation further each run.  Every failure
// raises the line documented for its operation and leaves the documented
// state (a failed growth leaves `data` null with the counts unchanged and the
// old block to the caller; DA_copy_into frees its block first), and after
// cleanup no block is left.  DA_reverse and DA_roll stay out: their
// temporaries are documented as untested.

#include "support.hpp"

namespace {

struct Step {
    DA_array **grows;             // the array whose block the step may grow; null: none
    std::vector<vorn::RaiseSite> raises;  // what it may raise
    std::function<void()> run;
    bool frees_first = false;     // DA_copy_into: the block is gone before the growth
};

// Runs the steps up to the first raise, which must be one of the step's
// raises; after the extend raise the old block, lost to the array, is given back
// as its owner must.  Gives whether a raise came.
bool run_steps(const std::vector<Step> &steps) {
    for (const Step &s : steps) {
        const DA_array before = s.grows ? **s.grows : DA_array{};
        const auto got = vorn_test::catch_raise(s.run);
        if (!got) continue;
        EXPECT_TRUE(std::any_of(s.raises.begin(), s.raises.end(),
                                [&](const vorn::RaiseSite &r) { return vorn_test::raise_of(r) == *got; }))
            << vorn_test::describe(got);
        if (s.grows && *got == vorn_test::raise_of(vorn::raises::DA_RAISE_EXTEND_NO_MEMORY)) {
            const DA_array *a = *s.grows;
            EXPECT_EQ(a->data, nullptr);
            EXPECT_EQ(a->nalloc, s.frees_first ? 0 : before.nalloc);
            EXPECT_EQ(a->nitems, s.frees_first ? 0 : before.nitems);
            if (before.data && !s.frees_first)
                MM_dealloc_item(before.data, static_cast<size_t>(before.nalloc) * before.item_size);
        }
        return true;
    }
    return false;
}

// Moves the failure point from the first allocation until a run completes;
// `workload(n)` makes its containers, runs their steps, cleans up and gives
// whether a raise came.  Nothing may be left after any run.
void walk(const std::function<bool(int64_t)> &workload, int64_t at_least) {
    int64_t n = 0;
    for (bool raised = true; raised; ++n) {
        const int64_t blocks = MM_blocks_in_use(), bytes = MM_bytes_in_use();
        raised = workload(n);
        MM_fail_after(-1);
        ASSERT_EQ(MM_blocks_in_use(), blocks) << "failure after " << n;
        ASSERT_EQ(MM_bytes_in_use(), bytes) << "failure after " << n;
    }
    EXPECT_GE(n, at_least);  // the walk did go through the workload
}

TEST(Oom, DaWorkloadRaisesDocumentedLinesAndLeaksNothing) {
    walk(
        [](int64_t n) {
            MM_fail_after(n);
            DA_array *a = nullptr, *bytes = nullptr, *c = nullptr, *copy = nullptr;
            int32_t v = 7;
            const std::vector<int32_t> forty(40, 7);
            const std::string sixty(60, 'a');
            const bool raised = run_steps({
                {nullptr, {vorn::raises::DA_RAISE_CREATE_NO_MEMORY}, [&] { a = DA_create(4, 3); }},
                {nullptr, {vorn::raises::DA_RAISE_CREATE_NO_MEMORY}, [&] { bytes = DA_create(1, 2); }},
                {&a, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { DA_append(a, forty.data(), 40); }},
                {&a, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { DA_insert(a, 5, &v, 1); }},
                {&a, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { DA_insert(a, 90, &v, 1); }},
                {&a, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { DA_put_item(a, 200, &v); }},
                {&a, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { std::memcpy(DA_get_item(a, 260), &v, 4); }},
                {&a, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { DA_setsize(a, 400); }},
                {&bytes, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { DA_append(bytes, sixty.data(), 60); }},
                {&bytes, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { EXPECT_EQ(std::strlen(DA_string(bytes)), 60u); }},
                {nullptr, {vorn::raises::DA_RAISE_COPY_NO_MEMORY, vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { copy = DA_copy(a); }},  // the record, then its block
                {nullptr, {vorn::raises::DA_RAISE_CREATE_NO_MEMORY}, [&] { c = DA_create(4, 8); }},
                {&c, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { DA_append(c, forty.data(), 9); }},
                {&c, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { DA_copy_into(c, a); }, true},
                {&a, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { SA_add_number(a, 1 << 20); }},
            });
            if (!raised) {  // a complete run: the contents are right
                EXPECT_EQ(DA_nitems(a), 401);  // 400 and the number added
                EXPECT_EQ(*static_cast<int32_t *>(DA_get_item(a, 200)), 7);
                EXPECT_EQ(DA_equal(copy, c), 1);
            }
            for (DA_array *d : {a, bytes, c, copy}) DA_release(d);  // a null array does nothing
            return raised;
        },
        14);
}

TEST(Oom, IoLutReadTableRaisesDocumentedLinesAndLeaksNothing) {
    walk(
        [](int64_t n) {
            io_lut_table *t = io_lut_create_read(1);  // its record is not tested: made first
            MM_fail_after(n);
            int32_t objects[8];
            std::vector<Step> steps;
            for (int i = 0; i < 3000; ++i)
                steps.push_back({&t->pointers, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&t, &objects, i] { io_lut_add(t, &objects[i % 8]); }});
            steps.push_back({&t->pointers, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { io_lut_set(t, &objects[1], 5000); }});
            steps.push_back({&t->pointers, {vorn::raises::DA_RAISE_EXTEND_NO_MEMORY}, [&] { io_lut_set(t, &objects[2], 9000); }});
            const bool raised = run_steps(steps);
            if (!raised) {
                EXPECT_EQ(io_lut_get_ptr(t, 9000), &objects[2]);
                EXPECT_EQ(io_lut_look_id(t, &objects[1]), 2);
            }
            MM_fail_after(-1);
            io_lut_release(&t);
            EXPECT_EQ(t, nullptr);
            return raised;
        },
        3);
}

}  // namespace
