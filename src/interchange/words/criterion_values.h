// The values of filter criteria between their stored form and their words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/database_record.h"

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
// The values that a range without an end on one side holds. Days start with the first date, so that
// what has none is not "before" one.
WholeRange allValues(CriterionKind kind);
WholeRange storedRange(CriterionKind kind, const FilterBlock& criterion);
void storeRange(CriterionKind kind, const WholeRange& range, FilterBlock& criterion);

// A whole number as people write it in a field of this kind: 12, 2024-05-17, 17:05 or 17:05:09,
// 100:00:00.
std::string wholeText(CriterionKind kind, std::int64_t value);
std::optional<std::int64_t> wholeOfText(CriterionKind kind, std::string_view text);
// For messages: "a date such as 2024-05-17".
std::string_view expectedValue(CriterionKind kind);

}  // namespace tabelion
