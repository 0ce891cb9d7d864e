#include "engine/calendar.h"

namespace tabelion {
namespace {

constexpr int kMonthLengths[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// Seconds from 1904-01-01 to 2000-01-01, subtracted by adding its complement.
constexpr std::uint32_t kMinus1904To2000 = 1265437696u;
static_assert(kMinus1904To2000 == 0u - 3029529600u);

}  // namespace

int monthLength(int month, int year) {
  return month == 2 && isLeapYear(year) ? 29 : kMonthLengths[month - 1];
}

std::uint32_t daysSince1904(int month, int day, int year) {
  // Signed in 64 bits: a clamped or hostile date must wrap, not overflow.
  const std::int64_t years = static_cast<std::int64_t>(year) - kFirstYear;
  std::int64_t days = years * 365;
  if (years > 0) days += (years + 3) / 4;  // the years from 1904 before this one divisible by 4
  for (int m = 1; m < month && m <= 12; ++m) days += kMonthLengths[m - 1];
  if (month >= 3 && isLeapYear(year)) ++days;
  return static_cast<std::uint32_t>(days + day - 1);
}

std::uint32_t secondsSince1904(const CalendarTime& time) {
  const std::uint32_t days = daysSince1904(time.month, time.day, time.year);
  const auto seconds =
      static_cast<std::uint32_t>((time.hour * 60 + time.minute) * 60 + time.second);
  return days * 86400u + seconds;
}

std::uint32_t stampMinutes(const CalendarTime& local) {
  return (secondsSince1904(local) + kMinus1904To2000) / 60u & 0xFFFFFFu;
}

CalendarDate dateOfDayCount(std::uint32_t days) {
  const std::int64_t count = days;
  std::int64_t years = count / 365;
  std::int64_t day_of_year = count - 365 * years - (years + 3) / 4 + 1;
  while (day_of_year <= 0) {  // the leap days taken off lie in an earlier year
    --years;
    day_of_year += isLeapYear(static_cast<int>((years + kFirstYear) % 4)) ? 366 : 365;
  }
  CalendarDate date;
  date.year = static_cast<int>(kFirstYear + years);
  std::int64_t rest = day_of_year;
  for (int month = 1; month <= 12; ++month) {
    const int length = monthLength(month, date.year);
    if (rest <= length) {
      date.month = month;
      break;
    }
    rest -= length;
  }
  date.day = static_cast<int>(rest);
  return date;
}

}  // namespace tabelion
