// The entry of every fuzz target: the input is the source of choices of a
// model driver (tests/model_*.hpp), so the fuzzers run the very models and
// checks of the tests.  A failed check prints its message and aborts, which
// libFuzzer reports as a crash and keeps the input; no MM_ block may outlive
// an input.
#pragma once

#include "support.hpp"

namespace vorn_fuzz {

struct AbortOnFailure : ::testing::EmptyTestEventListener {
    void OnTestPartResult(const ::testing::TestPartResult &r) override {
        if (!r.failed()) return;
        std::fprintf(stderr, "%s:%d: %s\n", r.file_name() ? r.file_name() : "?", r.line_number(), r.message());
        std::abort();
    }
};

}  // namespace vorn_fuzz

#define VORN_FUZZ_TARGET(src)                                                         \
    static void vorn_fuzz_one(vorn_test::Bytes &src);                                 \
    extern "C" int LLVMFuzzerInitialize(int *, char ***) {                            \
        ::testing::UnitTest::GetInstance()->listeners().Append(new vorn_fuzz::AbortOnFailure); \
        return 0;                                                                     \
    }                                                                                 \
    extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {         \
        const int64_t blocks = MM_blocks_in_use();                                    \
        vorn_test::Bytes choices{data, data + size, 4096};                            \
        vorn_fuzz_one(choices);                                                       \
        EXPECT_EQ(MM_blocks_in_use(), blocks) << "MM_ blocks leaked";                 \
        return 0;                                                                     \
    }                                                                                 \
    static void vorn_fuzz_one(vorn_test::Bytes &src)
