// The values of filter criteria between their stored form and their words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/database_record.h"
#include "query/format_settings.h"
#include "query/time_text.h"

namespace tabelion {

// What a criterion on a field compares.
enum class CriterionKind : unsigned char {
  kNothing,  // the field cannot be filtered by
  kText,
  kItem,
  kCheckBox,
  kNumber,
  // Those below are ranges of whole numbers.
  kInteger,
  kAutoNumber,
  kDate,      // days, or a named range
  kDays,      // a calculated date: days alone
  kTime,      // seconds of the day
  kDuration,  // seconds, at most kLongestDuration
};
CriterionKind criterionKind(const FieldDefinition& field);

inline constexpr std::int64_t kNoTimeSeconds = 255 * 3600;
inline constexpr std::int64_t kLongestDuration = kNoTimeSeconds - 1;
// Bounds of a number that every number is within.
inline constexpr std::string_view kBelowAllNumbers = "-1e999";
inline constexpr std::string_view kAboveAllNumbers = "1e999";

// Both ends included.
struct WholeRange {
  std::int64_t low = 0;
  std::int64_t high = 0;
  bool operator==(const WholeRange&) const = default;
};
// A time of day as a criterion counts it.
TimeValue timeOfSeconds(std::int64_t seconds);

// The values that a range without an end on one side holds. Days start with the first date, so that
// what has none is not "before" one.
WholeRange allValues(CriterionKind kind);
WholeRange storedRange(CriterionKind kind, const FilterBlock& criterion);
void storeRange(CriterionKind kind, const WholeRange& range, FilterBlock& criterion);

// A whole number as people write it in a field of this kind: 12, 2024-05-17, 17:05 or 17:05:09,
// 100:00:00. Dates and times are in the form that these settings read (isoSettings() at the command
// line, the user's on screens), and read as a form understands them, but with a year of four digits
// where it stands first; no date and no time are "NO DATE" and "No Time".
std::string wholeText(CriterionKind kind, std::int64_t value, const FormatSettings& formats);
std::optional<std::int64_t> wholeOfText(CriterionKind kind, std::string_view text,
                                        const FormatSettings& formats);

// Numbers between these texts, both ends included; with a point, and short enough for a criterion.
struct NumberRange {
  std::string low{kBelowAllNumbers};
  std::string high{kAboveAllNumbers};
};
NumberRange storedNumbers(const FilterBlock& criterion);
void storeNumbers(const NumberRange& range, FilterBlock& criterion);
// A number with a point, or with a comma where these settings have one; none for any other text.
std::optional<std::string> numberOfWords(std::string_view text, const FormatSettings& formats);
// The number next to this one, upwards or downwards, with which "greater" and "less" become "at
// least" and "at most"; none where there is no further one.
std::optional<std::string> nextNumber(const std::string& number, bool upwards);

// For messages: "a date such as 2024-05-17".
std::string expectedValue(CriterionKind kind, const FormatSettings& formats);

}  // namespace tabelion
