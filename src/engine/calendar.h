// Dates as the files count them, all from 1904-01-01.
//
// Compat: a leap year is every year divisible by 4, with no century rule, throughout
// (Calendar.EveryFourthYearIsALeapYear).
#pragma once

#include <cstdint>

#include "platform/clock.h"

namespace tabelion {

inline constexpr int kFirstYear = 1904;
inline constexpr int kLastYear = 9999;  // the last that a four-digit text can show

inline bool isLeapYear(int year) {
  return year % 4 == 0;
}

// The days that the month (1 to 12) has.
int monthLength(int month, int year);

// Days from 1904-01-01 to the date. The day is not checked against the month's length: a day past
// its end carries into the next month. Years before 1904 are not supported.
std::uint32_t daysSince1904(int month, int day, int year);

// Seconds from 1904-01-01 00:00:00, modulo 2 to the 32nd (it wraps in 2040).
std::uint32_t secondsSince1904(const CalendarTime& time);

// Minutes from 2000-01-01 00:00, as record stamps keep them: 24 bits.
// Compat: computed modulo 2 to the 32nd before the division (RecordStamps.TimeWrapsIn24Bits).
std::uint32_t stampMinutes(const CalendarTime& local);

struct CalendarDate {
  int month = 1;
  int day = 1;
  int year = kFirstYear;
  bool operator==(const CalendarDate&) const = default;
};

// The date of a day count.
CalendarDate dateOfDayCount(std::uint32_t days);

}  // namespace tabelion
