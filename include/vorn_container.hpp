/*
 * vorn_container.hpp - the C++ layer: owners, typed walks, comparators,
 * exceptions and dictionaries with C++ strings.  Header-only, namespace
 * vorn; it adds no exported name to the library.  Needs C++17; the
 * iterators model the std::ranges concepts under C++20.
 *
 * Owners.  One move-only type per handle family releases its handle through
 * the family's own release operation when it dies:
 *
 *   gl_list (GL_release)          el_list<T> (EL_release)   es_stack<T> (ES_release)
 *   dbll_list (DBLL_release)      sl_list (SL_total_release, records kept)
 *   gb_list<T> (GB_release)       gt_tree<T, Cmp> (GT_release)
 *   da_array<T> (DA_release)      hsh_table (HSH_release)   lookup (vorn_lu_release)
 *   io_lut_read, io_lut_write (io_lut_release)
 *   dict (GENDICT_release)        rdb_dict (RDBDICT_release)
 *
 * A default-constructed owner holds a new empty container (gb_list<T> a
 * record after GB_init).  `owner(vorn::adopt, handle)` takes over a handle
 * made elsewhere.  `.get()` gives the C handle for any C operation; it stays
 * owned.  `.address()` gives the address of the owner's handle for the
 * operations that take one and clear it (GL_append_list, *_total_release):
 * the owner then holds null and releases nothing.  `.detach()` hands the
 * handle to the caller, who releases it.  A moved-from owner holds null.
 *
 * Walks.  `vorn::items<T>(c)` walks every item of a container for range-for
 * and the std::ranges algorithms; `vorn::walk<T>(record)` walks any walk
 * record a C opening gives (reversed, inbetween, tested ...):
 *
 *   GL, io_lut read tables  the item words as word_t<T>: T itself when T is a
 *                           pointer, integer or enum type, else T*, so
 *                           items<Page>(list) gives Page *
 *   EL, ES, DBLL, DA        the elements as T&; T is trivially copyable and
 *                           its size must be the container's item size
 *   GB                      the items as T&, a contiguous range of count items
 *                           (contiguous<T>(array) gives the same for DA)
 *   SL                      the records as R&
 *   GT                      the item words as word_t<T>, in sorted order
 *   HSH                     entries<K, V>(table): {key, value} word pairs
 *
 * `vorn::positions(c)` gives the positions instead (GL_node *, EL_node *,
 * GT_node *).  Every walk is built on the library's own walk record, so
 * removing the item just delivered inside the loop is fine, with the
 * family's own outcome: the lists and GT go on with the next item, DA passes
 * over the item that slides into the freed place, and after an HSH removal
 * entries may come twice or not at all.  GL, EL, SL, DA, HSH and io_lut
 * walks are forward ranges (a copy of an iterator walks on by itself) and
 * borrowed views: the range holds only the record.  GB items and
 * contiguous<T>(array) are contiguous ranges.  A GT walk is an input range
 * that owns its registered iterator: it ends it when the range dies, so a
 * `break`, a `return` or an exception leaves no iterator open on the tree (a
 * walk kept past the release of its tree frees the orphaned record the same
 * way).
 *
 * Comparators.  gt_tree<T, Cmp> orders by a stateless comparator type (a
 * function-object type, or under C++20 the type of a capture-less lambda)
 * through compare_fn<T, Cmp>, a generated GT_compare_fn.  Cmp may answer
 * like strcmp (negative, 0, positive; also a three-way ordering) or like
 * std::less (bool).  It must not throw (the trampoline is noexcept) and, as
 * every compare callback, must not call a GT operation.  Stock comparators:
 * compare_words, compare_integers, compare_cstrings.
 *
 * Errors.  While a throwing_raises object lives, every raise of the library
 * throws vorn::error (file, line, code and a message naming the operation
 * and condition from the library's table of raises).  The container is then
 * in the state the operation documents for that raise.  The raise handler is
 * one for the process: install it where no other thread relies on another.
 *
 * What the layer throws itself: std::invalid_argument when a walk or an
 * adopted handle has an item size other than sizeof(T) (nothing is taken),
 * vorn::bad_value_kind for a value read as the wrong kind, std::bad_alloc
 * when a dictionary's text cannot be had.  Owners' destructors and the
 * ends of walks throw nothing (GT_end_iterator raises only for a record
 * that is not its tree's, and a raise there ends the process).
 *
 * Dictionaries.  dict and rdb_dict own a dictionary; dict_view lends one
 * (a sub-dictionary or a topic).  Keys and texts are std::string_view; a
 * lookup gives vorn::value, a variant-like view on GENDICT_value that is
 * lent like the value it views.
 */
#ifndef VORN_CONTAINER_HPP
#define VORN_CONTAINER_HPP

#include "vorn_container.h"
#include "vorn_raises.h"
#if __has_include("vorn_checked.h")
#include "vorn_checked.h"
#endif

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#if __cplusplus >= 202002L
#include <ranges>
#endif

