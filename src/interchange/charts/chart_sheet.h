// What the charts of a picture are painted on, and what they share.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/charts/axis.h"
#include "interchange/charts/chart_colors.h"
#include "interchange/charts/report_chart.h"

namespace tabelion {

inline constexpr int kChartGap = 6;  // between what must not touch

struct ChartSheet {
  CanvasPainter& painter;
  const ChartTexts& texts;
  const TextRoom& room;
  const ChartColors& colors;

  int widthOf(std::string_view utf8) const;
  // A text (UTF-8) in the middle of the area's height; cut with "…" where the area is too narrow.
  void text(const Rect& area, std::string_view utf8, Color color, TextSide side,
            TextWeight weight = TextWeight::kNormal) const;
  // The first line of an area; the rest of the area.
  Rect caption(const Rect& area, std::string_view utf8) const;
};

// A label of the horizontal axis, at a place from 0 (left end) to 1.
struct AxisMark {
  double at = 0;
  std::string text;
};

// A plot with a vertical axis: caption, grid lines and labels are painted, and the line at 0 when
// the marks are there (finishPlot).
struct Plot {
  Rect area;  // where the marks go
  Ticks ticks;
  Rect labels;  // of the horizontal axis

  int yOf(double value) const {
    const double part = partOf(value, ticks.least(), ticks.most());
    return area.y + area.height - 1 - static_cast<int>(part * (area.height - 1) + 0.5);
  }
};
// What a plot is about, what its vertical axis goes over, and the room that it leaves on the right
// for half of the last label. Where the caption has no room, the short one stands for it.
struct PlotForm {
  std::string caption;
  std::string short_caption;
  double least = 0;
  double most = 0;
  bool whole = false;
  int right = 0;
};
Plot paintPlot(const ChartSheet& sheet, const Rect& area, const PlotForm& form);
// `marksAt` gives the labels of the horizontal axis, fewer with every density from 0 on, and none
// in the end; the first that have room side by side are painted.
void finishPlot(const ChartSheet& sheet, const Plot& plot,
                const std::function<std::vector<AxisMark>(int density)>& marksAt);

// The charts, each in its area of the sheet.
void paintHistogram(const ChartSheet& sheet, const Rect& area, const Histogram& histogram,
                    const std::string& caption);
void paintTotals(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture);
void paintHours(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture);
void paintItems(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture);
void paintCalendar(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture);

}  // namespace tabelion
