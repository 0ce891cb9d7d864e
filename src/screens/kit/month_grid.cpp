#include "screens/kit/month_grid.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>

#include "screens/kit/row_colors.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr int kDaysPerWeek = 7;
constexpr Size kLargestCell{64, 40};
constexpr std::array<const char16_t*, 12> kMonths = {
    u"January", u"February", u"March",     u"April",   u"May",      u"June",
    u"July",    u"August",   u"September", u"October", u"November", u"December"};
constexpr std::array<const char16_t*, kDaysPerWeek> kWeekdays = {
    u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};

// The arrows stand in the outer cells of the first row.
constexpr std::array<MonthPress, kDaysPerWeek> kArrows = {
    MonthPress::kPreviousYear, MonthPress::kPreviousMonth, MonthPress::kNothing,
    MonthPress::kNothing,      MonthPress::kNothing,       MonthPress::kNextMonth,
    MonthPress::kNextYear};

Size cellOf(Size canvas) {
  return {std::clamp(canvas.width / kDaysPerWeek, 1, kLargestCell.width),
          std::clamp(canvas.height / kMonthGridRows, 1, kLargestCell.height)};
}

Rect cellAt(const MonthGrid& grid, int column, int row) {
  const Size cell = cellOf(grid.size);
  return {(grid.size.width - cell.width * kDaysPerWeek) / 2 + column * cell.width,
          row * cell.height, cell.width, cell.height};
}

int firstColumn(const MonthGrid& grid) {
  const int weekday = WeekdayOf({grid.month, 1, grid.year});
  return grid.week_starts_monday ? (weekday + kDaysPerWeek - 1) % kDaysPerWeek : weekday;
}

Rect cellOfDay(const MonthGrid& grid, int day) {
  const int place = firstColumn(grid) + day - 1;
  return cellAt(grid, place % kDaysPerWeek, 2 + place / kDaysPerWeek);
}

void paintArrow(CanvasPainter& painter, const Rect& cell, bool to_the_left, int count, Color ink) {
  constexpr int kReach = 4;
  const int way = to_the_left ? -1 : 1;
  const int middle = cell.y + cell.height / 2;
  for (int i = 0; i < count; ++i) {
    const int tip = cell.x + cell.width / 2 + way * (kReach / 2 + i * kReach - (count - 1));
    for (const int up : {-kReach, kReach}) {
      painter.line({tip - way * kReach, middle + up}, {tip, middle}, ink, 1);
    }
  }
}

void paintHead(CanvasPainter& painter, const MonthGrid& grid, const RowColors& colors) {
  const Size cell = cellOf(grid.size);
  for (int column = 0; column < kDaysPerWeek; ++column) {
    const MonthPress press = kArrows[static_cast<std::size_t>(column)];
    if (press != MonthPress::kNothing) {
      const bool is_year = press == MonthPress::kPreviousYear || press == MonthPress::kNextYear;
      paintArrow(painter, cellAt(grid, column, 0), column < kDaysPerWeek / 2, is_year ? 2 : 1,
                 colors.ink);
    }
    const int weekday = (column + (grid.week_starts_monday ? 1 : 0)) % kDaysPerWeek;
    painter.text(cellAt(grid, column, 1),
                 std::u16string(kWeekdays[static_cast<std::size_t>(weekday)]).substr(0, 2),
                 colors.muted, TextWeight::kNormal, TextSide::kMiddle);
  }
  std::u16string month = kMonths[static_cast<std::size_t>(grid.month - 1)];
  if (grid.short_name) month.resize(3);
  Rect name = cellAt(grid, 2, 0);
  name.width = MonthNameRoom(grid.size);
  name.x -= (name.width - 3 * cell.width) / 2;
  painter.text(name, month + u" " + FromUtf8(std::to_string(grid.year)), colors.ink,
               TextWeight::kSemiBold, TextSide::kMiddle);
}

void paintFrame(CanvasPainter& painter, const Rect& cell, Color ink) {
  const Point first{cell.x, cell.y};
  const Point last{cell.x + cell.width - 1, cell.y + cell.height - 1};
  painter.line(first, {last.x, first.y}, ink, 1);
  painter.line({last.x, first.y}, last, ink, 1);
  painter.line({first.x, last.y}, last, ink, 1);
  painter.line(first, {first.x, last.y}, ink, 1);
}

}  // namespace

// Between the months' arrows, which stand in the middle of their cells.
int MonthNameRoom(Size canvas) {
  return cellOf(canvas).width * 11 / 3;
}

void PaintMonth(CanvasPainter& painter, const MonthGrid& grid) {
  const RowColors& colors = RowColorsOf(painter.scheme());
  painter.fill({0, 0, grid.size.width, grid.size.height}, colors.odd);
  paintHead(painter, grid, colors);
  for (int day = 1; day <= monthLength(grid.month, grid.year); ++day) {
    const Rect cell = cellOfDay(grid, day);
    const bool is_marked = day == grid.marked_day;
    if (is_marked) painter.fill(cell, colors.selected);
    painter.text(cell, FromUtf8(std::to_string(day)), is_marked ? colors.selected_ink : colors.ink,
                 TextWeight::kNormal, TextSide::kMiddle);
    if (day == grid.today) paintFrame(painter, cell, colors.ink);
  }
}

MonthHit MonthHitAt(const MonthGrid& grid, Point at) {
  const Size cell = cellOf(grid.size);
  const int x = at.x - cellAt(grid, 0, 0).x;
  const int column = x / cell.width;
  const int row = at.y / cell.height;
  if (x < 0 || at.y < 0 || column >= kDaysPerWeek) return {};
  if (row == 0) return {kArrows[static_cast<std::size_t>(column)]};
  const int day = (row - 2) * kDaysPerWeek + column - firstColumn(grid) + 1;
  if (row < 2 || day < 1 || day > monthLength(grid.month, grid.year)) return {};
  return {MonthPress::kDay, day};
}

int WeekdayOf(const CalendarDate& date) {
  const std::chrono::year_month_day first{std::chrono::year{date.year},
                                          std::chrono::month{static_cast<unsigned>(date.month)},
                                          std::chrono::day{1}};
  const auto weekday = std::chrono::weekday{std::chrono::sys_days{first}}.c_encoding();
  return (static_cast<int>(weekday) + date.day - 1) % kDaysPerWeek;
}

std::u16string DateInWords(const CalendarDate& date) {
  return std::u16string(kWeekdays[static_cast<std::size_t>(WeekdayOf(date))]) + u", " +
         FromUtf8(std::to_string(date.day)) + u" " +
         kMonths[static_cast<std::size_t>(date.month - 1)] + u" " +
         FromUtf8(std::to_string(date.year));
}

}  // namespace tabelion
