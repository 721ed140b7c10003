// GL operation sequences against a reference vector; links, count and order
// are checked after every step, and no MM_ block may outlive the run.
#include <algorithm>
#include <vector>

#include "fuzz_model.hpp"
#include "vorn_container.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    vorn_fuzz::Input in(data, size);
    const int64_t blocks = MM_blocks_in_use();
    GL_list *l = GL_create();
    std::vector<GL_node *> ref;
    auto pick = [&] { return ref[in.below(static_cast<uint32_t>(ref.size()))]; };
    auto at = [&](GL_node *p) { return std::find(ref.begin(), ref.end(), p); };
    while (in.more() && ref.size() < 4096) {
        void *w = reinterpret_cast<void *>(static_cast<uintptr_t>(in.byte() % 8));
        switch (in.below(8)) {
            case 0: ref.push_back(GL_append_after_last(l, w)); break;
            case 1: ref.insert(ref.begin(), GL_insert_before_first(l, w)); break;
            case 2:
                if (!ref.empty()) {
                    GL_node *p = pick();
                    ref.insert(at(p) + 1, GL_insert_after(l, p, w));
                }
                break;
            case 3:
                if (!ref.empty()) {
                    GL_node *p = pick();
                    ref.insert(at(p), GL_insert_before(l, p, w));
                }
                break;
            case 4:
                if (!ref.empty()) {
                    GL_node *p = pick();
                    ref.erase(at(p));
                    GL_remove_item(l, p);
                }
                break;
            case 5:
                if (!ref.empty()) {
                    GL_node *p = pick();
                    ref.erase(at(p));
                    ref.insert(ref.begin(), p);
                    GL_move_before_first(l, p);
                }
                break;
            case 6: {
                GL_node *p = GL_insert_unique(l, w);
                if (p) ref.push_back(p);
                break;
            }
            case 7: {  // remove every item with this word during a walk
                GL_iter it = GL_all_items(l);
                GL_node *p;
                while (GL_next_position(&it, &p))
                    if (p->item == w) {
                        ref.erase(at(p));
                        GL_remove_item(l, p);
                    }
                break;
            }
        }
        FUZZ_CHECK(l->count == static_cast<int32_t>(ref.size()));
        FUZZ_CHECK(l->first == (ref.empty() ? nullptr : ref.front()));
        FUZZ_CHECK(l->last == (ref.empty() ? nullptr : ref.back()));
        for (size_t i = 0; i < ref.size(); ++i) {
            FUZZ_CHECK(ref[i]->prev == (i ? ref[i - 1] : nullptr));
            FUZZ_CHECK(ref[i]->next == (i + 1 < ref.size() ? ref[i + 1] : nullptr));
        }
    }
    GL_release(&l);
    FUZZ_CHECK(MM_blocks_in_use() == blocks);
    return 0;
}
