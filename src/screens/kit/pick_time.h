// The screen on which a time of day is picked: hour and minute in boxes that step with Left and
// Right and take digits, and a box in which the time is typed as a whole.
#pragma once

#include <optional>
#include <string>

#include "query/time_text.h"
#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kHourBox = 1;
inline constexpr ControlId kMinuteBox = 2;
inline constexpr ControlId kTimeBox = 3;
inline constexpr ControlId kTimeWords = 4;  // the time as lists show it, or why the box says none

// None when the screen was left without a time; no time only when that was typed. `name` says what
// the time is of; begins at `time`, or at the present minute when that is none. Seconds and the
// fourth byte stay where hour and minute do.
std::optional<TimeValue> PickTime(Application& app, const std::u16string& name,
                                  const TimeValue& time);

}  // namespace tabelion
