// Work in parts, which may take longer than anybody waits without a word.
#pragma once

#include <functional>
#include <string>

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kLongWorkText = 1150;
inline constexpr ControlId kLongWorkBar = 1151;

struct LongWork {
  std::u16string title{};  // "Searching"
  int total = 0;           // of whatever it counts
  // Does some milliseconds of work from `done` on and returns how far it came: `total` at its end.
  std::function<int(int done)> part{};
  int patience_ms = 500;  // what takes no longer shows nothing
  int turn_ms = 50;       // between two looks at what its user does
};

// Does the parts, first at once, and from the end of the patience on behind a screen that says how
// far it is and can be left. False when it was: then not every part was done. The parts change
// nothing that has to be whole.
bool DoLongWork(Application& app, const LongWork& work);

}  // namespace tabelion
