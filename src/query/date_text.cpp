#include "query/date_text.h"

#include <algorithm>

#include "query/number_text.h"
#include "query/text_case.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

constexpr int kPivotYear = 6;  // two-digit years below it are 20xx, from it on 19xx
constexpr std::string_view kNoDateWord = "no date";
constexpr std::size_t kYearDigits = 4;
constexpr CalendarDate kDayZero{};

void appendPart(std::string& into, DatePart part, const CalendarDate& date) {
  switch (part) {
    case DatePart::kNothing:
      break;
    case DatePart::kMonth:
      appendInteger(into, date.month);
      break;
    case DatePart::kMonth2:
      appendPadded(into, date.month, 2);
      break;
    case DatePart::kDay:
      appendInteger(into, date.day);
      break;
    case DatePart::kDay2:
      appendPadded(into, date.day, 2);
      break;
    case DatePart::kYear2:
      appendPadded(into, date.year % 100, 2);
      break;
    case DatePart::kYear4:
      appendPadded(into, date.year, 4);
      break;
  }
}

struct DateTokens {
  std::string_view month;
  std::string_view day;
  std::string_view year;
  std::string_view rest;
};

DateTokens splitDate(std::string_view text, const FormatSettings& settings) {
  const TypedDateForm form = typedDateForm(settings.choices.date_format);
  const TypedTokens typed = splitTyped(text, form.separator);
  const auto& [a, b, c] = typed.tokens;
  switch (form.order) {
    case DateOrder::kDayMonthYear:
      return {b, a, c, typed.rest};
    case DateOrder::kYearMonthDay:
      return {b, c, a, typed.rest};
    default:
      return {a, b, c, typed.rest};
  }
}

int fullYear(std::int64_t year) {
  if (year < kPivotYear)
    year += 2000;
  else if (year <= 99)
    year += 1900;
  return static_cast<int>(std::clamp<std::int64_t>(year, INT32_MIN, INT32_MAX));
}

// Compat: what is no month or day becomes 1 without a word (DateText.TypedDatesAreClamped).
int clampedPart(std::string_view token, int most) {
  const std::int64_t value = leadingInteger(token);
  return value >= 1 && value <= most ? static_cast<int>(value) : 1;
}

// A separator behind the last part is how dates are written where it is a dot.
DateTokens partsOf(const DateTokens& tokens) {
  std::string_view rest = tokens.rest;
  if (!rest.empty()) rest = withoutBlanks(rest.substr(1));
  return {withoutBlanks(tokens.month), withoutBlanks(tokens.day), withoutBlanks(tokens.year), rest};
}

// A month or day that is missing is the first, a missing year the first of its century. None when
// what is there is no date from 1904 on.
std::optional<CalendarDate> dateOfParts(const DateTokens& tokens) {
  const auto isNumber = [](std::string_view token, std::size_t digits) {
    return token.empty() || isDigits(token, digits);
  };
  const bool nothing = tokens.month.empty() && tokens.day.empty() && tokens.year.empty();
  if (nothing || !tokens.rest.empty() || !isNumber(tokens.month, 2) || !isNumber(tokens.day, 2) ||
      !isNumber(tokens.year, kYearDigits)) {
    return std::nullopt;
  }
  const auto part = [](std::string_view token) {
    return token.empty() ? 1 : static_cast<int>(leadingInteger(token));
  };
  CalendarDate date{part(tokens.month), part(tokens.day)};
  const std::int64_t year = leadingInteger(tokens.year);
  date.year = tokens.year.size() == kYearDigits ? static_cast<int>(year) : fullYear(year);
  if (date.month < 1 || date.month > 12 || date.year < kFirstYear || date.day < 1 ||
      date.day > monthLength(date.month, date.year)) {
    return std::nullopt;
  }
  return date;
}

}  // namespace

void appendDate(std::string& into, const CalendarDate& date, const DatePattern& pattern) {
  if (date.month <= 1 && date.day <= 1 && date.year <= kFirstYear) {
    into += kNoDateText;
    return;
  }
  appendPart(into, pattern.parts[0], date);
  into += pattern.separator;
  appendPart(into, pattern.parts[1], date);
  into += pattern.separator;
  appendPart(into, pattern.parts[2], date);
}

void appendDate(std::string& into, std::uint32_t days, const DatePattern& pattern) {
  appendDate(into, dateOfDayCount(days), pattern);
}

std::string dateText(const CalendarDate& date, const FormatSettings& settings) {
  std::string text;
  appendDate(text, date, settings.show_date);
  return text;
}

std::string dateText(std::uint32_t days, const FormatSettings& settings) {
  return dateText(dateOfDayCount(days), settings);
}

CalendarDate dateOfText(std::string_view text, const FormatSettings& settings) {
  if (text.empty() || containsAnyCase(text, kNoDateWord)) return {};
  const DateTokens tokens = splitDate(text, settings);
  CalendarDate date;
  date.month = clampedPart(tokens.month, 12);
  date.day = clampedPart(tokens.day, 31);
  date.year = fullYear(leadingInteger(tokens.year));
  return date;
}

std::optional<CalendarDate> exactDateOfText(std::string_view text, const FormatSettings& settings) {
  if (text.empty() || text == kNoDateText) return CalendarDate{};
  const DateTokens tokens = splitDate(text, settings);
  if (tokens.year.size() != kYearDigits || tokens.month.empty() || tokens.day.empty()) {
    return std::nullopt;
  }
  const auto date = dateOfParts(tokens);
  return date == kDayZero ? std::nullopt : date;  // it would be shown as no date
}

std::optional<CalendarDate> understoodDateOfText(std::string_view text,
                                                 const FormatSettings& settings) {
  if (text.empty() || containsAnyCase(text, kNoDateWord)) return CalendarDate{};
  const DateTokens tokens = splitDate(text, settings);
  if (auto date = dateOfParts(partsOf(tokens))) return date;
  for (const char separator : {'-', '/', '.'}) {
    const TypedTokens typed = splitTyped(text, separator);
    const auto& [year, month, day] = typed.tokens;
    if (year.size() == kYearDigits && !day.empty()) {
      return dateOfParts({month, day, year, typed.rest});
    }
  }
  return std::nullopt;
}

std::string exampleDate(const FormatSettings& settings) {
  std::string text;
  appendDate(text, CalendarDate{12, 31, 2025}, settings.edit_date);
  return text;
}

}  // namespace tabelion
