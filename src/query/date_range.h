// The ranges of days that a date criterion can name.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/clock.h"

namespace tabelion {

// The codes are stored in files: never renumber. In the order of the "Date Range" list.
inline constexpr int kCustomDateRange = 0;
inline constexpr int kFirstDateRangeWithX = 16;  // last days, months, years, next ones likewise
inline constexpr int kNoDateRange = 22;
inline constexpr std::array<std::string_view, 23> kDateRangeNames = {"Custom Date Range",
                                                                     "This Year to Date",
                                                                     "This Month to Date",
                                                                     "This Week to Date",
                                                                     "Last Year",
                                                                     "Last Month",
                                                                     "Last Week",
                                                                     "Trailing Week",
                                                                     "Trailing Month",
                                                                     "Trailing Year",
                                                                     "Yesterday",
                                                                     "Today",
                                                                     "Tomorrow",
                                                                     "Coming Week",
                                                                     "Coming Month",
                                                                     "Coming Year",
                                                                     "Last X days",
                                                                     "Last X months",
                                                                     "Last X years",
                                                                     "Next X days",
                                                                     "Next X months",
                                                                     "Next X years",
                                                                     "No Date"};

// Day counts from 1904-01-01, both inclusive.
struct DateRange {
  std::uint32_t from = 0;
  std::uint32_t to = 0;
  bool operator==(const DateRange&) const = default;
};

// 1, or 0 for a custom range and codes that are none; `range` is then not touched. A bound before
// 1904 is day 0, one that no day count can express the last one, so that a far-reaching range holds
// what its days say. A negative X turns "last" into "next".
//
// A day past its month's end carries into the next month: a month from 31 January is 3 March, in a
// leap year 2 March.
// Compat: February always ends on the 28th in "Last Month", and on a Sunday with weeks that start
// on Monday "This Week to Date" starts tomorrow and so is empty (DateRange.KeptOddities).
int computeDateRange(int code, std::int32_t x, const CalendarTime& today, bool week_starts_monday,
                     DateRange& range);

// The code of a range whose name has an X in it.
inline constexpr bool dateRangeHasX(int code) {
  return code >= kFirstDateRangeWithX && code < kNoDateRange;
}

}  // namespace tabelion