namespace vorn {

// ---- item words -------------------------------------------------------------

// A type that travels in an item word: a pointer, or an integer or enum no
// wider than a pointer.
template <class T>
inline constexpr bool is_word_v =
    std::is_pointer_v<T> ||
    ((std::is_integral_v<T> || std::is_enum_v<T>) && sizeof(T) <= sizeof(void *));

// What a word walk delivers for T: T itself for a word type, else T *.
template <class T>
using word_t = std::conditional_t<is_word_v<T>, T, T *>;

// The word for a value and back; integers go through intptr_t, so a signed
// value comes back with its sign.
template <class T>
void *to_word(T value) noexcept {
    static_assert(is_word_v<T>, "only pointers and integers fit an item word");
    if constexpr (std::is_pointer_v<T>)
        return const_cast<void *>(static_cast<const volatile void *>(value));
    else
        return reinterpret_cast<void *>(static_cast<std::intptr_t>(value));
}

template <class T>
T from_word(void *word) noexcept {
    static_assert(is_word_v<T>, "only pointers and integers fit an item word");
    if constexpr (std::is_pointer_v<T>)
        return static_cast<T>(word);
    else
        return static_cast<T>(reinterpret_cast<std::intptr_t>(word));
}

// ---- errors ------------------------------------------------------------------

namespace detail {
struct raise_row {
    const char *file;
    int32_t line;
    int32_t code;
    const char *operation;
    const char *condition;
};
#define VORN_HPP_RAISE_ROW(id, file, line, code, operation, condition) \
    raise_row{file, line, code, operation, condition},
inline constexpr raise_row raise_rows[] = {
    VORN_RAISES(VORN_HPP_RAISE_ROW)
#ifdef VORN_RAISES_CHECKED
    VORN_RAISES_CHECKED(VORN_HPP_RAISE_ROW)
#endif
    raise_row{nullptr, 0, 0, nullptr, nullptr}};
#undef VORN_HPP_RAISE_ROW

inline const raise_row *find_raise(const char *file, int32_t line, int32_t code) noexcept {
    for (const raise_row &r : raise_rows)
        if (r.file && r.line == line && r.code == code && file && !std::strcmp(r.file, file))
            return &r;
    return nullptr;
}
}  // namespace detail

// A raise of the library as a C++ exception (a std::runtime_error, so
// copies throw nothing).  what() reads
// "FILE line LINE code CODE: OPERATION: CONDITION", or without the last two
// parts for a raise the table does not know.
class error : public std::runtime_error {
public:
    error(const char *file, int32_t line, int32_t code)
        : std::runtime_error(message(file, line, code)), line_(line), code_(code),
          row_(detail::find_raise(file, line, code)) {
        // The library names its files with fixed literals; the table's copy
        // serves where the raise is listed.
        file_ = row_ ? row_->file : file ? file : "";
    }
    const char *file() const noexcept { return file_; }
    int32_t line() const noexcept { return line_; }
    int32_t code() const noexcept { return code_; }
    // The operation(s) that raise it and the condition, from the table; ""
    // for a raise it does not list.
    const char *operation() const noexcept { return row_ ? row_->operation : ""; }
    const char *condition() const noexcept { return row_ ? row_->condition : ""; }

private:
    static std::string message(const char *file, int32_t line, int32_t code) {
        std::string m = std::string(file ? file : "") + " line " + std::to_string(line) +
                        " code " + std::to_string(code);
        if (const detail::raise_row *r = detail::find_raise(file, line, code))
            m = m + ": " + r->operation + ": " + r->condition;
        return m;
    }
    const char *file_;
    int32_t line_;
    int32_t code_;
    const detail::raise_row *row_;
};

// A raise handler that throws vorn::error; a host may also install it for
// good with EX_set_raise_handler(vorn::throw_error).
[[noreturn]] inline void throw_error(const char *file, int32_t line, int32_t code) {
    throw error(file, line, code);
}

// Installs throw_error for its lifetime and puts the previous handler back.
class throwing_raises {
public:
    throwing_raises() noexcept : before_(EX_set_raise_handler(&throw_error)) {}
    ~throwing_raises() { EX_set_raise_handler(before_); }
    throwing_raises(const throwing_raises &) = delete;
    throwing_raises &operator=(const throwing_raises &) = delete;

private:
    EX_raise_handler before_;
};

// ---- owners -----------------------------------------------------------------

struct adopt_t {
    explicit adopt_t() = default;
};
inline constexpr adopt_t adopt{};

namespace detail {

// Holds one handle and releases it through Traits::release (which clears
// its argument) unless it was given away.
template <class Traits>
class owner {
public:
    using handle = typename Traits::handle;

    owner(adopt_t, handle h) noexcept : h_(h) {}
    owner(owner &&other) noexcept : h_(std::exchange(other.h_, nullptr)) {}
    owner &operator=(owner &&other) noexcept {
        if (this != &other) reset(std::exchange(other.h_, nullptr));
        return *this;
    }
    owner(const owner &) = delete;
    owner &operator=(const owner &) = delete;
    ~owner() { reset(); }

