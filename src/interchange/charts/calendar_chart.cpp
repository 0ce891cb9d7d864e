// Dates as a strip of days: a column for a week, a row for a weekday, shaded by how many records
// have that day. A long time has a column for a year and a row for a month, a longer one columns of
// years.
#include <fmt/format.h>

#include <algorithm>

#include "interchange/charts/chart_labels.h"
#include "interchange/charts/chart_sheet.h"

namespace tabelion {
namespace {

constexpr int kDaysPerWeek = 7;
constexpr int kMonthsPerYear = 12;
constexpr double kWeeksPerMonth = 4.3;
constexpr int kMostWeeks = 54;         // that a strip of days always shows
constexpr int kMostWeeksAtEase = 160;  // that it shows where there is room
constexpr int kMostYears = 40;         // with a row for each month
constexpr int kLargestDay = 30;
constexpr int kCellAtEase = 6;
constexpr int kLeastCellWithGap = 4;
constexpr int kFewYears = 8;  // that are all named
constexpr int kMostBands = 4;
constexpr int kFridayOf1904 = 5;  // the weekday of day 0; Sunday is 0

// Shades for counts from 1 to the largest.
class Shades {
 public:
  Shades(const ChartColors& colors, std::uint32_t most) : colors_(colors), most_(most) {}
  Color of(std::uint32_t count) const {
    if (count == 0) return colors_.nothing;
    const std::uint64_t shades = colors_.shades.size();
    const std::uint64_t shade =
        most_ <= shades ? count + shades - most_ : (count * shades + most_ - 1) / most_;
    return colors_.shades[static_cast<std::size_t>(std::min(shade, shades) - 1)];
  }
  std::uint32_t most() const { return most_; }

 private:
  const ChartColors& colors_;
  std::uint32_t most_;
};

// "1 ▢▢▢▢ 17" at the foot of a strip, below its right end where the sheet's area lets it be.
void paintLegend(const ChartSheet& sheet, const Rect& strip, const Rect& area,
                 const Shades& shades) {
  const int line = sheet.room.height;
  const int side = line - 5;
  const int y = std::min(strip.y + strip.height, area.y + area.height) - line;
  const std::uint32_t steps = std::min<std::uint32_t>(
      shades.most(), static_cast<std::uint32_t>(sheet.colors.shades.size()));
  const std::string most = fmt::format("{}", shades.most());
  const int width = sheet.widthOf("1") + kChartGap + static_cast<int>(steps) * (side + 2) +
                    kChartGap + sheet.widthOf(most);
  int x = area.x + std::max(0, std::min(strip.width, area.width) - width);
  if (x + width > area.x + area.width) return;
  if (steps > 1) {
    sheet.text({x, y, sheet.widthOf("1"), line}, "1", sheet.colors.muted, TextSide::kLeft);
  }
  x += sheet.widthOf("1") + kChartGap;
  for (std::uint32_t i = 1; i <= steps; ++i) {
    sheet.painter.fill({x, y + 3, side, side}, shades.of(shades.most() * i / steps));
    x += side + 2;
  }
  sheet.text({x + kChartGap - 2, y, sheet.widthOf(most) + 2, line}, most, sheet.colors.muted,
             TextSide::kLeft);
}

void paintCell(const ChartSheet& sheet, const Rect& cell, Color color) {
  const int gap = std::min(cell.width, cell.height) >= kLeastCellWithGap ? 1 : 0;
  sheet.painter.fill(
      {cell.x, cell.y, std::max(1, cell.width - gap), std::max(1, cell.height - gap)}, color);
}

// Names along an edge, each painted where it does not touch the one before.
class NameRow {
 public:
  NameRow(const ChartSheet& sheet, int y, int right) : sheet_(sheet), y_(y), right_(right) {}
  void put(int x, const std::string& name) {
    const int width = sheet_.widthOf(name);
    if (x < free_from_ || x + width > right_) return;
    sheet_.text({x, y_, width, sheet_.room.height}, name, sheet_.colors.muted, TextSide::kLeft);
    free_from_ = x + width + kChartGap;
  }

