// The screen on which a date is picked: a month that is walked by keys, and a box for typing.
//
// Keys in the month: the arrows go by days and weeks, Page Up and Page Down by months, - and + by
// years, Home and End to the month's ends; a digit begins to type a date. The action key takes the
// date, the Back key leaves without one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kMonthCanvas = 1;
inline constexpr ControlId kDateBox = 2;
inline constexpr ControlId kDateWords = 3;  // the date in words, or why the box says none

// A count of days from 1904-01-01; 0, no date, only when that was typed. None when the screen was
// left without a date. `name` says what the date is of; begins at `days`, at today when that is 0.
std::optional<std::uint32_t> PickDate(Application& app, const std::u16string& name,
                                      std::uint32_t days);

}  // namespace tabelion
