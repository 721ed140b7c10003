// Containers of different threads used at the same time, and blocks freed
// on another thread than the one that allocated them.  Each thread checks
// its own containers against a reference; the block counters must come back
// to where they were once every thread is done.  (The tree's working state
// and the colour table are process-wide and stay out.)
#include <atomic>
#include <mutex>
#include <thread>

#include "model_arrays.hpp"
#include "model_dict.hpp"
#include "model_lists.hpp"
#include "model_lookup.hpp"

namespace {

using vorn_test::Rng;

constexpr int kThreads = 4;

// One thread's share: the models of EL, DA, HSH and the dictionaries' text
// form (none of them uses process-wide state), each against its reference.
// The raise handler is process-wide: the throwing one is in place for the
// whole test, so a model that catches an expected raise on one thread never
// puts back "no handler" while another thread waits for its own raise.
TEST(Threads, ContainersOfDifferentThreadsAtTheSameTime) {
    const int64_t blocks = MM_blocks_in_use();
    const EX_raise_handler before = EX_set_raise_handler(vorn_test::throwing_handler);
    std::vector<std::thread> threads;
    for (uint64_t t = 0; t < kThreads; ++t)
        threads.emplace_back([t] {
            for (uint64_t round = 0; round < 15; ++round) {
                Rng rng(100 + 16 * t + round, 400);
                el_model::run(rng);
                rng.steps = 400;
                arrays_model::run_da(rng);
                lookup_model::Seen seen;
                rng.steps = 1000;
                lookup_model::run_hsh(rng, 8, 3, seen);
                dict_model::run(rng);
            }
        });
    for (auto &th : threads) th.join();
    EX_set_raise_handler(before);
    EXPECT_EQ(MM_blocks_in_use(), blocks);
}

// Threads take blocks of every size class and beyond, hand half of them to
// a neighbour that frees them and free the rest themselves; no block is
// handed out twice and the counters come back to where they were.
TEST(Threads, BlocksFreedOnAnotherThread) {
    constexpr int kRounds = 20, kPerRound = 2000;
    const int64_t blocks = MM_blocks_in_use(), bytes = MM_bytes_in_use();
    std::vector<std::vector<std::pair<void *, size_t>>> handoff(kThreads);
    std::mutex m;
    std::atomic<int> bad{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            Rng rng(static_cast<uint64_t>(t) + 1);
            for (int round = 0; round < kRounds; ++round) {
                std::vector<std::pair<void *, size_t>> mine, theirs;
                for (int i = 0; i < kPerRound; ++i) {
                    size_t size = rng.chance(2) ? 600 + rng.below(2000) : 1 + rng.below(200);
                    auto *p = static_cast<unsigned char *>(MM_alloc_item(size));
                    std::memset(p, t + 1, size);
                    mine.emplace_back(p, size);
                }
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
