// DA with a number set (SA) following its edits, and GB, each against
// std::vector: after every step the items, the count and the capacity
// rules are checked, and the set holds exactly the marked items' indices.
#include <algorithm>
#include <cstring>
#include <vector>

#include "fuzz_model.hpp"
#include "vorn_container.h"

namespace {

void fuzz_da(vorn_fuzz::Input &in) {
    DA_array *a = DA_create(4, 1 + static_cast<int32_t>(in.below(9)));
    DA_array *set = DA_create(4, 1 + static_cast<int32_t>(in.below(5)));
    std::vector<int32_t> ref;
    std::vector<bool> marked;  // items whose index the set holds
    int32_t next = 1;
    while (in.more() && ref.size() < 4096) {
        const int32_t n = static_cast<int32_t>(ref.size());
        const int32_t i = static_cast<int32_t>(in.below(static_cast<uint32_t>(n) + 1));
        switch (in.below(8)) {
            case 0: {  // insert one item at i (i == n appends)
                const int32_t v = next++;
                if (i < n) {
                    DA_insert(a, i, &v, 1);
                    SA_adapt_for_insert(set, i);
                } else {
                    DA_append(a, &v, 1);
                }
                ref.insert(ref.begin() + i, v);
                marked.insert(marked.begin() + i, false);
                break;
            }
            case 1:
                if (i < n) {
                    DA_delete(a, i, 1);
                    SA_adapt_for_remove(set, i);
                    ref.erase(ref.begin() + i);
                    marked.erase(marked.begin() + i);
                }
                break;
            case 2:
                if (i < n) {
                    SA_add_number(set, i);
                    marked[i] = true;
                }
                break;
            case 3:
                if (i < n) {
                    SA_remove_number(set, i);
                    marked[i] = false;
                }
                break;
            case 4:
                DA_reverse(a);
                SA_adapt_for_reverse(set, n);
                std::reverse(ref.begin(), ref.end());
                std::reverse(marked.begin(), marked.end());
                break;
            case 5:
                if (n) {
                    DA_roll(a, i);
                    SA_adapt_for_roll(set, i, n);
                    std::rotate(ref.begin(), ref.begin() + i % n, ref.end());
                    std::rotate(marked.begin(), marked.begin() + i % n, marked.end());
                }
                break;
            case 6: {  // put beyond or within the end
                const int32_t v = next++;
                DA_put_item(a, i, &v);
                if (i == n) ref.push_back(v), marked.push_back(false);
                else ref[i] = v;
                break;
            }
            case 7:
                DA_truncate(a, i);
                ref.resize(i);
                for (int32_t k = i; k < n; ++k)
                    if (marked[k]) SA_remove_number(set, k);
                marked.resize(i);
                break;
        }
        FUZZ_CHECK(DA_nitems(a) == static_cast<int32_t>(ref.size()));
        FUZZ_CHECK(DA_nalloc(a) >= DA_nitems(a));
        FUZZ_CHECK(ref.empty() || std::memcmp(DA_data(a), ref.data(), ref.size() * 4) == 0);
        std::vector<int32_t> want;
        for (size_t k = 0; k < marked.size(); ++k)
            if (marked[k]) want.push_back(static_cast<int32_t>(k));
        FUZZ_CHECK(DA_nitems(set) == static_cast<int32_t>(want.size()));
        FUZZ_CHECK(want.empty() || std::memcmp(DA_data(set), want.data(), want.size() * 4) == 0);
    }
    DA_release(a);
    DA_release(set);
}

void fuzz_gb(vorn_fuzz::Input &in) {
    GB_list l;
    GB_init(&l, 4, static_cast<int32_t>(in.below(4)));
    GB_set_inc(&l, static_cast<int16_t>(1 + in.below(12)));
    std::vector<int32_t> ref;
    int32_t next = 1;
    while (in.more() && ref.size() < 4096) {
        const int32_t n = static_cast<int32_t>(ref.size());
        const int32_t i = static_cast<int32_t>(in.below(static_cast<uint32_t>(n) + 2)) - 1;  // -1 .. n
        const bool item = i >= 0 && i < n;
        const int32_t v = next++;
        switch (in.below(9)) {
            case 0: FUZZ_CHECK(GB_append_after_last(&l, &v) == n); ref.push_back(v); break;
            case 1:
                GB_insert_item(&l, i, &v);
                if (i >= 0) ref.insert(ref.begin() + i, v);
                break;
            case 2:
                GB_remove_item(&l, i);
                if (item) ref.erase(ref.begin() + i);
                break;
            case 3:
                GB_replace_item(&l, i, &v);
                if (item) ref[i] = v;
                break;
            case 4: GB_reverse(&l); std::reverse(ref.begin(), ref.end()); break;
            case 5:
                l.closed ? GB_reset_closed(&l) : GB_set_closed(&l);
                break;
            case 6:
                GB_roll(&l, i);
                if (l.closed && n >= 2) std::rotate(ref.begin(), ref.begin() + ((i % n) + n) % n, ref.end());
                break;
            case 7:
                if (l.closed && item) {
                    GB_make_open_at_position(&l, i);
                    std::rotate(ref.begin(), ref.begin() + i, ref.end());
                    ref.push_back(ref.front());
                }
                break;
            case 8:
                if (!l.closed && item) {
                    GB_list tail;
                    GB_remove_and_get_end_part(&tail, &l, i);
                    std::vector<int32_t> want(ref.begin() + i, ref.end());
                    ref.resize(i + 1);
                    FUZZ_CHECK(tail.count == static_cast<int32_t>(want.size()));
                    FUZZ_CHECK(std::memcmp(tail.data, want.data(), want.size() * 4) == 0);
                    GB_release(&tail);
                }
                break;
        }
        FUZZ_CHECK(l.count == static_cast<int32_t>(ref.size()) && l.count <= l.capacity);
        FUZZ_CHECK(ref.empty() || std::memcmp(l.data, ref.data(), ref.size() * 4) == 0);
        if (l.count > 0) {
            FUZZ_CHECK(GB_advance(&l, 0, n + 1) == (l.closed ? (n + 1) % l.count : (n + 1 < l.count ? n + 1 : -1)));
        }
    }
    GB_release(&l);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    vorn_fuzz::Input in(data, size);
    const int64_t blocks = MM_blocks_in_use();
    if (in.byte() & 1)
        fuzz_da(in);
    else
        fuzz_gb(in);
    FUZZ_CHECK(MM_blocks_in_use() == blocks);
    return 0;
}
