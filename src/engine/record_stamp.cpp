#include "engine/record_stamp.h"

#include "engine/calendar.h"

namespace tabelion {

HeadBlock makeStamp(const CalendarTime& local, std::uint16_t serial, const RandomSource& random) {
  HeadBlock stamp{};
  std::memcpy(stamp.data(), "pdblb", 5);
  storeLe16(&stamp[5], random());
  stamp[7] = static_cast<std::uint8_t>(random());
  const std::uint32_t now = stampMinutes(local);
  storeLe24(&stamp[8], now);
  storeBe16(&stamp[12], serial);
  storeLe24(&stamp[14], now);
  return stamp;
}

CalendarTime stampTime(std::uint32_t minutes, const CalendarTime& now) {
  // 24 bits of minutes are a little under 32 years; the newest moment with these bits that is not
  // more than a year ahead is the one meant.
  constexpr std::int64_t kMinutesPerDay = 24LL * 60;
  constexpr std::int64_t kWindow = 1 << 24;
  const std::int64_t days_to_2000 = daysSince1904(1, 1, 2000);
  const std::int64_t latest =
      (static_cast<std::int64_t>(daysSince1904(now.month, now.day, now.year)) + 366 -
       days_to_2000) *
      kMinutesPerDay;
  std::int64_t total = minutes & 0xFFFFFFu;
  while (total + kWindow <= latest) total += kWindow;

  const auto date =
      dateOfDayCount(static_cast<std::uint32_t>(total / kMinutesPerDay + days_to_2000));
  CalendarTime time;
  time.year = date.year;
  time.month = date.month;
  time.day = date.day;
  time.hour = static_cast<int>(total % kMinutesPerDay / 60);
  time.minute = static_cast<int>(total % 60);
  return time;
}

}  // namespace tabelion
