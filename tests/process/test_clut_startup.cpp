// Start-up of the colour table: the named indices, the writes the callback
// hears, the default size and the failures of RGBLUT_init.
#include "clut_support.hpp"

using namespace clut_test;

namespace {

struct Heard {
    Write write;
    Write held;  // the table's entry at the time of the call
};
std::vector<Heard> g_heard;

void record(int32_t index, int16_t r, int16_t g, int16_t b) {
    Heard h{{index, r, g, b}, {index, 0, 0, 0}};
    CLUT_get(index, &h.held.r, &h.held.g, &h.held.b);
    g_heard.push_back(h);
}

void never_called(int32_t, int16_t, int16_t, int16_t) { ADD_FAILURE() << "callback called"; }

TEST(ClutStartup, CallbackHearsFortyFourWritesInOrder) {
    RGBLUT_init(256, record);
    const std::vector<Write> want = startup_writes();
    ASSERT_EQ(g_heard.size(), 44u);
    for (size_t i = 0; i < want.size(); ++i) {
        EXPECT_EQ(g_heard[i].write, want[i]) << "write " << i;
        // A set is heard before the store (the fresh entry is black), a copy
        // after it.
        const Write held = i < 33 ? Write{want[i].index, 0, 0, 0} : want[i];
        EXPECT_EQ(g_heard[i].held, held) << "write " << i;
    }
    EXPECT_EQ(statistics(), statistics_text(256, 34, 222, 34, 0));

}

TEST(ClutStartup, DefaultTableIsSilentAndNamesTheLowestMatches) {
    clut_debug = 2;
    Capture c;
    RGBLUT_init(0, nullptr);
    clut_debug = 0;
    // Only the set lines (clut_debug > 1) appear: no "Initialising" line.
    EXPECT_EQ(c.take().find("Initialising"), std::string::npos);
    EXPECT_EQ(statistics(), statistics_text(256, 34, 222, 34, 0));
    EXPECT_EQ(CLUT_getID(255, 255, 255), GE_WHITE);
    EXPECT_EQ(CLUT_getID(0, 0, 0), GE_BLACK);
    EXPECT_EQ(CLUT_getID(0, 0, 255), 9);  // GE_OBJ_CROSSHAIR_GUIDES, not GE_BLUE
    EXPECT_EQ(CLUT_getID(255, 0, 0), GE_OBJ_RED_SELECTED);
    EXPECT_EQ(CLUT_getID(0, 255, 0), GE_OBJ_GREEN_SELECTED);
    EXPECT_EQ(CLUT_getID(1, 2, 3), -1);
    // GE_SYS32 was never set, yet it is hard.
    EXPECT_RAISES(CLUT_alloc(GE_SYS32), vorn::raises::CLUT_RAISE_ALLOC_NOT_FREE);
    EXPECT_EQ(CLUT_new_index(), 34);
    EXPECT_RAISES(CLUT_release_index(GE_SYS32), vorn::raises::CLUT_RAISE_RELEASE_NOT_DYNAMIC);
}

TEST(ClutStartup, ThirtyFourEntriesAreEnoughAndFull) {
    RGBLUT_init(34, nullptr);
    EXPECT_EQ(statistics(), statistics_text(34, 34, 0, 34, 0));
    EXPECT_EQ(CLUT_new_index(), 21);
    CLUT_release_index(21);  // what an overflow gave; the entry stays hard
    EXPECT_EQ(statistics(), statistics_text(34, 34, 0, 34, 0));
}

TEST(ClutStartup, ZeroEntriesWithACallbackHasNoDefault) {
    clut_debug = 1;
    Capture c;
    EXPECT_RAISES(RGBLUT_init(0, never_called), vorn::raises::CLUT_RAISE_INIT_TOO_SMALL);
    EXPECT_EQ(c.take(), "Initialising Clut Table, 0 entries\n");
    EXPECT_EQ(GE_GREEN, 21);  // the words got their indices before the test
    EXPECT_EQ(statistics(), statistics_text(0, 34, 0, 0, 0));
    // Nothing lies beyond the empty table, not even GE_GREEN's entry.
    int16_t r = 9, g = 9, b = 9;
    EXPECT_EQ(CLUT_get(GE_GREEN, &r, &g, &b), 0);
    EXPECT_EQ((Write{0, r, g, b}), (Write{0, 0, 0, 0}));
}

TEST(ClutStartup, ShortTableRaisesBeforeAnyWrite) {
    EXPECT_RAISES(RGBLUT_init(33, never_called), vorn::raises::CLUT_RAISE_INIT_TOO_SMALL);
    EXPECT_EQ(statistics(), statistics_text(33, 34, 33, 0, 0));
}

TEST(ClutStartup, NegativeCountTakesNoTable) {
    EXPECT_RAISES(RGBLUT_init(-5, nullptr), vorn::raises::CLUT_RAISE_INIT_TOO_SMALL);
    EXPECT_EQ(statistics(), statistics_text(-5, 34, 0, 0, 0));
    EXPECT_EQ(CLUT_new_index(), GE_GREEN);
    EXPECT_RAISES(CLUT_set(0, 1, 1, 1), vorn::raises::CLUT_RAISE_SET_OUTSIDE);
}

TEST(ClutStartup, SecondStartUpRaisesBeforeChangingAnything) {
    RGBLUT_init(100, record);
    clut_debug = 1;
    Capture c;
    EXPECT_RAISES(RGBLUT_init(40, never_called), vorn::raises::CLUT_RAISE_INIT_TWICE);
    EXPECT_EQ(c.take(), "");
    EXPECT_EQ(statistics(), statistics_text(100, 34, 66, 34, 0));
    g_heard.clear();
    CLUT_set(GE_RED, 1, 2, 3);  // the first callback stays in place
    ASSERT_EQ(g_heard.size(), 1u);
    EXPECT_EQ(g_heard[0].write, (Write{GE_RED, 1, 2, 3}));
}

}  // namespace
