#include "interchange/words/criterion_values.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <fmt/format.h>

#include "engine/calendar.h"
#include "engine/schema_places.h"
#include "interchange/cell_text.h"
#include "query/date_text.h"
#include "query/number_text.h"
#include "query/text_case.h"
#include "query/time_text.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

constexpr std::int64_t kLastSecond = 24 * 3600 - 1;

using Area = std::array<std::uint8_t, 40>;

std::int64_t secondsIn(const Area& area) {
  return area[0] + 60 * (area[1] + 60 * std::int64_t{area[2]});
}

void storeSeconds(std::int64_t seconds, Area& area) {
  const TimeValue time = timeOfSeconds(seconds);
  area = {time.second, time.minute, time.hour};
}

// Years of less than four digits are read where they stand last, as people abbreviate them there.
bool hasWholeYear(std::string_view text, const FormatSettings& formats) {
  const TypedDateForm form = typedDateForm(formats.choices.date_format);
  return form.order != DateOrder::kYearMonthDay || text.find(form.separator) == 4;
}

std::optional<std::int64_t> daysOfText(std::string_view text, const FormatSettings& formats) {
  if (compareAnyCase(text, kNoDateText) == 0) return 0;
  if (text.empty() || !hasWholeYear(text, formats)) return std::nullopt;
  const auto date = understoodDateOfText(text, formats);
  if (!date) return std::nullopt;
  return daysSince1904(date->month, date->day, date->year);
}

std::optional<std::int64_t> secondsOfText(std::string_view text, const FormatSettings& formats) {
  if (compareAnyCase(text, kNoTimeText) == 0) return kNoTimeSeconds;
  if (!isDigits(text.substr(0, 1), 1)) return std::nullopt;
  const TypedTime time = understoodTimeOfText(text, formats);
  if (time.result != kParseAccepted) return std::nullopt;
  return (time.hour * 60 + time.minute) * 60 + (time.second < 0 ? 0 : time.second);
}

// With a point, as conditions are read, whatever the text of the criterion has.
std::string pointNumber(const Area& area) {
  std::string text = areaText(area);
  std::replace(text.begin(), text.end(), ',', '.');
  if (isDecimalNumber(text)) return text;
  return fmt::format("{}", numberOfText(text, false));
}

std::optional<std::int64_t> secondsOfDuration(std::string_view text) {
  const auto [tokens, rest] = splitTyped(text, ':');
  for (const std::string_view token : tokens) {
    if (!isDigits(token, 3)) return std::nullopt;
  }
  const std::int64_t minutes = leadingInteger(tokens[1]);
  const std::int64_t seconds = leadingInteger(tokens[2]);
  if (!rest.empty() || minutes > 59 || seconds > 59) return std::nullopt;
  return (leadingInteger(tokens[0]) * 60 + minutes) * 60 + seconds;
}

CriterionKind kindOfResult(const FieldDefinition& field) {
  switch (resultMeaning(field)) {
    case ResultMeaning::kNumber:
      return CriterionKind::kNumber;
    case ResultMeaning::kWholeNumber:
      return CriterionKind::kInteger;
    case ResultMeaning::kDuration:
      return CriterionKind::kDuration;
    case ResultMeaning::kDate:
      return CriterionKind::kDays;
    case ResultMeaning::kUnknown:
      break;
  }
  return CriterionKind::kNothing;
}

}  // namespace

TimeValue timeOfSeconds(std::int64_t seconds) {
  return {static_cast<std::uint8_t>(seconds % 60), static_cast<std::uint8_t>(seconds / 60 % 60),
          static_cast<std::uint8_t>(seconds / 3600), 0};
}

CriterionKind criterionKind(const FieldDefinition& field) {
  const FieldTypeTraits& traits = traitsOf(field.type);
  switch (traits.form) {
    case ValueForm::kText:
    case ValueForm::kLink:
      return CriterionKind::kText;
    case ValueForm::kInteger:
      return traits.source == ValueSource::kCounter ? CriterionKind::kAutoNumber
                                                    : CriterionKind::kInteger;
    case ValueForm::kNumberText:
      return CriterionKind::kNumber;
    case ValueForm::kPopupKey:
      return CriterionKind::kItem;
    case ValueForm::kFlag:
      return CriterionKind::kCheckBox;
    case ValueForm::kDays:
      return CriterionKind::kDate;
    case ValueForm::kClock:
      return CriterionKind::kTime;
    case ValueForm::kResult:
      return kindOfResult(field);
    case ValueForm::kNone:
    case ValueForm::kNote:
    case ValueForm::kKey:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      break;
  }
  return CriterionKind::kNothing;
}

WholeRange allValues(CriterionKind kind) {
  switch (kind) {
    case CriterionKind::kInteger:
      return {INT32_MIN, INT32_MAX};
    case CriterionKind::kDate:
    case CriterionKind::kDays:
      return {1, UINT32_MAX};
    case CriterionKind::kTime:
      return {0, kLastSecond};
    case CriterionKind::kDuration:
      return {0, kLongestDuration};
    default:
      return {0, UINT32_MAX};
  }
}