    handle get() const noexcept { return h_; }
    handle *address() noexcept { return &h_; }
    handle detach() noexcept { return std::exchange(h_, nullptr); }
    // Releases what is held and takes `h` (null: nothing).
    void reset(handle h = nullptr) noexcept {
        handle old = std::exchange(h_, h);
        if (old) Traits::release(old);
    }
    explicit operator bool() const noexcept { return h_ != nullptr; }

private:
    handle h_ = nullptr;
};

#define VORN_HPP_TRAITS(name, type, how)                            \
    struct name {                                                   \
        using handle = type *;                                      \
        static void release(type *&h) noexcept { how; }             \
    };
inline void sl_keep(void **) noexcept {}
VORN_HPP_TRAITS(gl_traits, GL_list, GL_release(&h))
VORN_HPP_TRAITS(el_traits, EL_list, EL_release(&h))
VORN_HPP_TRAITS(es_traits, EL_list, ES_release(&h))
VORN_HPP_TRAITS(dbll_traits, EL_list, DBLL_release(&h))
VORN_HPP_TRAITS(sl_traits, SL_list, SL_total_release(&h, &sl_keep))
VORN_HPP_TRAITS(gt_traits, GT_tree, GT_release(&h))
VORN_HPP_TRAITS(da_traits, DA_array, (DA_release(h), h = nullptr))
VORN_HPP_TRAITS(hsh_traits, HSH_table, HSH_release(&h))
VORN_HPP_TRAITS(lu_traits, vorn_lu, vorn_lu_release(&h, nullptr))
VORN_HPP_TRAITS(io_lut_traits, io_lut_table, io_lut_release(&h))
VORN_HPP_TRAITS(dict_traits, SL_list, GENDICT_release(&h))
VORN_HPP_TRAITS(rdb_traits, SL_list, RDBDICT_release(&h))
#undef VORN_HPP_TRAITS

// An element type held by value in EL, DA and GB.
template <class T>
constexpr void check_element() {
    static_assert(std::is_trivially_copyable_v<T>, "elements are moved as bytes");
    static_assert(!std::is_reference_v<T> && sizeof(T) > 0, "elements are objects");
}

// Ranges support where the standard library has it.
#if defined(__cpp_lib_ranges)
using view_base = std::ranges::view_base;
#else
struct view_base {};
#endif

}  // namespace detail

// Creates a GL list; the item words stay the caller's.
class gl_list : public detail::owner<detail::gl_traits> {
public:
    using owner::owner;
    gl_list() : owner(adopt, GL_create()) {}
};

// An EL list of elements of type T (EL_create(sizeof(T))); an adopted list
// must have that item size, or std::invalid_argument is thrown and nothing
// is taken.
template <class T>
class el_list : public detail::owner<detail::el_traits> {
public:
    el_list() : owner(adopt, EL_create(item_size())) {}
    el_list(adopt_t, EL_list *list) : owner(adopt, checked(list)) {}
    static uint16_t item_size() noexcept {
        detail::check_element<T>();
        static_assert(sizeof(T) <= UINT16_MAX, "EL item sizes are 16-bit");
        return static_cast<uint16_t>(sizeof(T));
    }
    static EL_list *checked(EL_list *list) {
        if (list && list->item_size != sizeof(T))
            throw std::invalid_argument("vorn: list item size is not sizeof(T)");
        return list;
    }
};

// An ES stack of elements of type T.
template <class T>
class es_stack : public detail::owner<detail::es_traits> {
public:
    es_stack() : owner(adopt, ES_create(el_list<T>::item_size())) {}
    es_stack(adopt_t, EL_list *stack) : owner(adopt, el_list<T>::checked(stack)) {}
};

// A DBLL list of doubles.
class dbll_list : public detail::owner<detail::dbll_traits> {
public:
    dbll_list() : owner(adopt, DBLL_create()) {}
    dbll_list(adopt_t, EL_list *list) : owner(adopt, el_list<double>::checked(list)) {}
};

// An SL list.  The records stay the caller's: the release takes them off
// through SL_total_release with a function that keeps them, so a list that
// still holds records ends without a raise.  That walk reads their links:
// records still on the list must outlive the owner (declare them first).
class sl_list : public detail::owner<detail::sl_traits> {
public:
    using owner::owner;
    sl_list() : owner(adopt, SL_create()) {}
};

// A DA array of T, growing by `increment` items.  An adopted array must
// have item size sizeof(T), or std::invalid_argument is thrown.
template <class T>
class da_array : public detail::owner<detail::da_traits> {
public:
    explicit da_array(int32_t increment = 16) : owner(adopt, DA_create(item_size(), increment)) {}
    da_array(adopt_t, DA_array *array) : owner(adopt, checked(array)) {}
    static int32_t item_size() noexcept {
        detail::check_element<T>();
        static_assert(sizeof(T) <= INT32_MAX, "DA item sizes are 32-bit");
        return static_cast<int32_t>(sizeof(T));
    }
    static DA_array *checked(DA_array *array) {
        if (array && array->item_size != item_size())
            throw std::invalid_argument("vorn: array item size is not sizeof(T)");
        return array;
    }
};

// An HSH table (HSH_create(min_size, shift)).
class hsh_table : public detail::owner<detail::hsh_traits> {
public:
    using owner::owner;
    explicit hsh_table(uint32_t min_size = 0, int32_t shift = 0)
        : owner(adopt, HSH_create(min_size, shift)) {}
};

// A vorn_lu lookup; released without a callback (values stay the caller's;
// to release them, call vorn_lu_release(l.address(), fn) first).
class lookup : public detail::owner<detail::lu_traits> {
public:
    using owner::owner;
    lookup() : owner(adopt, vorn_lu_create()) {}
};

// io_lut read and write tables.
class io_lut_read : public detail::owner<detail::io_lut_traits> {
public:
    using owner::owner;
    explicit io_lut_read(int32_t overwrite = 0) : owner(adopt, io_lut_create_read(overwrite)) {}
};
class io_lut_write : public detail::owner<detail::io_lut_traits> {
public:
    using owner::owner;
    io_lut_write() : owner(adopt, io_lut_create_write()) {}
};

// A GB record holding items of type T.  The record lives in the owner (it
// is the caller's in GB); get() gives its address, which changes when the
// owner is moved.  Moving leaves the source without a block.
template <class T>
class gb_list {
public:
    explicit gb_list(int32_t initial_capacity = 10) {
        detail::check_element<T>();
        GB_init(&rec_, static_cast<int32_t>(sizeof(T)), initial_capacity);
    }
    // Takes over a live record of item size sizeof(T) (else
    // std::invalid_argument); `record` is left without a block.
    gb_list(adopt_t, GB_list &record) : rec_(record) {
        if (record.capacity > 0 && record.item_size != static_cast<int32_t>(sizeof(T)))
            throw std::invalid_argument("vorn: record item size is not sizeof(T)");
        forget(record);
    }
    gb_list(gb_list &&other) noexcept : rec_(other.rec_) { forget(other.rec_); }
    gb_list &operator=(gb_list &&other) noexcept {
        if (this != &other) {
            GB_release(&rec_);
            rec_ = other.rec_;
            forget(other.rec_);
        }
        return *this;
    }
    gb_list(const gb_list &) = delete;
    gb_list &operator=(const gb_list &) = delete;
    ~gb_list() { GB_release(&rec_); }
    GB_list *get() noexcept { return &rec_; }
    const GB_list *get() const noexcept { return &rec_; }

private:
    static void forget(GB_list &r) noexcept {
        r.data = nullptr;
        r.count = 0;
        r.capacity = 0;
    }
    GB_list rec_{};
};

// ---- comparators ------------------------------------------------------------

// Word order: the words compared as unsigned numbers.
struct compare_words {
    template <class T>
    int operator()(T a, T b) const noexcept {
        const auto x = reinterpret_cast<std::uintptr_t>(to_word(a));
        const auto y = reinterpret_cast<std::uintptr_t>(to_word(b));
        return x < y ? -1 : (y < x ? 1 : 0);
    }
};
// Numeric order of integer items (signed integers keep their sign).
struct compare_integers {
    template <class T>
    int operator()(T a, T b) const noexcept {
        static_assert(std::is_integral_v<T> || std::is_enum_v<T>, "integer items");
        return a < b ? -1 : (b < a ? 1 : 0);
    }
};
// strcmp order of zero-terminated texts.
struct compare_cstrings {
    int operator()(const char *a, const char *b) const noexcept { return std::strcmp(a, b); }
};

namespace detail {
template <class T, class Cmp>
int32_t compare_trampoline(void *a, void *b) noexcept {
    const Cmp cmp{};
    const T x = from_word<T>(a), y = from_word<T>(b);
    if constexpr (std::is_same_v<decltype(cmp(x, y)), bool>)
        return cmp(x, y) ? -1 : (cmp(y, x) ? 1 : 0);
    else {
        const auto r = cmp(x, y);
        return r < 0 ? -1 : (0 < r ? 1 : 0);
    }
}
}  // namespace detail

// The GT_compare_fn that orders items of type T by Cmp: one function per
// pair of types, generated here.
template <class T, class Cmp>
constexpr GT_compare_fn compare_fn() noexcept {
    static_assert(is_word_v<T>, "tree items are item words");
    static_assert(std::is_empty_v<Cmp> && std::is_default_constructible_v<Cmp>,
                  "a tree's comparator carries no state (a function-object type or, "
                  "under C++20, a capture-less lambda)");
    return &detail::compare_trampoline<T, Cmp>;
}

enum class duplicates { allowed, not_allowed };

// A GT tree of items T (word types) ordered by Cmp.  An adopted tree keeps
// the compare it was made with, which should order T as Cmp does.
template <class T, class Cmp = compare_words>
class gt_tree : public detail::owner<detail::gt_traits> {
public:
    using owner::owner;
    explicit gt_tree(duplicates d = duplicates::allowed)
        : owner(adopt, d == duplicates::allowed
                           ? GT_create_with_dupl_allowed(compare_fn<T, Cmp>())
                           : GT_create_with_dupl_not_allowed(compare_fn<T, Cmp>())) {}