 private:
  const ChartSheet& sheet_;
  const int y_;
  const int right_;
  int free_from_ = 0;
};

// Days in weeks, in as many bands below each other as makes the cells largest.
struct WeekLayout {
  int first_day = 0;  // of the first week
  int weeks = 0;
  int label_width = 0;
  int bands = 1;
  int cell = 0;
  int band_height = 0;

  int weeksPerBand() const { return (weeks + bands - 1) / bands; }
};

WeekLayout layoutWeeks(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture) {
  WeekLayout layout;
  const int line = sheet.room.height;
  const int first = static_cast<int>(picture.days.front().day);
  const int last = static_cast<int>(picture.days.back().day);
  const int start = sheet.texts.week_starts_monday ? 1 : 0;
  const int into_week = (first + kFridayOf1904 - start) % kDaysPerWeek;
  layout.first_day = first - into_week;
  layout.weeks = (last - layout.first_day) / kDaysPerWeek + 1;
  layout.label_width = sheet.widthOf("We") + kChartGap;
  for (int bands = 1; bands <= kMostBands; ++bands) {
    const int columns = (layout.weeks + bands - 1) / bands;
    const int wide = (area.width - layout.label_width) / columns;
    const int high = (area.height / bands - line - kChartGap) / kDaysPerWeek;
    const int cell = std::min({wide, high, kLargestDay});
    if (cell <= layout.cell) continue;
    layout.cell = cell;
    layout.bands = bands;
  }
  layout.band_height = line + kDaysPerWeek * layout.cell + kChartGap;
  return layout;
}

void paintWeeks(const ChartSheet& sheet, const Rect& area, const WeekLayout& layout,
                const ReportPicture& picture, const Shades& shades) {
  // So many months apart that their names have room; each of them in every year.
  int months_apart = 1;
  while (months_apart < kMonthsPerYear &&
         months_apart * kWeeksPerMonth * layout.cell < sheet.widthOf("May") + kChartGap) {
    months_apart = months_apart == 3 ? 6 : months_apart == 6 ? kMonthsPerYear : months_apart + 1;
  }
  constexpr std::array<const char*, kDaysPerWeek> kNames = {"Su", "Mo", "Tu", "We",
                                                            "Th", "Fr", "Sa"};
  const int line = sheet.room.height;
  const int left = area.x + layout.label_width;
  const int every = (line + layout.cell - 1) / layout.cell;  // rows between two names
  const int first = static_cast<int>(picture.days.front().day);
  const int last = static_cast<int>(picture.days.back().day);
  std::size_t next = 0;  // of the days with records
  for (int band = 0; band < layout.bands; ++band) {
    const int top = area.y + band * layout.band_height;
    NameRow months(sheet, top, area.x + area.width);
    for (int row = 0; row < kDaysPerWeek; row += every) {
      const int weekday = (row + (sheet.texts.week_starts_monday ? 1 : 0)) % kDaysPerWeek;
      sheet.text({area.x, top + line + row * layout.cell + (layout.cell - line) / 2,
                  layout.label_width - kChartGap, line},
                 kNames[static_cast<std::size_t>(weekday)], sheet.colors.muted, TextSide::kLeft);
    }
    for (int column = 0; column < layout.weeksPerBand(); ++column) {
      const int x = left + column * layout.cell;
      for (int row = 0; row < kDaysPerWeek; ++row) {
        const int week = band * layout.weeksPerBand() + column;
        const int day = layout.first_day + week * kDaysPerWeek + row;
        if (day < first || day > last) continue;
        const CalendarDate date = dateOfDayCount(static_cast<std::uint32_t>(day));
        const bool is_named = date.day == 1 && (date.month - 1) % months_apart == 0;
        if (is_named || day == first) {
          const bool with_year = day == first || date.month == 1;
          months.put(x, monthName(date.month) +
                            (with_year ? fmt::format(" {}", date.year) : std::string()));
        }
        std::uint32_t count = 0;
        if (next < picture.days.size() && static_cast<int>(picture.days[next].day) == day) {
          count = picture.days[next++].count;
        }
        paintCell(sheet, {x, top + line + row * layout.cell, layout.cell, layout.cell},
                  shades.of(count));
      }
    }
  }
}

void paintMonths(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture) {
  const CalendarDate first = dateOfDayCount(picture.days.front().day);
  const CalendarDate last = dateOfDayCount(picture.days.back().day);
  const int years = last.year - first.year + 1;
  std::vector<std::uint32_t> counts(static_cast<std::size_t>(years * kMonthsPerYear));
  for (const DayCount& day : picture.days) {
    const CalendarDate date = dateOfDayCount(day.day);
    counts[static_cast<std::size_t>((date.year - first.year) * kMonthsPerYear + date.month - 1)] +=
        day.count;
  }
  const Shades shades(sheet.colors, *std::max_element(counts.begin(), counts.end()));
  const int line = sheet.room.height;
  const int label_width = sheet.widthOf("May") + kChartGap;
  const int high =
      std::clamp((area.height - 2 * line - kChartGap) / kMonthsPerYear, 1, kLargestDay);
  const int wide =
      std::clamp((area.width - label_width) / years, 1,
                 std::max(2 * high, years <= kFewYears ? sheet.widthOf("2024") + kChartGap : 0));
  paintLegend(
      sheet,
      {area.x, area.y, label_width + years * wide, 2 * line + kMonthsPerYear * high + kChartGap},
      area, shades);
  const int every = (line + high - 1) / high;
  for (int month = 0; month < kMonthsPerYear; month += every) {
    sheet.text(
        {area.x, area.y + line + month * high + (high - line) / 2, label_width - kChartGap, line},
        monthName(month + 1), sheet.colors.muted, TextSide::kLeft);
  }
  NameRow names(sheet, area.y, area.x + area.width);
  for (int year = 0; year < years; ++year) {
    const int x = area.x + label_width + year * wide;
    const bool is_round = (first.year + year) % 5 == 0 || years <= kFewYears || year == 0;
    if (is_round) names.put(x, fmt::format("{}", first.year + year));
    for (int month = 0; month < kMonthsPerYear; ++month) {
      const bool is_before = year == 0 && month < first.month - 1;
      const bool is_behind = year == years - 1 && month > last.month - 1;
      if (is_before || is_behind) continue;
      paintCell(sheet, {x, area.y + line + month * high, wide, high},
                shades.of(counts[static_cast<std::size_t>(year * kMonthsPerYear + month)]));
    }
  }
}

std::uint32_t mostOnOneDay(const ReportPicture& picture) {
  std::uint32_t most = 0;
  for (const DayCount& day : picture.days) most = std::max(most, day.count);
  return most;
}

}  // namespace

void paintCalendar(const ChartSheet& sheet, const Rect& area, const ReportPicture& picture) {
  const Shades shades(sheet.colors, mostOnOneDay(picture));
  const int line = sheet.room.height;
  Rect days = area;
  days.y += line + 3;
  days.height -= 2 * line + 3 + kChartGap;
  const WeekLayout weeks = layoutWeeks(sheet, days, picture);
  const bool shows_days = weeks.cell >= 2 && weeks.weeks <= kMostWeeks;
  if (shows_days || (weeks.cell >= kCellAtEase && weeks.weeks <= kMostWeeksAtEase)) {
    const Rect below = sheet.caption(area, kDaysCaption);
    // The legend follows the strip, rather than standing far below it.
    const int height = weeks.bands * weeks.band_height + line;
    const int width = weeks.label_width + weeks.weeksPerBand() * weeks.cell;
    paintLegend(sheet, {below.x, below.y, width, height}, below, shades);
    return paintWeeks(sheet, below, weeks, picture, shades);
  }
  const int years = dateOfDayCount(picture.days.back().day).year -
                    dateOfDayCount(picture.days.front().day).year + 1;
  if (years <= kMostYears && area.width >= 3 * line + 2 * years) {
    return paintMonths(sheet, sheet.caption(area, kMonthsCaption), picture);
  }
  paintHistogram(sheet, area, yearsOf(picture.days), kYearsCaption);
}

}  // namespace tabelion