WholeRange storedRange(CriterionKind kind, const FilterBlock& criterion) {
  switch (kind) {
    case CriterionKind::kInteger:
      return {static_cast<std::int32_t>(criterion.number1),
              static_cast<std::int32_t>(criterion.number2)};
    case CriterionKind::kDate:
    case CriterionKind::kDays:
      return {loadLe32(criterion.value1.data()), loadLe32(criterion.value2.data())};
    case CriterionKind::kTime:
      return {secondsIn(criterion.value1), secondsIn(criterion.value2)};
    case CriterionKind::kDuration:
      return {secondsOfTime(timeOfValue(criterion.value1)),
              secondsOfTime(timeOfValue(criterion.value2))};
    default:
      return {criterion.number1, criterion.number2};
  }
}

void storeRange(CriterionKind kind, const WholeRange& range, FilterBlock& criterion) {
  switch (kind) {
    case CriterionKind::kDate:
    case CriterionKind::kDays:
      criterion.number1 = 0;  // dates of one's own
      storeLe32(criterion.value1.data(), static_cast<std::uint32_t>(range.low));
      storeLe32(criterion.value2.data(), static_cast<std::uint32_t>(range.high));
      break;
    case CriterionKind::kTime:
    case CriterionKind::kDuration:
      storeSeconds(range.low, criterion.value1);
      storeSeconds(range.high, criterion.value2);
      break;
    default:
      criterion.number1 = static_cast<std::uint32_t>(range.low);
      criterion.number2 = static_cast<std::uint32_t>(range.high);
      break;
  }
}

std::string wholeText(CriterionKind kind, std::int64_t value, const FormatSettings& formats) {
  std::string text;
  switch (kind) {
    case CriterionKind::kDate:
    case CriterionKind::kDays:
      appendDate(text, static_cast<std::uint32_t>(value), formats.edit_date);
      return text;
    case CriterionKind::kTime:
      if (value >= kNoTimeSeconds) return std::string(kNoTimeText);
      appendTime(text, timeOfSeconds(value), formats.edit_time);
      return text;
    case CriterionKind::kDuration:
      return durationText(value);
    default:
      return std::to_string(value);
  }
}

std::optional<std::int64_t> wholeOfText(CriterionKind kind, std::string_view text,
                                        const FormatSettings& formats) {
  switch (kind) {
    case CriterionKind::kDate:
    case CriterionKind::kDays:
      return daysOfText(text, formats);
    case CriterionKind::kTime:
      return secondsOfText(text, formats);
    case CriterionKind::kDuration: {
      const auto seconds = secondsOfDuration(text);
      return seconds && *seconds <= kLongestDuration ? seconds : std::nullopt;
    }
    default: {
      std::int64_t value = 0;
      const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
      const WholeRange all = allValues(kind);
      if (read.ec != std::errc{} || read.ptr != text.data() + text.size() || value < all.low ||
          value > all.high) {
        return std::nullopt;
      }
      return value;
    }
  }
}

NumberRange storedNumbers(const FilterBlock& criterion) {
  return {pointNumber(criterion.value1), pointNumber(criterion.value2)};
}

void storeNumbers(const NumberRange& range, FilterBlock& criterion) {
  setAreaText(criterion.value1, range.low);
  setAreaText(criterion.value2, range.high);
}

std::optional<std::string> numberOfWords(std::string_view text, const FormatSettings& formats) {
  std::string number(text);
  if (formats.choices.decimal_comma) std::replace(number.begin(), number.end(), ',', '.');
  if (!isDecimalNumber(number) || number.size() >= Area{}.size()) return std::nullopt;
  return number;
}

std::optional<std::string> nextNumber(const std::string& number, bool upwards) {
  const double most = upwards ? HUGE_VAL : -HUGE_VAL;
  const double next = std::nextafter(numberOfText(number, false), most);
  if (!std::isfinite(next)) return std::nullopt;
  return fmt::format("{}", next == 0 ? 0.0 : next);  // never "-0"
}

std::string expectedValue(CriterionKind kind, const FormatSettings& formats) {
  const std::uint32_t some_day = daysSince1904(5, 17, 2024);
  constexpr std::int64_t kSomeTime = (17 * 60 + 5) * 60;
  switch (kind) {
    case CriterionKind::kDate:
      return fmt::format("a date such as {}, or a range such as \"last 30 days\"",
                         wholeText(kind, some_day, formats));
    case CriterionKind::kDays:
      return "a date such as " + wholeText(kind, some_day, formats);
    case CriterionKind::kTime:
      return "a time such as " + wholeText(kind, kSomeTime, formats);
    case CriterionKind::kDuration:
      return "a duration such as 1:30:00";
    case CriterionKind::kInteger:
      return "a whole number from -2147483648 to 2147483647";
    case CriterionKind::kAutoNumber:
      return "a whole number from 0 to 4294967295";
    case CriterionKind::kNumber:
      return formats.choices.decimal_comma ? "a number such as 12,50" : "a number such as 12.50";
    case CriterionKind::kCheckBox:
      return "\"checked\" or \"unchecked\"";
    default:
      return "a text";
  }
}

}  // namespace tabelion