    // GT_insert_item: the new node, or without duplicates the node of an
    // equal item already there.
    GT_node *insert(T item) { return GT_insert_item(get(), to_word(item)); }
    // GT_search_item: a node whose item compares equal to `key`, or null.
    GT_node *search(T key) const {
        GT_node *pos = nullptr;
        GT_search_item(get(), to_word(key), &pos);
        return pos;
    }
    // GT_count_items: a visit of every node.
    int32_t size() const { return GT_count_items(get()); }
};

// C++20: auto t = vorn::make_tree<int>([](int a, int b) { return a < b; });
template <class T, class Cmp>
gt_tree<T, Cmp> make_tree(Cmp, duplicates d = duplicates::allowed) {
    return gt_tree<T, Cmp>(d);
}

// ---- walks over records the caller holds ---------------------------------------

struct sentinel {};

namespace detail {

// One family's walk: the record, what a step gives out, how it is delivered
// and what tells two places of one walk apart.
template <class Iter, class Out>
struct step_base {
    using record = Iter;
    using out = Out;
};

template <class T>
struct gl_items : step_base<GL_iter, void *> {
    using reference = word_t<T>;
    static bool step(GL_iter &r, void *&o) noexcept { return GL_next_item(&r, &o) != 0; }
    static reference deliver(void *o) noexcept { return from_word<reference>(o); }
    static const void *place(const GL_iter &r) noexcept { return r.current; }
    static void check(const GL_iter &) noexcept {}
};
struct gl_positions : step_base<GL_iter, GL_node *> {
    using reference = GL_node *;
    static bool step(GL_iter &r, GL_node *&o) noexcept { return GL_next_position(&r, &o) != 0; }
    static reference deliver(GL_node *o) noexcept { return o; }
    static const void *place(const GL_iter &r) noexcept { return r.current; }
    static void check(const GL_iter &) noexcept {}
};
template <class T>
struct el_items : step_base<EL_iter, void *> {
    using reference = T &;
    static bool step(EL_iter &r, void *&o) noexcept { return EL_next_item(&r, &o) != 0; }
    static reference deliver(void *o) noexcept { return *static_cast<T *>(o); }
    static const void *place(const EL_iter &r) noexcept { return r.current; }
    static void check(const EL_iter &r) {
        check_element<T>();
        if (r.next && r.item_size != static_cast<int32_t>(sizeof(T)))
            throw std::invalid_argument("vorn: walk item size is not sizeof(T)");
    }
};
struct el_positions : step_base<EL_iter, EL_node *> {
    using reference = EL_node *;
    static bool step(EL_iter &r, EL_node *&o) noexcept { return EL_next_position(&r, &o) != 0; }
    static reference deliver(EL_node *o) noexcept { return o; }
    static const void *place(const EL_iter &r) noexcept { return r.current; }
    static void check(const EL_iter &) noexcept {}
};
template <class R>
struct sl_items : step_base<SL_iter, void *> {
    using reference = R &;
    static bool step(SL_iter &r, void *&o) noexcept { return SL_next_item(&r, &o) != 0; }
    static reference deliver(void *o) noexcept { return *static_cast<R *>(o); }
    static const void *place(const SL_iter &r) noexcept { return r.current; }
    static void check(const SL_iter &) noexcept {}
};
template <class T>
struct da_walk : step_base<DA_iter, void *> {
    using reference = T &;
    static bool step(DA_iter &r, void *&o) noexcept { return DA_next(&r, &o) != 0; }
    static reference deliver(void *o) noexcept { return *static_cast<T *>(o); }
    static const void *place(const DA_iter &r) noexcept {
        return reinterpret_cast<const void *>(static_cast<std::intptr_t>(r.index));
    }
    static void check(const DA_iter &r) {
        check_element<T>();
        if (r.array && r.array->item_size != static_cast<int32_t>(sizeof(T)))
            throw std::invalid_argument("vorn: array item size is not sizeof(T)");
    }
};
// All items of an array upwards, as DA_all_items walks them (the last index
// is fixed at the start, each index is held against the present count and
// the address is taken anew at each step), without a call per item.
struct da_run {
    DA_array *array;
    int32_t index;
    int32_t last;
};
template <class T>
struct da_items : step_base<da_run, void *> {
    using reference = T &;
    static bool step(da_run &r, void *&o) noexcept {
        if (r.index > r.last || r.index >= r.array->nitems) {
            r.index = r.last + 1;
            return false;
        }
        o = static_cast<char *>(r.array->data) +
            static_cast<std::size_t>(r.index++) * static_cast<std::size_t>(r.array->item_size);
        return true;
    }
    static reference deliver(void *o) noexcept { return *static_cast<T *>(o); }
    static const void *place(const da_run &r) noexcept {
        return reinterpret_cast<const void *>(static_cast<std::intptr_t>(r.index));
    }
    static void check(const da_run &r) { da_walk<T>::check(DA_iter{r.array, 1, 0, 0, nullptr}); }
};
template <class K, class V>
struct hsh_out {
    void *key = nullptr;
    void *value = nullptr;
};
}  // namespace detail

// One entry of an HSH walk.
template <class K, class V>
struct entry {
    K key;
    V value;
};

namespace detail {
template <class K, class V>
struct hsh_entries : step_base<HSH_iter, hsh_out<K, V>> {
    using reference = entry<word_t<K>, word_t<V>>;
    static bool step(HSH_iter &r, hsh_out<K, V> &o) noexcept {
        return HSH_next(&r, &o.key, &o.value) != 0;
    }
    static reference deliver(const hsh_out<K, V> &o) noexcept {
        return {from_word<word_t<K>>(o.key), from_word<word_t<V>>(o.value)};
    }
    static const void *place(const HSH_iter &r) noexcept {
        return reinterpret_cast<const void *>(static_cast<std::intptr_t>(r.index));
    }
    static void check(const HSH_iter &) noexcept {}
};
template <class T>
struct io_lut_items : step_base<io_lut_iter, void *> {
    using reference = word_t<T>;
    static bool step(io_lut_iter &r, void *&o) noexcept { return (o = io_lut_next_item(&r)) != nullptr; }
    static reference deliver(void *o) noexcept { return from_word<reference>(o); }
    static const void *place(const io_lut_iter &r) noexcept {
        return reinterpret_cast<const void *>(static_cast<std::intptr_t>(r.position));
    }
    static void check(const io_lut_iter &) noexcept {}
};

// A range over a walk record held by value.  begin() steps a copy of the
// record, so the range may be walked again from where it was opened, and
// each iterator walks on by itself.
template <class Step>
class walk_range : public view_base {
    using record = typename Step::record;
    using out = typename Step::out;

public:
    class iterator {
    public:
        using iterator_concept = std::forward_iterator_tag;
        using iterator_category = std::input_iterator_tag;
        using value_type = std::remove_cv_t<std::remove_reference_t<typename Step::reference>>;
        using difference_type = std::ptrdiff_t;
        using reference = typename Step::reference;
        using pointer = void;

