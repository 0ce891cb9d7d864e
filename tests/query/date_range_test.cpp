#include "query/date_range.h"

#include <chrono>

#include <gtest/gtest.h>

namespace tabelion {
namespace {

// Counted by another calendar, which agrees with ours until 2099.
std::uint32_t day(int year, unsigned month, unsigned day_of_month) {
  using namespace std::chrono;
  const auto days = sys_days(std::chrono::year(year) / month / day_of_month);
  return static_cast<std::uint32_t>((days - sys_days(std::chrono::year(1904) / 1 / 1)).count());
}

CalendarTime on(int year, int month, int day_of_month) {
  CalendarTime time;
  time.year = year;
  time.month = month;
  time.day = day_of_month;
  const auto days = day(year, static_cast<unsigned>(month), static_cast<unsigned>(day_of_month));
  time.weekday = static_cast<int>((days + 5) % 7);  // 1904-01-01 was a Friday
  return time;
}

DateRange range(int code, const CalendarTime& today, std::int32_t x = 0, bool monday = false) {
  DateRange computed{1, 2};
  EXPECT_EQ(computeDateRange(code, x, today, monday, computed), 1) << code;
  return computed;
}

TEST(DateRange, EveryNamedRangeFromAWednesday) {
  const CalendarTime today = on(2024, 5, 15);
  ASSERT_EQ(today.weekday, 3);
  const std::uint32_t now = day(2024, 5, 15);
  const struct {
    int code;
    DateRange expected;
  } cases[] = {
      {1, {day(2024, 1, 1), now}},
      {2, {day(2024, 5, 1), now}},
      {3, {day(2024, 5, 12), now}},
      {4, {day(2023, 1, 1), day(2023, 12, 31)}},
      {5, {day(2024, 4, 1), day(2024, 4, 30)}},
      {6, {day(2024, 5, 5), day(2024, 5, 11)}},
      {7, {day(2024, 5, 8), now}},
      {8, {day(2024, 4, 15), now}},
      {9, {day(2023, 5, 15), now}},
      {10, {now - 1, now - 1}},
      {11, {now, now}},
      {12, {now + 1, now + 1}},
      {13, {now, day(2024, 5, 21)}},
      {14, {now, day(2024, 6, 15)}},
      {15, {now, day(2025, 5, 15)}},
      {16, {day(2024, 4, 15), now}},
      {17, {day(2021, 11, 15), now}},
      {18, {day(1994, 5, 15), now}},
      {19, {now, day(2024, 6, 14)}},
      {20, {now, day(2026, 11, 15)}},
      {21, {now, day(2054, 5, 15)}},
      {22, {0, 0}},
  };
  for (const auto& [code, expected] : cases) {
    EXPECT_EQ(range(code, today, 30), expected) << kDateRangeNames[static_cast<std::size_t>(code)];
  }
  DateRange untouched{7, 8};
  for (const int code : {kCustomDateRange, 23, -1}) {
    EXPECT_EQ(computeDateRange(code, 1, today, false, untouched), 0);
  }
  EXPECT_EQ(untouched, (DateRange{7, 8}));
}

TEST(DateRange, KeptOddities) {
  // February ends on the 28th, also in a leap year; January looks back into December.
  EXPECT_EQ(range(5, on(2024, 3, 10)), (DateRange{day(2024, 2, 1), day(2024, 2, 28)}));
  EXPECT_EQ(range(5, on(2025, 1, 31)), (DateRange{day(2024, 12, 1), day(2024, 12, 31)}));
  // A day that the month does not have carries into the next one.
  EXPECT_EQ(range(14, on(2025, 1, 31)).to, day(2025, 3, 3));
  EXPECT_EQ(range(14, on(2024, 1, 31)).to, day(2024, 3, 2));
  EXPECT_EQ(range(9, on(2024, 2, 29)).from, day(2023, 3, 1));
  EXPECT_EQ(range(20, on(2024, 12, 31), 2).to, day(2025, 3, 3));
  EXPECT_EQ(range(17, on(2024, 3, 30), 25).from, day(2022, 3, 2));

  const CalendarTime sunday = on(2024, 5, 12);
  const CalendarTime saturday = on(2024, 5, 18);
  EXPECT_EQ(range(3, sunday).from, day(2024, 5, 12));
  EXPECT_EQ(range(3, saturday, 0, true).from, day(2024, 5, 13));
  EXPECT_EQ(range(3, sunday, 0, true), (DateRange{day(2024, 5, 13), day(2024, 5, 12)}));
  EXPECT_EQ(range(6, sunday, 0, true), (DateRange{day(2024, 5, 6), day(2024, 5, 12)}));
}

TEST(DateRange, FarReachingRangesStopAtTheFirstAndLastDay) {
  const CalendarTime today = on(2024, 5, 15);
  const std::uint32_t now = day(2024, 5, 15);
  for (const int code : {16, 17, 18}) {
    EXPECT_EQ(range(code, today, 50000), (DateRange{0, now})) << code;
    EXPECT_EQ(range(code, today, INT32_MAX), (DateRange{0, now})) << code;
  }
  EXPECT_EQ(range(19, today, INT32_MAX).to, now + static_cast<std::uint32_t>(INT32_MAX));
  EXPECT_EQ(range(20, today, INT32_MAX).to, UINT32_MAX);
  EXPECT_EQ(range(21, today, INT32_MAX).to, UINT32_MAX);
  EXPECT_EQ(range(19, today, -3), (DateRange{now, now - 3}));
  EXPECT_EQ(range(20, today, INT32_MIN).to, 0u);
}

}  // namespace
}  // namespace tabelion
