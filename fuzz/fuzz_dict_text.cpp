// The text reader: the input as a text (first byte even) checked as any
// text, or (odd) the choices of the tests' random dictionary, round trip
// and corruption driver.
#include "fuzz_entry.hpp"
#include "model_dict.hpp"

VORN_FUZZ_TARGET(src) {
    if (src.p < src.end && (src.byte() & 1)) return (void)dict_model::run(src);
    dict_model::check_any_text(std::string(reinterpret_cast<const char *>(src.p), src.end - src.p));
}
