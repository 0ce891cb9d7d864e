// A clock that stands still until a test moves it.
#pragma once

#include "platform/clock.h"

namespace tabelion {

class FakeClock : public Clock {
 public:
  CalendarTime utc_now{2024, 2, 29, 12, 0, 0, 4};
  CalendarTime local_now{2024, 2, 29, 13, 0, 0, 4};

  CalendarTime utc() override { return utc_now; }
  CalendarTime local() override { return local_now; }
};

}  // namespace tabelion