        iterator() = default;
        reference operator*() const noexcept { return Step::deliver(out_); }
        iterator &operator++() noexcept {
            live_ = Step::step(rec_, out_);
            return *this;
        }
        iterator operator++(int) noexcept {
            iterator before = *this;
            ++*this;
            return before;
        }
        // The walk record after the last step (its `current` is the
        // position of the item delivered).
        const record &walk() const noexcept { return rec_; }

        friend bool operator==(const iterator &a, const iterator &b) noexcept {
            return a.live_ == b.live_ && (!a.live_ || Step::place(a.rec_) == Step::place(b.rec_));
        }
        friend bool operator==(const iterator &a, sentinel) noexcept { return !a.live_; }
#if !defined(__cpp_impl_three_way_comparison)
        friend bool operator!=(const iterator &a, const iterator &b) noexcept { return !(a == b); }
        friend bool operator==(sentinel, const iterator &a) noexcept { return !a.live_; }
        friend bool operator!=(const iterator &a, sentinel) noexcept { return a.live_; }
        friend bool operator!=(sentinel, const iterator &a) noexcept { return a.live_; }
#endif

    private:
        friend class walk_range;
        explicit iterator(const record &r) noexcept : rec_(r) { ++*this; }
        record rec_{};
        out out_{};
        bool live_ = false;
    };

