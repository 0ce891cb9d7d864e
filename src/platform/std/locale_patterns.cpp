#include "platform/std/locale_patterns.h"

#include <algorithm>
#include <string_view>

namespace tabelion {
namespace {

constexpr std::size_t kMorningLimit = 9;
constexpr std::size_t kAfternoonLimit = 19;

// One conversion of a strftime format, with the flags and modifiers before its letter.
struct Conversion {
  char letter = 0;
  bool padded = true;  // "%-d" and "%e" print no zero in front
};

struct Format {
  std::string conversions;  // the letters, in order
  std::string literals;     // everything between them
  bool padded_day = true;
  bool padded_month = true;
  bool padded_hour = true;
};

// Conversions that stand for several others.
std::string expand(std::string_view format, std::string_view time_12_hours) {
  std::string text;
  for (std::size_t i = 0; i < format.size(); ++i) {
    const char letter = format[i] == '%' && i + 1 < format.size() ? format[i + 1] : '\0';
    std::string_view long_form;
    if (letter == 'D') long_form = "%m/%d/%Y";
    if (letter == 'F') long_form = "%Y-%m-%d";
    if (letter == 'T') long_form = "%H:%M:%S";
    if (letter == 'R') long_form = "%H:%M";
    if (letter == 'r')
      long_form = time_12_hours.empty() ? std::string_view("%I:%M:%S %p") : time_12_hours;
    if (long_form.empty()) {
      text += format[i];
    } else {
      text += long_form;
      ++i;
    }
  }
  return text;
}

Conversion readConversion(std::string_view format, std::size_t& at) {
  Conversion conversion;
  while (at < format.size() && std::string_view("-_0^#EO").find(format[at]) != std::string::npos) {
    if (format[at] == '-' || format[at] == '_') conversion.padded = false;
    ++at;
  }
  if (at < format.size()) conversion.letter = format[at++];
  return conversion;
}

Format parse(std::string_view format) {
  Format parsed;
  for (std::size_t at = 0; at < format.size();) {
    if (format[at] != '%') {
      parsed.literals += format[at++];
      continue;
    }
    ++at;
    const Conversion conversion = readConversion(format, at);
    parsed.conversions += conversion.letter;
    const bool padded = conversion.padded;
    switch (conversion.letter) {
      case 'd':
        parsed.padded_day = padded;
        break;
      case 'e':
        parsed.padded_day = false;
        break;
      case 'm':
        parsed.padded_month = padded;
        break;
      case 'H':
        parsed.padded_hour = padded;
        break;
      case 'k':
        parsed.padded_hour = false;
        break;
      default:
        break;
    }
  }
  return parsed;
}

std::size_t placeOf(const Format& format, std::string_view letters) {
  return format.conversions.find_first_of(letters);
}

// The first of `allowed` that stands in the format; `otherwise` when none does.
char separatorOf(const Format& format, std::string_view allowed, char otherwise) {
  const std::size_t at = format.literals.find_first_of(allowed);
  return at == std::string::npos ? otherwise : format.literals[at];
}

void setDatePattern(const Format& format, LocaleInfo& info) {
  const std::size_t day = placeOf(format, "de");
  const std::size_t month = placeOf(format, "mbBh");
  const std::size_t year = placeOf(format, "YyGC");
  if (day == std::string::npos || month == std::string::npos) return;
  const std::string day_token = format.padded_day ? "dd" : "d";
  const std::string month_token = format.padded_month ? "MM" : "M";
  const bool year_first = year < std::min(day, month);
  const bool month_first = !year_first && month < day;
  const std::string mark(1, month_first ? '/' : separatorOf(format, "/.-", '/'));
  info.date_separator = mark;
  if (year_first) {
    info.short_date_pattern = "yyyy" + mark + month_token + mark + day_token;
  } else {
    const std::string& first = month_first ? month_token : day_token;
    const std::string& second = month_first ? day_token : month_token;
    info.short_date_pattern = first + mark + second + mark + "yyyy";
  }
}

void setTimePattern(const Format& format, LocaleInfo& info) {
  const bool twelve_hours =
      placeOf(format, "HkRT") == std::string::npos && placeOf(format, "Il") != std::string::npos;
  const std::string mark(1, separatorOf(format, ":.", ':'));
  info.time_separator = mark;
  // On the 12-hour clock only "h" shows the hour after midnight as 12.
  const std::string hour = twelve_hours ? "h" : format.padded_hour ? "HH" : "H";
  info.time_pattern = hour + mark + "mm" + mark + (twelve_hours ? "ss tt" : "ss");
}

void setDesignators(const SystemFormats& formats, LocaleInfo& info) {
  const auto plain = [](const std::string& text, std::size_t limit) {
    return !text.empty() && text.size() <= limit &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  };
  const auto saysAfternoon = [](const std::string& text) {
    return text.find("pm") != std::string::npos || text.find("PM") != std::string::npos;
  };
  if (plain(formats.morning, kMorningLimit) && plain(formats.afternoon, kAfternoonLimit) &&
      saysAfternoon(formats.afternoon) && !saysAfternoon(formats.morning)) {
    info.morning = formats.morning;
    info.afternoon = formats.afternoon;
  }
}

}  // namespace

LocaleInfo patternsFrom(const SystemFormats& formats) {
  LocaleInfo info;
  info.is_system_locale = true;
  setDatePattern(parse(expand(formats.date, formats.time_12_hours)), info);
  setTimePattern(parse(expand(formats.time, formats.time_12_hours)), info);
  setDesignators(formats, info);
  info.decimal_comma = formats.decimal_point == ",";
  return info;
}

}  // namespace tabelion
