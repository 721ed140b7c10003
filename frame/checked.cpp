// The checks of the checked build and their side tables: live handles,
// released handles, and the list that holds each node or linked record.
// Membership is kept as sets of nodes with a union-find over them, so that
// a splice merges two lists in constant time and a lookup stays near
// constant.  Nothing here changes a container; a check that fails prints one
// line through Tprintf and raises (see vorn_checked.h).
#if defined(VORN_CHECKED)

#include "checked.hpp"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

#include "list_frame.hpp"

namespace vorn::checked {

VORN_CHK_TLS LiveMemo live_memo[4];
std::atomic<uint64_t> deaths{0};
VORN_CHK_TLS uint64_t operations;
VORN_CHK_TLS uint64_t next_full_check = VORN_CHECKED_PERIOD;

namespace {

enum Check : int32_t {
#define VORN_CHK_ENUM(name, file, line, code, ops, cond) name,
    VORN_RAISES_CHECKED(VORN_CHK_ENUM)
#undef VORN_CHK_ENUM
};

struct Identity {
    int32_t line, code;
};
constexpr Identity kIdentity[] = {
#define VORN_CHK_ID(name, file, line, code, ops, cond) {line, code},
    VORN_RAISES_CHECKED(VORN_CHK_ID)
#undef VORN_CHK_ID
};

[[noreturn]] void fail(Check check, const char *op, const char *format, ...) {
    char what[256];
    va_list args;
    va_start(args, format);
    std::vsnprintf(what, sizeof what, format, args);
    va_end(args);
    Tprintf("vorn_container: %s: %s\n", op, what);
    EX_raise_exception_line(VORN_CHECKED_FILE, kIdentity[check].line, kIdentity[check].code);
}

// An open-addressing map from addresses to words, linear probing, removal by
// shifting the run back (no tombstones).  Key 0 is never stored.
class AddressMap {
  public:
    void *get(const void *key) const {
        if (slots_.empty()) return nullptr;
        for (size_t i = home(key);; i = (i + 1) & mask()) {
            if (slots_[i].key == key) return slots_[i].value;
            if (!slots_[i].key) return nullptr;
        }
    }
    void put(const void *key, void *value) {
        if ((used_ + 1) * 4 > slots_.size() * 3) grow();
        size_t i = home(key);
        for (; slots_[i].key; i = (i + 1) & mask())
            if (slots_[i].key == key) {
                slots_[i].value = value;
                return;
            }
        slots_[i] = {key, value};
        ++used_;
    }
    void erase(const void *key) {
        if (slots_.empty()) return;
        size_t i = home(key);
        for (; slots_[i].key != key; i = (i + 1) & mask())
            if (!slots_[i].key) return;
        for (size_t j = i;;) {  // shift the rest of the run back over the hole
            j = (j + 1) & mask();
            if (!slots_[j].key) break;
            const size_t h = home(slots_[j].key);
            if (((j - h) & mask()) >= ((j - i) & mask())) {
                slots_[i] = slots_[j];
                i = j;
            }
        }
        slots_[i] = {};
        --used_;
    }

  private:
    struct Slot {
        const void *key;
        void *value;
    };
    size_t mask() const { return slots_.size() - 1; }
    // Fibonacci hashing: neighbouring addresses land far apart.
    size_t home(const void *key) const {
        const auto k = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(key));
        return static_cast<size_t>((k >> 4) * 0x9E3779B97F4A7C15ull >> 20) & mask();
    }
    void grow() {
        std::vector<Slot> old(slots_.empty() ? 64 : slots_.size() * 2);
        old.swap(slots_);
        used_ = 0;
        for (const Slot &s : old)
            if (s.key) put(s.key, s.value);
    }
    std::vector<Slot> slots_;
    size_t used_ = 0;
};

// What each node or linked record belongs to, by address: a directory of
// 64 KiB chunks of the address space, each an array with one word per 16
// bytes (two items always lie 16 bytes apart or more).  Items allocated
// together share a chunk, so building or walking a list reads the map in
// order instead of at scattered places.  A chunk stays once made.
class NodeMap {
  public:
    void *get(const void *node) const {
        void **chunk = static_cast<void **>(chunks_.get(key_of(node)));
        return chunk ? chunk[index_of(node)] : nullptr;
    }
    void put(const void *node, void *value) {
        void **chunk = static_cast<void **>(chunks_.get(key_of(node)));
        if (!chunk) {
            chunk = static_cast<void **>(std::calloc(kSlots, sizeof(void *)));
            if (!chunk) std::abort();
            chunks_.put(key_of(node), chunk);
        }
        chunk[index_of(node)] = value;
    }
    void erase(const void *node) {
        if (void **chunk = static_cast<void **>(chunks_.get(key_of(node)))) chunk[index_of(node)] = nullptr;
    }

