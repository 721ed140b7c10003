// EL and SL operation sequences, open lists and rings, each against a
// std::vector of positions; the links (with the ring rule), count and
// element values are checked after every step, and nothing may leak.
#include <algorithm>
#include <cstring>
#include <vector>

#include "fuzz_model.hpp"
#include "vorn_container.h"

namespace {

struct Rec {  // an SL record: the two links, then the caller's value
    Rec *prev, *next;
    int32_t v;
};

template <class N>
void check_links(void *first, void *last, int32_t count, int32_t closed, const std::vector<N *> &ref,
                 bool ring) {
    FUZZ_CHECK(count == static_cast<int32_t>(ref.size()));
    FUZZ_CHECK(closed == (ring ? 1 : 0));
    FUZZ_CHECK(first == (ref.empty() ? nullptr : ref.front()));
    FUZZ_CHECK(last == (ref.empty() ? nullptr : ref.back()));
    const size_t n = ref.size();
    for (size_t i = 0; i < n; ++i) {
        FUZZ_CHECK(ref[i]->prev == (i ? ref[i - 1] : (ring ? ref[n - 1] : nullptr)));
        FUZZ_CHECK(ref[i]->next == (i + 1 < n ? ref[i + 1] : (ring ? ref[0] : nullptr)));
    }
}

int32_t el_value(EL_node *p) {
    int32_t v;
    std::memcpy(&v, p->item, 4);
    return v;
}

void fuzz_el(vorn_fuzz::Input &in) {
    EL_list *l = EL_create(4);
    std::vector<EL_node *> ref;
    std::vector<int32_t> vals;
    bool ring = false;
    int32_t next_value = 0;
    auto idx = [&] { return in.below(static_cast<uint32_t>(ref.size())); };
    while (in.more() && ref.size() < 2048) {
        const int32_t v = next_value++;
        const uint32_t op = in.below(11);
        if (op >= 2 && ref.empty()) continue;
        switch (op) {
            case 0: ref.push_back(EL_append_after_last(l, &v)); vals.push_back(v); break;
            case 1: ref.insert(ref.begin(), EL_insert_before_first(l, &v)); vals.insert(vals.begin(), v); break;
            case 2: { const uint32_t i = idx(); ref.insert(ref.begin() + i + 1, EL_insert_after(l, ref[i], &v)); vals.insert(vals.begin() + i + 1, v); break; }
            case 3: { const uint32_t i = idx(); ref.insert(ref.begin() + i, EL_insert_before(l, ref[i], &v)); vals.insert(vals.begin() + i, v); break; }
            case 4: { const uint32_t i = idx(); EL_remove_item(l, ref[i]); ref.erase(ref.begin() + i); vals.erase(vals.begin() + i); break; }
            case 5: EL_reverse(l); std::reverse(ref.begin(), ref.end()); std::reverse(vals.begin(), vals.end()); break;
            case 6: EL_set_closed(l); ring = true; break;
            case 7: EL_reset_closed(l); ring = false; break;
            case 8:
                if (ring) {
                    const uint32_t i = idx();
                    EL_roll(l, ref[i]);
                    std::rotate(ref.begin(), ref.begin() + i, ref.end());
                    std::rotate(vals.begin(), vals.begin() + i, vals.end());
                }
                break;
            case 9: {  // opens at i: i .. end, begin .. i-1, then a copy of i
                const uint32_t i = idx();
                EL_node *p = ref[i];
                FUZZ_CHECK(EL_make_open_at_position(l, p) == p);
                std::rotate(ref.begin(), ref.begin() + i, ref.end());
                std::rotate(vals.begin(), vals.begin() + i, vals.end());
                ref.push_back(l->last);
                vals.push_back(vals.front());
                ring = false;
                break;
            }
            case 10: {  // cut at i: the source keeps 0..i with a copy of i
                const uint32_t i = idx();
                EL_list *tail = EL_remove_and_get_end_part(l, ref[i]);
                std::vector<EL_node *> tref(ref.begin() + i, ref.end());
                std::vector<int32_t> tvals(vals.begin() + i, vals.end());
                ref.resize(i);
                vals.resize(i);
                ref.push_back(l->last);
                vals.push_back(tvals.front());
                check_links(tail->first, tail->last, tail->count, tail->closed, tref, false);
                for (size_t k = 0; k < tref.size(); ++k) FUZZ_CHECK(el_value(tref[k]) == tvals[k]);
                EL_release(&tail);
                ring = false;
                break;
            }
        }
        check_links(l->first, l->last, l->count, l->closed, ref, ring);
        for (size_t k = 0; k < ref.size(); ++k) FUZZ_CHECK(el_value(ref[k]) == vals[k]);
    }
    EL_release(&l);
}

void fuzz_sl(vorn_fuzz::Input &in) {
    SL_list *l = SL_create();
    std::vector<Rec *> ref;
    bool ring = false;
    auto idx = [&] { return in.below(static_cast<uint32_t>(ref.size())); };
    while (in.more() && ref.size() < 2048) {
        const uint32_t op = in.below(10);
        if (op >= 2 && ref.empty()) continue;
        Rec *r = op <= 3 ? new Rec{nullptr, nullptr, 0} : nullptr;
        switch (op) {
            case 0: SL_append_after_last(l, r); ref.push_back(r); break;
            case 1: SL_insert_before_first(l, r); ref.insert(ref.begin(), r); break;
            case 2: { const uint32_t i = idx(); SL_insert_after(l, ref[i], r); ref.insert(ref.begin() + i + 1, r); break; }
            case 3: { const uint32_t i = idx(); SL_insert_before(l, ref[i], r); ref.insert(ref.begin() + i, r); break; }
            case 4: { const uint32_t i = idx(); SL_remove_item(l, ref[i]); delete ref[i]; ref.erase(ref.begin() + i); break; }
            case 5: SL_reverse(l); std::reverse(ref.begin(), ref.end()); break;
            case 6: SL_set_closed(l); ring = true; break;
            case 7: SL_reset_closed(l); ring = false; break;
            case 8:
                if (ring) {
                    const uint32_t i = idx();
                    SL_roll(l, ref[i]);
                    std::rotate(ref.begin(), ref.begin() + i, ref.end());
                }
                break;
            case 9: {  // index lookups agree with the reference
                const uint32_t i = idx();
                FUZZ_CHECK(SL_pos_at_index(l, static_cast<int32_t>(i) + 1) == ref[i] ||
                           SL_pos_at_index(l, static_cast<int32_t>(i)) == ref[i]);
                break;
            }
        }
        check_links(l->first, l->last, l->count, l->closed, ref, ring);
    }
    for (Rec *r : ref) SL_remove_item(l, r), delete r;
    SL_release(&l);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    vorn_fuzz::Input in(data, size);
    const int64_t blocks = MM_blocks_in_use();
    if (in.byte() & 1)
        fuzz_el(in);
    else
        fuzz_sl(in);
    FUZZ_CHECK(MM_blocks_in_use() == blocks);
    return 0;
}
