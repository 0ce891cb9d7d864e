// Dates as text and back. A date value is a count of days from 1904-01-01, which itself (day 0)
// means no date; so 1904-01-02 is the first date there is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/calendar.h"
#include "query/format_settings.h"

namespace tabelion {

inline constexpr std::string_view kNoDateText = "NO DATE";

// Results of reading a date or a time.
inline constexpr int kParseAccepted = 0;
inline constexpr int kParseRefused = -1;

void appendDate(std::string& into, const CalendarDate& date, const DatePattern& pattern);
void appendDate(std::string& into, std::uint32_t days, const DatePattern& pattern);

// As screens show it, by the locale's pattern.
std::string dateText(const CalendarDate& date, const FormatSettings& settings);
std::string dateText(std::uint32_t days, const FormatSettings& settings);

// What a person typed, by the order and separator of the user's choice. Never fails: an empty text
// and one with "NO DATE" are 1/1/1904 (no date); a month or day that is none becomes 1, and the
// day is not checked against the month's length.
// Compat: two-digit years turn at 6, 05 is 2005 and 06 is 1906 (DateText.TypedDatesAreClamped).
CalendarDate dateOfText(std::string_view text, const FormatSettings& settings);

// The date that a text is just as it stands: three numbers in the order of the user's choice and
// nothing else, a day that the month has, a year from 1904 to 9999 in four digits, or no date; none
// for any other text. For input that nobody looks at again, where another date would go unnoticed.
std::optional<CalendarDate> exactDateOfText(std::string_view text, const FormatSettings& settings);

// The date that somebody means who will see it before it is stored: an exact date; one of which
// parts are missing or whose year has two digits, as dateOfText reads it; or a year in four digits,
// month and day with any separator, whatever the user's choice. None where a part is left over, is
// no number, or is no month or day that there is: then a guess would be another date.
std::optional<CalendarDate> understoodDateOfText(std::string_view text,
                                                 const FormatSettings& settings);

// A date as it is typed by the user's choice, for a sentence about one that was not understood.
std::string exampleDate(const FormatSettings& settings);

}  // namespace tabelion
