#include "platform/std/std_clock.h"

#include <ctime>

namespace tabelion {
namespace {

CalendarTime fromBrokenDown(const std::tm& time) {
  return {time.tm_year + 1900, time.tm_mon + 1, time.tm_mday, time.tm_hour,
          time.tm_min,         time.tm_sec,     time.tm_wday};
}

}  // namespace

CalendarTime StdClock::utc() {
  const std::time_t now = std::time(nullptr);
  std::tm time{};
  ::gmtime_r(&now, &time);
  return fromBrokenDown(time);
}

CalendarTime StdClock::local() {
  return localTimeOf(std::time(nullptr));
}

CalendarTime StdClock::localTimeOf(std::int64_t seconds) {
  const std::time_t moment = seconds;
  std::tm time{};
  ::localtime_r(&moment, &time);
  return fromBrokenDown(time);
}

}  // namespace tabelion
