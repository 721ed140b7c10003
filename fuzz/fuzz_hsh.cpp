// HSH (any minimum and shift) or vorn_lu operation sequences, as the first
// byte says: the tests' models with every invariant checked after each step.
#include "fuzz_entry.hpp"
#include "model_lookup.hpp"

VORN_FUZZ_TARGET(src) {
    lookup_model::Seen seen;
    if (src.below(2)) return lookup_model::run_lu(src);
    const uint32_t min = src.below(70);
    lookup_model::run_hsh(src, min, static_cast<int32_t>(src.below(36)) - 2, seen);
}
