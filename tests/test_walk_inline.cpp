// The inline walk step of the EL header and the exported one deliver the
// same items and leave the same out argument, on open lists and rings, with
// and without a test.
#include <vector>

#include "support.hpp"

namespace {

int32_t accept_even(void *bytes) { return *static_cast<int *>(bytes) % 2 == 0; }

using Step = int32_t (*)(EL_iter *, void **);

std::vector<int> run(EL_iter it, Step step, int *out_after) {
    std::vector<int> got;
    void *out = nullptr;
    while (step(&it, &out) && got.size() < 100) got.push_back(*static_cast<int *>(out));
    *out_after = out ? *static_cast<int *>(out) : -1;
    return got;
}

TEST(WalkInline, ElInlineStepMatchesTheExportedOne) {
    vorn_test::Rng rng(7);
    for (int round = 0; round < 200; ++round) {
        EL_list *l = EL_create(sizeof(int));
        std::vector<EL_node *> pos;
        const int n = static_cast<int>(rng.below(6)) + 1;
        for (int i = 0; i < n; ++i) pos.push_back(EL_append_after_last(l, &i));
        if (rng.chance(50)) EL_set_closed(l);
        EL_node *from = pos[rng.below(n)], *to = pos[rng.below(n)];
        const int32_t forward = static_cast<int32_t>(rng.below(2));
        EL_iter it = rng.chance(50) ? EL_tested_items_inbetween(l, from, to, forward, accept_even)
                                    : EL_all_items_inbetween(l, from, to, forward);
        int out_exported = 0, out_inline = 0;
        EXPECT_EQ(run(it, Step{(EL_next_item)}, &out_exported),
                  run(it, Step{EL_next_item_inline}, &out_inline));
        EXPECT_EQ(out_exported, out_inline);
        EL_release(&l);
    }
}

}  // namespace
