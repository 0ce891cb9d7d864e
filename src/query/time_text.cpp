#include "query/time_text.h"

#include "query/date_text.h"
#include "query/number_text.h"
#include "query/text_case.h"
#include "query/typed_tokens.h"

namespace tabelion {
namespace {

constexpr int kNoon = 12;
constexpr std::string_view kNoTimeWord = "no time";

int clockHour(int hour) {
  return hour > kNoon ? hour - kNoon : hour;
}

void appendPart(std::string& into, TimePart part, const TimeValue& time, bool twelve_hours) {
  const int hour = time.hour;
  switch (part) {
    case TimePart::kNothing:
      break;
    case TimePart::kClockHour:
      // Compat: midnight is 12 on the 24-hour clock too (TimeText.FollowsThePattern).
      appendInteger(into, hour == 0 ? kNoon : twelve_hours ? clockHour(hour) : hour);
      break;
    case TimePart::kClockHour2:
      appendPadded(into, twelve_hours ? clockHour(hour) : hour, 2);
      break;
    case TimePart::kHour:
      appendInteger(into, hour);
      break;
    case TimePart::kHour2:
      appendPadded(into, hour, 2);
      break;
    case TimePart::kMinute:
      appendPadded(into, time.minute, 2);
      break;
    case TimePart::kSecond:
      appendPadded(into, time.second, 2);
      break;
  }
}

bool isNumberUpTo(std::string_view token, int most) {
  return isDigits(token, 2) && leadingInteger(token) <= most;
}

enum class HalfOfDay { kUnsaid, kMorning, kAfternoon, kUnknown };

// What stands behind the numbers of a time. Dots and blanks in it say nothing.
HalfOfDay halfOfDay(std::string_view word, const FormatSettings& settings) {
  const auto plain = [](std::string_view text) {
    std::string letters;
    for (const char c : text) {
      if (c != '.' && c != ' ') letters.push_back(lowerCase(c));
    }
    return letters;
  };
  const std::string said = plain(word);
  const auto is = [&](std::string_view designator) {
    return !designator.empty() && said == plain(designator);
  };
  if (said.empty()) return HalfOfDay::kUnsaid;
  if (is("a") || is("am") || is(settings.show_time.morning)) return HalfOfDay::kMorning;
  if (is("p") || is("pm") || is(settings.show_time.afternoon)) return HalfOfDay::kAfternoon;
  return HalfOfDay::kUnknown;
}

// The hour of the day that an hour is which was typed; -1 when there is none.
int hourOfDay(int hour, HalfOfDay half, bool twelve_hours) {
  if (hour > 23 || half == HalfOfDay::kUnknown) return -1;
  if (half == HalfOfDay::kMorning) return hour > kNoon ? -1 : hour % kNoon;
  if (half == HalfOfDay::kAfternoon) return hour > kNoon ? hour : hour % kNoon + kNoon;
  return twelve_hours && hour == kNoon ? 0 : hour;
}

}  // namespace

TimeValue timeOfValue(ByteView value) {
  if (value.empty()) return {};
  const auto byteAt = [&](std::size_t at) {
    return at < value.size() ? value[at] : std::uint8_t{0};
  };
  return {byteAt(0), byteAt(1), byteAt(2), byteAt(3)};
}

void appendTime(std::string& into, const TimeValue& time, const TimePattern& pattern) {
  if (time.isNone()) {
    into += kNoTimeText;
    return;
  }
  appendPart(into, pattern.parts[0], time, pattern.twelve_hours);
  into += pattern.separator;
  appendPart(into, pattern.parts[1], time, pattern.twelve_hours);
  into += pattern.separator;
  appendPart(into, pattern.parts[2], time, pattern.twelve_hours);
  // Compat: no blank before the designator (TimeText.FollowsThePattern).
  if (pattern.twelve_hours) into += time.hour < kNoon ? pattern.morning : pattern.afternoon;
}

std::string timeText(const TimeValue& time, const FormatSettings& settings) {
  std::string text;
  appendTime(text, time, settings.show_time);
  return text;
}

void appendDuration(std::string& into, std::int64_t seconds) {
  if (seconds < 0) into += '-';
  // Divided first: the lowest number has no positive counterpart.
  const auto magnitude = [](std::int64_t part) { return part < 0 ? -part : part; };
  appendInteger(into, magnitude(seconds / 3600));
  into += ':';
  appendPadded(into, static_cast<int>(magnitude(seconds / 60 % 60)), 2);
  into += ':';
  appendPadded(into, static_cast<int>(magnitude(seconds % 60)), 2);
}

std::string durationText(std::int64_t seconds) {
  std::string text;
  appendDuration(text, seconds);
  return text;
}

std::int32_t secondsOfTime(const TimeValue& time) {
  const int hour = time.isNone() ? 0 : time.hour;
  return time.second + (time.minute + hour * 60) * 60;
}

TypedTime timeOfText(std::string_view text, const FormatSettings& settings) {
  if (containsAnyCase(text, kNoTimeWord)) return {kParseAccepted, kNoTimeHour, 0, 0};
  const TypedTimeForm form = typedTimeForm(settings.choices.time_format);
  const TypedTokens typed = splitTyped(text, form.separator);
  std::int64_t hour = leadingInteger(typed.tokens[0]);
  const std::int64_t minute = leadingInteger(typed.tokens[1]);
  if (form.twelve_hours) {
    // Compat: 13 and above are read as 0 on this clock, like 12 (TimeText.TypedTimes).
    if (hour >= kNoon) hour = 0;
    const auto contains = [&](const char* word) {
      return text.find(word) != std::string_view::npos;
    };
    if (contains("pm") || contains("PM")) hour += kNoon;
  }
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59) return {kParseRefused};
  TypedTime time{kParseAccepted, static_cast<int>(hour), static_cast<int>(minute)};
  const std::string_view third = typed.tokens[2];
  if (!third.empty() && isDigits(third.substr(0, 1), 1)) {
    const std::int64_t second = leadingInteger(third);
    if (second <= 59) time.second = static_cast<int>(second);
  }
  return time;
}

