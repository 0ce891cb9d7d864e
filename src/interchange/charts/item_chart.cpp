// Bars one below the other, each with its name in front and its count behind.
#include <fmt/format.h>

#include <algorithm>

#include "interchange/charts/chart_labels.h"
#include "interchange/charts/chart_sheet.h"

namespace tabelion {
namespace {

constexpr int kLeastBar = 20;  // room for the longest
constexpr int kLargestRow = 40;
constexpr int kLargestBar = 26;
constexpr int kBarGap = 4;  // above and below a bar

std::string countText(const ItemCount& item, std::uint32_t records, bool with_part) {
  std::string text = std::to_string(item.count);
  if (with_part) text += " (" + percentText(item.count, records) + ")";
  return text;
}

}  // namespace

void paintItems(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture) {
  const int line = sheet.room.height;
  const int all = static_cast<int>(picture.items.size());
  const int fitting = std::max(1, area.height / (line + 2));
  // What has no row of its own is told in the last one.
  const int rows = all <= fitting ? all : fitting - 1;
  int name_width = 0;
  int count_width = 0;
  int plain_width = 0;  // of counts without their parts
  std::uint32_t most = 1;
  std::uint32_t rest = 0;
  for (int i = 0; i < all; ++i) {
    const ItemCount& item = picture.items[static_cast<std::size_t>(i)];
    if (i >= rows) {
      rest += item.count;
      continue;
    }
    name_width = std::max(name_width, sheet.widthOf(sheet.texts.encoding.toUtf8(item.text)));
    count_width = std::max(count_width, sheet.widthOf(countText(item, picture.records, true)));
    plain_width = std::max(plain_width, sheet.widthOf(countText(item, picture.records, false)));
    most = std::max(most, item.count);
  }
  name_width = std::min(name_width, area.width * 2 / 5);
  // Where all of it has no room beside a bar, the parts give way, then the names.
  const int beside = area.width - 2 * kChartGap - kLeastBar;
  const bool with_part = name_width + count_width <= beside;
  if (!with_part) count_width = plain_width;
  name_width = std::max(0, std::min(name_width, beside - count_width));
  const int left = area.x + name_width + kChartGap;
  const int room = std::max(1, area.x + area.width - left - kChartGap - count_width);
  const int height =
      std::clamp(area.height / std::max(1, rows + (rows < all ? 1 : 0)), line, kLargestRow);
  const int bar = std::clamp(height - 2 * kBarGap, 4, kLargestBar);
  for (int i = 0; i < rows; ++i) {
    const ItemCount& item = picture.items[static_cast<std::size_t>(i)];
    const int y = area.y + i * height;
    sheet.text({area.x, y, name_width, height}, sheet.texts.encoding.toUtf8(item.text),
               sheet.colors.ink, TextSide::kRight);
    int width = static_cast<int>(static_cast<double>(room) * item.count / most + 0.5);
    if (item.count > 0) width = std::max(1, width);
    if (width > 0) {
      sheet.painter.fill({left, y + (height - bar) / 2, width, bar}, sheet.colors.mark);
    }
    sheet.text({left + width + kChartGap, y, count_width, height},
               countText(item, picture.records, with_part), sheet.colors.muted, TextSide::kLeft);
  }
  // So that bars have a common foot, also those of nothing.
  if (rows > 0) {
    sheet.painter.line({left - 1, area.y}, {left - 1, area.y + rows * height - 1},
                       sheet.colors.axis, 1);
  }
  if (rows < all) {
    sheet.text({area.x, area.y + rows * height, area.width, std::min(height, line + 2)},
               fmt::format("{} more with {} records", all - rows, rest), sheet.colors.muted,
               TextSide::kLeft);
  }
}

}  // namespace tabelion
