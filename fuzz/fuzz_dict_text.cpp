// Any text given to GENDICT_from_buf: whatever it accepts must write back
// to a text that reads to a dictionary writing the very same text again,
// and every block and malloc'd text must be released.  Two kinds of value
// are written in a form that the reader does not take back, and the check
// leaves texts holding them aside: a non-finite double ("inf", "nan"), and
// (conservatively) any token longer than the reader's 320-byte number limit.
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz_model.hpp"
#include "vorn_container.h"

namespace {
bool unreadable_number(const char *t) {
    if (std::strstr(t, "inf") || std::strstr(t, "nan")) return true;
    for (size_t run = 0; *t; ++t) {
        run = (*t == ' ' || *t == '\n') ? 0 : run + 1;
        if (run > 320) return true;
    }
    return false;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const int64_t blocks = MM_blocks_in_use();
    std::string text(reinterpret_cast<const char *>(data), size);  // zero-terminated copy
    SL_list *d = GENDICT_from_buf(text.c_str());
    if (d) {
        char *first = nullptr, *second = nullptr;
        int32_t n1 = 0, n2 = 0;
        GENDICT_to_buf(d, &first, &n1);
        FUZZ_CHECK(first && n1 == static_cast<int32_t>(std::strlen(first)) + 1);
        SL_list *again = unreadable_number(first) ? nullptr : GENDICT_from_buf(first);
        if (!again) {
            FUZZ_CHECK(unreadable_number(first));
            std::free(first);
            GENDICT_release(&d);
            FUZZ_CHECK(MM_blocks_in_use() == blocks);
            return 0;
        }
        GENDICT_to_buf(again, &second, &n2);
        FUZZ_CHECK(second && n1 == n2 && std::memcmp(first, second, n1) == 0);
        std::free(first);
        std::free(second);
        GENDICT_release(&again);
        GENDICT_release(&d);
        FUZZ_CHECK(!d && !again);
    }
    FUZZ_CHECK(MM_blocks_in_use() == blocks);
    return 0;
}
