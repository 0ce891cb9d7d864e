#include "query/date_range.h"

#include <optional>

#include "engine/calendar.h"

namespace tabelion {
namespace {

constexpr std::int64_t kLastDayCount = UINT32_MAX;
constexpr std::int64_t kLastCountedYear = 11'000'000;  // its days still fit a day count

std::uint32_t withinDayCounts(std::int64_t days) {
  return static_cast<std::uint32_t>(days < 0 ? 0 : days > kLastDayCount ? kLastDayCount : days);
}

// The day counts around one day.
class Calendar {
 public:
  explicit Calendar(const CalendarTime& today)
      : year_(today.year),
        month_(today.month),
        day_(today.day),
        today_(daysSince1904(month_, day_, today.year)) {}

  std::uint32_t daysOn(std::int64_t days) const { return withinDayCounts(today_ + days); }

  // A day of a month that is so many months from this one; years carry.
  std::uint32_t inMonth(std::int64_t months_on, int day) const {
    const std::int64_t months = year_ * 12 + (month_ - 1) + months_on;
    const std::int64_t month = (months % 12 + 12) % 12;
    return count(static_cast<int>(month + 1), day, (months - month) / 12);
  }
  std::uint32_t monthsOn(std::int64_t months) const { return inMonth(months, day_); }
  std::uint32_t yearsOn(std::int64_t years) const { return count(month_, day_, year_ + years); }
  std::uint32_t inYear(std::int64_t years_on, int month, int day) const {
    return count(month, day, year_ + years_on);
  }

  // Compat: 28 for every February.
  int lengthOfLastMonth() const {
    switch (month_ == 1 ? 12 : month_ - 1) {
      case 2:
        return 28;
      case 4:
      case 6:
      case 9:
      case 11:
        return 30;
      default:
        return 31;
    }
  }

 private:
  static std::uint32_t count(int month, int day, std::int64_t year) {
    if (year < kFirstYear) return 0;
    if (year > kLastCountedYear) return UINT32_MAX;
    return daysSince1904(month, day, static_cast<int>(year));
  }

  std::int64_t year_;
  int month_;
  int day_;
  std::int64_t today_;  // a day count
};

std::optional<DateRange> rangeOfCode(int code, std::int64_t x, const Calendar& calendar,
                                     std::int64_t into_week) {
  const std::uint32_t today = calendar.daysOn(0);
  switch (code) {
    case 1:
      return DateRange{calendar.inYear(0, 1, 1), today};
    case 2:
      return DateRange{calendar.inMonth(0, 1), today};
    case 3:
      return DateRange{calendar.daysOn(-into_week), today};
    case 4:
      return DateRange{calendar.inYear(-1, 1, 1), calendar.inYear(-1, 12, 31)};
    case 5:
      return DateRange{calendar.inMonth(-1, 1), calendar.inMonth(-1, calendar.lengthOfLastMonth())};
    case 6:
      return DateRange{calendar.daysOn(-into_week - 7), calendar.daysOn(-into_week - 1)};
    case 7:
      return DateRange{calendar.daysOn(-7), today};
    case 8:
      return DateRange{calendar.monthsOn(-1), today};
    case 9:
      return DateRange{calendar.yearsOn(-1), today};
    case 10:
      return DateRange{calendar.daysOn(-1), calendar.daysOn(-1)};
    case 11:
      return DateRange{today, today};
    case 12:
      return DateRange{calendar.daysOn(1), calendar.daysOn(1)};
    case 13:
      return DateRange{today, calendar.daysOn(6)};
    case 14:
      return DateRange{today, calendar.monthsOn(1)};
    case 15:
      return DateRange{today, calendar.yearsOn(1)};
    case 16:
      return DateRange{calendar.daysOn(-x), today};
    case 17:
      return DateRange{calendar.monthsOn(-x), today};
    case 18:
      return DateRange{calendar.yearsOn(-x), today};
    case 19:
      return DateRange{today, calendar.daysOn(x)};
    case 20:
      return DateRange{today, calendar.monthsOn(x)};
    case 21:
      return DateRange{today, calendar.yearsOn(x)};
    case kNoDateRange:
      return DateRange{0, 0};
    default:
      return std::nullopt;
  }
}

}  // namespace

int computeDateRange(int code, std::int32_t x, const CalendarTime& today, bool week_starts_monday,
                     DateRange& range) {
  // Compat: a remainder that truncates toward zero.
  const int into_week = (today.weekday - (week_starts_monday ? 1 : 0)) % 7;
  const auto computed = rangeOfCode(code, x, Calendar(today), into_week);
  if (!computed) return 0;
  range = *computed;
  return 1;
}

}  // namespace tabelion