  private:
    static constexpr size_t kSlots = 4096;
    // The chunk's number, offset by one so that no key is 0.
    static const void *key_of(const void *node) {
        return reinterpret_cast<const void *>((reinterpret_cast<uintptr_t>(node) >> 16) + 1);
    }
    static size_t index_of(const void *node) { return (reinterpret_cast<uintptr_t>(node) >> 4) & (kSlots - 1); }
    AddressMap chunks_;
};

// A set of nodes of one list; sets merged by a splice point to the set they
// joined.  A root knows its list and every set merged into it, so that all
// of them go when the list is emptied.
struct Group {
    Group *parent;
    const void *head;
    std::vector<Group *> merged;
};

// One lock for all tables: a spin lock, since every holder leaves after a
// few table reads and writes.
class SpinLock {
  public:
    void lock() {
        while (busy_.exchange(true, std::memory_order_acquire))
            while (busy_.load(std::memory_order_relaxed)) std::this_thread::yield();
    }
    void unlock() { busy_.store(false, std::memory_order_release); }

  private:
    std::atomic<bool> busy_{false};
};
// A table that is never destroyed, so that calls made while the process
// exits (by other objects' destructors) still find it.
template <class T>
union Lasting {
    T value;
    constexpr Lasting() : value() {}
    ~Lasting() {}
    T *operator->() { return &value; }
};

SpinLock table_lock;
Lasting<AddressMap> live_handles;  // handle -> Kind
Lasting<AddressMap> dead_handles;  // released handle -> Kind, until the address is reused
Lasting<AddressMap> head_groups;   // list head -> its root Group, while it holds items
Lasting<NodeMap> node_groups;      // node or linked record -> a Group of its list
// Bumped whenever a handle dies or a node leaves its list: what a thread
// found valid stays valid while these have not moved.
std::atomic<uint64_t> departures{0};

// Per thread, the last position a walk was found on a list, with the epoch
// it was found at: a walk along a list needs no look-up in the tables.
struct WalkMemo {
    const vorn::frame::SL_link *node;
    uint64_t epoch;
};
VORN_CHK_TLS WalkMemo walk_memo;

using Guard = std::lock_guard<SpinLock>;

const char *name_of(Kind kind) {
    switch (kind) {
        case Kind::GL: return "GL list";
        case Kind::EL: return "EL list";
        case Kind::SL: return "SL list";
        case Kind::GT: return "GT tree";
        case Kind::GT_walk: return "GT walk";
        case Kind::DA: return "DA array";
        case Kind::HSH: return "HSH table";
        case Kind::LU: return "vorn_lu lookup";
        case Kind::IO_LUT: return "io_lut table";
    }
    return "handle";
}

void *as_word(Kind kind) { return reinterpret_cast<void *>(static_cast<uintptr_t>(kind)); }

// The next full check waits at least 8 operations per item this one
// visited: so its cost stays a constant share of every operation, however
// large the containers.
void full_check_done(uint64_t visited) {
    next_full_check = operations + (visited * 8 > VORN_CHECKED_PERIOD ? visited * 8 : VORN_CHECKED_PERIOD);
}

Group *root_of(Group *g) {
    while (g->parent) {
        if (g->parent->parent) g->parent = g->parent->parent;
        g = g->parent;
    }
    return g;
}

// The list holding `node`, or null.  Caller holds the lock.
const void *owner_locked(const void *node) {
    auto *g = static_cast<Group *>(node_groups->get(node));
    return g ? root_of(g)->head : nullptr;
}

const void *owner(const void *node) {
    Guard guard(table_lock);
    return owner_locked(node);
}

void drop_groups(const void *head) {
    auto *g = static_cast<Group *>(head_groups->get(head));
    if (!g) return;
    for (Group *m : g->merged) delete m;
    delete g;
    head_groups->erase(head);
}

void check_live(const char *op, const void *handle, Kind kind) {
    const uint64_t epoch = deaths.load(std::memory_order_acquire);
    LiveMemo &memo = memo_of(handle);
    if (handle && memo.handle == handle && memo.kind == kind && memo.epoch == epoch) return;
    bool released = false;
    {
        Guard guard(table_lock);
        if (handle && live_handles->get(handle) == as_word(kind)) {
            memo = {handle, kind, epoch};
            return;
        }
        released = handle && dead_handles->get(handle) == as_word(kind);
    }
    if (released)
        fail(CHK_HANDLE_RELEASED, op, "%s %p was released already", name_of(kind), handle);
    fail(CHK_HANDLE_NOT_LIVE, op, "%p is not a live %s", handle, name_of(kind));
}

// ---- the linked lists ----

template <class H>
constexpr Kind list_kind() {
    if constexpr (std::is_same_v<H, GL_list>) return Kind::GL;
    if constexpr (std::is_same_v<H, EL_list>) return Kind::EL;
    return Kind::SL;
}

template <class H>
using Node = std::conditional_t<std::is_same_v<H, GL_list>, GL_node,
                                std::conditional_t<std::is_same_v<H, EL_list>, EL_node,
                                                   vorn::frame::SL_link>>;

// The head's shape: count against first and last, the ends' outer links.
template <class H>
void check_shape(const char *op, const H *l) {
    using N = Node<H>;
    const N *first = vorn::frame::first_of<N>(l);
    const N *last = vorn::frame::last_of<N>(l);
    if (l->count < 0 || (l->count == 0) != (first == nullptr) || (first == nullptr) != (last == nullptr) ||
        (l->count == 1 && first != last))
        fail(CHK_COUNT, op, "list %p holds count %d with first %p and last %p", static_cast<const void *>(l),
             l->count, static_cast<const void *>(first), static_cast<const void *>(last));
    if (!first) return;
    const bool ring = vorn::frame::is_ring(l);
    if (first->prev != (ring ? last : nullptr) || last->next != (ring ? first : nullptr))
        fail(CHK_LINKS, op, "the ends of list %p are not linked as a%s list", static_cast<const void *>(l),
             ring ? " closed" : "n open");
}

template <class H>
void check_list(const char *op, const H *l) {
    check_live(op, l, list_kind<H>());
    check_shape(op, l);
    if (full_check_due()) list_full(op, l);
}

// Both neighbours of `pos` point back at it; a missing neighbour makes it an end.
template <class H>
void check_links_at(const char *op, const H *l, const Node<H> *pos) {
    const void *prev_ok = pos->prev ? pos->prev->next : l->first;
    const void *next_ok = pos->next ? pos->next->prev : l->last;
    if (prev_ok != pos || next_ok != pos)
        fail(CHK_LINKS, op, "the links around position %p of list %p disagree", static_cast<const void *>(pos),
             static_cast<const void *>(l));
}

template <class H>
void check_pos(const char *op, const H *l, const void *pos) {
    check_list(op, l);
    if (!pos || owner(pos) != l)
        fail(CHK_POSITION_FOREIGN, op, "position %p is not in list %p", pos, static_cast<const void *>(l));
    check_links_at(op, l, static_cast<const Node<H> *>(pos));
}

// Walks the whole list once: every item is the list's, links agree both
// ways, and the walk from first meets last after exactly `count` items.
template <class H>
void check_full(const char *op, const H *l) {
    using N = Node<H>;
    check_shape(op, l);
    const N *last = vorn::frame::last_of<N>(l);
    int32_t seen = 0;
    for (const N *n = vorn::frame::first_of<N>(l); n && seen <= l->count; n = n->next) {
        ++seen;
        if (owner(n) != l)
            fail(CHK_LINKS, op, "item %p reached from list %p is not its own", static_cast<const void *>(n),
                 static_cast<const void *>(l));
        if (n == last) break;
        if (n->next && n->next->prev != n)
            fail(CHK_LINKS, op, "the prev link behind item %p of list %p is broken",
                 static_cast<const void *>(n), static_cast<const void *>(l));
    }
    if (seen != l->count)
        fail(CHK_COUNT, op, "list %p holds count %d but %d items", static_cast<const void *>(l), l->count, seen);
    full_check_done(static_cast<uint64_t>(seen));
}

}  // namespace

