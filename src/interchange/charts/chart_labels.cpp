#include "interchange/charts/chart_labels.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "query/date_text.h"

namespace tabelion {

NumberScale rangeScale(const Histogram& histogram, const ChartTexts& texts) {
  return scaleFor(histogram.first, histogram.bound(histogram.counts.size()), histogram.width,
                  texts.formats.choices.decimal_comma);
}

std::string hourText(std::size_t hour, const ChartTexts& texts) {
  const TimePattern& shown = texts.formats.show_time;
  if (!shown.twelve_hours)
    return fmt::format("{}{}00", hour, texts.encoding.toUtf8(shown.separator));
  const bool is_morning = hour % kHoursPerDay < kHoursPerDay / 2;
  const std::string half = texts.encoding.toUtf8(is_morning ? shown.morning : shown.afternoon);
  const std::size_t on_clock = hour % (kHoursPerDay / 2);
  return fmt::format("{}{}", on_clock == 0 ? 12 : on_clock, half);
}

std::string dayText(std::uint32_t day, const ChartTexts& texts) {
  return texts.encoding.toUtf8(dateText(day, texts.formats));
}

std::string monthName(int month) {
  constexpr std::array<const char*, 12> kNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                  "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  return kNames[static_cast<std::size_t>(month - 1)];
}

std::string percentText(std::uint32_t count, std::uint32_t of) {
  if (of == 0) return "0%";
  const double part = 100.0 * count / of;
  if (count > 0 && part < 1) return "<1%";
  if (count < of && part > 99) return ">99%";
  return fmt::format("{:.0f}%", part);
}

std::string nothingText(const ReportPicture& picture) {
  if (picture.kind == PictureKind::kNone) return "No picture";
  if (picture.records == 0) return "No records";
  const bool has_numbers = !picture.histogram.counts.empty();
  switch (picture.kind) {
    case PictureKind::kNumbers:
      return has_numbers ? "" : "No numbers that can be drawn";
    case PictureKind::kDates:
      return picture.days.empty() ? "No dates" : "";
    case PictureKind::kTimes:
      return picture.without == picture.records ? "No times" : "";
    case PictureKind::kItems:
    case PictureKind::kChecks:
    case PictureKind::kNone:
      break;
  }
  return {};
}

Histogram yearsOf(const std::vector<DayCount>& days) {
  std::vector<double> years;
  for (const DayCount& day : days) {
    years.insert(years.end(), day.count, dateOfDayCount(day.day).year);
  }
  return histogramOf(years, true);
}

}  // namespace tabelion
