// DA against its byte-exact block model, or SA's sets against an edited
// sequence, as the first byte says: the tests' models.
#include "fuzz_entry.hpp"
#include "model_arrays.hpp"

VORN_FUZZ_TARGET(src) { src.below(2) ? arrays_model::run_da(src) : arrays_model::run_sa(src); }
