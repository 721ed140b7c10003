// The colour table's operations: the states of an index, the cursor, the
// overflow, the messages of each clut_debug level and the failure lines.

#include "clut_support.hpp"

using namespace clut_test;

namespace {

int16_t g_r, g_g, g_b;

TEST(ClutTable, EveryOperationButStatisticsNeedsTheTable) {
    clut_debug = 3;  // may be set before start-up
    const std::pair<vorn::RaiseSite, std::function<void()>> cases[] = {
        {vorn::raises::CLUT_RAISE_ALLOC_NO_TABLE, [] { CLUT_alloc(40); }},
        {vorn::raises::CLUT_RAISE_SET_NO_TABLE, [] { CLUT_set(40, 1, 2, 3); }},
        {vorn::raises::CLUT_RAISE_SET_NO_TABLE, [] { CLUT_set_RGB(40, 1.0f, 0.5f, 0.0f); }},
        {vorn::raises::CLUT_RAISE_NEW_INDEX_NO_TABLE, [] { CLUT_new_index(); }},
        {vorn::raises::CLUT_RAISE_RELEASE_NO_TABLE, [] { CLUT_release_index(40); }},
        {vorn::raises::CLUT_RAISE_GET_NO_TABLE, [] { CLUT_get(0, &g_r, &g_g, &g_b); }},
        {vorn::raises::CLUT_RAISE_GET_ID_NO_TABLE, [] { CLUT_getID(0, 0, 0); }},
        {vorn::raises::CLUT_RAISE_COPY_NO_TABLE, [] { CLUT_copy(3, 2); }},
    };
    for (const auto &c : cases) EXPECT_RAISES(c.second(), c.first);
    EXPECT_EQ(statistics(), statistics_text(0, 0, 0, 0, 0));
    EXPECT_EQ(GE_GREEN, 0);
    clut_debug = 0;
    // The failed calls changed nothing: the hard-claim window is still open.
    RGBLUT_init(0, nullptr);
    CLUT_alloc(40);
    EXPECT_EQ(statistics(), statistics_text(256, 34, 221, 35, 0));
}

// One step on a table of 64 entries (34 named, 30 free), with the outcome:
// the raise (none: {}), the result where the operation has one, and the
// figures of CLUT_statistics afterwards.
struct Step {
    const char *what;
    std::function<int32_t()> op;
    vorn::RaiseSite raise;
    int32_t result;
    int first_free, hard, dynamic;
};

TEST(ClutTable, IndexStatesFollowTheirTransitions) {
    RGBLUT_init(64, nullptr);
    const auto set = [](int32_t i) { return [i] { CLUT_set(i, 7, 8, 9); return 0; }; };
    const auto alloc = [](int32_t i) { return [i] { CLUT_alloc(i); return 0; }; };
    const auto copy = [](int32_t d, int32_t s) { return [d, s] { CLUT_copy(d, s); return 0; }; };
    const auto release = [](int32_t i) { return [i] { CLUT_release_index(i); return 0; }; };
    const auto fresh = [] { return CLUT_new_index(); };
    const auto get = [](int32_t i) { return [i] { return CLUT_get(i, &g_r, &g_g, &g_b); }; };
    const Step steps[] = {
        {"alloc free, window open", alloc(40), {}, 0, 34, 35, 0},
        {"alloc hard", alloc(40), vorn::raises::CLUT_RAISE_ALLOC_NOT_FREE, 0, 34, 35, 0},
        {"alloc beyond the table", alloc(64), vorn::raises::CLUT_RAISE_ALLOC_NOT_FREE, 0, 34, 35, 0},
        {"set free makes it hard", set(41), {}, 0, 34, 36, 0},
        {"release hard", release(41), vorn::raises::CLUT_RAISE_RELEASE_NOT_DYNAMIC, 0, 34, 36, 0},
        {"set beyond", set(64), vorn::raises::CLUT_RAISE_SET_OUTSIDE, 0, 34, 36, 0},
        {"copy to free", copy(42, 2), vorn::raises::CLUT_RAISE_COPY_FREE, 0, 34, 36, 0},
        {"copy from negative", copy(2, -3), vorn::raises::CLUT_RAISE_COPY_OUTSIDE, 0, 34, 36, 0},
        {"copy hard to hard", copy(41, 19), {}, 0, 34, 36, 0},
        {"first new index", fresh, {}, 34, 35, 36, 1},
        {"alloc after new index", alloc(42), vorn::raises::CLUT_RAISE_ALLOC_HARD_CLOSED, 0, 35, 36, 1},
        {"alloc hard, window shut", alloc(2), vorn::raises::CLUT_RAISE_ALLOC_HARD_CLOSED, 0, 35, 36, 1},
        {"set free, window shut", set(42), vorn::raises::CLUT_RAISE_ALLOC_HARD_CLOSED, 0, 35, 36, 1},
        {"set dynamic stays dynamic", set(34), {}, 0, 35, 36, 1},
        {"copy into dynamic", copy(34, 19), {}, 0, 35, 36, 1},
        {"lowest free", fresh, {}, 35, 36, 36, 2},
        {"four more, in order", [] { for (int32_t want = 36; want < 39; ++want) EXPECT_EQ(CLUT_new_index(), want); return CLUT_new_index(); }, {}, 39, 40, 36, 6},
        {"skips the hard 40 and 41", fresh, {}, 42, 43, 36, 7},
        {"release dynamic", release(35), {}, 0, 35, 36, 6},
        {"release it twice", release(35), vorn::raises::CLUT_RAISE_RELEASE_NOT_DYNAMIC, 0, 35, 36, 6},
        {"release higher keeps cursor", release(38), {}, 0, 35, 36, 5},
        {"lowest free first", fresh, {}, 35, 36, 36, 6},
        {"then the next free", fresh, {}, 38, 39, 36, 7},
        {"release GE_GREEN: nothing", release(21), {}, 0, 39, 36, 7},
        {"release free", release(50), vorn::raises::CLUT_RAISE_RELEASE_NOT_DYNAMIC, 0, 39, 36, 7},
        {"get beyond", get(64), {}, 0, 39, 36, 7},
        {"get free", get(50), {}, 1, 39, 36, 7},
    };
    for (const Step &s : steps) {
        int32_t result = 0;
        const auto raised = vorn_test::catch_raise([&] { result = s.op(); });
        EXPECT_EQ(vorn_test::describe(raised), vorn_test::expected(s.raise.line != 0, s.raise))
            << s.what;
        EXPECT_EQ(result, s.result) << s.what;
        EXPECT_EQ(statistics(), statistics_text(64, s.first_free, 64 - s.hard - s.dynamic, s.hard, s.dynamic)) << s.what;
    }
}

// A full table gives GE_GREEN (the messages: ClutDebug); setting what an
// overflow gave changes GE_GREEN, a released index keeps its colour and can
// be found, and an index beyond the table reads GE_GREEN's entry.
TEST(ClutTable, OverflowGivesGreen) {
    RGBLUT_init(0, nullptr);
    for (int32_t want = 34; want < 256; ++want) ASSERT_EQ(CLUT_new_index(), want);
    EXPECT_EQ(statistics(), statistics_text(256, 256, 0, 34, 222));
    EXPECT_EQ(CLUT_new_index(), GE_GREEN);  // quiet at level 0: not noted as told
    clut_debug = 1;
    EXPECT_EQ(vorn_test::printed([] { CLUT_new_index(); }), "CLUT OVERFLOW\n");
    clut_debug = 0;
    CLUT_set(CLUT_new_index(), 1, 2, 3);
    EXPECT_EQ(CLUT_getID(1, 2, 3), GE_GREEN);
    CLUT_set(200, 4, 5, 6);
    CLUT_release_index(200);
    EXPECT_EQ(CLUT_getID(4, 5, 6), 200);
    EXPECT_EQ(CLUT_get(256, &g_r, &g_g, &g_b), 0);
    EXPECT_EQ((Write{0, g_r, g_g, g_b}), (Write{0, 1, 2, 3}));
}

// Messages of each level: 0 silent, any other value the allocation
// messages, above 1 (as a signed number) also sets and gets.
class ClutDebug : public ::testing::TestWithParam<int32_t> {};

TEST_P(ClutDebug, PrintsWhatItsLevelSelects) {
    const int32_t level = GetParam();
    const bool some = level != 0, all = level > 1;
    std::string want;
    const auto expect = [&](bool on, const char *format, auto... args) {
        char buf[128];
        std::snprintf(buf, sizeof buf, format, args...);
        if (on) want += buf;
    };
    clut_debug = level;
    Capture c;
    RGBLUT_init(36, nullptr);
    expect(some, "Initialising Clut Table, %d entries\n", 36);
    const std::vector<Write> writes = startup_writes();
    for (size_t i = 0; i < 33; ++i) {
        const Write &w = writes[i];
        expect(some, "CLUT alloc %d\n", w.index);
        expect(all, "set index : %d : %d %d %d\n", w.index, w.r, w.g, w.b);
    }
    CLUT_alloc(34);
    expect(some, "CLUT alloc %d\n", 34);
    CLUT_set_RGB(34, 1.0f, 0.5f, 0.0f);
    expect(all, "set index : %d : %d %d %d\n", 34, 255, 127, 0);
    CLUT_get(34, &g_r, &g_g, &g_b);
    expect(all, "get index : %d : %d %d %d\n", 34, 255, 127, 0);
    CLUT_get(36, &g_r, &g_g, &g_b);
    expect(all, "get index : %d : %d %d %d\n", 21, 0, 255, 0);
    CLUT_copy(34, 2);
    CLUT_getID(0, 0, 0);
    EXPECT_EQ(CLUT_new_index(), 35);
    expect(some, "CLUT_new_index : %d\n", 35);
    EXPECT_EQ(CLUT_new_index(), 21);
    expect(some, "%s", "CLUT OVERFLOW\n");
    CLUT_release_index(35);
    expect(some, "CLUT_release_index : %d\n", 35);
    CLUT_release_index(21);
    EXPECT_EQ(CLUT_new_index(), 35);
    expect(some, "CLUT_new_index : %d\n", 35);
    EXPECT_EQ(CLUT_new_index(), 21);  // told once only
    CLUT_statistics();
    want += statistics_text(36, 36, 0, 35, 1);
    EXPECT_EQ(c.take(), want);
}

INSTANTIATE_TEST_SUITE_P(Levels, ClutDebug,
                         ::testing::Values(0, 1, -1, 2, 7, std::numeric_limits<int32_t>::min()));

TEST(ClutTable, SetRgbScalesTruncatesAndKeepsLow16Bits) {
    RGBLUT_init(0, nullptr);
    const std::pair<float, int16_t> cases[] = {
        {0.5f, 127}, {-1.0f, -255}, {300.0f, 10964} /* 76500 - 65536 */, {1e12f, 0}, {std::nanf(""), 0}};
    for (const auto &[unit, want] : cases) {
        CLUT_set_RGB(GE_SYS32, unit, 0.0f, unit);
        CLUT_get(GE_SYS32, &g_r, &g_g, &g_b);
        EXPECT_EQ((Write{0, g_r, g_g, g_b}), (Write{0, want, 0, want})) << unit;
    }
}

}  // namespace
