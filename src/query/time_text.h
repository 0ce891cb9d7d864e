// Times of day as text and back, and durations.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/bytes.h"
#include "engine/field_types.h"
#include "query/format_settings.h"

namespace tabelion {

inline constexpr std::string_view kNoTimeText = "No Time";
inline constexpr std::size_t kTimeValueSize = 4;

// A time value: second, minute, hour, and a fourth byte that has no text. Read from fewer bytes,
// the rest counts as zero; no bytes at all are no time.
struct TimeValue {
  std::uint8_t second = 0;
  std::uint8_t minute = 0;
  std::uint8_t hour = kNoTimeHour;
  std::uint8_t fourth = 0;

  bool isNone() const { return hour == kNoTimeHour; }
  bool operator==(const TimeValue&) const = default;
};
TimeValue timeOfValue(ByteView value);

void appendTime(std::string& into, const TimeValue& time, const TimePattern& pattern);
// As screens show it, by the locale's pattern.
std::string timeText(const TimeValue& time, const FormatSettings& settings);

// "h:mm:ss"; hours go on above 23, a negative count has a minus sign in front.
void appendDuration(std::string& into, std::int64_t seconds);
std::string durationText(std::int64_t seconds);

// Seconds since midnight; no time counts as 0 o'clock.
std::int32_t secondsOfTime(const TimeValue& time);

// What a person typed, by the clock and separator of the user's choice. `result` is kParseAccepted,
// or kParseRefused with 0:00; a text with "No Time" is no time. `second` is for forms and files
// alone, so that a text shown reads back whole: the third number when there is one from 0 to 59,
// else -1; hour and minute are the time that is typed. Compat: only "pm" and "PM" mean afternoon
// (TimeText.TypedTimes).
struct TypedTime {
  int result;
  int hour = 0;
  int minute = 0;
  int second = -1;
};
TypedTime timeOfText(std::string_view text, const FormatSettings& settings);

// Whether the text is a time just as it stands, for input that nobody looks at again: two or three
// numbers in range, on the 12-hour clock with a designator behind them, or no time.
bool isExactTime(std::string_view text, const FormatSettings& settings);

// The time that somebody means who will see it before it is stored: numbers with one separator,
// whichever it is, and at most a designator ("a", "am", "a.m." and the same with p, in any case, or
// the locale's own). Without one the user's clock is meant, on which 12 is midnight and 13 to 23
// are hours of the afternoon; missing minutes are 0. Refused where anything is left over or is no
// hour, minute or second.
TypedTime understoodTimeOfText(std::string_view text, const FormatSettings& settings);

// A time as it is typed by the user's choice, for a sentence about one that was not understood.
std::string exampleTime(const FormatSettings& settings);

}  // namespace tabelion
