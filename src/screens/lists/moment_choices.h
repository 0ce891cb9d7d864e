// The quick choices of dates and times: today, a week from now, none, the present time, and the
// pickers behind "Choose Date.." and "Choose Time..".
#pragma once

#include <optional>
#include <string>

#include "services/application.h"

namespace tabelion {

struct MomentField {
  FieldType type = FieldType::kDate;  // or kTime
  std::u16string name;                // what the value is of
  Bytes value;                        // now: where a picker begins
};

// From a menu at this height of the screen, as the record form offers it. The value to store; none
// when nothing was chosen. A time's fourth byte stays as it was.
std::optional<Bytes> ChooseMoment(Application& app, const MomentField& field, int menu_top);

inline constexpr ControlId kMomentItems = 1;

// From a list that fills the screen, without the pickers.
std::optional<Bytes> ShowMomentList(Application& app, const MomentField& field);

}  // namespace tabelion
