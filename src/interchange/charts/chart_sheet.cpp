#include "interchange/charts/chart_sheet.h"

#include <algorithm>
#include <cmath>

namespace tabelion {
namespace {

constexpr int kTickGap = 8;        // between labels of the horizontal axis
constexpr int kMostDensities = 8;  // that are tried for them
constexpr int kLeastPlot = 8;      // height
constexpr int kFewestTicks = 4;    // so that the highest is not far above what there is
constexpr int kMostTicks = 6;

std::u16string utf16(std::string_view utf8) {
  return TextEncoding::utf8().toUtf16(utf8);
}

// The places of marks, if they have room side by side.
std::vector<Rect> placesOf(const ChartSheet& sheet, const Plot& plot,
                           const std::vector<AxisMark>& marks) {
  std::vector<Rect> places;
  const int right = plot.labels.x + plot.labels.width;
  for (const AxisMark& mark : marks) {
    const int width = sheet.widthOf(mark.text);
    const int middle = plot.area.x + static_cast<int>(mark.at * plot.area.width + 0.5);
    Rect place{
        std::clamp(middle - width / 2, plot.labels.x, std::max(plot.labels.x, right - width)),
        plot.labels.y, width, plot.labels.height};
    if (place.x + width > right) return {};
    if (!places.empty() && place.x < places.back().x + places.back().width + kTickGap) return {};
    places.push_back(place);
  }
  return places;
}

}  // namespace

int ChartSheet::widthOf(std::string_view utf8) const {
  return room.width(utf16(utf8));
}

void ChartSheet::text(const Rect& area, std::string_view utf8, Color color, TextSide side,
                      TextWeight weight) const {
  if (area.width <= 0 || area.height <= 0) return;
  std::u16string shown = utf16(utf8);
  if (room.width(shown) > area.width) {
    while (!shown.empty() && room.width(shown + u'…') > area.width) {
      shown.pop_back();
      if (!shown.empty() && (shown.back() & 0xFC00) == 0xD800) shown.pop_back();
    }
    if (shown.empty()) return;
    shown += u'…';
  }
  painter.text(area, shown, color, weight, side);
}

Rect ChartSheet::caption(const Rect& area, std::string_view utf8) const {
  const int height = std::min(area.height, room.height + 3);
  text({area.x, area.y, area.width, room.height}, utf8, colors.muted, TextSide::kLeft);
  return {area.x, area.y + height, area.width, area.height - height};
}

Plot paintPlot(const ChartSheet& sheet, const Rect& area, const PlotForm& form) {
  Plot plot;
  const int line = sheet.room.height;
  const int wanted = std::clamp((area.height - 3 * line) / (2 * line), kFewestTicks, kMostTicks);
  plot.ticks = ticksAround(form.least, form.most, wanted, form.whole);
  const Ticks& ticks = plot.ticks;
  const NumberScale scale =
      scaleFor(ticks.least(), ticks.most(), ticks.step, sheet.texts.formats.choices.decimal_comma);
  std::string caption = form.caption + scale.unit();
  if (sheet.widthOf(caption) > area.width) caption = form.short_caption + scale.unit();
  const Rect below = sheet.caption(area, caption);
  int label_width = 0;
  for (std::int64_t tick = ticks.first; tick <= ticks.last; ++tick) {
    label_width = std::max(label_width, sheet.widthOf(scale.text(ticks.at(tick), ticks.step)));
  }
  const int left = area.x + label_width + kChartGap;
  // Half a line above and below, for the labels of the highest and the lowest tick.
  plot.area = {left, below.y + line / 2, std::max(1, area.x + area.width - left - form.right),
               std::max(kLeastPlot, below.height - 2 * line)};
  plot.labels = {area.x, area.y + area.height - line, area.width, line};
  // Where labels would touch, every second is left out, and so on; never 0.
  const int spacing = std::max(1, plot.area.height / static_cast<int>(ticks.last - ticks.first));
  const int every = (line + spacing - 1) / spacing;
  for (std::int64_t tick = ticks.first; tick <= ticks.last; ++tick) {
    if (tick % every != 0) continue;
    const int y = plot.yOf(ticks.at(tick));
    sheet.painter.line({plot.area.x, y}, {plot.area.x + plot.area.width - 1, y}, sheet.colors.grid,
                       1);
    sheet.text({area.x, y - line / 2, label_width, line}, scale.text(ticks.at(tick), ticks.step),
               sheet.colors.muted, TextSide::kRight);
  }
  return plot;
}

void finishPlot(const ChartSheet& sheet, const Plot& plot,
                const std::function<std::vector<AxisMark>(int density)>& marksAt) {
  const int y = plot.yOf(0);
  sheet.painter.line({plot.area.x, y}, {plot.area.x + plot.area.width - 1, y}, sheet.colors.axis,
                     1);
  for (int density = 0; density < kMostDensities; ++density) {
    const std::vector<AxisMark> marks = marksAt(density);
    if (marks.empty()) return;
    const std::vector<Rect> places = placesOf(sheet, plot, marks);
    if (places.size() != marks.size()) continue;
    for (std::size_t i = 0; i < marks.size(); ++i) {
      sheet.text(places[i], marks[i].text, sheet.colors.muted, TextSide::kMiddle);
    }
    return;
  }
}

}  // namespace tabelion