    walk_range() = default;
    explicit walk_range(const record &r) : rec_(r) { Step::check(r); }
    iterator begin() const noexcept { return iterator(rec_); }
    sentinel end() const noexcept { return {}; }

private:
    record rec_{};
};

}  // namespace detail

// A range over a walk record that a C opening gave; T as for items<T>.
template <class T>
detail::walk_range<detail::gl_items<T>> walk(const GL_iter &r) {
    return detail::walk_range<detail::gl_items<T>>(r);
}
template <class T>
detail::walk_range<detail::el_items<T>> walk(const EL_iter &r) {
    return detail::walk_range<detail::el_items<T>>(r);
}
template <class R>
detail::walk_range<detail::sl_items<R>> walk(const SL_iter &r) {
    return detail::walk_range<detail::sl_items<R>>(r);
}
template <class T>
detail::walk_range<detail::da_walk<T>> walk(const DA_iter &r) {
    return detail::walk_range<detail::da_walk<T>>(r);
}
template <class T>
detail::walk_range<detail::io_lut_items<T>> walk(const io_lut_iter &r) {
    return detail::walk_range<detail::io_lut_items<T>>(r);
}

// Every item of a container, first to last.
template <class T>
auto items(GL_list *list) { return walk<T>(GL_all_items(list)); }
template <class T>
auto items(EL_list *list) { return walk<T>(EL_all_items(list)); }
template <class R>
auto items(SL_list *list) { return walk<R>(SL_all_items(list)); }
template <class T>
auto items(io_lut_table *table) { return walk<T>(io_lut_all_items(table)); }
template <class T>
detail::walk_range<detail::da_items<T>> items(DA_array *array) {
    return detail::walk_range<detail::da_items<T>>(
        detail::da_run{array, 0, array->nitems - 1});
}
template <class K, class V = void *>
detail::walk_range<detail::hsh_entries<K, V>> entries(HSH_table *table) {
    return detail::walk_range<detail::hsh_entries<K, V>>(HSH_all_entries(table));
}

// The positions of a walk or of every item.
inline detail::walk_range<detail::gl_positions> positions(const GL_iter &r) {
    return detail::walk_range<detail::gl_positions>(r);
}
inline detail::walk_range<detail::el_positions> positions(const EL_iter &r) {
    return detail::walk_range<detail::el_positions>(r);
}
inline auto positions(GL_list *list) { return positions(GL_all_items(list)); }
inline auto positions(EL_list *list) { return positions(EL_all_items(list)); }

namespace detail {
// A contiguous range: the items of a GB record.
template <class T>
class span_range : public view_base {
public:
    span_range() = default;
    span_range(T *b, T *e) noexcept : b_(b), e_(e) {}
    T *begin() const noexcept { return b_; }
    T *end() const noexcept { return e_; }
    std::size_t size() const noexcept { return static_cast<std::size_t>(e_ - b_); }

private:
    T *b_ = nullptr;
    T *e_ = nullptr;
};
}  // namespace detail

// The items of a GB record (none while it holds no block); valid until the
// record's block changes.
template <class T>
detail::span_range<T> items(GB_list *list) {
    detail::check_element<T>();
    if (list->capacity <= 0 || list->count <= 0) return {};
    if (list->item_size != static_cast<int32_t>(sizeof(T)))
        throw std::invalid_argument("vorn: record item size is not sizeof(T)");
    T *b = static_cast<T *>(list->data);
    return {b, b + list->count};
}

// The items of an array as one contiguous range, for the algorithms that
// want random access (std::ranges::sort ...); unlike items<T>, valid only
// until the array grows or frees its block.
template <class T>
detail::span_range<T> contiguous(DA_array *array) {
    detail::da_walk<T>::check(DA_iter{array, 1, 0, 0, nullptr});
    T *b = static_cast<T *>(array->data);
    return b ? detail::span_range<T>(b, b + array->nitems) : detail::span_range<T>();
}
template <class T>
detail::span_range<T> contiguous(const da_array<T> &a) { return contiguous<T>(a.get()); }

// ---- GT walks: ranges that own their registered iterator ----------------------

namespace detail {
template <class Out>
struct gt_step;
template <>
struct gt_step<void *> {
    static bool step(GT_iter *it, void *&o) noexcept { return GT_next_item(it, &o) != 0; }
};
template <>
struct gt_step<GT_node *> {
    static bool step(GT_iter *it, GT_node *&o) noexcept { return GT_next_position(it, &o) != 0; }
};
}  // namespace detail

// An input range over a GT iterator that it owns from construction: the
// step that finds the walk over frees it, and otherwise the range's end
// (or end()) does, through GT_end_iterator.  Move-only.  Reference is what
// the loop gets: word_t<T> for items, GT_node * for positions.
template <class Reference, class Out = void *>
class gt_walk : public detail::view_base {
public:
    explicit gt_walk(GT_iter *it) noexcept : it_(it) {}
    gt_walk(gt_walk &&other) noexcept
        : it_(std::exchange(other.it_, nullptr)), out_(other.out_) {}
    gt_walk &operator=(gt_walk &&other) noexcept {
        if (this != &other) {
            end_walk();
            it_ = std::exchange(other.it_, nullptr);
            out_ = other.out_;
        }
        return *this;
    }
    gt_walk(const gt_walk &) = delete;
    gt_walk &operator=(const gt_walk &) = delete;
    ~gt_walk() { end_walk(); }

    // The registered iterator while the walk is open, else null.
    GT_iter *get() const noexcept { return it_; }
    // Ends the walk now (GT_end_iterator), if it is open.
    void end_walk() noexcept {
        if (it_) GT_end_iterator(std::exchange(it_, nullptr));
    }

    class iterator {
    public:
        using iterator_concept = std::input_iterator_tag;
        using iterator_category = std::input_iterator_tag;
        using value_type = Reference;
        using difference_type = std::ptrdiff_t;
        using reference = Reference;
        using pointer = void;

        iterator() = default;
        reference operator*() const noexcept {
            if constexpr (std::is_same_v<Out, void *>)
                return from_word<Reference>(w_->out_);
            else
                return w_->out_;
        }
        iterator &operator++() noexcept {
            if (!detail::gt_step<Out>::step(it_, w_->out_)) {
                w_->it_ = nullptr;  // the step freed it
                w_ = nullptr;
            }
            return *this;
        }
        void operator++(int) noexcept { ++*this; }
        friend bool operator==(const iterator &a, sentinel) noexcept { return !a.w_; }
#if !defined(__cpp_impl_three_way_comparison)
        friend bool operator==(sentinel, const iterator &a) noexcept { return !a.w_; }
        friend bool operator!=(const iterator &a, sentinel) noexcept { return a.w_; }
        friend bool operator!=(sentinel, const iterator &a) noexcept { return a.w_; }
#endif

    private:
        friend class gt_walk;
        explicit iterator(gt_walk *w) noexcept : w_(w->it_ ? w : nullptr), it_(w->it_) {
            if (w_) ++*this;
        }
        gt_walk *w_ = nullptr;
        // A copy of the range's handle that the steps cannot reach, so that
        // it stays in a register through the loop.
        GT_iter *it_ = nullptr;
    };

