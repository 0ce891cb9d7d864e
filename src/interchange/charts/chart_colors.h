// What charts are painted with in each scheme of colours.
#pragma once

#include <array>

#include "platform/painting.h"

namespace tabelion {

struct ChartColors {
  Color ink;
  Color muted;  // captions and labels of axes
  Color axis;
  Color grid;
  Color mark;                   // bars and lines
  Color nothing;                // a day without a record
  std::array<Color, 4> shades;  // of days, from few records to many
};
const ChartColors& chartColorsOf(Scheme scheme);

}  // namespace tabelion