// ---- handles ----

void born(const void *handle, Kind kind) {
    Guard guard(table_lock);
    live_handles->put(handle, as_word(kind));
    dead_handles->erase(handle);
}

void dies(const char *op, const void *handle, Kind kind) {
    check_live(op, handle, kind);
    Guard guard(table_lock);
    live_handles->erase(handle);
    dead_handles->put(handle, as_word(kind));
    deaths.fetch_add(1, std::memory_order_release);
}

void forget(const void *handle) {
    Guard guard(table_lock);
    live_handles->erase(handle);
    deaths.fetch_add(1, std::memory_order_release);
}

void live(const char *op, const void *handle, Kind kind) { check_live(op, handle, kind); }

// ---- membership ----

void on_link(const void *head, const void *node) {
    Guard guard(table_lock);
    auto *g = static_cast<Group *>(head_groups->get(head));
    if (!g) {
        g = new Group{nullptr, head, {}};
        head_groups->put(head, g);
    }
    node_groups->put(node, g);
}

void on_unlink(const void *head, const void *node, int32_t count_left) {
    Guard guard(table_lock);
    if (node) node_groups->erase(node);
    if (count_left == 0) drop_groups(head);
    departures.fetch_add(1, std::memory_order_release);
}

void on_drain(const void *head, const void *node) { on_unlink(head, node, node ? 1 : 0); }

