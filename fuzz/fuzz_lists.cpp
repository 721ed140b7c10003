// EL, SL and GB operation sequences: the tests' models, chosen by the first byte.
#include "fuzz_entry.hpp"
#include "model_lists.hpp"

VORN_FUZZ_TARGET(src) {
    switch (src.below(3)) {
        case 0: el_model::run(src); break;
        case 1: sl_model::run(src); break;
        default: gb_model::run(src);
    }
}
