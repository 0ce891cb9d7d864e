#include "interchange/charts/chart_colors.h"

#include <cstddef>

namespace tabelion {
namespace {

// In the order of Scheme. Marks have a contrast of 3:1 to the paper, texts of 7:1.
constexpr ChartColors kChartColors[] = {
    {.ink = {20, 32, 43},
     .muted = {74, 87, 99},
     .axis = {135, 147, 160},
     .grid = {226, 231, 236},
     .mark = {38, 122, 190},
     .nothing = {232, 236, 240},
     .shades = {{{168, 212, 240}, {96, 168, 220}, {38, 122, 190}, {12, 66, 116}}}},
    {.ink = {230, 235, 240},
     .muted = {180, 191, 202},
     .axis = {107, 120, 133},
     .grid = {42, 51, 60},
     .mark = {78, 160, 224},
     .nothing = {38, 47, 56},
     .shades = {{{28, 74, 112}, {42, 112, 168}, {88, 170, 230}, {190, 226, 255}}}},
    {.ink = {0, 0, 0},
     .muted = {0, 0, 0},
     .axis = {0, 0, 0},
     .grid = {200, 200, 200},
     .mark = {0, 0, 176},
     .nothing = {228, 228, 228},
     .shades = {{{150, 150, 228}, {84, 84, 206}, {0, 0, 176}, {0, 0, 0}}}},
    {.ink = {255, 255, 255},
     .muted = {255, 255, 255},
     .axis = {255, 255, 255},
     .grid = {72, 72, 72},
     .mark = {255, 255, 0},
     .nothing = {44, 44, 44},
     .shades = {{{110, 110, 0}, {170, 170, 0}, {255, 255, 0}, {255, 255, 255}}}},
};

}  // namespace

const ChartColors& chartColorsOf(Scheme scheme) {
  return kChartColors[static_cast<std::size_t>(scheme)];
}

}  // namespace tabelion
