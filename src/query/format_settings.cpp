#include "query/format_settings.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "engine/ascii.h"

namespace tabelion {
namespace {

constexpr std::size_t kMaxPatternToken = 9;
constexpr int kDateFormats = 7;
constexpr int kTimeFormats = 5;

constexpr TypedDateForm kDateForms[kDateFormats] = {
    {DateOrder::kMonthDayYear, '/'}, {DateOrder::kDayMonthYear, '/'},
    {DateOrder::kDayMonthYear, '.'}, {DateOrder::kDayMonthYear, '-'},
    {DateOrder::kYearMonthDay, '/'}, {DateOrder::kYearMonthDay, '.'},
    {DateOrder::kYearMonthDay, '-'},
};
constexpr TypedTimeForm kTimeForms[kTimeFormats] = {
    {':', true}, {':', false}, {'.', true}, {'.', false}, {',', false},
};

// Splits at the separator's first character; runs of it count as one, a missing token is empty.
std::array<std::string, 3> splitPattern(std::string_view pattern, std::string_view separator) {
  std::array<std::string, 3> tokens;
  const char at = separator.empty() ? '\0' : separator.front();
  std::size_t position = 0;
  for (std::string& token : tokens) {
    while (position < pattern.size() && pattern[position] == at) ++position;
    const std::size_t end = std::min(pattern.find(at, position), pattern.size());
    token = pattern.substr(position, std::min(end - position, kMaxPatternToken));
    position = end;
  }
  return tokens;
}

// Compat: a month is never shown by name, "mmm" gives two digits (DateText.FollowsThePattern).
// Compat: an unknown part stays empty, its separator is written (DateText.FollowsThePattern).
DatePart datePart(std::string_view token) {
  const std::string lower = lowerCaseText(token);
  if (lower == "m") return DatePart::kMonth;
  if (lower == "mm" || lower == "mmm") return DatePart::kMonth2;
  if (lower == "d") return DatePart::kDay;
  if (lower == "dd") return DatePart::kDay2;
  if (lower == "yy") return DatePart::kYear2;
  if (lower == "yyyy") return DatePart::kYear4;
  return DatePart::kNothing;
}

TimePart timePart(std::string_view token) {
  if (token == "h") return TimePart::kClockHour;
  if (token == "hh") return TimePart::kClockHour2;
  if (token == "H") return TimePart::kHour;
  if (token == "HH") return TimePart::kHour2;
  if (lowerCaseText(token) == "mm") return TimePart::kMinute;
  if (token.find("ss") != std::string_view::npos) return TimePart::kSecond;
  return TimePart::kNothing;
}

DatePattern shownDate(const LocaleInfo& locale) {
  DatePattern pattern;
  pattern.separator = locale.date_separator;
  const auto tokens = splitPattern(locale.short_date_pattern, locale.date_separator);
  std::transform(tokens.begin(), tokens.end(), pattern.parts.begin(), datePart);
  return pattern;
}

TimePattern shownTime(const LocaleInfo& locale) {
  TimePattern pattern;
  pattern.separator = locale.time_separator;
  const auto tokens = splitPattern(locale.time_pattern, locale.time_separator);
  std::transform(tokens.begin(), tokens.end(), pattern.parts.begin(), timePart);
  pattern.twelve_hours = locale.time_pattern.find("tt") != std::string::npos;
  pattern.morning = locale.morning;
  pattern.afternoon = locale.afternoon;
  return pattern;
}

DatePattern editedDate(const TypedDateForm& form, const DatePattern& shown) {
  const auto shows = [&](DatePart part) {
    return std::find(shown.parts.begin(), shown.parts.end(), part) != shown.parts.end();
  };
  const DatePart month = shows(DatePart::kMonth2) ? DatePart::kMonth2 : DatePart::kMonth;
  const DatePart day = shows(DatePart::kDay2) ? DatePart::kDay2 : DatePart::kDay;
  DatePattern edited;
  edited.separator = form.separator;
  switch (form.order) {
    case DateOrder::kMonthDayYear:
      edited.parts = {month, day, DatePart::kYear4};
      break;
    case DateOrder::kDayMonthYear:
      edited.parts = {day, month, DatePart::kYear4};
      break;
    case DateOrder::kYearMonthDay:
      edited.parts = {DatePart::kYear4, month, day};
      break;
  }
  return edited;
}

// Only these two spellings are read as afternoon.
bool readsAsAfternoon(std::string_view text) {
  return text.find("pm") != std::string_view::npos || text.find("PM") != std::string_view::npos;
}

TimePattern editedTime(const TypedTimeForm& form, const TimePattern& shown) {
  const TimePart first = shown.parts[0];
  const bool padded = first == TimePart::kClockHour2 || first == TimePart::kHour2;
  TimePattern edited;
  edited.separator = form.separator;
  edited.twelve_hours = form.twelve_hours;
  // "h" would show midnight as 12 on the 24-hour clock too.
  TimePart hour = padded ? TimePart::kHour2 : TimePart::kHour;
  if (form.twelve_hours) hour = padded ? TimePart::kClockHour2 : TimePart::kClockHour;
  edited.parts = {hour, TimePart::kMinute, TimePart::kSecond};
  edited.morning = "AM";
  edited.afternoon = "PM";
  if (readsAsAfternoon(shown.afternoon) && !readsAsAfternoon(shown.morning)) {
    edited.morning = shown.morning;
    edited.afternoon = shown.afternoon;
  }
  return edited;
}

bool isDay(DatePart part) {
  return part == DatePart::kDay || part == DatePart::kDay2;
}
bool isMonth(DatePart part) {
  return part == DatePart::kMonth || part == DatePart::kMonth2;
}
bool isYear(DatePart part) {
  return part == DatePart::kYear2 || part == DatePart::kYear4;
}

bool hasOrder(const DatePattern& pattern, DateOrder order) {
  const auto& [a, b, c] = pattern.parts;
  switch (order) {
    case DateOrder::kMonthDayYear:
      return isMonth(a) && isDay(b) && isYear(c);
    case DateOrder::kDayMonthYear:
      return isDay(a) && isMonth(b) && isYear(c);
    case DateOrder::kYearMonthDay:
      return isYear(a) && isMonth(b) && isDay(c);
  }
  return false;
}

}  // namespace

TypedDateForm typedDateForm(int date_format) {
  return kDateForms[date_format >= 0 && date_format < kDateFormats ? date_format : 0];
}

TypedTimeForm typedTimeForm(int time_format) {
  return kTimeForms[time_format >= 0 && time_format < kTimeFormats ? time_format : 0];
}

FormatSettings makeFormatSettings(const FormatChoices& choices, const LocaleInfo& locale,
                                  bool utf8) {
  FormatSettings settings;
  settings.choices = choices;
  settings.show_date = shownDate(locale);
  settings.edit_date = editedDate(typedDateForm(choices.date_format), settings.show_date);
  settings.show_time = shownTime(locale);
  settings.edit_time = editedTime(typedTimeForm(choices.time_format), settings.show_time);
  settings.utf8 = utf8;
  return settings;
}

FormatChoices matchingChoices(const LocaleInfo& locale) {
  FormatChoices choices;
  choices.decimal_comma = locale.decimal_comma;
  const DatePattern date = shownDate(locale);
  for (int format = 0; format < kDateFormats; ++format) {
    const TypedDateForm form = typedDateForm(format);
    if (date.separator.starts_with(form.separator) && hasOrder(date, form.order)) {
      choices.date_format = format;
      break;
    }
  }
  const TimePattern time = shownTime(locale);
  for (int format = 0; format < kTimeFormats; ++format) {
    const TypedTimeForm form = typedTimeForm(format);
    if (time.separator.starts_with(form.separator) && time.twelve_hours == form.twelve_hours) {
      choices.time_format = format;
      break;
    }
  }
  return choices;
}

FormatSettings isoSettings(bool utf8) {
  LocaleInfo locale;
  locale.date_separator = "-";
  locale.short_date_pattern = "yyyy-MM-dd";
  locale.time_pattern = "HH:mm:ss";
  return matchingSettings(locale, utf8);
}

}  // namespace tabelion