    // Takes the first step; call it once.
    iterator begin() noexcept { return iterator(this); }
    sentinel end() const noexcept { return {}; }

private:
    GT_iter *it_;
    Out out_{};
};

// A walk opened by any GT opening (GT_all_items_conditional, GT_from_next
// ...), owned from here on.
template <class T>
gt_walk<word_t<T>> walk(GT_iter *it) noexcept { return gt_walk<word_t<T>>(it); }
template <class T>
gt_walk<word_t<T>> items(GT_tree *tree) { return walk<T>(GT_all_items(tree)); }
inline gt_walk<GT_node *, GT_node *> positions(GT_iter *it) noexcept {
    return gt_walk<GT_node *, GT_node *>(it);
}
inline gt_walk<GT_node *, GT_node *> positions(GT_tree *tree) {
    return positions(GT_all_items(tree));
}

// Owners walk as their handles do.
template <class T, class Traits>
auto items(const detail::owner<Traits> &o) -> decltype(items<T>(o.get())) {
    return items<T>(o.get());
}
template <class T, class Cmp>
gt_walk<word_t<T>> items(const gt_tree<T, Cmp> &tree) { return items<T>(tree.get()); }
template <class T>
auto items(const el_list<T> &l) { return items<T>(l.get()); }
template <class T>
auto items(const es_stack<T> &s) { return items<T>(s.get()); }
inline auto items(const dbll_list &l) { return items<double>(l.get()); }
template <class T>
auto items(const da_array<T> &a) { return items<T>(a.get()); }
template <class T>
auto items(gb_list<T> &g) { return items<T>(g.get()); }
template <class K, class V = void *>
auto entries(const hsh_table &t) { return entries<K, V>(t.get()); }
template <class Traits>
auto positions(const detail::owner<Traits> &o) -> decltype(positions(o.get())) {
    return positions(o.get());
}

// ---- dictionaries ---------------------------------------------------------------

class dict_view;
class dict;
class value;

// What a value of the wrong kind was asked for throws.
class bad_value_kind : public std::exception {
public:
    const char *what() const noexcept override { return "vorn: the value is of another kind"; }
};

namespace detail {
template <class T>
inline constexpr int32_t kind_of = std::is_same_v<T, int32_t>            ? GENDICT_INT
                                   : std::is_same_v<T, double>           ? GENDICT_DOUBLE
                                   : std::is_same_v<T, std::string_view> ? GENDICT_STRING
                                   : std::is_same_v<T, dict_view>        ? GENDICT_DICT
                                                                         : 0;

// Calls f with a GENDICT_value holding v; a text is lent for the call only.
template <class F>
void with_value(int32_t v, F &&f) {
    GENDICT_value x{};
    x.kind = GENDICT_INT;
    x.data.integer = v;
    f(x);
}
template <class F>
void with_value(double v, F &&f) {
    GENDICT_value x{};
    x.kind = GENDICT_DOUBLE;
    x.data.real = v;
    f(x);
}
template <class F>
void with_value(std::string_view text, F &&f) {
    std::string t(text);
    GENDICT_value x{};
    x.kind = GENDICT_STRING;
    x.data.text = t.data();
    f(x);
}
template <class F>
void with_value(const char *text, F &&f) {
    with_value(std::string_view(text), std::forward<F>(f));
}

struct ignore_value {
    void operator()(const GENDICT_value &) const noexcept {}
};

// A zero-terminated copy of a key or name.
inline std::string z(std::string_view s) { return std::string(s); }
}  // namespace detail

// A dictionary lent by its owner: every GENDICT operation but release.
class dict_view {
public:
    explicit dict_view(SL_list *d = nullptr) noexcept : d_(d) {}
    SL_list *get() const noexcept { return d_; }
    explicit operator bool() const noexcept { return d_ != nullptr; }

