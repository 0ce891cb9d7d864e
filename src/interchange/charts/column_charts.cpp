// Charts of columns side by side: ranges of numbers, hours of the day, years; and the line of
// running totals.
#include <algorithm>
#include <cmath>

#include "interchange/charts/chart_labels.h"
#include "interchange/charts/chart_sheet.h"

namespace tabelion {
namespace {

constexpr int kWideColumn = 14;  // pixels, from which on the gap is wider
constexpr int kThinColumn = 3;   // up to which there is none
constexpr char kShortCaption[] = "Records";
constexpr char kShortTotalsCaption[] = "Total";
constexpr double kSlack = 1e-6;
constexpr double kInvisible = 1.0 / 500;

template <class Counts>
void paintColumns(const ChartSheet& sheet, const Plot& plot, const Counts& counts) {
  const int count = static_cast<int>(counts.size());
  const int width = plot.area.width / std::max(1, count);
  const int gap = width >= kWideColumn ? 2 : width > kThinColumn ? 1 : 0;
  const int base = plot.yOf(0);
  for (int i = 0; i < count; ++i) {
    const std::uint32_t value = counts[static_cast<std::size_t>(i)];
    if (value == 0) continue;
    const int left = plot.area.x + plot.area.width * i / count;
    const int right = plot.area.x + plot.area.width * (i + 1) / count;
    // One record is seen, however many there are elsewhere.
    const int top = std::min(plot.yOf(value), base - 1);
    sheet.painter.fill({left + gap, top, std::max(1, right - left - gap), base - top + 1},
                       sheet.colors.mark);
  }
}

template <class Counts>
double mostOf(const Counts& counts) {
  return static_cast<double>(*std::max_element(counts.begin(), counts.end()));
}

// The round multiples of a range's width, which its bounds lie on, from the finest on.
double stepOfDensity(double width, int density) {
  double step = width;
  for (; density > 0; --density) {
    do {
      step = roundStep(step * 1.5);
    } while (std::fabs(step / width - std::round(step / width)) > kSlack * step / width);
  }
  return step;
}

std::vector<AxisMark> rangeMarks(const Histogram& histogram, const NumberScale& scale,
                                 int density) {
  const double step = stepOfDensity(histogram.width, density);
  const double count = static_cast<double>(histogram.counts.size());
  std::vector<AxisMark> marks;
  for (double i = std::ceil(histogram.first / step - kSlack);; ++i) {
    const double value = i * step;
    const double at = (value / 2 - histogram.first / 2) / (histogram.width / 2) / count;
    if (!(at <= 1 + kSlack)) break;
    marks.push_back({at, scale.text(value, step)});
  }
  if (marks.size() > 1) return marks;
  const double end = histogram.bound(histogram.counts.size());
  return {{0, scale.text(histogram.first, histogram.width)}, {1, scale.text(end, histogram.width)}};
}

}  // namespace

void paintHistogram(const ChartSheet& sheet, const Rect& area, const Histogram& histogram,
                    const std::string& caption) {
  const NumberScale scale = rangeScale(histogram, sheet.texts);
  const std::string end = scale.text(histogram.bound(histogram.counts.size()), histogram.width);
  const Plot plot = paintPlot(sheet, area,
                              {.caption = caption + scale.unit(),
                               .short_caption = kShortCaption + scale.unit(),
                               .most = mostOf(histogram.counts),
                               .whole = true,
                               .right = histogram.centered ? 0 : sheet.widthOf(end) / 2});
  paintColumns(sheet, plot, histogram.counts);
  finishPlot(sheet, plot, [&](int density) { return rangeMarks(histogram, scale, density); });
}

void paintHours(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture) {
  const Plot plot = paintPlot(sheet, area,
                              {.caption = kHoursCaption,
                               .short_caption = kShortCaption,
                               .most = mostOf(picture.hours),
                               .whole = true,
                               .right = sheet.widthOf(hourText(kHoursPerDay, sheet.texts)) / 2});
  paintColumns(sheet, plot, picture.hours);
  finishPlot(sheet, plot, [&](int density) {
    constexpr std::array<std::size_t, 5> kEvery = {2, 3, 6, 12, 24};
    std::vector<AxisMark> marks;
    if (static_cast<std::size_t>(density) >= kEvery.size()) return marks;
    const std::size_t every = kEvery[static_cast<std::size_t>(density)];
    for (std::size_t hour = 0; hour <= kHoursPerDay; hour += every) {
      marks.push_back({static_cast<double>(hour) / static_cast<double>(kHoursPerDay),
                       hourText(hour, sheet.texts)});
    }
    return marks;
  });
}

void paintTotals(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture) {
  double least = 0;
  double most = 0;
  for (const TotalsStretch& stretch : picture.totals.stretches) {
    least = std::min(least, stretch.least);
    most = std::max(most, stretch.most);
  }
  // What is lower than a pixel takes no room below 0 or above it.
  if (-least < most * kInvisible) least = 0;
  if (most < -least * kInvisible) most = 0;
  const Plot plot = paintPlot(sheet, area,
                              {.caption = kTotalsCaption,
                               .short_caption = kShortTotalsCaption,
                               .least = least,
                               .most = most,
                               .right = sheet.widthOf(std::to_string(picture.records)) / 2});
  const int line = plot.area.height > 40 ? 2 : 1;
  const auto xOf = [&](std::size_t records) {
    return plot.area.x + static_cast<int>(static_cast<double>(plot.area.width - 1) *
                                          static_cast<double>(records) / picture.records);
  };
  // From 0 through the end of each stretch; a stroke shows how far the sum went meanwhile.
  Point from{plot.area.x, plot.yOf(0)};
  for (std::size_t i = 0; i < picture.totals.stretches.size(); ++i) {
    const TotalsStretch& stretch = picture.totals.stretches[i];
    const int x = xOf(picture.totals.recordsAt(i, picture.records));
    const Point to{x, plot.yOf(stretch.last)};
    sheet.painter.line(from, to, sheet.colors.mark, line);
    const int low = plot.yOf(stretch.least);
    const int high = plot.yOf(stretch.most);
    if (low != high) sheet.painter.line({x, high}, {x, low}, sheet.colors.mark, 1);
    from = to;
  }
  finishPlot(sheet, plot, [&](int density) {
    const double step = std::max(1.0, stepOfDensity(roundStep(picture.records / 8.0), density));
    std::vector<AxisMark> marks;
    for (double records = 0; records <= picture.records; records += step) {
      marks.push_back({records / picture.records, std::to_string(static_cast<long long>(records))});
    }
    return marks;
  });
}

}  // namespace tabelion
