// Lists of 1,000,000 words: append, walk, insert after a held position and
// remove from the front.  GL and EL (a word-sized element) against GQueue, std::list
// and BSD TAILQ.
#include <bsd/sys/queue.h>
#include <glib.h>

#include <cstring>
#include <list>

#include "bench_common.hpp"
#include "vorn_container.h"

namespace {

const int64_t kItems = vorn_bench::scaled(1000000);

void *word(int64_t i) { return reinterpret_cast<void *>(static_cast<uintptr_t>(i + 1)); }

// ---- GL ----
void GL_Append(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = MM_bytes_in_use();
        GL_list *l = GL_create();
        for (int64_t i = 0; i < kItems; ++i) GL_append_after_last(l, word(i));
        vorn_bench::pause(state);
        vorn_bench::report_mm_bytes(state, before, kItems);
        GL_release(&l);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void GL_Walk(benchmark::State &state) {
    GL_list *l = GL_create();
    for (int64_t i = 0; i < kItems; ++i) GL_append_after_last(l, word(i));
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        GL_iter it = GL_all_items(l);
        void *w;
        while (GL_next_item(&it, &w)) sum += reinterpret_cast<uintptr_t>(w);
        benchmark::DoNotOptimize(sum);
    }
    GL_release(&l);
    vorn_bench::finish(state, kItems);
}

void GL_InsertAfterHeld(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        GL_list *l = GL_create();
        GL_node *held = GL_append_after_last(l, word(0));
        for (int64_t i = 0; i < kItems; ++i) GL_insert_after(l, held, word(i));
        vorn_bench::pause(state);
        GL_release(&l);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void GL_RemoveFront(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        GL_list *l = GL_create();
        for (int64_t i = 0; i < kItems; ++i) GL_append_after_last(l, word(i));
        vorn_bench::resume(state);
        while (l->first) GL_remove_item(l, l->first);
        vorn_bench::pause(state);
        GL_release(&l);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

// ---- GL, walking the links ----
// The links are public: a host may also walk them directly, as GQueue's
// users do.
void GL_WalkLinks(benchmark::State &state) {
    GL_list *l = GL_create();
    for (int64_t i = 0; i < kItems; ++i) GL_append_after_last(l, word(i));
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        for (GL_node *n = l->first; n; n = n->next) sum += reinterpret_cast<uintptr_t>(n->item);
        benchmark::DoNotOptimize(sum);
    }
    GL_release(&l);
    vorn_bench::finish(state, kItems);
}


// ---- EL: the element (a word here) lies in the node itself ----
void EL_Append(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = MM_bytes_in_use();
        EL_list *l = EL_create(sizeof(void *));
        for (int64_t i = 0; i < kItems; ++i) {
            void *w = word(i);
            EL_append_after_last(l, &w);
        }
        vorn_bench::pause(state);
        vorn_bench::report_mm_bytes(state, before, kItems);
        EL_release(&l);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

EL_list *el_filled() {
    EL_list *l = EL_create(sizeof(void *));
    for (int64_t i = 0; i < kItems; ++i) {
        void *w = word(i);
        EL_append_after_last(l, &w);
    }
    return l;
}

void EL_Walk(benchmark::State &state) {
    EL_list *l = el_filled();
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        EL_iter it = EL_all_items(l);
        void *e;
        while (EL_next_item(&it, &e)) sum += *static_cast<uintptr_t *>(e);
        benchmark::DoNotOptimize(sum);
    }
    EL_release(&l);
    vorn_bench::finish(state, kItems);
}

void EL_WalkLinks(benchmark::State &state) {
    EL_list *l = el_filled();
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        for (EL_node *n = l->first; n; n = n->next) {
            uintptr_t w;
            memcpy(&w, n->item, sizeof w);
            sum += w;
        }
        benchmark::DoNotOptimize(sum);
    }
    EL_release(&l);
    vorn_bench::finish(state, kItems);
}

void EL_InsertAfterHeld(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        EL_list *l = EL_create(sizeof(void *));
        void *w0 = word(0);
        EL_node *held = EL_append_after_last(l, &w0);
        for (int64_t i = 0; i < kItems; ++i) {
            void *w = word(i);
            EL_insert_after(l, held, &w);
        }
        vorn_bench::pause(state);
        EL_release(&l);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void EL_RemoveFront(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        EL_list *l = el_filled();
        vorn_bench::resume(state);
        while (l->first) EL_remove_item(l, l->first);
        vorn_bench::pause(state);
        EL_release(&l);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

// ---- GQueue ----
void GQueue_Append(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = vorn_bench::heap_bytes();
        GQueue *q = g_queue_new();
        for (int64_t i = 0; i < kItems; ++i) g_queue_push_tail(q, word(i));
        vorn_bench::pause(state);
        vorn_bench::report_bytes(state, before, kItems);
        g_queue_free(q);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void GQueue_Walk(benchmark::State &state) {
    GQueue *q = g_queue_new();
    for (int64_t i = 0; i < kItems; ++i) g_queue_push_tail(q, word(i));
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        for (GList *n = q->head; n; n = n->next) sum += reinterpret_cast<uintptr_t>(n->data);
        benchmark::DoNotOptimize(sum);
    }
    g_queue_free(q);
    vorn_bench::finish(state, kItems);
}

void GQueue_InsertAfterHeld(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        GQueue *q = g_queue_new();
        g_queue_push_tail(q, word(0));
        GList *held = q->head;
        for (int64_t i = 0; i < kItems; ++i) g_queue_insert_after(q, held, word(i));
        vorn_bench::pause(state);
        g_queue_free(q);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void GQueue_RemoveFront(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        GQueue *q = g_queue_new();
        for (int64_t i = 0; i < kItems; ++i) g_queue_push_tail(q, word(i));
        vorn_bench::resume(state);
        while (q->head) g_queue_pop_head(q);
        vorn_bench::pause(state);
        g_queue_free(q);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

// ---- std::list ----
void StdList_Append(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = vorn_bench::heap_bytes();
        auto *l = new std::list<void *>();
        for (int64_t i = 0; i < kItems; ++i) l->push_back(word(i));
        vorn_bench::pause(state);
        vorn_bench::report_bytes(state, before, kItems);
        delete l;
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void StdList_Walk(benchmark::State &state) {
    std::list<void *> l;
    for (int64_t i = 0; i < kItems; ++i) l.push_back(word(i));
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        for (void *w : l) sum += reinterpret_cast<uintptr_t>(w);
        benchmark::DoNotOptimize(sum);
    }
    vorn_bench::finish(state, kItems);
}

void StdList_InsertAfterHeld(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        auto *l = new std::list<void *>();
        l->push_back(word(0));
        auto held = l->begin();
        for (int64_t i = 0; i < kItems; ++i) l->insert(std::next(held), word(i));
        vorn_bench::pause(state);
        delete l;
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void StdList_RemoveFront(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        auto *l = new std::list<void *>();
        for (int64_t i = 0; i < kItems; ++i) l->push_back(word(i));
        vorn_bench::resume(state);
        while (!l->empty()) l->pop_front();
        vorn_bench::pause(state);
        delete l;
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

// ---- BSD TAILQ ----
struct TqNode {
    TAILQ_ENTRY(TqNode) link;
    void *item;
};
TAILQ_HEAD(TqHead, TqNode);

void tq_free(TqHead *h) {
    while (TqNode *n = TAILQ_FIRST(h)) {
        TAILQ_REMOVE(h, n, link);
        free(n);
    }
}

TqNode *tq_node(int64_t i) {
    auto *n = static_cast<TqNode *>(malloc(sizeof(TqNode)));
    n->item = word(i);
    return n;
}

void Tailq_Append(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        const int64_t before = vorn_bench::heap_bytes();
        TqHead h;
        TAILQ_INIT(&h);
        for (int64_t i = 0; i < kItems; ++i) {
            TqNode *n = tq_node(i);  // the macros evaluate their arguments twice
            TAILQ_INSERT_TAIL(&h, n, link);
        }
        vorn_bench::pause(state);
        vorn_bench::report_bytes(state, before, kItems);
        tq_free(&h);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void Tailq_Walk(benchmark::State &state) {
    TqHead h;
    TAILQ_INIT(&h);
    for (int64_t i = 0; i < kItems; ++i) {
            TqNode *n = tq_node(i);  // the macros evaluate their arguments twice
            TAILQ_INSERT_TAIL(&h, n, link);
        }
    for (auto _ : vorn_bench::timed(state)) {
        uintptr_t sum = 0;
        TqNode *n;
        TAILQ_FOREACH(n, &h, link) sum += reinterpret_cast<uintptr_t>(n->item);
        benchmark::DoNotOptimize(sum);
    }
    tq_free(&h);
    vorn_bench::finish(state, kItems);
}

void Tailq_InsertAfterHeld(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        TqHead h;
        TAILQ_INIT(&h);
        TqNode *held = tq_node(0);
        TAILQ_INSERT_TAIL(&h, held, link);
        for (int64_t i = 0; i < kItems; ++i) {
            TqNode *n = tq_node(i);
            TAILQ_INSERT_AFTER(&h, held, n, link);
        }
        vorn_bench::pause(state);
        tq_free(&h);
        vorn_bench::resume(state);
    }
    vorn_bench::finish(state, kItems);
}

void Tailq_RemoveFront(benchmark::State &state) {
    for (auto _ : vorn_bench::timed(state)) {
        vorn_bench::pause(state);
        TqHead h;
        TAILQ_INIT(&h);
        for (int64_t i = 0; i < kItems; ++i) {
            TqNode *n = tq_node(i);  // the macros evaluate their arguments twice
            TAILQ_INSERT_TAIL(&h, n, link);
        }
        vorn_bench::resume(state);
        tq_free(&h);
    }
    vorn_bench::finish(state, kItems);
}

}  // namespace

#define VORN_LIST_BENCH(name) BENCHMARK(name)->Unit(benchmark::kMillisecond)
VORN_LIST_BENCH(GL_Append);
VORN_LIST_BENCH(EL_Append);
VORN_LIST_BENCH(GQueue_Append);
VORN_LIST_BENCH(StdList_Append);
VORN_LIST_BENCH(Tailq_Append);
VORN_LIST_BENCH(GL_Walk);
VORN_LIST_BENCH(EL_Walk);
VORN_LIST_BENCH(GL_WalkLinks);
VORN_LIST_BENCH(EL_WalkLinks);
VORN_LIST_BENCH(GQueue_Walk);
VORN_LIST_BENCH(StdList_Walk);
VORN_LIST_BENCH(Tailq_Walk);
VORN_LIST_BENCH(GL_InsertAfterHeld);
VORN_LIST_BENCH(EL_InsertAfterHeld);
VORN_LIST_BENCH(GQueue_InsertAfterHeld);
VORN_LIST_BENCH(StdList_InsertAfterHeld);
VORN_LIST_BENCH(Tailq_InsertAfterHeld);
VORN_LIST_BENCH(GL_RemoveFront);
VORN_LIST_BENCH(EL_RemoveFront);
VORN_LIST_BENCH(GQueue_RemoveFront);
VORN_LIST_BENCH(StdList_RemoveFront);
VORN_LIST_BENCH(Tailq_RemoveFront);
