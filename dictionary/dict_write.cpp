// The writers of the text form: the DICT form to standard output or to one
// exact block, and the RDB form to standard output.  One walk produces the
// pieces of a form and hands them to a sink: counting, storing or printing.
// The walk is the heap-stack walk of dict_core.hpp, so depth costs no native
// stack.

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "dict_core.hpp"
#include "checked.hpp"
#include "vorn_gendict.h"
#include "vorn_rdbdict.h"

namespace vorn::dict {
namespace {

constexpr char kBlanks[] = "                                                                ";
constexpr std::size_t kBlankRun = sizeof kBlanks - 1;

// The sinks.  put() takes a piece of n bytes, blanks() n blanks.
struct CountSink {
    uint64_t bytes = 0;
    void put(const char *, std::size_t n) { bytes += n; }
    void blanks(uint64_t n) { bytes += n; }
};

struct StoreSink {
    char *cursor;
    void put(const char *s, std::size_t n) {
        std::memcpy(cursor, s, n);
        cursor += n;
    }
    void blanks(uint64_t n) {
        std::memset(cursor, ' ', n);
        cursor += n;
    }
};

// Byte for byte to standard output: a percent sign is an ordinary byte.
struct PrintSink {
    void put(const char *s, std::size_t n) { std::fwrite(s, 1, n, stdout); }
    void blanks(uint64_t n) {
        for (; n > kBlankRun; n -= kBlankRun) std::fwrite(kBlanks, 1, kBlankRun, stdout);
        std::fwrite(kBlanks, 1, static_cast<std::size_t>(n), stdout);
    }
};

// "%d\n" into buf (at least 13 bytes); gives the length.
std::size_t format_int_line(char *buf, int32_t value) {
    char digits[12];
    std::size_t n = 0;
    uint32_t u = value < 0 ? 0u - static_cast<uint32_t>(value) : static_cast<uint32_t>(value);
    do {
        digits[n++] = static_cast<char>('0' + u % 10);
        u /= 10;
    } while (u);
    std::size_t len = 0;
    if (value < 0) buf[len++] = '-';
    while (n) buf[len++] = digits[--n];
    buf[len++] = '\n';
    return len;
}

// "%lf\n": at most 309 digits, sign, point and six decimals.
std::size_t format_double_line(char *buf, std::size_t size, double value) {
    const int n = std::snprintf(buf, size, "%f\n", value);
    if (n < 0) return 0;
    return static_cast<std::size_t>(n) < size ? static_cast<std::size_t>(n) : size - 1;
}

template <class Sink>
struct DictForm {
    Sink &out;

    void indent(int32_t units) { out.blanks(2 * static_cast<uint64_t>(units)); }
    void put(const char *s) { out.put(s, std::strlen(s)); }

    SL_list *enter(GENDICT_item *e, int32_t depth) {
        indent(depth + 1);
        out.put("[", 1);
        put(e->key);
        out.put("] = ", 4);
        const GENDICT_value &v = e->value;
        switch (v.kind) {
            case GENDICT_INT: {
                char buf[16];
                out.put(buf, format_int_line(buf, v.data.integer));
                break;
            }
            case GENDICT_DOUBLE: {
                char buf[400];
                out.put(buf, format_double_line(buf, sizeof buf, v.data.real));
                break;
            }
            case GENDICT_STRING:
                out.put("\"", 1);
                if (v.data.text) put(v.data.text);
                out.put("\"\n", 2);
                break;
            case GENDICT_DICT:
                out.put("DICT{\n", 6);
                if (v.data.dict) return v.data.dict;
                leave(depth + 1);  // a null dictionary is written as an empty one
                break;
            default: break;  // no value: the next piece follows on this line
        }
        return nullptr;
    }
    void leave(int32_t depth) {
        indent(depth);
        out.put("}\n", 2);
    }
};

template <class Sink>
void write_dict(SL_list *dict, Sink &out) {
    DictForm<Sink> form{out};
    out.put("DICT{\n", 6);
    walk_tree(dict, form);
    form.leave(0);
}

struct RdbForm {
    int64_t base;

    void indent(int32_t depth) {
        const int64_t units = base + depth;
        if (units > 0) PrintSink{}.blanks(2 * static_cast<uint64_t>(units));
    }
    SL_list *enter(GENDICT_item *e, int32_t depth) {
        const GENDICT_value &v = e->value;
        indent(depth);
        switch (v.kind) {
            case GENDICT_INT: std::printf("%s = %" PRId32 "\n", e->key, v.data.integer); break;
            case GENDICT_DOUBLE: std::printf("%s = %f\n", e->key, v.data.real); break;
            case GENDICT_STRING:
                std::printf("%s = \"%s\"\n", e->key, v.data.text ? v.data.text : "");
                break;
            case GENDICT_DICT: std::printf("[%s]\n", e->key); return v.data.dict;
            default: break;  // nothing, so the next indentation follows at once
        }
        return nullptr;
    }
    void leave(int32_t) {}
};

}  // namespace
}  // namespace vorn::dict

using namespace vorn::dict;

extern "C" {

void GENDICT_print(SL_list *dict) {
    VORN_CHK(list(__func__, dict));
    PrintSink out;
    write_dict(dict, out);
}

void GENDICT_print_rdb(SL_list *dict, int32_t depth) {
    VORN_CHK(list(__func__, dict));
    RdbForm form{depth};
    walk_tree(dict, form);
}

void RDBDICT_print(SL_list *dict) {
    VORN_CHK(list(__func__, dict));
    GENDICT_print_rdb(dict, 0);
}

void GENDICT_to_buf(SL_list *dict, char **buf, int32_t *length) {
    VORN_CHK(list(__func__, dict));
    CountSink count;
    write_dict(dict, count);
    char *block = count.bytes < INT32_MAX ? static_cast<char *>(std::malloc(count.bytes + 1)) : nullptr;
    if (!block) {
        *buf = nullptr;
        *length = 0;
        return;
    }
    StoreSink store{block};
    write_dict(dict, store);
    *store.cursor = '\0';
    *buf = block;
    *length = static_cast<int32_t>(count.bytes + 1);
}

void RDBDICT_to_buf(SL_list *dict, char **buf, int32_t *length) {
    VORN_CHK(list(__func__, dict));
    GENDICT_to_buf(dict, buf, length);
}

}  // extern "C"