bool isExactTime(std::string_view text, const FormatSettings& settings) {
  if (text.empty() || text == kNoTimeText) return true;
  const TypedTimeForm form = typedTimeForm(settings.choices.time_format);
  if (form.twelve_hours) {
    const std::size_t letters = text.find_last_of("0123456789") + 1;
    std::string_view designator = text.substr(letters);
    if (designator.starts_with(' ')) designator.remove_prefix(1);
    // What this system shows is accepted, and the words that it always reads.
    if (designator != settings.edit_time.morning && designator != settings.edit_time.afternoon &&
        designator != "am" && designator != "AM" && designator != "pm" && designator != "PM") {
      return false;
    }
    text = text.substr(0, letters);
  }
  const TypedTokens typed = splitTyped(text, form.separator);
  const auto& [hour, minute, second] = typed.tokens;
  return isNumberUpTo(hour, form.twelve_hours ? kNoon : 23) && isNumberUpTo(minute, 59) &&
         (second.empty() || isNumberUpTo(second, 59)) && typed.rest.empty();
}

TypedTime understoodTimeOfText(std::string_view text, const FormatSettings& settings) {
  if (text.empty() || containsAnyCase(text, kNoTimeWord)) return {kParseAccepted, kNoTimeHour};
  const std::size_t end = text.find_last_of("0123456789") + 1;  // 0 where there is no digit
  const std::string_view numbers = text.substr(0, end);
  const std::size_t separator = numbers.find_first_of(":.,");
  const TypedTokens typed =
      splitTyped(numbers, separator == std::string_view::npos ? ':' : numbers[separator]);
  const auto& [hours, minutes, seconds] = typed.tokens;
  const auto isPart = [](std::string_view token) {
    return token.empty() || isNumberUpTo(token, 59);
  };
  if (!isDigits(hours, 2) || !isPart(minutes) || !isPart(seconds) || !typed.rest.empty()) {
    return {kParseRefused};
  }
  const bool twelve_hours = typedTimeForm(settings.choices.time_format).twelve_hours;
  const int hour = hourOfDay(static_cast<int>(leadingInteger(hours)),
                             halfOfDay(text.substr(end), settings), twelve_hours);
  if (hour < 0) return {kParseRefused};
  return {kParseAccepted, hour, static_cast<int>(leadingInteger(minutes)),
          seconds.empty() ? -1 : static_cast<int>(leadingInteger(seconds))};
}

std::string exampleTime(const FormatSettings& settings) {
  std::string text;
  appendTime(text, TimeValue{0, 5, 17}, settings.edit_time);
  return text;
}

}  // namespace tabelion
