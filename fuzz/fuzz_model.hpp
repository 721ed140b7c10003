// What the operation-sequence fuzzers share: a reader of the input bytes
// that chooses operations and arguments, and a check that stops the run
// with a message when an invariant fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace vorn_fuzz {

class Input {
public:
    Input(const uint8_t *data, size_t size) : p_(data), end_(data + size) {}
    bool more() const { return p_ < end_; }
    uint8_t byte() { return p_ < end_ ? *p_++ : 0; }
    uint32_t below(uint32_t n) { return n ? byte() % n : 0; }
    uint32_t word() {
        uint32_t w = 0;
        for (int i = 0; i < 4; ++i) w = (w << 8) | byte();
        return w;
    }

private:
    const uint8_t *p_;
    const uint8_t *end_;
};

#define FUZZ_CHECK(cond)                                                          \
    do {                                                                          \
        if (!(cond)) {                                                            \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond); \
            std::abort();                                                         \
        }                                                                         \
    } while (0)

}  // namespace vorn_fuzz
