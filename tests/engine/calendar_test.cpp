#include "engine/calendar.h"

#include <gtest/gtest.h>

#include "engine/record_stamp.h"

namespace tabelion {

TEST(Calendar, EveryFourthYearIsALeapYear) {
  EXPECT_EQ(daysSince1904(1, 1, 1904), 0u);
  EXPECT_EQ(daysSince1904(3, 1, 1904), 60u);
  EXPECT_EQ(daysSince1904(1, 1, 1905), 366u);
  EXPECT_EQ(daysSince1904(3, 1, 2000) - daysSince1904(2, 28, 2000), 2u);
  EXPECT_EQ(daysSince1904(3, 1, 2100) - daysSince1904(2, 28, 2100), 2u);
  EXPECT_EQ(daysSince1904(11, 22, 2040), 50000u) << "day 50000 is 2040-11-22";
  EXPECT_EQ(daysSince1904(2, 31, 2023), daysSince1904(3, 3, 2023)) << "days carry over";
}

TEST(Calendar, EveryDayCountUpToYear9999ComesBack) {
  CalendarDate before = dateOfDayCount(0);
  EXPECT_EQ(before, (CalendarDate{1, 1, 1904}));
  const std::uint32_t last = daysSince1904(12, 31, 9999);
  for (std::uint32_t day = 1; day <= last; ++day) {
    const CalendarDate date = dateOfDayCount(day);
    ASSERT_EQ(daysSince1904(date.month, date.day, date.year), day);
    const bool next_day =
        date.year == before.year && date.month == before.month && date.day == before.day + 1;
    ASSERT_TRUE(next_day || date.day == 1) << day;
    before = date;
  }
  EXPECT_EQ(before, (CalendarDate{12, 31, 9999}));
  EXPECT_GT(dateOfDayCount(0xFFFFFFFFu).year, 9999);
}

TEST(RecordStamps, TimeWrapsIn24Bits) {
  EXPECT_EQ(stampMinutes({.year = 2000, .month = 1, .day = 1}), 0u);
  EXPECT_EQ(stampMinutes({.year = 2026, .month = 11, .day = 21, .hour = 3, .minute = 4}),
            static_cast<std::uint32_t>(
                (daysSince1904(11, 21, 2026) - daysSince1904(1, 1, 2000)) * 1440 + 184));
  // 2^24 minutes after the start: the count begins again, and a reader of that time sees it so.
  const CalendarTime after_wrap{.year = 2032, .month = 6, .day = 1, .hour = 12, .minute = 30};
  const std::uint32_t stored = stampMinutes(after_wrap);
  EXPECT_LT(stored, 1u << 24);
  const CalendarTime seen = stampTime(stored, {.year = 2033, .month = 1, .day = 1});
  EXPECT_EQ(seen.year, 2032);
  EXPECT_EQ(seen.month, 6);
  EXPECT_EQ(seen.day, 1);
  EXPECT_EQ(seen.hour, 12);
  EXPECT_EQ(seen.minute, 30);
  // An old stamp stays old for a reader of today.
  EXPECT_EQ(stampTime(stampMinutes({.year = 2003, .month = 5, .day = 6}),
                      {.year = 2026, .month = 11, .day = 21})
                .year,
            2003);
}

}  // namespace tabelion
