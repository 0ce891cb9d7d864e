// The system's clock.
#pragma once

#include "platform/clock.h"

namespace tabelion {

class StdClock : public Clock {
 public:
  CalendarTime utc() override;
  CalendarTime local() override;
  CalendarTime localTimeOf(std::int64_t seconds) override;
};

}  // namespace tabelion
