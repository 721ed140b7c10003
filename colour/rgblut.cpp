// CLUT: the process-wide colour table, its index states and the free-index
// cursor.  The table is two parallel calloc arrays created by RGBLUT_init;
// nothing here allocates.  Every failure is a CLUT_RAISE_ entry of
// vorn_raises.h.

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "clut_module.hpp"

static_assert(std::is_standard_layout_v<CLUT_colour> && sizeof(CLUT_colour) == 3 * sizeof(int16_t));
static_assert(offsetof(CLUT_colour, r) == 0 && offsetof(CLUT_colour, g) == 2 && offsetof(CLUT_colour, b) == 4);

namespace vorn::clut {

int32_t clut_initialised = 0;
int32_t clut_size = 0;
int32_t *clut_state = nullptr;
CLUT_colour *clut_colours = nullptr;
CLUT_callback_fn clut_callback = nullptr;
int32_t clut_first_free = 0;
int32_t clut_hard_open = 1;
int32_t clut_overflow_told = 0;

namespace {

void require_table(const RaiseSite &site) {
    if (!clut_initialised) fail(site);
}

// The state of an index; indices outside the table have none of the three.
int32_t state_of(int32_t index) { return in_table(index) ? clut_state[index] : -1; }

// One component of CLUT_set_RGB: times 255 in single precision, fraction
// dropped, low 16 bits kept.  A product outside the 32-bit range (or NaN)
// has no defined conversion; it gives 0 rather than an arbitrary word.
int16_t component(float unit) {
    const float scaled = unit * 255.0f;
    if (!(scaled > -2147483648.0f && scaled < 2147483648.0f)) return 0;
    return static_cast<int16_t>(static_cast<int32_t>(scaled));
}

}  // namespace
}  // namespace vorn::clut

using namespace vorn::clut;

extern "C" {

VORN_API int32_t clut_debug = 0;

void CLUT_alloc(int32_t index) {
    require_table(raises::CLUT_RAISE_ALLOC_NO_TABLE);
    if (!clut_hard_open) fail(raises::CLUT_RAISE_ALLOC_HARD_CLOSED);
    if (state_of(index) != CLUT_FREE) fail(raises::CLUT_RAISE_ALLOC_NOT_FREE);
    clut_state[index] = CLUT_HARD;
    if (clut_debug) Tprintf("CLUT alloc %d\n", index);
}

void CLUT_set(int32_t index, int16_t r, int16_t g, int16_t b) {
    require_table(raises::CLUT_RAISE_SET_NO_TABLE);
    if (!in_table(index)) fail(raises::CLUT_RAISE_SET_OUTSIDE);
    if (clut_state[index] == CLUT_FREE) CLUT_alloc(index);
    // The callback hears the new colour while the table holds the old one.
    if (clut_callback) clut_callback(index, r, g, b);
    clut_colours[index] = CLUT_colour{r, g, b};
    if (clut_debug > 1) Tprintf("set index : %d : %d %d %d\n", index, r, g, b);
}

void CLUT_set_RGB(int32_t index, float r, float g, float b) {
    CLUT_set(index, component(r), component(g), component(b));
}

void CLUT_copy(int32_t destination, int32_t source) {
    require_table(raises::CLUT_RAISE_COPY_NO_TABLE);
    if (!in_table(destination) || !in_table(source)) fail(raises::CLUT_RAISE_COPY_OUTSIDE);
    if (clut_state[destination] == CLUT_FREE || clut_state[source] == CLUT_FREE) fail(raises::CLUT_RAISE_COPY_FREE);
    const CLUT_colour c = clut_colours[source];
    clut_colours[destination] = c;
    // Unlike CLUT_set, the table already holds the new colour here.
    if (clut_callback) clut_callback(destination, c.r, c.g, c.b);
}

int32_t CLUT_get(int32_t index, int16_t *r, int16_t *g, int16_t *b) {
    require_table(raises::CLUT_RAISE_GET_NO_TABLE);
    int32_t result = 1;
    if (!in_table(index)) {
        index = GE_GREEN;
        result = 0;
    }
    // GE_GREEN lies beyond the table only after a start-up that raised CLUT_RAISE_INIT_TOO_SMALL.
    const CLUT_colour c = in_table(index) ? clut_colours[index] : CLUT_colour{0, 0, 0};
    *r = c.r;
    *g = c.g;
    *b = c.b;
    if (clut_debug > 1) Tprintf("get index : %d : %d %d %d\n", index, c.r, c.g, c.b);
    return result;
}

int32_t CLUT_getID(int16_t r, int16_t g, int16_t b) {
    require_table(raises::CLUT_RAISE_GET_ID_NO_TABLE);
    for (int32_t i = 0; i < clut_size; ++i) {
        const CLUT_colour &c = clut_colours[i];
        if (c.r == r && c.g == g && c.b == b) return i;
    }
    return -1;
}

int32_t CLUT_new_index(void) {
    require_table(raises::CLUT_RAISE_NEW_INDEX_NO_TABLE);
    clut_hard_open = 0;  // on every call, even one that overflows
    while (clut_first_free < clut_size && clut_state[clut_first_free] != CLUT_FREE) ++clut_first_free;
    if (clut_first_free < clut_size) {
        const int32_t index = clut_first_free;
        clut_state[index] = CLUT_DYNAMIC;
        clut_first_free = index + 1;
        if (clut_debug) Tprintf("CLUT_new_index : %d\n", index);
        return index;
    }
    // Full: no failure, no state change; the substitute is GE_GREEN.
    if (clut_debug && !clut_overflow_told) {
        Tprintf("CLUT OVERFLOW\n");
        clut_overflow_told = 1;
    }
    return GE_GREEN;
}

void CLUT_release_index(int32_t index) {
    debug_break();
    require_table(raises::CLUT_RAISE_RELEASE_NO_TABLE);
    if (index == GE_GREEN) return;  // what an overflow gave out; stays hard
    if (state_of(index) != CLUT_DYNAMIC) fail(raises::CLUT_RAISE_RELEASE_NOT_DYNAMIC);
    if (clut_debug) Tprintf("CLUT_release_index : %d\n", index);
    clut_state[index] = CLUT_FREE;  // the colour stays in the entry
    if (index < clut_first_free) clut_first_free = index;
}

void CLUT_statistics(void) {
    int32_t count[3] = {0, 0, 0};
    for (int32_t i = 0; i < clut_size; ++i) {
        const int32_t s = clut_state[i];
        if (s >= CLUT_FREE && s <= CLUT_DYNAMIC) ++count[s];
    }
    Tprintf("Clut Size : %d\n", clut_size);
    Tprintf("First Free index : %d\n", clut_first_free);
    Tprintf("Number of free indices : %d\n", count[CLUT_FREE]);
    Tprintf("Number of hard indices : %d\n", count[CLUT_HARD]);
    Tprintf("Number of dynamic indices : %d\n", count[CLUT_DYNAMIC]);
}

}  // extern "C"