void on_splice(const void *head, const void *second) {
    Guard guard(table_lock);
    auto *moved = static_cast<Group *>(head_groups->get(second));
    if (!moved) return;
    head_groups->erase(second);
    auto *into = static_cast<Group *>(head_groups->get(head));
    if (!into) {
        moved->head = head;
        head_groups->put(head, moved);
        return;
    }
    moved->parent = into;
    into->merged.push_back(moved);
    into->merged.insert(into->merged.end(), moved->merged.begin(), moved->merged.end());
    moved->merged.clear();
    moved->merged.shrink_to_fit();
}

void on_split(const EL_list *end) {
    const EL_node *n = end->first;
    for (int32_t i = 0; n && i < end->count; ++i, n = n->next) on_link(end, n);
}

// ---- lists ----

void list(const char *op, const GL_list *l) { check_list(op, l); }
void list(const char *op, const EL_list *l) { check_list(op, l); }
void list(const char *op, const SL_list *l) { check_list(op, l); }
void list_pos(const char *op, const GL_list *l, const void *pos) { check_pos(op, l, pos); }
void list_pos(const char *op, const EL_list *l, const void *pos) { check_pos(op, l, pos); }
void list_pos(const char *op, const SL_list *l, const void *pos) { check_pos(op, l, pos); }
void list_full(const char *op, const GL_list *l) { check_full(op, l); }
void list_full(const char *op, const EL_list *l) { check_full(op, l); }
void list_full(const char *op, const SL_list *l) { check_full(op, l); }

void list_range(const char *op, const void *l, const void *from, const void *) {
    if (!l || !from) return;
    if (owner(from) != l) fail(CHK_POSITION_FOREIGN, op, "position %p is not in list %p", from, l);
}

void record_unlinked(const char *op, const void *record, const void *allowed) {
    const void *l = record ? owner(record) : nullptr;
    if (l && l != allowed)
        fail(CHK_RECORD_LINKED, op, "record %p is already linked into list %p", record, l);
}

// A position linked to one found on a list is on that list too, as long as
// no node has left any list since; otherwise the tables are asked.
void walk(const char *op, const void *next) {
    if (!next) return;
    const uint64_t epoch = departures.load(std::memory_order_acquire);
    const auto *n = static_cast<const vorn::frame::SL_link *>(next);
    if (walk_memo.epoch == epoch && walk_memo.node &&
        (walk_memo.node->next == n || walk_memo.node->prev == n)) {
        walk_memo.node = n;
        return;
    }
    if (!owner(next)) fail(CHK_WALK_STALE, op, "the walk's next position %p is on no list", next);
    walk_memo = {n, epoch};
}

void on_a_list(const char *op, const void *pos) {
    if (!pos || !owner(pos)) fail(CHK_POSITION_FOREIGN, op, "position %p is on no list", pos);
}

