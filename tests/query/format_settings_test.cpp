#include "query/format_settings.h"

#include <gtest/gtest.h>

#include "query/date_text.h"
#include "query/field_value.h"
#include "query/time_text.h"
#include "query_fixtures.h"

namespace tabelion {
namespace {

const char* const kDatePatterns[] = {
    "M/d/yyyy",     "MM/dd/yyyy", "M/d/yy",        "dd/MM/yyyy",  "d/M/yy",
    "dd/MMM/yyyy",  "dd.MM.yyyy", "d. M. yyyy",    "d.MM.yy",     "dd-MM-yyyy",
    "d-M-yy",       "yyyy/MM/dd", "yyyy. MM. dd.", "yyyy. M. d.", "yyyy-MM-dd",
    "yy-M-d",       "M.d.yyyy",   "M-d-yyyy",      "yyyy/dd/MM",  "d MMM yyyy",
    "EEE, d MMM y", "ddd d/M/yy", "d.M.yyyy 'r.'", "nonsense",    ""};
const char* const kTimePatterns[] = {
    "h:mm:ss tt", "hh:mm:ss tt", "h:mm tt",    "tt h:mm:ss",  "tthh:mm",  "H:mm:ss",
    "HH:mm:ss",   "HH:mm",       "h:mm:ss",    "H.mm.ss",     "HH.mm",    "h.mm.ss tt",
    "HH,mm,ss",   "HH'h'mm",     "H 'Uhr' mm", "HH:mm:ss tt", "nonsense", ""};
const char* const kDesignators[][2] = {{"AM", "PM"}, {"am", "pm"},        {"a.m.", "p.m."},
                                       {"", ""},     {"vorm.", "nachm."}, {"Pm before PM", "PM"}};

}  // namespace

TEST(FormatSettings, MatchingChoicesReadWhatTheLocaleShows) {
  const auto choices = [](const char* date, const char* date_separator, const char* time,
                          const char* time_separator) {
    const FormatChoices match =
        matchingChoices(localeOf(date, date_separator, time, time_separator));
    return std::to_string(match.date_format) + std::to_string(match.time_format);
  };
  EXPECT_EQ(choices("M/d/yyyy", "/", "h:mm:ss tt", ":"), "00");
  EXPECT_EQ(choices("dd/MM/yyyy", "/", "HH:mm:ss", ":"), "11");
  EXPECT_EQ(choices("d.M.yy", ".", "h.mm.ss tt", "."), "22");
  EXPECT_EQ(choices("dd-MM-yyyy", "-", "H.mm.ss", "."), "33");
  EXPECT_EQ(choices("yyyy/MM/dd", "/", "H,mm,ss", ","), "44");
  EXPECT_EQ(choices("yyyy.MM.dd", ". ", "HH:mm:ss", ":"), "51");
  EXPECT_EQ(choices("yyyy-MM-dd", "-", "h:mm:ss tt", ":"), "60");
  EXPECT_EQ(choices("M-d-yyyy", "-", "h mm ss", " "), "00");  // no such choice
  LocaleInfo locale;
  locale.decimal_comma = true;
  EXPECT_TRUE(matchingChoices(locale).decimal_comma);
}

// What the form shows reads back as the value, under every locale and every choice; and where the
// choices match the locale, what lists show does too.
TEST(FormatSettings, TextsReadBackUnderEveryLocale) {
  FieldDefinition field;
  const FieldRecord no_items;
  for (const char* date_pattern : kDatePatterns) {
    for (const char* time_pattern : kTimePatterns) {
      for (const auto& designators : kDesignators) {
        LocaleInfo raw = localeOf(date_pattern, "", time_pattern, "");
        raw.morning = designators[0];
        raw.afternoon = designators[1];
        const LocaleInfo locale = tidyLocale(raw);
        for (int format = -1; format < 7; ++format) {
          const FormatSettings settings =
              format < 0 ? matchingSettings(locale)
                         : makeFormatSettings({format, format % 5, false}, locale);
          const std::string context = std::string(date_pattern) + " | " + time_pattern + " | " +
                                      designators[1] + " | " + std::to_string(format);
          field.type = kDate;
          for (std::uint32_t days = 0; days < 2957000; days += 98389) {
            std::string text;
            appendDate(text, days, settings.edit_date);
            const auto value = valueOfText(field, no_items, text, settings, {}, InputCare::kFile);
            ASSERT_TRUE(value.ok()) << context << ": " << text;
            ASSERT_EQ(loadLe32(value->data()), days) << context << ": " << text;
          }
          field.type = kTime;
          for (int minute = 0; minute < 24 * 60; minute += 61) {
            const TimeValue time{static_cast<std::uint8_t>(minute % 60),
                                 static_cast<std::uint8_t>(minute % 60),
                                 static_cast<std::uint8_t>(minute / 60)};
            std::string text;
            appendTime(text, time, settings.edit_time);
            const auto value = valueOfText(field, no_items, text, settings, {}, InputCare::kFile);
            ASSERT_TRUE(value.ok()) << context << ": " << text;
            ASSERT_EQ(timeOfValue(*value), time) << context << ": " << text;
          }
        }
      }
    }
  }
}

TEST(FormatSettings, FormsShowWhatListsShowWhereThatReadsBack) {
  for (const auto& [pattern, separator] : {std::pair{"M/d/yyyy", "/"},
                                           {"dd/MM/yyyy", "/"},
                                           {"dd.MM.yyyy", "."},
                                           {"d-M-yyyy", "-"},
                                           {"yyyy/M/d", "/"},
                                           {"yyyy.MM.dd", "."},
                                           {"yyyy-MM-dd", "-"}}) {
    const FormatSettings settings = matchingSettings(localeOf(pattern, separator, "HH:mm:ss"));
    for (const std::uint32_t days : {0u, 1u, 59u, 40000u, 2957000u}) {
      std::string edited;
      appendDate(edited, days, settings.edit_date);
      EXPECT_EQ(edited, dateText(days, settings));
    }
    std::string edited;
    appendTime(edited, {9, 5, 3}, settings.edit_time);
    EXPECT_EQ(edited, timeText({9, 5, 3}, settings));
  }
}

TEST(FormatSettings, TidyLocalesShowEveryPart) {
  for (const char* pattern : kDatePatterns) {
    const LocaleInfo locale = tidyLocale(localeOf(pattern, "", "H:mm:ss"));
    const FormatSettings settings = matchingSettings(locale);
    const std::string text = dateText(CalendarDate{2, 3, 2004}, settings);
    for (const char digit : {'2', '3', '4'}) {
      EXPECT_NE(text.find(digit), std::string::npos) << pattern << " shows " << text;
    }
    EXPECT_EQ(tidyLocale(locale).short_date_pattern, locale.short_date_pattern);
  }
  const LocaleInfo czech = tidyLocale(localeOf("d. M. yyyy", ". ", "tt h.mm", "."));
  EXPECT_EQ(dateText(CalendarDate{2, 3, 2004}, matchingSettings(czech)), "3. 2. 2004");
  EXPECT_EQ(timeText({9, 5, 13}, matchingSettings(czech)), "1.05.09PM");
  EXPECT_EQ(matchingChoices(czech), (FormatChoices{2, 2, false}));
}

}  // namespace tabelion
