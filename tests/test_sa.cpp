// SA against a marked sequence: the sequence is a DA of item ids edited by
// insert, delete, reverse and roll; the set must always hold the indices of
// the marked ids, in ascending order.
#include <set>
#include <vector>

#include "support.hpp"

namespace {

using vorn_test::LeakChecked;
using vorn_test::Rng;

std::vector<int32_t> ints(DA_array *a) {
    const auto *p = static_cast<const int32_t *>(DA_data(a));
    return p ? std::vector<int32_t>(p, p + DA_nitems(a)) : std::vector<int32_t>{};
}

class SaModel : public LeakChecked {};

TEST_F(SaModel, SetFollowsTheMarkedItemsOfAnEditedSequence) {
    for (uint64_t seed = 1; seed <= 40; ++seed) {
        Rng rng(seed);
        DA_array *seq = DA_create(4, 8), *set = DA_create(4, 1 + seed % 5);
        std::set<int32_t> marked;  // ids
        int32_t next_id = 0;
        for (int op = 0; op < 400; ++op) {
            const int32_t len = DA_nitems(seq);
            const int32_t i = static_cast<int32_t>(rng.below(len + 1));  // may be len
            switch (rng.below(7)) {
                case 0: case 1:
                    DA_insert(seq, i, &next_id, 1);
                    ++next_id;
                    SA_adapt_for_insert(set, i);
                    break;
                case 2:
                    if (i < len) {
                        marked.erase(*static_cast<int32_t *>(DA_get_item(seq, i)));
                        DA_delete(seq, i, 1);
                        SA_adapt_for_remove(set, i);
                    }
                    break;
                case 3: DA_reverse(seq); SA_adapt_for_reverse(set, len); break;
                case 4: DA_roll(seq, i); SA_adapt_for_roll(set, i, len); break;
                default:
                    if (i < len) {
                        const int32_t id = *static_cast<int32_t *>(DA_get_item(seq, i));
                        const bool was = marked.count(id) > 0;
                        ASSERT_EQ(SA_check_number(set, i), was ? 1 : 0);
                        if (was && rng.chance(50)) {
                            SA_remove_number(set, i);
                            marked.erase(id);
                        } else {
                            const int32_t before = DA_nitems(set);
                            SA_add_number(set, i);
                            ASSERT_EQ(DA_nitems(set), before + (was ? 0 : 1));
                            marked.insert(id);
                        }
                    }
            }
            std::vector<int32_t> want;
            const std::vector<int32_t> ids = ints(seq);
            for (int32_t k = 0; k < static_cast<int32_t>(ids.size()); ++k)
                if (marked.count(ids[k])) want.push_back(k);
            ASSERT_EQ(ints(set), want) << "seed " << seed << " op " << op;
        }
        DA_release(seq);
        DA_release(set);
    }
}

TEST_F(SaModel, NumbersOfAnySignAgainstAStdSet) {
    Rng rng(7);
    DA_array *set = DA_create(4, 3);
    std::set<int32_t> ref;
    for (int op = 0; op < 3000; ++op) {
        const int32_t v = static_cast<int32_t>(rng.below(61)) - 30;
        switch (rng.below(3)) {
            case 0: SA_add_number(set, v); ref.insert(v); break;
            case 1: SA_remove_number(set, v); ref.erase(v); break;
            default: ASSERT_EQ(SA_check_number(set, v), ref.count(v) ? 1 : 0);
        }
        ASSERT_EQ(ints(set), std::vector<int32_t>(ref.begin(), ref.end()));
    }
    DA_release(set);
}

TEST_F(SaModel, DocumentedRolls) {
    struct Case {
        std::vector<int32_t> in;
        int32_t shift, count;
        std::vector<int32_t> want;
    };
    const Case cases[] = {{{2, 5, 8}, 6, 10, {2, 6, 9}}, {{5, 7}, 3, 10, {2, 4}},
                          {{1, 2}, 3, 10, {8, 9}},       {{2, 5, 8}, 3, 10, {2, 5, 9}},
                          {{0, 4, 9}, 0, 10, {0, 4, 9}}, {{0, 4, 9}, 10, 10, {0, 4, 9}}};
    for (const Case &c : cases) {
        DA_array *set = DA_create(4, 4);
        for (int32_t v : c.in) SA_add_number(set, v);
        SA_adapt_for_roll(set, c.shift, c.count);
        EXPECT_EQ(ints(set), c.want) << c.shift;
        DA_release(set);
    }
}

}  // namespace
