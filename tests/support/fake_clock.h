// A clock that stands still until a test moves it.
#pragma once

#include "engine/calendar.h"
#include "platform/clock.h"

namespace tabelion {

class FakeClock : public Clock {
 public:
  CalendarTime utc_now{2024, 2, 29, 12, 0, 0, 4};
  CalendarTime local_now{2024, 2, 29, 13, 0, 0, 4};

  CalendarTime utc() override { return utc_now; }
  CalendarTime local() override { return local_now; }
  // One hour east of Greenwich.
  CalendarTime localTimeOf(std::int64_t seconds) override {
    constexpr std::int64_t kDay = 86400;
    constexpr std::int64_t kDaysTo1970 = 24107;  // from 1904
    const std::int64_t local = seconds + 3600;
    const std::int64_t second = local % kDay;
    const CalendarDate date =
        dateOfDayCount(static_cast<std::uint32_t>(local / kDay + kDaysTo1970));
    return {date.year,
            date.month,
            date.day,
            static_cast<int>(second / 3600),
            static_cast<int>(second / 60 % 60),
            static_cast<int>(second % 60)};
  }
};

}  // namespace tabelion
