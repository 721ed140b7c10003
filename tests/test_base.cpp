// The base services: counters, failure injection, the raise path, the
// checked mode and the system colour stand-in.
#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support.hpp"

namespace {

TEST(Base, CountersFollowAllocResizeAndRelease) {
    const int64_t blocks = MM_blocks_in_use(), bytes = MM_bytes_in_use();
    void *a = MM_alloc_item(24);
    void *z = MM_alloc_item(0);  // a size of 0 is a block too
    ASSERT_NE(a, nullptr);
    ASSERT_NE(z, nullptr);
    EXPECT_EQ(MM_blocks_in_use(), blocks + 2);
    EXPECT_EQ(MM_bytes_in_use(), bytes + 24);
    a = MM_realloc_item(a, 24, 4000);
    EXPECT_EQ(MM_bytes_in_use(), bytes + 4000);
    MM_dealloc_item(a, 4000);
    MM_dealloc_item(z, 0);
    MM_dealloc_item(nullptr, 5);  // ignored
    EXPECT_EQ(MM_blocks_in_use(), blocks);
    EXPECT_EQ(MM_bytes_in_use(), bytes);
}

TEST(Base, FailAfterFailsExactlyOneAllocation) {
    MM_fail_after(2);
    void *a = MM_alloc_item(8);
    void *b = MM_alloc_item(8);
    void *c = MM_alloc_item(8);  // the injected failure
    void *d = MM_alloc_item(8);  // injection is over
    EXPECT_NE(a, nullptr);
    EXPECT_NE(b, nullptr);
    EXPECT_EQ(c, nullptr);
    EXPECT_NE(d, nullptr);
    // A growing resize can fail and keeps the old block; shrinking never fails.
    MM_fail_after(0);
    EXPECT_EQ(MM_realloc_item(a, 8, 64), nullptr);
    MM_fail_after(0);
    a = MM_realloc_item(a, 8, 4);
    EXPECT_NE(a, nullptr);
    MM_fail_after(-1);
    MM_dealloc_item(a, 4);
    MM_dealloc_item(b, 8);
    MM_dealloc_item(d, 8);
}

TEST(Base, RaiseHandlerAndDefaultMessage) {
    EXPECT_RAISES(EX_raise_exception_line("darray", 25, 4197), "darray", 25, 4197);
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

// Blocks of every size around the class boundaries and the large limit keep
// their content through resizes in both directions.
TEST(BaseBlocks, ResizeAcrossClassesAndTheLargeLimitKeepsContent) {
    const int64_t blocks = MM_blocks_in_use(), bytes = MM_bytes_in_use();
    const size_t sizes[] = {1, 7, 8, 9, 24, 100, 511, 512, 513, 4096, 100000};
    for (size_t from : sizes) {
        for (size_t to : sizes) {
            auto *p = static_cast<unsigned char *>(MM_alloc_item(from));
            for (size_t i = 0; i < from; ++i) p[i] = static_cast<unsigned char>(i * 7 + from);
            p = static_cast<unsigned char *>(MM_realloc_item(p, from, to));
            for (size_t i = 0; i < std::min(from, to); ++i)
                ASSERT_EQ(p[i], static_cast<unsigned char>(i * 7 + from)) << from << "->" << to;
            MM_dealloc_item(p, to);
        }
    }
    EXPECT_EQ(MM_blocks_in_use(), blocks);
    EXPECT_EQ(MM_bytes_in_use(), bytes);
}

// Threads take blocks, hand half of them to a neighbour that frees them, and
// free the rest themselves; no block is handed out twice and the counters
// come back to where they were.
TEST(BaseBlocks, BlocksFreedOnOtherThreadsAndCountersStayExact) {
    constexpr int kThreads = 4, kRounds = 20, kPerRound = 2000;
    const int64_t blocks = MM_blocks_in_use(), bytes = MM_bytes_in_use();
    std::vector<std::vector<std::pair<void *, size_t>>> handoff(kThreads);
    std::mutex m;
    std::atomic<int> bad{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            vorn_test::Rng rng(static_cast<uint64_t>(t) + 1);
            for (int round = 0; round < kRounds; ++round) {
                std::vector<std::pair<void *, size_t>> mine;
                for (int i = 0; i < kPerRound; ++i) {
                    size_t size = rng.chance(2) ? 600 + rng.below(2000) : 1 + rng.below(200);
                    auto *p = static_cast<unsigned char *>(MM_alloc_item(size));
                    std::memset(p, t + 1, size);
                    mine.emplace_back(p, size);
                }
                std::vector<std::pair<void *, size_t>> theirs;
                {
                    std::lock_guard<std::mutex> lock(m);
                    theirs.swap(handoff[t]);
                    auto &next = handoff[(t + 1) % kThreads];
                    next.insert(next.end(), mine.begin() + kPerRound / 2, mine.end());
                }
                mine.resize(kPerRound / 2);
                for (auto [p, size] : mine) {
                    if (static_cast<unsigned char *>(p)[size - 1] != t + 1) ++bad;
                    MM_dealloc_item(p, size);
                }
                for (auto [p, size] : theirs) MM_dealloc_item(p, size);
            }
        });
    }
    for (auto &th : threads) th.join();
    for (auto &left : handoff)
        for (auto [p, size] : left) MM_dealloc_item(p, size);
    EXPECT_EQ(bad.load(), 0);
    EXPECT_EQ(MM_blocks_in_use(), blocks);
    EXPECT_EQ(MM_bytes_in_use(), bytes);
}

}  // namespace
