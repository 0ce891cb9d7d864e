// How values become text: what the user chose, and what the system's locale says, prepared once so
// that no cell of a list splits a pattern again.
//
// Screens show dates and times by the locale's pattern and read them by the user's choice. The two
// may differ, so a form shows what it will read: the `edit` patterns have the order and separator
// of the choice, a four-digit year, and otherwise the habits of the locale. Where choice and locale
// match and the locale has four-digit years, both patterns give the same text.
#pragma once

#include <array>
#include <string>

#include "platform/locale.h"

namespace tabelion {

// What the preferences store. Values outside the ranges count as 0.
struct FormatChoices {
  // 0 month/day/year · 1 day/month/year · 2 day.month.year · 3 day-month-year ·
  // 4 year/month/day · 5 year.month.day · 6 year-month-day
  int date_format = 0;
  // 0 ":" 12 hours · 1 ":" 24 hours · 2 "." 12 hours · 3 "." 24 hours · 4 "," 24 hours
  int time_format = 0;
  bool decimal_comma = false;
  bool operator==(const FormatChoices&) const = default;
};

enum class DatePart : unsigned char { kNothing, kMonth, kMonth2, kDay, kDay2, kYear2, kYear4 };

struct DatePattern {
  std::array<DatePart, 3> parts{};
  std::string separator;  // written before the second and third part, also where a part is empty
};

enum class TimePart : unsigned char {
  kNothing,
  kClockHour,   // "h"
  kClockHour2,  // "hh"
  kHour,        // "H"
  kHour2,       // "HH"
  kMinute,
  kSecond,
};

struct TimePattern {
  std::array<TimePart, 3> parts{};
  std::string separator;
  bool twelve_hours = false;
  std::string morning;  // written directly after the last part on the 12-hour clock
  std::string afternoon;
};

struct FormatSettings {
  FormatChoices choices;
  DatePattern show_date;
  DatePattern edit_date;
  TimePattern show_time;
  TimePattern edit_time;
  bool utf8 = false;  // the database's texts are UTF-8: cutting keeps characters whole
};

FormatSettings makeFormatSettings(const FormatChoices& choices, const LocaleInfo& locale,
                                  bool utf8 = false);

// The choices that read what the locale's patterns show; 0, 0 and off where there are none. This
// is what a first start stores.
FormatChoices matchingChoices(const LocaleInfo& locale);
inline FormatSettings matchingSettings(const LocaleInfo& locale, bool utf8 = false) {
  return makeFormatSettings(matchingChoices(locale), locale, utf8);
}

// The same on every machine, for files that other programs read: 2031-05-09, 13:05:09, 3.5.
FormatSettings isoSettings(bool utf8 = false);

// The order and separator in which dates are read.
enum class DateOrder : unsigned char { kMonthDayYear, kDayMonthYear, kYearMonthDay };
struct TypedDateForm {
  DateOrder order;
  char separator;
};
TypedDateForm typedDateForm(int date_format);

struct TypedTimeForm {
  char separator;
  bool twelve_hours;
};
TypedTimeForm typedTimeForm(int time_format);

}  // namespace tabelion
