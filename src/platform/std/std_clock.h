// The system's clock.
#pragma once

#include "platform/clock.h"

namespace tabelion {

class StdClock : public Clock {
 public:
  CalendarTime utc() override;
  CalendarTime local() override;
};

}  // namespace tabelion
