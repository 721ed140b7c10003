// RGBLUT_init and the named colours: creates the one colour table, gives the
// 34 exported GE_ words their indices and writes their colours through
// CLUT_set and CLUT_copy, so that the callback hears every colour in a fixed
// order.  The two tables come from calloc (their zero fill is relied on:
// every state free, every colour black) and are never freed.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>

#if defined(_WIN32)
#  ifndef WIN32_LEAN_AND_MEAN
#    define WIN32_LEAN_AND_MEAN
#  endif
#  ifndef NOMINMAX
#    define NOMINMAX
#  endif
#  include <windows.h>  // GetSysColor of user32
#endif

#include "clut_module.hpp"

extern "C" {

VORN_API int32_t GE_WHITE = 0;
VORN_API int32_t GE_CLEAR = 0;
VORN_API int32_t GE_BLACK = 0;
VORN_API int32_t GE_OBJ_SELECTABLE = 0;
VORN_API int32_t GE_OBJ_RED_SELECTED = 0;
VORN_API int32_t GE_OBJ_GREEN_SELECTED = 0;
VORN_API int32_t GE_OBJ_BLUE_SELECTED = 0;
VORN_API int32_t GE_OBJ_LOCKED = 0;
VORN_API int32_t GE_OBJ_CLIPMASK = 0;
VORN_API int32_t GE_OBJ_CROSSHAIR_GUIDES = 0;
VORN_API int32_t GE_OBJ_NOTES = 0;
VORN_API int32_t GE_OBJ_PAGE = 0;
VORN_API int32_t GE_OBJ_MARKUP = 0;
VORN_API int32_t GE_OBJ_GRIDS = 0;
VORN_API int32_t GE_GRAY = 0;
VORN_API int32_t GE_LGRAY = 0;
VORN_API int32_t GE_YELLOW = 0;
VORN_API int32_t GE_DRKGRAY = 0;
VORN_API int32_t GE_BLUE = 0;
VORN_API int32_t GE_RED = 0;
VORN_API int32_t GE_LRED = 0;
VORN_API int32_t GE_GREEN = 0;
VORN_API int32_t GE_CYAN = 0;
VORN_API int32_t GE_MAG = 0;
VORN_API int32_t GE_DRKGREEN = 0;
VORN_API int32_t GE_DRKMAG = 0;
VORN_API int32_t GE_DRKBLU = 0;
VORN_API int32_t GE_SYS32 = 0;
VORN_API int32_t GE_GRAY144 = 0;
VORN_API int32_t GE_GRAY164 = 0;
VORN_API int32_t GE_DRKCYAN = 0;
VORN_API int32_t GE_SELECTION_BLUE = 0;
VORN_API int32_t GE_WINDOWS_COLOR_HIGHLIGHT = 0;
VORN_API int32_t GE_WINDOWS_COLOR_HIGHLIGHTTEXT = 0;

}  // extern "C"

using namespace vorn::clut;

