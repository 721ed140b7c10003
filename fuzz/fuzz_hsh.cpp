// HSH operation sequences against std::unordered_map; after every step the
// record's fields, the probe-run invariant (no empty slot between a key's
// home and its place) and the contents are checked.
#include <unordered_map>

#include "fuzz_model.hpp"
#include "vorn_container.h"

namespace {
void *word(uintptr_t v) { return reinterpret_cast<void *>(v); }

void check(const HSH_table *t, const std::unordered_map<void *, void *> &ref) {
    FUZZ_CHECK(t->count == static_cast<int32_t>(ref.size()));
    FUZZ_CHECK(t->size >= 8 && (t->size & (t->size - 1)) == 0);
    FUZZ_CHECK(t->mask == static_cast<uint32_t>(t->size - 1));
    FUZZ_CHECK(t->count <= t->high_limit && t->high_limit == t->size * 7 / 8);
    uint32_t start = 0;
    while (t->keys[start]) ++start;  // an empty slot always exists
    int32_t present = 0;
    for (uint32_t n = 1, len = 0; n <= t->mask + 1; ++n) {
        const uint32_t s = (start + n) & t->mask;
        void *k = t->keys[s];
        len = k ? len + 1 : 0;
        if (!k) continue;
        ++present;
        const uint32_t home = (static_cast<uint32_t>(reinterpret_cast<uintptr_t>(k)) >> t->shift) & t->mask;
        FUZZ_CHECK(((s - home) & t->mask) < len);
        auto it = ref.find(k);
        FUZZ_CHECK(it != ref.end() && it->second == t->values[s]);
    }
    FUZZ_CHECK(present == t->count);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    vorn_fuzz::Input in(data, size);
    const int64_t blocks = MM_blocks_in_use();
    const int32_t shift = static_cast<int32_t>(in.below(36)) - 2;
    HSH_table *t = HSH_create(in.below(70), shift);
    std::unordered_map<void *, void *> ref;
    while (in.more()) {
        const uint32_t op = in.below(4);
        // Keys from a small space so that they collide and repeat; the high
        // byte chooses bits the home slot may or may not see.
        const uintptr_t k = (uintptr_t{in.byte()} << 24) | (uintptr_t{in.byte()} << (in.below(4) * 4));
        void *key = word(k), *value = word(in.byte());
        switch (op) {
            case 0:
            case 1:
                FUZZ_CHECK(HSH_set_value(t, key, value) == (key ? value : nullptr));
                if (key) ref[key] = value;
                break;
            case 2:
                HSH_remove_entry(t, key);
                ref.erase(key);
                break;
            case 3: {
                auto it = ref.find(key);
                FUZZ_CHECK(HSH_contains_key(t, key) == (it != ref.end()));
                FUZZ_CHECK(HSH_get_value(t, key) == (it != ref.end() ? it->second : nullptr));
                break;
            }
        }
        check(t, ref);
    }
    HSH_iter it = HSH_all_entries(t);
    void *k, *v;
    size_t walked = 0;
    while (HSH_next(&it, &k, &v)) {
        FUZZ_CHECK(ref.count(k) && ref[k] == v);
        ++walked;
    }
    FUZZ_CHECK(walked == ref.size());
    HSH_release(&t);
    FUZZ_CHECK(!t && MM_blocks_in_use() == blocks);
    return 0;
}
