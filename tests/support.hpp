// What the tests share: the standard headers they use, catching raises as
// C++ exceptions, a fixture that checks every MM_ block taken during a test
// is given back, Tprintf capture, and the model drivers' sources of choices.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <new>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base_binding.hpp"
#include "vorn_container.h"

namespace vorn_test {

// A raise caught by the handler below.
struct Raised {
    std::string file;
    int32_t line;
    int32_t code;
    bool operator==(const Raised &) const = default;
};

inline void throwing_handler(const char *file, int32_t line, int32_t code) {
    throw Raised{file ? file : "", line, code};
}

// Runs `f` with the throwing raise handler installed; gives the raise, if any.
template <class F>
std::optional<Raised> catch_raise(F &&f) {
    EX_raise_handler before = EX_set_raise_handler(throwing_handler);
    std::optional<Raised> got;
    try {
        f();
    } catch (const Raised &r) {
        got = r;
    }
    EX_set_raise_handler(before);
    return got;
}

// The raise of the table entry `s` (vorn::raises::ID), as the handler sees it.
inline Raised raise_of(const vorn::RaiseSite &s) { return {s.file, s.line, s.code}; }

inline std::string describe(const std::optional<Raised> &r) {
    if (!r) return "no raise";
    return r->file + " line " + std::to_string(r->line) + " code " + std::to_string(r->code);
}

// What describe() gives when `s` is raised exactly if `raises` holds.
inline std::string expected(bool raises, const vorn::RaiseSite &s) { return raises ? describe(raise_of(s)) : "no raise"; }

// Expects `stmt` to raise exactly the table entry `site_` (a vorn::RaiseSite).
#define EXPECT_RAISES(stmt, site_)                                                                              \
    do {                                                                                                        \
        auto vorn_got_ = ::vorn_test::catch_raise([&] { stmt; });                                               \
        EXPECT_EQ(::vorn_test::describe(vorn_got_), ::vorn_test::describe(::vorn_test::raise_of(site_)));      \
    } while (0)

// Fixture: fails a test that leaves MM_ blocks behind or an injected failure
// armed.
class LeakChecked : public ::testing::Test {
protected:
    void SetUp() override {
        MM_fail_after(-1);
        blocks_ = MM_blocks_in_use();
        bytes_ = MM_bytes_in_use();
    }
    void TearDown() override {
        MM_fail_after(-1);
        EXPECT_EQ(MM_blocks_in_use(), blocks_) << "MM_ blocks leaked";
        EXPECT_EQ(MM_bytes_in_use(), bytes_) << "MM_ bytes leaked";
    }

private:
    int64_t blocks_ = 0;
    int64_t bytes_ = 0;
};

inline std::string g_printed;
inline int capture_printf(const char *format, ...) {
    char buf[512];
    va_list ap;
    va_start(ap, format);
    const int n = std::vsnprintf(buf, sizeof buf, format, ap);
    va_end(ap);
    g_printed += buf;
    return n;
}

// Sends Tprintf into g_printed while it lives; take() gives what came so far.
struct Capture {
    int (*before)(const char *, ...) = Tprintf;
    Capture() {
        g_printed.clear();
        Tprintf = capture_printf;
    }
    ~Capture() { Tprintf = before; }
    std::string take() { return std::exchange(g_printed, std::string()); }
};

// What f prints through Tprintf.
template <class F>
std::string printed(F &&f) {
    Capture c;
    f();
    return c.take();
}

// The ends, count and links of a doubly linked list (a ring when `closed`)
// against the reference order of its nodes.
template <class N>
void expect_links(const void *first, const void *last, int32_t count, bool closed,
                  const std::vector<N *> &ref) {
    const size_t n = ref.size();
    ASSERT_EQ(count, static_cast<int32_t>(n));
    ASSERT_EQ(first, n ? ref.front() : nullptr);
    ASSERT_EQ(last, n ? ref.back() : nullptr);
    for (size_t i = 0; i < n; ++i) {
        ASSERT_EQ(ref[i]->prev, i ? ref[i - 1] : (closed ? ref[n - 1] : nullptr)) << i;
        ASSERT_EQ(ref[i]->next, i + 1 < n ? ref[i + 1] : (closed ? ref[0] : nullptr)) << i;
    }
}

// The reference indices (of a list of n) that a walk from `from` to `to`
// visits, forward or backward: on a ring it passes the seam, on an open list
// it runs to the end when `to` does not lie ahead.
inline std::vector<size_t> walk_order(size_t n, size_t from, size_t to, bool forward, bool ring) {
    std::vector<size_t> out;
    for (size_t k = from;; k = forward ? (k + 1) % n : (k + n - 1) % n) {
        out.push_back(k);
        if (k == to || (!ring && k == (forward ? n - 1 : 0))) break;
    }
    return out;
}

// The choices of the model drivers (tests/model_*.hpp).  A driver asks its
// source for `below(n)` (uniform in [0, n), 0 when n is 0), `chance(percent)`,
// `next()` (64 bits) and, before each operation, `more()`.  Rng is the seeded
// source of the GoogleTest cases (a failure repeats with its seed); Bytes
// reads the same choices from a fuzzer's input.
struct Rng {
    std::mt19937 g;
    int64_t steps;
    explicit Rng(uint64_t seed, int64_t steps_ = INT64_MAX) : g(static_cast<uint32_t>(seed)), steps(steps_) {}
    bool more() { return steps-- > 0; }
    uint64_t next() { return uint64_t{g()} << 32 | g(); }
    uint32_t below(uint32_t n) { return n ? static_cast<uint32_t>(next() % n) : 0; }
    bool chance(uint32_t percent) { return below(100) < percent; }
};

struct Bytes {
    const uint8_t *p, *end;
    int64_t steps;
    uint32_t after = 1;  // the input used up, choices go on (a retry loop still ends)
    bool more() { return p < end && steps-- > 0; }
    uint8_t byte() { return p < end ? *p++ : static_cast<uint8_t>((after = after * 1103515245u + 12345u) >> 16); }
    uint64_t next() {
        uint64_t w = 0;
        for (int i = 0; i < 8; ++i) w = w << 8 | byte();
        return w;
    }
    uint32_t below(uint32_t n) {  // one byte for small ranges, so that inputs stay short
        uint32_t w = byte();
        for (uint64_t range = 256; range < n; range <<= 8) w = w << 8 | byte();
        return n ? w % n : 0;
    }
    bool chance(uint32_t percent) { return below(100) < percent; }
};

// Runs `drive(rng)` for seeds 1..seeds, `steps` operations each, naming the
// seed of a failure and stopping at the first fatal one.
template <class F>
void for_seeds(uint64_t seeds, int64_t steps, F &&drive) {
    for (uint64_t seed = 1; seed <= seeds && !::testing::Test::HasFatalFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Rng rng(seed, steps);
        drive(rng);
    }
}

}  // namespace vorn_test