    // GENDICT_get: the value, lent, or nothing.
    inline std::optional<value> find(std::string_view key) const;
    bool contains(std::string_view key) const {
        GENDICT_value v{};
        return GENDICT_get(d_, detail::z(key).c_str(), &v) != 0;
    }
    int32_t size() const { return SL_count_items(d_); }
    // GENDICT_add of an integer, a double or a text (copied); see also the
    // overload that takes a dictionary over.
    template <class V>
    auto set(std::string_view key, V &&v) const
        -> decltype(detail::with_value(std::forward<V>(v), detail::ignore_value{})) {
        const std::string k = detail::z(key);
        detail::with_value(std::forward<V>(v),
                           [&](const GENDICT_value &x) { GENDICT_add(d_, k.c_str(), x); });
    }
    inline void set(std::string_view key, dict &&sub) const;
    void erase(std::string_view key) const { GENDICT_delete_item(d_, detail::z(key).c_str()); }
    // The DICT text form (GENDICT_to_buf); std::bad_alloc when it cannot be
    // had.
    std::string to_text() const {
        char *buf = nullptr;
        int32_t length = 0;
        GENDICT_to_buf(d_, &buf, &length);
        if (!buf) throw std::bad_alloc();
        std::string text(buf, static_cast<std::size_t>(length - 1));
        std::free(buf);
        return text;
    }
    inline dict copy() const;
    // The entries in order, as GENDICT_item records.
    auto entries() const { return items<GENDICT_item>(d_); }

private:
    SL_list *d_;
};

// A view on one GENDICT_value, like std::variant<monostate, int32_t, double,
// string_view, dict_view>; a text or dictionary in it is lent.
class value {
public:
    explicit value(const GENDICT_value &v) noexcept : v_(v) {}
    const GENDICT_value &get() const noexcept { return v_; }
    int32_t kind() const noexcept { return v_.kind; }
    // The integer view of GENDICT_get_int_val, if the kind has one.
    std::optional<int32_t> to_int() const noexcept {
        int32_t out = 0;
        if (GENDICT_get_int_val(v_, &out)) return out;
        return std::nullopt;
    }
    // Calls f with the typed value: int32_t, double, std::string_view (a
    // null text as empty), dict_view, or std::monostate for another kind.
    template <class F>
    decltype(auto) visit(F &&f) const {
        switch (v_.kind) {
        case GENDICT_INT: return std::forward<F>(f)(v_.data.integer);
        case GENDICT_DOUBLE: return std::forward<F>(f)(v_.data.real);
        case GENDICT_STRING:
            return std::forward<F>(f)(v_.data.text ? std::string_view(v_.data.text)
                                                   : std::string_view());
        case GENDICT_DICT: return std::forward<F>(f)(dict_view(v_.data.dict));
        default: return std::forward<F>(f)(std::monostate{});
        }
    }

private:
    GENDICT_value v_;
};

// As std::holds_alternative, std::get_if and std::get; T is int32_t,
// double, std::string_view or dict_view.
template <class T>
bool holds_alternative(const value &v) noexcept {
    static_assert(detail::kind_of<T> != 0, "int32_t, double, std::string_view or dict_view");
    return v.kind() == detail::kind_of<T>;
}
// The typed value, or nothing for another kind.
template <class T>
std::optional<T> get_if(const value &v) noexcept {
    if (!holds_alternative<T>(v)) return std::nullopt;
    return v.visit([](auto x) -> std::optional<T> {
        if constexpr (std::is_same_v<decltype(x), T>)
            return x;
        else
            return std::nullopt;
    });
}
// The typed value; bad_value_kind for another kind.
template <class T>
T get(const value &v) {
    std::optional<T> x = get_if<T>(v);
    if (!x) throw bad_value_kind();
    return *x;
}

inline std::optional<value> dict_view::find(std::string_view key) const {
    GENDICT_value v{};
    if (!GENDICT_get(d_, detail::z(key).c_str(), &v)) return std::nullopt;
    return value(v);
}

// An owned GENDICT dictionary (GENDICT_release at the end).
class dict : public dict_view {
public:
    dict() : dict(adopt, GENDICT_create()) {}
    dict(adopt_t, SL_list *d) noexcept : dict_view(d) {}
    dict(dict &&other) noexcept : dict_view(other.detach()) {}
    dict &operator=(dict &&other) noexcept {
        if (this != &other) {
            SL_list *old = detach();
            static_cast<dict_view &>(*this) = dict_view(other.detach());
            if (old) GENDICT_release(&old);
        }
        return *this;
    }
    dict(const dict &) = delete;
    dict &operator=(const dict &) = delete;
    ~dict() {
        if (SL_list *d = get()) GENDICT_release(&d);
    }
    SL_list *detach() noexcept {
        SL_list *d = get();
        static_cast<dict_view &>(*this) = dict_view();
        return d;
    }
    // GENDICT_from_buf: a dictionary that holds null when the text is no
    // dictionary.
    static dict from_text(std::string_view text) {
        return dict(adopt, GENDICT_from_buf(detail::z(text).c_str()));
    }
};

// Takes the sub-dictionary over (GENDICT_DICT); `sub` then holds null.
inline void dict_view::set(std::string_view key, dict &&sub) const {
    GENDICT_value x{};
    x.kind = GENDICT_DICT;
    x.data.dict = sub.detach();
    GENDICT_add(d_, detail::z(key).c_str(), x);
}
inline dict dict_view::copy() const { return dict(adopt, GENDICT_copy(d_)); }

// An owned RDBDICT dictionary: values by topic and key.
class rdb_dict : public detail::owner<detail::rdb_traits> {
public:
    using owner::owner;
    rdb_dict() : owner(adopt, RDBDICT_create()) {}
    // The whole dictionary, topics as entries of kind GENDICT_DICT.
    dict_view view() const noexcept { return dict_view(get()); }
    // RDBDICT_get_topic: the topic's keys, lent; a null view if none.
    dict_view topic(std::string_view name) const {
        return dict_view(RDBDICT_get_topic(get(), detail::z(name).c_str()));
    }
    std::optional<value> find(std::string_view topic_name, std::string_view key) const {
        GENDICT_value v{};
        if (!RDBDICT_get(get(), detail::z(topic_name).c_str(), detail::z(key).c_str(), &v))
            return std::nullopt;
        return value(v);
    }
    // RDBDICT_add of an integer, a double or a text (copied); a name that is
    // no topic changes nothing.
    template <class V>
    auto set(std::string_view topic_name, std::string_view key, V &&v) const
        -> decltype(detail::with_value(std::forward<V>(v), detail::ignore_value{})) {
        const std::string t = detail::z(topic_name), k = detail::z(key);
        detail::with_value(std::forward<V>(v), [&](const GENDICT_value &x) {
            RDBDICT_add(get(), t.c_str(), k.c_str(), x);
        });
    }
    // Takes the sub-dictionary over, unless the name is no topic: then
    // nothing changes and `sub` keeps it.
    void set(std::string_view topic_name, std::string_view key, dict &&sub) const {
        if (!topic(topic_name) && view().contains(topic_name)) return;
        GENDICT_value x{};
        x.kind = GENDICT_DICT;
        x.data.dict = sub.detach();
        RDBDICT_add(get(), detail::z(topic_name).c_str(), detail::z(key).c_str(), x);
    }
    void erase(std::string_view topic_name, std::string_view key) const {
        RDBDICT_delete_key(get(), detail::z(topic_name).c_str(), detail::z(key).c_str());
    }
    void erase_topic(std::string_view topic_name) const {
        RDBDICT_delete_topic(get(), detail::z(topic_name).c_str());
    }
    std::string to_text() const { return view().to_text(); }
    static rdb_dict from_text(std::string_view text) {
        return rdb_dict(adopt, RDBDICT_from_buf(detail::z(text).c_str()));
    }
};

}  // namespace vorn

#if defined(__cpp_lib_ranges)
template <class Step>
inline constexpr bool std::ranges::enable_borrowed_range<vorn::detail::walk_range<Step>> = true;
template <class T>
inline constexpr bool std::ranges::enable_borrowed_range<vorn::detail::span_range<T>> = true;
#endif

#endif /* VORN_CONTAINER_HPP */
