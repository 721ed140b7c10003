// GT operation sequences with live iterators: the tests' model, a tree with
// or without duplicates as the first byte says.
#include "fuzz_entry.hpp"
#include "model_gt.hpp"

VORN_FUZZ_TARGET(src) { gt_model::run(src, src.below(2)); }
