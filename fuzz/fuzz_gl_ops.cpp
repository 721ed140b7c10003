// GL operation sequences: the tests' model.
#include "fuzz_entry.hpp"
#include "model_lists.hpp"

VORN_FUZZ_TARGET(src) { gl_model::run(src); }
