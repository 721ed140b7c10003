// cpp_host: a C++ host through vorn_container.hpp.  It writes no release,
// no iterator end, no compare trampoline and no error decoder of its own.
//
// The job: keep the pages of a document in a GL list and their order by
// number in a GT tree, drop blank pages while walking, keep outlines, guide
// positions, layers, undo steps and offsets in the other sequences and
// arrays, look pages up in the tables, give them identifiers for writing,
// read settings from a dictionary's text form, and report a raise by its
// meaning.
// Exits 0 when every step gave what the comments say and every block was
// released.
#include <cstdio>
#include <string>
#include <vector>

#include <vorn_container.hpp>

namespace {

int failures = 0;
void expect(bool ok, const char *what) {
    if (!ok) {
        std::fprintf(stderr, "cpp_host: %s did not hold\n", what);
        ++failures;
    }
}

struct Page {
    int number;
    bool blank;
};

// Pages in order of their numbers: a stateless comparator type.
struct ByNumber {
    bool operator()(const Page *a, const Page *b) const { return a->number < b->number; }
};

struct Point {
    float x, y;
};

void run() {
    std::vector<Page> pages = {{3, false}, {1, false}, {4, true}, {2, false}, {5, true}};

    vorn::gl_list list;
    vorn::gt_tree<Page *, ByNumber> by_number;
    for (Page &p : pages) {
        GL_append_after_last(list.get(), &p);
        by_number.insert(&p);
    }

    // Removing the item just delivered is fine: the walk is a step ahead.
    for (GL_node *pos : vorn::positions(list))
        if (static_cast<Page *>(pos->item)->blank) GL_remove_item(list.get(), pos);
    std::string order;
    for (Page *p : vorn::items<Page>(list)) order += std::to_string(p->number);
    expect(order == "312", "blank pages dropped from the list");

    // Leaving a tree walk early ends its iterator; nothing stays registered.
    for (Page *p : vorn::items<Page>(by_number.get())) {
        std::printf("first page by number: %d\n", p->number);
        break;
    }
    expect(by_number.get()->iterators->count == 0, "the early break ended the walk");

    // Elements held by value, as references.
    vorn::el_list<Point> outline;
    for (float i = 0; i < 4; ++i) {
        const Point pt{i, i * i};
        EL_append_after_last(outline.get(), &pt);
    }
    for (Point &pt : vorn::items(outline)) pt.x += 10;
    expect(EL_get_pos_at_index(outline.get(), 3) &&
               reinterpret_cast<Point *>(EL_get_pos_at_index(outline.get(), 3)->item)->x == 13,
           "elements changed in place");

    vorn::dbll_list guides;
    for (double g : {72.0, 36.0, 144.0}) DBLL_add_double(guides.get(), g);
    DBLL_sort(guides.get());
    double previous = 0;
    for (double g : vorn::items(guides)) {
        expect(g > previous, "guides sorted");
        previous = g;
    }

    vorn::da_array<int32_t> offsets;
    for (int32_t i = 0; i < 100; ++i) DA_append(offsets.get(), &i, 1);
    int64_t total = 0;
    for (int32_t o : vorn::items(offsets)) total += o;
    expect(total == 4950, "array walked");

    // The host's own records on an SL list: the layers of a page.
    struct Layer {
        Layer *prev, *next;
        const char *name;
    };
    Layer layers[] = {{nullptr, nullptr, "grid"}, {nullptr, nullptr, "notes"}};
    vorn::sl_list layer_list;  // declared after the records it holds
    for (Layer &l : layers) SL_append_after_last(layer_list.get(), &l);
    std::string names;
    for (Layer &l : vorn::items<Layer>(layer_list)) names += l.name;
    expect(names == "gridnotes", "records walked");

    // An undo stack, a block of points, a table and a lookup from page to
    // its number.
    vorn::es_stack<int32_t> undo;
    for (int32_t step : {1, 2, 3}) ES_push(undo.get(), &step);
    int32_t top = 0;
    expect(ES_pop(undo.get(), &top) && top == 3, "stack pops its top");
    vorn::gb_list<Point> block;
    for (Point &pt : vorn::items(outline)) GB_append_after_last(block.get(), &pt);
    expect(vorn::items(block).size() == 4, "block holds the outline");
    vorn::hsh_table numbers(0, 4);
    vorn::lookup last_seen;
    for (Page &p : pages) {
        HSH_set_value(numbers.get(), &p, vorn::to_word(p.number));
        vorn_lu_add(last_seen.get(), &p, vorn::to_word(p.number));
    }
    int sum = 0;
    for (auto [page, number] : vorn::entries<Page, int>(numbers)) sum += number - page->number;
    expect(sum == 0 && vorn::from_word<int>(vorn_lu_get(last_seen.get(), &pages[0])) == 3,
           "tables give each page its number");

    // Identifiers for writing pages out, and the way back for reading.
    vorn::io_lut_write out;
    vorn::io_lut_read in;
    for (Page *p : vorn::items<Page>(list)) io_lut_set(in.get(), p, io_lut_add(out.get(), p));
    expect(io_lut_get_ptr(in.get(), io_lut_get_id(out.get(), &pages[1])) == &pages[1],
           "identifiers go both ways");

    // Settings through the dictionary text form, with C++ strings.
    vorn::dict settings = vorn::dict::from_text("DICT{\n  [zoom] = 1.500000\n  [title] = \"plan\"\n}\n");
    expect(static_cast<bool>(settings), "settings read");
    settings.set("pages", static_cast<int32_t>(GL_count_items(list.get())));
    const auto title = settings.find("title");
    expect(title && vorn::get<std::string_view>(*title) == "plan", "title read");
    std::printf("%s", settings.to_text().c_str());
    vorn::rdb_dict view;
    view.set("grid", "step", 12);
    view.set("grid", "colour", "blue");
    expect(view.topic("grid").size() == 2 && view.find("grid", "step")->to_int() == 12,
           "topics hold their keys");

    // A raise becomes an exception that names the operation and condition.
    try {
        vorn::throwing_raises raises;
        io_lut_get_ptr(in.get(), 99);
        expect(false, "an unknown identifier raises");
    } catch (const vorn::error &e) {
        std::printf("caught: %s\n", e.what());
        expect(e.code() == 4397 && std::string(e.operation()).find("io_lut_get_ptr") == 0,
               "the raise is named");
    }
}

}  // namespace

int main() {
    const int64_t blocks = MM_blocks_in_use();
    run();
    expect(MM_blocks_in_use() == blocks, "every block released");
    return failures ? 1 : 0;
}
