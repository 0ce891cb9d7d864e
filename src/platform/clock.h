// The clock as a value that is passed in, so that a test can move time.
#pragma once

#include <cstdint>

namespace tabelion {

// A moment as the calendar shows it.
struct CalendarTime {
  int year = 1904;  // full year
  int month = 1;    // 1 to 12
  int day = 1;      // 1 to 31
  int hour = 0;     // 0 to 23
  int minute = 0;   // 0 to 59
  int second = 0;   // 0 to 60
  int weekday = 0;  // 0 = Sunday … 6 = Saturday
};

class Clock {
 public:
  virtual ~Clock() = default;
  // Now, to the second, by Greenwich's calendar and by the one on the user's wall. Two calls may
  // lie on either side of midnight: who needs both parts of a moment asks once.
  virtual CalendarTime utc() = 0;
  virtual CalendarTime local() = 0;
  // A moment in seconds since 1970-01-01 UTC, as the local calendar shows it.
  virtual CalendarTime localTimeOf(std::int64_t seconds) = 0;
};

}  // namespace tabelion