void item_size(const char *op, const EL_node *pos, int32_t size, bool exact) {
    const auto *l = static_cast<const EL_list *>(owner(pos));
    if (l && (exact ? size != l->item_size : (size < 0 || size > l->item_size)))
        fail(CHK_ITEM_SIZE, op, "size %d at position %p does not fit the item size %d of list %p", size,
             static_cast<const void *>(pos), l->item_size, static_cast<const void *>(l));
}

// ---- GT ----

namespace {

void check_balance_range(const char *op, const GT_tree *t, const GT_node *n) {
    if (n->balance < -1 || n->balance > 1)
        fail(CHK_GT_BALANCE, op, "node %p of tree %p has balance %d", static_cast<const void *>(n),
             static_cast<const void *>(t), n->balance);
}

void check_chain_at(const char *op, const GT_tree *t, const GT_node *n) {
    if ((n->prev ? n->prev->next : t->first) != n || (n->next ? n->next->prev : t->last) != n)
        fail(CHK_GT_ORDER, op, "the chain links around node %p of tree %p disagree", static_cast<const void *>(n),
             static_cast<const void *>(t));
    if ((n->prev && t->compare(n->prev->item, n->item) > 0) || (n->next && t->compare(n->item, n->next->item) > 0))
        fail(CHK_GT_ORDER, op, "node %p of tree %p is out of order with its chain neighbours",
             static_cast<const void *>(n), static_cast<const void *>(t));
}

// Height of the subtree, checking every balance below; `expected` follows
// the chain as the in-order walk goes.
int32_t height_below(const char *op, const GT_tree *t, const GT_node *n, const GT_node *&expected, int depth) {
    if (!n) return 0;
    if (depth > 96) fail(CHK_GT_BALANCE, op, "tree %p is deeper than any balanced tree", static_cast<const void *>(t));
    const int32_t left = height_below(op, t, n->left, expected, depth + 1);
    if (n != expected)
        fail(CHK_GT_ORDER, op, "node %p of tree %p stands elsewhere in the chain than in the tree",
             static_cast<const void *>(n), static_cast<const void *>(t));
    check_chain_at(op, t, n);
    expected = n->next;
    const int32_t right = height_below(op, t, n->right, expected, depth + 1);
    if (n->balance != right - left)
        fail(CHK_GT_BALANCE, op, "node %p of tree %p has balance %d, its heights differ by %d",
             static_cast<const void *>(n), static_cast<const void *>(t), n->balance, right - left);
    check_balance_range(op, t, n);
    return 1 + (left > right ? left : right);
}

}  // namespace

void gt_live(const char *op, const GT_tree *t) {
    if (t) check_live(op, t, Kind::GT);
}

void gt(const char *op, const GT_tree *t) {
    if (!t) return;
    check_live(op, t, Kind::GT);
    if ((t->root == nullptr) != (t->first == nullptr) || (t->first == nullptr) != (t->last == nullptr))
        fail(CHK_GT_ORDER, op, "tree %p has root %p, first %p and last %p", static_cast<const void *>(t),
             static_cast<const void *>(t->root), static_cast<const void *>(t->first),
             static_cast<const void *>(t->last));
    if (t->root) check_balance_range(op, t, t->root);
    if (full_check_due()) gt_full(op, t);
}

void gt_inserted(const char *op, const GT_tree *t, const GT_node *n) {
    if (!t || !n) return;
    check_chain_at(op, t, n);
    // The path a lookup steers along, down to the node or a leaf.
    for (const GT_node *p = t->root; p && p != n; p = t->compare(n->item, p->item) < 0 ? p->left : p->right)
        check_balance_range(op, t, p);
}

void gt_full(const char *op, const GT_tree *t) {
    if (!t) return;
    const GT_node *expected = t->first;
    const int32_t height = height_below(op, t, t->root, expected, 0);
    if (expected)
        fail(CHK_GT_ORDER, op, "the chain of tree %p holds node %p beyond the tree's nodes",
             static_cast<const void *>(t), static_cast<const void *>(expected));
    full_check_done(uint64_t{1} << (height < 40 ? height : 40));
}

void gt_walk(const char *op, const GT_iter *it) {
    bool walk_live;
    {
        Guard guard(table_lock);
        walk_live = it && live_handles->get(it) == as_word(Kind::GT_walk);
    }
    if (!walk_live) fail(CHK_GT_WALK_DEAD, op, "GT walk %p was ended or used up", static_cast<const void *>(it));
}