namespace {

// The named words in the order of their indices.
int32_t *const kNamed[] = {
    &GE_WHITE,         &GE_CLEAR,          &GE_BLACK,
    &GE_OBJ_SELECTABLE, &GE_OBJ_RED_SELECTED, &GE_OBJ_GREEN_SELECTED,
    &GE_OBJ_BLUE_SELECTED, &GE_OBJ_LOCKED, &GE_OBJ_CLIPMASK,
    &GE_OBJ_CROSSHAIR_GUIDES, &GE_OBJ_NOTES, &GE_OBJ_PAGE,
    &GE_OBJ_MARKUP,    &GE_OBJ_GRIDS,      &GE_GRAY,
    &GE_LGRAY,         &GE_YELLOW,         &GE_DRKGRAY,
    &GE_BLUE,          &GE_RED,            &GE_LRED,
    &GE_GREEN,         &GE_CYAN,           &GE_MAG,
    &GE_DRKGREEN,      &GE_DRKMAG,         &GE_DRKBLU,
    &GE_SYS32,         &GE_GRAY144,        &GE_GRAY164,
    &GE_DRKCYAN,       &GE_SELECTION_BLUE, &GE_WINDOWS_COLOR_HIGHLIGHT,
    &GE_WINDOWS_COLOR_HIGHLIGHTTEXT,
};
constexpr int32_t kNamedCount = 34;
static_assert(std::size(kNamed) == kNamedCount);

constexpr int32_t kDefaultEntries = 256;
constexpr int32_t kNoSystemColour = -1;

// One colour written by CLUT_set: fixed, or the system colour of that number.
struct NamedSet {
    int32_t *word;
    int16_t r, g, b;
    int32_t system;
};

// The order is part of the interface: the callback hears it.  The GE_OBJ_
// entries are set to black first, since CLUT_copy refuses a free index.
const NamedSet kSets[] = {
    {&GE_BLACK, 0, 0, 0, kNoSystemColour},
    {&GE_WHITE, 255, 255, 255, kNoSystemColour},
    {&GE_CLEAR, 255, 255, 255, kNoSystemColour},
    {&GE_RED, 255, 0, 0, kNoSystemColour},
    {&GE_LRED, 237, 164, 164, kNoSystemColour},
    {&GE_GREEN, 0, 255, 0, kNoSystemColour},
    {&GE_BLUE, 0, 0, 255, kNoSystemColour},
    {&GE_CYAN, 0, 255, 255, kNoSystemColour},
    {&GE_MAG, 189, 0, 189, kNoSystemColour},
    {&GE_LGRAY, 0, 0, 0, 15},                    // COLOR_BTNFACE
    {&GE_WINDOWS_COLOR_HIGHLIGHT, 0, 0, 0, 13},  // COLOR_HIGHLIGHT
    {&GE_WINDOWS_COLOR_HIGHLIGHTTEXT, 0, 0, 0, 14},  // COLOR_HIGHLIGHTTEXT
    {&GE_GRAY, 127, 127, 127, kNoSystemColour},
    {&GE_DRKGRAY, 100, 100, 100, kNoSystemColour},
    {&GE_GRAY144, 144, 144, 144, kNoSystemColour},
    {&GE_GRAY164, 164, 164, 164, kNoSystemColour},
    {&GE_YELLOW, 255, 255, 0, kNoSystemColour},
    {&GE_DRKGREEN, 0, 200, 0, kNoSystemColour},
    {&GE_DRKBLU, 0, 0, 200, kNoSystemColour},
    {&GE_DRKMAG, 200, 0, 200, kNoSystemColour},
    {&GE_DRKCYAN, 0, 200, 200, kNoSystemColour},
    {&GE_SELECTION_BLUE, 0, 0, 128, kNoSystemColour},
    {&GE_OBJ_SELECTABLE, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_LOCKED, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_CLIPMASK, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_RED_SELECTED, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_BLUE_SELECTED, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_GREEN_SELECTED, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_CROSSHAIR_GUIDES, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_GRIDS, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_MARKUP, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_PAGE, 0, 0, 0, kNoSystemColour},
    {&GE_OBJ_NOTES, 0, 0, 0, kNoSystemColour},
};
static_assert(std::size(kSets) == 33);

struct NamedCopy {
    int32_t *to;
    int32_t *from;
};

const NamedCopy kCopies[] = {
    {&GE_OBJ_SELECTABLE, &GE_BLACK},
    {&GE_OBJ_LOCKED, &GE_GRAY},
    {&GE_OBJ_CLIPMASK, &GE_DRKBLU},
    {&GE_OBJ_RED_SELECTED, &GE_RED},
    {&GE_OBJ_BLUE_SELECTED, &GE_CYAN},  // cyan, not blue
    {&GE_OBJ_GREEN_SELECTED, &GE_GREEN},
    {&GE_OBJ_PAGE, &GE_BLUE},
    {&GE_OBJ_NOTES, &GE_YELLOW},
    {&GE_OBJ_CROSSHAIR_GUIDES, &GE_BLUE},
    {&GE_OBJ_GRIDS, &GE_LGRAY},
    {&GE_OBJ_MARKUP, &GE_BLUE},
};
static_assert(std::size(kCopies) == 11);

// A system colour word is 0x00BBGGRR; the top byte is dropped.
void set_system_colour(int32_t index, int32_t number) {
    const uint32_t word = static_cast<uint32_t>(GetSysColor(number));
    CLUT_set(index, static_cast<int16_t>(word & 0xFF), static_cast<int16_t>((word >> 8) & 0xFF),
             static_cast<int16_t>((word >> 16) & 0xFF));
}

}  // namespace

extern "C" void RGBLUT_init(int32_t entries, CLUT_callback_fn callback) {
    if (clut_initialised) fail(raises::CLUT_RAISE_INIT_TWICE);
    clut_initialised = 1;

    if (entries == 0 && callback == nullptr)
        entries = kDefaultEntries;  // silently
    else if (clut_debug)
        Tprintf("Initialising Clut Table, %d entries\n", entries);

    clut_callback = callback;
    clut_size = entries;
    // A negative count takes no memory; it fails below like any short table.
    const std::size_t n = entries > 0 ? static_cast<std::size_t>(entries) : 0;
    clut_state = static_cast<int32_t *>(std::calloc(n, sizeof(int32_t)));
    clut_colours = static_cast<CLUT_colour *>(std::calloc(n, sizeof(CLUT_colour)));

    for (int32_t *word : kNamed) *word = clut_first_free++;
    if (clut_first_free > entries) fail(raises::CLUT_RAISE_INIT_TOO_SMALL);  // nothing written yet

    for (const NamedSet &s : kSets) {
        if (s.system == kNoSystemColour)
            CLUT_set(*s.word, s.r, s.g, s.b);
        else
            set_system_colour(*s.word, s.system);  // read right before its set
    }
    for (const NamedCopy &c : kCopies) CLUT_copy(*c.to, *c.from);

    // Every named index is hard, GE_SYS32 too, which no set has claimed.
    for (int32_t i = 0; i < clut_first_free; ++i) clut_state[i] = CLUT_HARD;
}
