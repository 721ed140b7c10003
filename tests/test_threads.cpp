// Containers of different threads used at the same time, and blocks freed
// on another thread than the one that allocated them.  Each thread checks
// its own containers against a reference; the block counters must come back
// to where they were once every thread is done.  (The tree's working state
// and the colour table are process-wide and stay out.)
#include <atomic>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::Rng;

constexpr int kThreads = 4;

void *word(uint64_t v) { return reinterpret_cast<void *>(static_cast<uintptr_t>(v)); }

// One thread's share: GL, EL, HSH, DA and a dictionary, each against a
// reference.  Returns the number of failed checks (gtest assertions are not
// made off the main thread).
int own_containers(uint64_t seed, int rounds) {
    Rng rng(seed);
    int bad = 0;
    for (int r = 0; r < rounds; ++r) {
        GL_list *gl = GL_create();
        EL_list *el = EL_create(8);
        HSH_table *h = HSH_create(8, 3);
        DA_array *da = DA_create(4, 16);
        SL_list *dict = GENDICT_create();
        std::unordered_map<uint64_t, uint64_t> ref;
        for (int i = 0; i < 2000; ++i) {
            const uint64_t k = (rng.below(512) + 1) << 3;
            GL_append_after_last(gl, word(k));
            const uint64_t e = k * 3;
            EL_append_after_last(el, &e);
            HSH_set_value(h, word(k), word(i + 1));
            ref[k] = static_cast<uint64_t>(i + 1);
            const int32_t v = i;
            DA_append(da, &v, 1);
            if (rng.below(4) == 0) {
                HSH_remove_entry(h, word(k));
                ref.erase(k);
                GL_remove_item(gl, gl->first);
                EL_remove_item(el, el->last);
            }
            GENDICT_value gv{GENDICT_INT, {}};
            gv.data.integer = i;
            if (i % 50 == 0) GENDICT_add(dict, std::to_string(k).c_str(), gv);
        }
        for (auto &[k, v] : ref) bad += HSH_get_value(h, word(k)) != word(v);
        bad += h->count != static_cast<int32_t>(ref.size());
        bad += gl->count != el->count || DA_nitems(da) != 2000;
        for (int32_t i = 0; i < 2000; i += 97) bad += *static_cast<int32_t *>(DA_get_item(da, i)) != i;
        char *text = nullptr;
        int32_t len = 0;
        GENDICT_to_buf(dict, &text, &len);
        SL_list *back = GENDICT_from_buf(text);
        bad += !back || back->count != dict->count;
        std::free(text);
        GENDICT_release(&back), GENDICT_release(&dict), GL_release(&gl), EL_release(&el), HSH_release(&h);
        DA_release(da);
    }
    return bad;
}

TEST(Threads, ContainersOfDifferentThreadsAtTheSameTime) {
    const int64_t blocks = MM_blocks_in_use();
    std::atomic<int> bad{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) threads.emplace_back([t, &bad] { bad += own_containers(100 + t, 60); });
    for (auto &th : threads) th.join();
    EXPECT_EQ(bad.load(), 0);
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
