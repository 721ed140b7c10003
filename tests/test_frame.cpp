// The shared list machinery on a ring-capable head, against a reference
// order: linking and unlinking at every place, closing, opening, seam moves,
// reversal, index lookup, advance and index-of, open and closed.
#include <algorithm>
#include <vector>

#include "list_frame.hpp"
#include "support.hpp"

namespace {

namespace fr = vorn::frame;

struct Node {
    Node *prev;
    Node *next;
    int value;
};
struct Head {
    Node *first;
    Node *last;
    int32_t count;
    int32_t closed;
};
struct Iter {
    Node *current;
    Node *next;
    Node *last;
    int32_t forward;
    int32_t (*test)(void *);
};

void expect_links(const Head &h, const std::vector<Node *> &ref) {
    ASSERT_EQ(h.count, static_cast<int32_t>(ref.size()));
    if (ref.empty()) {
        ASSERT_EQ(h.first, nullptr);
        ASSERT_EQ(h.last, nullptr);
        return;
    }
    const size_t n = ref.size();
    ASSERT_EQ(h.first, ref.front());
    ASSERT_EQ(h.last, ref.back());
    for (size_t i = 0; i < n; ++i) {
        Node *want_prev = i ? ref[i - 1] : (h.closed ? ref[n - 1] : nullptr);
        Node *want_next = i + 1 < n ? ref[i + 1] : (h.closed ? ref[0] : nullptr);
        ASSERT_EQ(ref[i]->prev, want_prev) << "at " << i;
        ASSERT_EQ(ref[i]->next, want_next) << "at " << i;
    }
}

TEST(ListFrame, RandomRingAndOpenOperationsFollowTheReference) {
    for (uint64_t seed = 1; seed <= 60; ++seed) {
        vorn_test::Rng rng(seed);
        std::vector<Node> pool(64);
        size_t used = 0;
        Head h{nullptr, nullptr, 0, static_cast<int32_t>(rng.below(2))};
        std::vector<Node *> ref;
        auto at = [&](Node *p) { return std::find(ref.begin(), ref.end(), p); };
        for (int op = 0; op < 300 && used < pool.size(); ++op) {
            Node *fresh = &pool[used];
            fresh->value = static_cast<int>(used);
            Node *p = ref.empty() ? nullptr : ref[rng.below(static_cast<uint32_t>(ref.size()))];
            switch (rng.below(11)) {
                case 0: fr::link_after_last(&h, fresh), ref.push_back(fresh), ++used; break;
                case 1: fr::link_before_first(&h, fresh), ref.insert(ref.begin(), fresh), ++used; break;
                case 2:
                    if (p) fr::link_after(&h, p, fresh), ref.insert(at(p) + 1, fresh), ++used;
                    break;
                case 3:
                    if (p) fr::link_before(&h, p, fresh), ref.insert(at(p), fresh), ++used;
                    break;
                case 4:
                case 5:
                    if (p) fr::unlink(&h, p), ref.erase(at(p));
                    break;
                case 6:
                    if (h.closed) fr::reset_closed<Node>(&h); else fr::set_closed<Node>(&h);
                    break;
                case 7:
                    if (p && h.closed) {
                        fr::move_seam(&h, p);
                        std::rotate(ref.begin(), at(p), ref.end());
                    }
                    break;
                case 8:
                    fr::reverse<Node>(&h);
                    std::reverse(ref.begin(), ref.end());
                    break;
                case 9: {
                    int32_t idx = static_cast<int32_t>(rng.below(static_cast<uint32_t>(ref.size() + 3))) - 1;
                    Node *want = idx >= 0 && idx < static_cast<int32_t>(ref.size()) ? ref[idx] : nullptr;
                    ASSERT_EQ(fr::at_index<Node>(&h, idx), want);
                    if (want) {
                        ASSERT_EQ(fr::index_of(&h, want), idx);
                    }
                    break;
                }
                case 10:
                    if (p) {
                        const int32_t steps = static_cast<int32_t>(rng.below(9)) - 4;
                        const auto n = static_cast<int64_t>(ref.size());
                        int64_t i = at(p) - ref.begin() + steps;
                        Node *want = nullptr;
                        if (h.closed) {
                            want = ref[((i % n) + n) % n];
                        } else if (i >= 0 && i < n) {
                            want = ref[i];
                        }
                        ASSERT_EQ(fr::advance(p, steps), want);
                    }
                    break;
            }
            expect_links(h, ref);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

std::vector<int> walk(Iter it) {
    std::vector<int> out;
    while (Node *n = fr::step<Node>(&it, [](Node *x) { return static_cast<void *>(x); }))
        out.push_back(n->value);
    return out;
}

TEST(ListFrame, RingWalksPassTheSeamAndVisitEachItemOnce) {
    std::vector<Node> pool(5);
    Head h{nullptr, nullptr, 0, 1};
    for (int i = 0; i < 5; ++i) pool[i].value = i, fr::link_after_last(&h, &pool[i]);
    // All items of a ring: each exactly once.
    EXPECT_EQ(walk(fr::open_walk<Iter>(h.first, h.last, 1, nullptr)), (std::vector<int>{0, 1, 2, 3, 4}));
    // From behind `to`: through last and first up to `to`.
    EXPECT_EQ(walk(fr::open_walk<Iter>(&pool[3], &pool[1], 1, nullptr)), (std::vector<int>{3, 4, 0, 1}));
    EXPECT_EQ(walk(fr::open_walk<Iter>(&pool[1], &pool[3], 0, nullptr)), (std::vector<int>{1, 0, 4, 3}));
    EXPECT_EQ(fr::count_between(&pool[3], &pool[1]), 4);
    // A one-item ring is linked to itself and walked once.
    Head one{nullptr, nullptr, 0, 1};
    Node solo{nullptr, nullptr, 7};
    fr::link_before_first(&one, &solo);
    EXPECT_EQ(solo.prev, &solo);
    EXPECT_EQ(solo.next, &solo);
    EXPECT_EQ(walk(fr::open_walk<Iter>(one.first, one.last, 1, nullptr)), (std::vector<int>{7}));
    fr::unlink(&one, &solo);
    EXPECT_EQ(one.first, nullptr);
    EXPECT_EQ(one.closed, 1);  // stays a ring for the next insertion
}

}  // namespace
