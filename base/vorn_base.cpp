// The stand-in of the base services besides the memory blocks: the raise
// path, Tprintf, debug_break and GetSysColor.  The raise handler is one
// process-wide atomic word.

#include "vorn_base.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<EX_raise_handler> g_handler{nullptr};

}  // namespace

extern "C" {

int (*Tprintf)(const char *format, ...) = std::printf;

void EX_raise_exception_line(const char *file, int32_t line, int32_t code) {
    if (EX_raise_handler h = g_handler.load()) h(file, line, code);
    std::fprintf(stderr, "vorn_container: raised %s line %d code %d\n", file ? file : "(null)",
                 static_cast<int>(line), static_cast<int>(code));
    std::fflush(stderr);
    std::abort();
}

void debug_break(void) {}

#if !defined(_WIN32)
uint32_t GetSysColor(int32_t index) {
    auto rgb = [](uint32_t r, uint32_t g, uint32_t b) { return r | (g << 8) | (b << 16); };
    switch (index) {
        case 13: return rgb(0, 120, 215);    // highlight
        case 14: return rgb(255, 255, 255);  // highlight text
        case 15: return rgb(240, 240, 240);  // button face
        default: return 0;
    }
}
#endif

EX_raise_handler EX_set_raise_handler(EX_raise_handler h) { return g_handler.exchange(h); }

}  // extern "C"
