// What the colour table tests share: the statistics text
// and the 44 colour writes of start-up.  Each test runs in a process of its
// own, since the table starts once per process.
#pragma once

#include "support.hpp"

#if defined(_WIN32)
#  include <windows.h>
#endif

namespace clut_test {

using vorn_test::Capture;

inline std::string statistics_text(int size, int first_free, int free, int hard, int dynamic) {
    char buf[256];
    std::snprintf(buf, sizeof buf,
                  "Clut Size : %d\nFirst Free index : %d\nNumber of free indices : %d\n"
                  "Number of hard indices : %d\nNumber of dynamic indices : %d\n",
                  size, first_free, free, hard, dynamic);
    return buf;
}

inline std::string statistics() {
    Capture c;
    CLUT_statistics();
    return c.take();
}

struct Write {
    int32_t index;
    int16_t r, g, b;
    bool operator==(const Write &) const = default;
};

inline Write system_colour(int32_t index, int number) {
    const auto w = static_cast<uint32_t>(GetSysColor(number));
    return {index, int16_t(w & 0xFF), int16_t((w >> 8) & 0xFF), int16_t((w >> 16) & 0xFF)};
}

// The writes of start-up in the order the callback hears them: 33 sets
// (indices as literals, GE_OBJ_PAGE is 11), then 11 copies.
inline std::vector<Write> startup_writes() {
    const Write lgray = system_colour(15, 15);
    return {{2, 0, 0, 0},         {0, 255, 255, 255},     {1, 255, 255, 255},
            {19, 255, 0, 0},      {20, 237, 164, 164},    {21, 0, 255, 0},
            {18, 0, 0, 255},      {22, 0, 255, 255},      {23, 189, 0, 189},
            lgray,                system_colour(32, 13),  system_colour(33, 14),
            {14, 127, 127, 127},  {17, 100, 100, 100},    {28, 144, 144, 144},
            {29, 164, 164, 164},  {16, 255, 255, 0},      {24, 0, 200, 0},
            {26, 0, 0, 200},      {25, 200, 0, 200},      {30, 0, 200, 200},
            {31, 0, 0, 128},      {3, 0, 0, 0},           {7, 0, 0, 0},
            {8, 0, 0, 0},         {4, 0, 0, 0},           {6, 0, 0, 0},
            {5, 0, 0, 0},         {9, 0, 0, 0},           {13, 0, 0, 0},
            {12, 0, 0, 0},        {11, 0, 0, 0},          {10, 0, 0, 0},
            // copies
            {3, 0, 0, 0},         {7, 127, 127, 127},     {8, 0, 0, 200},
            {4, 255, 0, 0},       {6, 0, 255, 255},       {5, 0, 255, 0},
            {11, 0, 0, 255},      {10, 255, 255, 0},      {9, 0, 0, 255},
            {13, lgray.r, lgray.g, lgray.b},              {12, 0, 0, 255}};
}

}  // namespace clut_test