// ---- DA ----

void da_slow(const char *op, const DA_array *a) {
    check_live(op, a, Kind::DA);
    if (a->nitems < 0 || a->nitems > a->nalloc || (a->nalloc > 0 && !a->data))
        fail(CHK_DA_COUNT, op, "array %p holds nitems %d, nalloc %d and block %p", static_cast<const void *>(a),
             a->nitems, a->nalloc, a->data);
}

void index_negative(const char *op, const DA_array *a, int32_t index) {
    fail(CHK_INDEX_RANGE, op, "index %d is negative (array %p)", index, static_cast<const void *>(a));
}

void da_range(const char *op, const DA_array *a, int32_t index, int32_t count) {
    da_index(op, a, index);
    if (count > 0 && index > a->nitems - count)
        fail(CHK_INDEX_RANGE, op, "index %d and count %d reach beyond the %d items of array %p", index, count,
             a->nitems, static_cast<const void *>(a));
}

// ---- HSH ----

namespace {

uint32_t home_of(const HSH_table *t, const void *key) {
    return (static_cast<uint32_t>(reinterpret_cast<uintptr_t>(key)) >> t->shift) & t->mask;
}

// Every key of the run that begins behind the empty slot `start` stands no
// farther from its home than from the run's beginning.
void check_run(const char *op, const HSH_table *t, uint32_t start) {
    for (uint32_t i = (start + 1) & t->mask; t->keys[i] && i != start; i = (i + 1) & t->mask)
        if (((i - home_of(t, t->keys[i])) & t->mask) >= ((i - start) & t->mask))
            fail(CHK_HSH_PROBE, op, "key %p of table %p stands behind an empty slot of its probe run",
                 t->keys[i], static_cast<const void *>(t));
}

void hsh_full(const char *op, const HSH_table *t) {
    int32_t keys = 0;
    for (uint32_t i = 0; i <= t->mask; ++i) {
        if (t->keys[i]) ++keys;
        else check_run(op, t, i);
    }
    if (keys != t->count)
        fail(CHK_COUNT, op, "table %p holds count %d but %d keys", static_cast<const void *>(t), t->count, keys);
    full_check_done(t->mask + uint64_t{1});
}

}  // namespace

void hsh_slow(const char *op, const HSH_table *t) {
    check_live(op, t, Kind::HSH);
    if (t->count < 0 || t->count > t->high_limit || t->mask + 1 != static_cast<uint32_t>(t->size))
        fail(CHK_HSH_PROBE, op, "table %p holds count %d of size %d, limit %d", static_cast<const void *>(t),
             t->count, t->size, t->high_limit);
    if (operations >= next_full_check) hsh_full(op, t);
}

void hsh_around(const char *op, const HSH_table *t, const void *key) {
    uint32_t start = home_of(t, key);
    for (uint32_t steps = 0; t->keys[start] && steps <= t->mask; ++steps) start = (start - 1) & t->mask;
    check_run(op, t, start);
}

// ---- GB ----

void gb_slow(const char *op, const GB_list *l, bool items) {
    if (!l) fail(CHK_GB_RECORD, op, "the record is null");
    if (l->item_size <= 0 || l->capacity < 0 ||
        (l->capacity > 0 && (l->count < 0 || l->count > l->capacity || !l->data)))
        fail(CHK_GB_RECORD, op, "record %p holds item size %d, count %d, capacity %d and block %p",
             static_cast<const void *>(l), l->item_size, l->count, l->capacity, l->data);
    if (items && l->capacity == 0 && l->count != 0)
        fail(CHK_GB_NO_BLOCK, op, "record %p holds no block but count %d", static_cast<const void *>(l), l->count);
}

void gb_pair(const char *op, const GB_list *l, const GB_list *other, bool distinct) {
    if (distinct && l == other) fail(CHK_GB_PAIR, op, "record %p is given twice", static_cast<const void *>(l));
    if (l->item_size != other->item_size)
        fail(CHK_GB_PAIR, op, "record %p holds item size %d, record %p item size %d", static_cast<const void *>(l),
             l->item_size, static_cast<const void *>(other), other->item_size);
}

}  // namespace vorn::checked

#endif  // VORN_CHECKED
