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
  const std::time_t now = std::time(nullptr);
  std::tm time{};
  ::localtime_r(&now, &time);
  return fromBrokenDown(time);
}

}  // namespace tabelion
