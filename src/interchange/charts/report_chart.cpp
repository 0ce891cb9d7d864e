#include "interchange/charts/report_chart.h"

#include <algorithm>
#include <string_view>

#include "interchange/charts/chart_labels.h"
#include "interchange/charts/chart_sheet.h"
#include "interchange/svg_picture.h"

namespace tabelion {
namespace {

constexpr int kMargin = 6;
constexpr int kPanelGap = 14;
constexpr int kLeastPanel = 60;        // height, below which the second panel gives way
constexpr int kLeastWidePanels = 300;  // width of two side by side

constexpr Size kSvgSize{720, 360};
constexpr int kSvgMargin = 14;
constexpr int kSvgRow = 24;
constexpr int kSvgFewestRows = 4;
// A viewer has a font of its own; in none that is common are characters wider than this.
constexpr int kSvgCharacter = 8;
constexpr int kSvgWideCharacter = 13;
constexpr char16_t kFirstWide = 0x1100;
constexpr std::u16string_view kWideLetters = u"MWmw@%";
constexpr int kSvgLine = 15;

void paintNumbers(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture) {
  Rect first = area;
  Rect second = area;
  const bool has_totals = !picture.totals.stretches.empty();
  if (has_totals && area.width >= kLeastWidePanels && area.width > area.height * 3 / 2) {
    first.width = second.width = (area.width - kPanelGap) / 2;
    second.x += first.width + kPanelGap;
  } else if (has_totals && area.height >= 2 * kLeastPanel) {
    first.height = second.height = (area.height - kChartGap) / 2;
    second.y += first.height + kChartGap;
  } else {
    second.width = 0;
  }
  paintHistogram(sheet, first, picture.histogram, kRangesCaption);
  if (has_totals && second.width > 0) paintTotals(sheet, second, picture);
}

void paintCharts(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture) {
  if (const std::string nothing = nothingText(picture); !nothing.empty()) {
    return sheet.text(area, nothing, sheet.colors.muted, TextSide::kMiddle);
  }
  switch (picture.kind) {
    case PictureKind::kNumbers:
      return paintNumbers(sheet, area, picture);
    case PictureKind::kDates:
      return paintCalendar(sheet, area, picture);
    case PictureKind::kTimes:
      return paintHours(sheet, area, picture);
    case PictureKind::kChecks:
    case PictureKind::kItems:
      return paintItems(sheet, area, picture);
    case PictureKind::kNone:
      break;
  }
}

int svgWidth(const std::u16string& text) {
  int width = 0;
  for (const char16_t c : text) {
    const bool is_wide = c >= kFirstWide || kWideLetters.find(c) != std::u16string_view::npos;
    width += is_wide ? kSvgWideCharacter : kSvgCharacter;
  }
  return width;
}

}  // namespace

void paintReportPicture(CanvasPainter& painter, Size size, const ReportPicture& picture,
                        const ChartTexts& texts, const TextRoom& room, const std::string& title) {
  const ChartSheet sheet{painter, texts, room, chartColorsOf(painter.scheme())};
  Rect area{kMargin, kMargin, size.width - 2 * kMargin, size.height - 2 * kMargin};
  if (!title.empty()) {
    sheet.text({area.x, area.y, area.width, room.height}, title, sheet.colors.ink, TextSide::kLeft,
               TextWeight::kSemiBold);
    area.y += room.height + kChartGap;
    area.height -= room.height + kChartGap;
  }
  // Where a caption and labels have no room, nothing is better than a blot.
  if (area.width < 6 * room.height || area.height < 4 * room.height) return;
  paintCharts(sheet, area, picture);
}

std::string reportPictureAsSvg(const ReportPicture& picture, const ChartTexts& texts,
                               const std::string& title) {
  Size size = kSvgSize;
  if (picture.kind == PictureKind::kItems || picture.kind == PictureKind::kChecks) {
    const int rows = std::max(kSvgFewestRows, static_cast<int>(picture.items.size()));
    size.height = rows * kSvgRow + 2 * kSvgMargin + kSvgLine + kChartGap;
  }
  const std::string words = title + ". " + reportPictureInWords(picture, texts);
  SvgPicture svg(size, TextEncoding::utf8().toUtf16(words));
  paintReportPicture(svg, size, picture, texts, {svgWidth, kSvgLine}, title);
  return svg.file();
}

}  // namespace tabelion
