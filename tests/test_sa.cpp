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

int32_t id_at(DA_array *seq, int32_t i) { return *static_cast<int32_t *>(DA_get_item(seq, i)); }

class SaModel : public LeakChecked {};

TEST_F(SaModel, SetFollowsTheMarkedItemsOfAnEditedSequence) {
    for (uint64_t seed = 1; seed <= 40; ++seed) {
        Rng rng(seed);
        DA_array *seq = DA_create(4, 8), *set = DA_create(4, 1 + seed % 5);
        std::set<int32_t> marked;  // ids
        int32_t next_id = 0;
        for (int op = 0; op < 400; ++op) {
            const int32_t len = DA_nitems(seq), i = static_cast<int32_t>(rng.below(len + 1));
            const bool on_item = i < len, was = on_item && marked.count(id_at(seq, i));
            switch (rng.below(7)) {
                case 0: case 1:
                    DA_insert(seq, i, &next_id, 1);
                    ++next_id;
                    SA_adapt_for_insert(set, i);
                    break;
                case 2:
                    if (!on_item) break;
                    marked.erase(id_at(seq, i));
                    DA_delete(seq, i, 1);
                    SA_adapt_for_remove(set, i);
                    break;
                case 3: DA_reverse(seq); SA_adapt_for_reverse(set, len); break;
                case 4: DA_roll(seq, i); SA_adapt_for_roll(set, i, len); break;  // shift 0 .. len
                default:
                    if (!on_item) break;
                    ASSERT_EQ(SA_check_number(set, i), was ? 1 : 0);
                    if (was && rng.chance(50)) {
                        SA_remove_number(set, i);
                        marked.erase(id_at(seq, i));
                    } else {
                        SA_add_number(set, i);  // a second add changes nothing
                        marked.insert(id_at(seq, i));
                    }
            }
            std::vector<int32_t> want;
            for (int32_t k = 0; k < DA_nitems(seq); ++k)
                if (marked.count(id_at(seq, k))) want.push_back(k);
            ASSERT_EQ(ints(set), want) << "seed " << seed << " op " << op;
            if (op % 50 == 0) {  // negative numbers are ordinary members
                DA_array *low = DA_create(4, 2);
                std::vector<int32_t> neg;
                for (int32_t v : want) {
                    SA_add_number(low, -v - 1);
                    neg.insert(neg.begin(), -v - 1);
                }
                ASSERT_EQ(ints(low), neg);
                DA_release(low);
            }
        }
        DA_release(seq);
        DA_release(set);
    }
}

}  // namespace
