// The module-level words of the colour table, shared by the table's
// operations (rgblut.cpp) and its start-up (named_colours.cpp).  They are
// hidden: callers reach the table only through the CLUT_ operations and the
// exported words clut_debug and GE_*.
#pragma once

#include <cstdint>

#include "base_binding.hpp"
#include "vorn_clut.h"

namespace vorn::clut {

namespace raises = vorn::raises;  // the CLUT_RAISE_ entries

[[noreturn]] inline void fail(const RaiseSite &site) { vorn::raise(site); }

// All zero before start-up except hard_open.
extern int32_t clut_initialised;    // 1 once RGBLUT_init has begun
extern int32_t clut_size;           // number of entries
extern int32_t *clut_state;         // clut_size states (CLUT_FREE ...), calloc
extern CLUT_colour *clut_colours;   // clut_size colours, calloc
extern CLUT_callback_fn clut_callback;
extern int32_t clut_first_free;     // no index below it is free
extern int32_t clut_hard_open;      // non-zero until the first CLUT_new_index
extern int32_t clut_overflow_told;  // "CLUT OVERFLOW\n" has been printed

// True when `index` names an entry of the table.  Negative indices are
// outside too, so that no operation reads or writes before the arrays.
inline bool in_table(int32_t index) { return index >= 0 && index < clut_size; }

}  // namespace vorn::clut
