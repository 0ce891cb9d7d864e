#include "query/format_settings.h"

#include <gtest/gtest.h>

#include "query/date_text.h"
#include "query/field_value.h"
#include "query/time_text.h"
#include "query_fixtures.h"

namespace tabelion {
namespace {

const std::pair<const char*, const char*> kDatePatterns[] = {
    {"M/d/yyyy", "/"},    {"MM/dd/yy", "/"},    {"dd/MM/yyyy", "/"},
    {"d/M/yy", "/"},      {"dd/MMM/yyyy", "/"}, {"dd.MM.yyyy", "."},
    {"d. M. yyyy", ". "}, {"d.MM.yy", "."},     {"dd-MM-yyyy", "-"},
    {"yyyy/MM/dd", "/"},  {"yyyy.M.d", ". "},   {"yyyy-MM-dd", "-"},
    {"M.d.yyyy", "."},    {"yyyy/dd/MM", "/"},  {"d MMM yyyy", " "},
    {"ddd d/M/yy", "/"},  {"nonsense", "/"},    {"", ""}};
const std::pair<const char*, const char*> kTimePatterns[] = {
    {"h:mm:ss tt", ":"}, {"hh:mm:ss tt", ":"},
    {"h:mm tt", ":"},    {"tt h:mm:ss", ":"},
    {"H:mm:ss", ":"},    {"HH:mm", ":"},
    {"h:mm:ss", ":"},    {"HH.mm.ss", "."},
    {"h.mm.ss tt", "."}, {"HH,mm,ss", ","},
    {"HH'h'mm", "h"},    {"HH:mm:ss tt", ":"},
    {"nonsense", ":"},   {"", ""}};
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

// What a form shows reads back as the value, under every locale and every choice, also as strictly
// as files are read.
TEST(FormatSettings, EditedDatesReadBackUnderEveryLocale) {
  FieldDefinition field;
  field.type = FieldType::kDate;
  for (const auto& [pattern, separator] : kDatePatterns) {
    const LocaleInfo locale = localeOf(pattern, separator);
    for (int format = -1; format < 7; ++format) {
      const FormatSettings settings =
          format < 0 ? matchingSettings(locale) : makeFormatSettings({format, 0, false}, locale);
      for (std::uint32_t days = 0; days < 2957000; days += 9839) {  // 1904 to 9999
        std::string text;
        appendDate(text, days, settings.edit_date);
        const auto value = valueOfText(field, {}, text, settings, {}, InputCare::kFile);
        ASSERT_TRUE(value.ok()) << pattern << " " << format << ": " << text;
        ASSERT_EQ(loadLe32(value->data()), days) << pattern << " " << format << ": " << text;
      }
    }
  }
}

TEST(FormatSettings, EditedTimesReadBackUnderEveryLocale) {
  FieldDefinition field;
  field.type = FieldType::kTime;
  for (const auto& [pattern, separator] : kTimePatterns) {
    for (const auto& [morning, afternoon] : kDesignators) {
      LocaleInfo locale = localeOf("M/d/yyyy", "/", pattern, separator);
      locale.morning = morning;
      locale.afternoon = afternoon;
      for (int format = -1; format < 5; ++format) {
        const FormatSettings settings =
            format < 0 ? matchingSettings(locale) : makeFormatSettings({0, format, false}, locale);
        for (int minute = 0; minute < 24 * 60; minute += 29) {
          const auto low = static_cast<std::uint8_t>(minute % 60);
          const TimeValue time{low, low, static_cast<std::uint8_t>(minute / 60)};
          std::string text;
          appendTime(text, time, settings.edit_time);
          const auto value = valueOfText(field, {}, text, settings, {}, InputCare::kFile);
          ASSERT_TRUE(value.ok()) << pattern << " " << format << ": " << text;
          ASSERT_EQ(timeOfValue(*value), time) << pattern << " " << format << ": " << text;
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

}  // namespace tabelion
