// The base services: counters, failure injection, the raise path, the
// checked mode, resizes across the size classes and the system colours.
// (Blocks freed on other threads: test_threads.cpp.)

#include "support.hpp"

namespace {

TEST(Base, CountersAndOneShotFailureInjection) {
    const int64_t blocks = MM_blocks_in_use(), bytes = MM_bytes_in_use();
    void *a = MM_alloc_item(24);
    void *z = MM_alloc_item(0);  // a size of 0 is a block too
    ASSERT_NE(z, nullptr);
    EXPECT_EQ(MM_blocks_in_use(), blocks + 2);
    EXPECT_EQ(MM_bytes_in_use(), bytes + 24);
    MM_fail_after(1);
    void *b = MM_alloc_item(8);
    EXPECT_EQ(MM_alloc_item(8), nullptr);  // the injected failure
    void *c = MM_alloc_item(8);            // injection is over
    ASSERT_TRUE(b && c);
    // A growing resize can fail and keeps the old block; shrinking never fails.
    MM_fail_after(0);
    EXPECT_EQ(MM_realloc_item(a, 24, 4000), nullptr);
    MM_fail_after(0);
    a = MM_realloc_item(a, 24, 4);
    MM_fail_after(-1);
    a = MM_realloc_item(a, 4, 4000);
    EXPECT_EQ(MM_bytes_in_use(), bytes + 4016);
    for (auto [p, size] : {std::pair{a, 4000}, {z, 0}, {b, 8}, {c, 8}}) MM_dealloc_item(p, size);
    MM_dealloc_item(nullptr, 5);  // ignored
    EXPECT_EQ(MM_blocks_in_use(), blocks);
    EXPECT_EQ(MM_bytes_in_use(), bytes);
}

TEST(Base, RaiseHandlerAndDefaultMessage) {
    EXPECT_RAISES(EX_raise_exception_line("darray", 25, 4197), vorn::raises::DA_RAISE_CREATE_NO_MEMORY);
    EXPECT_DEATH(EX_raise_exception_line("plut", 85, 4397), "vorn_container: raised plut line 85 code 4397");
}

TEST(Base, TprintfIsReadAtEveryUseAndSysColoursAreTheDefaults) {
    EXPECT_EQ(vorn_test::printed([] { Tprintf("%d-%s", 7, "x"); }), "7-x");
    debug_break();  // comes back
#if !defined(_WIN32)  // on Windows the system's own GetSysColor answers
    EXPECT_EQ(GetSysColor(15), 0x00F0F0F0u);
    EXPECT_EQ(GetSysColor(13), 0x00D77800u);
    EXPECT_EQ(GetSysColor(14), 0x00FFFFFFu);
#endif
}

#ifdef VORN_MM_CHECKED
TEST(BaseChecked, WrongSizeOrUnknownBlockStopsTheProcess) {
    EXPECT_DEATH(MM_dealloc_item(MM_alloc_item(16), 24), "MM_dealloc_item of block .* with size 24; its size is 16");
    EXPECT_DEATH(MM_realloc_item(MM_alloc_item(16), 8, 32), "MM_realloc_item of block .* with size 8; its size is 16");
    int local = 0;
    EXPECT_DEATH(MM_dealloc_item(&local, sizeof local), "not in use");
}
#endif

// Blocks of every size around the class boundaries, the large limit and the
// huge-page limit keep their content through resizes in both directions.
TEST(BaseBlocks, ResizeAcrossClassesAndTheLargeLimitsKeepsContent) {
    const int64_t blocks = MM_blocks_in_use(), bytes = MM_bytes_in_use();
    const size_t sizes[] = {1, 7, 8, 9, 24, 100, 511, 512, 513, 4096, 100000, size_t{3} << 20};
    for (size_t from : sizes) {
        for (size_t to : sizes) {
            auto *p = static_cast<unsigned char *>(MM_alloc_item(from));
            for (size_t i = 0; i < from; ++i) p[i] = static_cast<unsigned char>(i * 7 + from);
            p = static_cast<unsigned char *>(MM_realloc_item(p, from, to));
            size_t wrong = 0;
            for (size_t i = 0; i < std::min(from, to); ++i) wrong += p[i] != static_cast<unsigned char>(i * 7 + from);
            EXPECT_EQ(wrong, 0u) << from << "->" << to;
            MM_dealloc_item(p, to);
        }
    }
    EXPECT_EQ(MM_blocks_in_use(), blocks);
    EXPECT_EQ(MM_bytes_in_use(), bytes);
}

// Several large blocks at once, taken, resized both ways and released in a
// random order, so that released mappings are kept and serve later blocks
// and growths: every block keeps its bytes (checked at its start, middle and
// end), whatever mapping it sits on.
TEST(BaseBlocks, LargeBlocksKeepTheirBytesThroughReusedMappings) {
    struct Block { unsigned char *p; size_t n; unsigned char tag; };
    const auto intact = [](const Block &b, size_t n) {
        return b.p[0] == b.tag && b.p[n / 2] == b.tag && b.p[n - 1] == b.tag;
    };
    const auto mark = [](Block &b) { b.p[0] = b.p[b.n / 2] = b.p[b.n - 1] = b.tag; };
    vorn_test::Rng rng(7);
    std::vector<Block> live;
    for (int step = 0; step < 600; ++step) {
        const size_t n = (size_t{1} << 20) + rng.next() % (size_t{12} << 20);
        const uint64_t op = live.size() >= 6 ? 2 : rng.next() % 3;
        if (op == 0 || live.empty()) {
            live.push_back({static_cast<unsigned char *>(MM_alloc_item(n)), n, static_cast<unsigned char>(step)});
            mark(live.back());
            continue;
        }
        Block &b = live[rng.next() % live.size()];
        ASSERT_TRUE(intact(b, b.n)) << step;
        if (op == 1) {
            b.p = static_cast<unsigned char *>(MM_realloc_item(b.p, b.n, n));
            ASSERT_TRUE(b.p[0] == b.tag && (n < b.n || b.p[b.n - 1] == b.tag)) << step;
            b.n = n;
            mark(b);
        } else {
            MM_dealloc_item(b.p, b.n);
            b = live.back();
            live.pop_back();
        }
    }
    for (const Block &b : live) MM_dealloc_item(b.p, b.n);
}

}  // namespace
