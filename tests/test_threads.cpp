// Containers of different threads used at the same time, and blocks freed
// on another thread than the one that allocated them.  Each thread checks
// its own containers against a reference; the block counters must come back
// to where they were once every thread is done.  (The tree's working state
// and the colour table are process-wide and stay out.)
#include <atomic>
#include <condition_variable>
#include <deque>
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
            if (i % 50 == 0) {
                GENDICT_value gv;
                gv.kind = GENDICT_INT;
                gv.data.integer = i;
                GENDICT_add(dict, std::to_string(k).c_str(), gv);
            }
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
        GENDICT_release(&back);
        GENDICT_release(&dict);
        GL_release(&gl);
        EL_release(&el);
        HSH_release(&h);
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

// Producers fill lists and arrays and hand them over; consumers check and
// release them, so every block is freed on another thread than its own.
TEST(Threads, BlocksFreedOnAnotherThread) {
    const int64_t blocks = MM_blocks_in_use();
    struct Parcel {
        EL_list *el;
        GL_list *gl;
        DA_array *da;
        int32_t n;
    };
    std::mutex m;
    std::condition_variable cv;
    std::deque<Parcel> queue;
    int producers_left = kThreads / 2;
    std::atomic<int> bad{0};
    auto produce = [&](uint64_t seed) {
        Rng rng(seed);
        for (int p = 0; p < 3000; ++p) {
            const int32_t n = static_cast<int32_t>(rng.below(60));
            Parcel parcel{EL_create(4), GL_create(), DA_create(4, 1 + static_cast<int32_t>(rng.below(8))), n};
            for (int32_t i = 0; i < n; ++i) {
                EL_append_after_last(parcel.el, &i);
                GL_insert_before_first(parcel.gl, word(i + 1));
                DA_append(parcel.da, &i, 1);
            }
            std::lock_guard<std::mutex> lock(m);
            queue.push_back(parcel);
            cv.notify_one();
        }
        std::lock_guard<std::mutex> lock(m);
        --producers_left;
        cv.notify_all();
    };
    auto consume = [&] {
        for (;;) {
            Parcel parcel;
            {
                std::unique_lock<std::mutex> lock(m);
                cv.wait(lock, [&] { return !queue.empty() || producers_left == 0; });
                if (queue.empty()) return;
                parcel = queue.front();
                queue.pop_front();
            }
            bad += parcel.el->count != parcel.n || parcel.gl->count != parcel.n || DA_nitems(parcel.da) != parcel.n;
            int32_t want = 0;
            EL_iter it = EL_all_items(parcel.el);
            void *item;
            while (EL_next_item(&it, &item)) bad += *static_cast<int32_t *>(item) != want++;
            if (parcel.n) bad += parcel.gl->first->item != word(parcel.n);
            EL_release(&parcel.el);
            GL_release(&parcel.gl);
            DA_release(parcel.da);
        }
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads / 2; ++t) threads.emplace_back(produce, 7 + t);
    for (int t = 0; t < kThreads / 2; ++t) threads.emplace_back(consume);
    for (auto &th : threads) th.join();
    EXPECT_EQ(bad.load(), 0);
    EXPECT_EQ(MM_blocks_in_use(), blocks);
}

}  // namespace
