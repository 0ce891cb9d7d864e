#include "query/time_text.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "query/date_text.h"
#include "query_fixtures.h"

namespace tabelion {
namespace {

std::string shown(int hour, int minute, int second, const char* pattern,
                  const char* separator = ":") {
  const TimeValue time{static_cast<std::uint8_t>(second), static_cast<std::uint8_t>(minute),
                       static_cast<std::uint8_t>(hour)};
  return timeText(time, makeFormatSettings({}, localeOf("M/d/yyyy", "/", pattern, separator)));
}

std::string read(const char* text, int time_format) {
  const TypedTime time = timeOfText(text, chosen(0, time_format));
  return std::to_string(time.result) + " " + std::to_string(time.hour) + ":" +
         std::to_string(time.minute);
}

}  // namespace

TEST(TimeText, FollowsThePattern) {
  EXPECT_EQ(shown(13, 5, 9, "h:mm:ss tt"), "1:05:09PM");  // no blank before the designator
  EXPECT_EQ(shown(0, 0, 0, "h:mm:ss tt"), "12:00:00AM");
  EXPECT_EQ(shown(12, 0, 0, "h:mm:ss tt"), "12:00:00PM");
  EXPECT_EQ(shown(0, 0, 0, "h:mm:ss"), "12:00:00");  // on the 24-hour clock too
  EXPECT_EQ(shown(13, 0, 0, "h:mm:ss"), "13:00:00");
  EXPECT_EQ(shown(0, 7, 0, "hh:mm:ss tt"), "00:07:00AM");
  EXPECT_EQ(shown(15, 7, 0, "hh:mm:ss tt"), "03:07:00PM");
  EXPECT_EQ(shown(15, 7, 0, "HH.MM.ss", "."), "15.07.00");
  EXPECT_EQ(shown(5, 7, 8, "H:mm:ss"), "5:07:08");
  EXPECT_EQ(shown(5, 7, 8, "tt h:mm"), ":07:AM");  // parts unknown and missing
  EXPECT_EQ(shown(255, 7, 8, "H:mm:ss"), "No Time");
}

TEST(TimeText, TypedTimes) {
  EXPECT_EQ(read("13:75", 1), "-1 0:0");
  EXPECT_EQ(read("23:59", 1), "0 23:59");
  EXPECT_EQ(read("24:00", 1), "-1 0:0");
  EXPECT_EQ(read("-1:00", 1), "-1 0:0");
  EXPECT_EQ(read("12:30 pm", 0), "0 12:30");
  EXPECT_EQ(read("12:30", 0), "0 0:30");
  EXPECT_EQ(read("1:05PM", 0), "0 13:5");
  EXPECT_EQ(read("1:05 Pm", 0), "0 1:5");
  EXPECT_EQ(read("13:05", 0), "0 0:5");
  EXPECT_EQ(read("7.15", 2), "0 7:15");
  EXPECT_EQ(read("19.15", 3), "0 19:15");
  EXPECT_EQ(read("19,15", 4), "0 19:15");
  EXPECT_EQ(read("1:05PM", 9), "0 13:5");
  EXPECT_EQ(read("", 1), "0 0:0");
  EXPECT_EQ(read("NO TIME today", 1), "0 255:0");
}

TEST(TimeText, SecondsCountOnlyWhenTheyAreThere) {
  const FormatSettings day = chosen(0, 1);
  EXPECT_EQ(timeOfText("10:20:30", day).second, 30);
  EXPECT_EQ(timeOfText("10:20", day).second, -1);
  EXPECT_EQ(timeOfText("10:20:x", day).second, -1);
  EXPECT_EQ(timeOfText("10:20:60", day).second, -1);
  for (const char* exact : {"10:20", "0:00:59", "No Time", ""}) {
    EXPECT_TRUE(isExactTime(exact, day)) << exact;
  }
  for (const char* other : {"10", "24:00", "10:60", "10:20:60", "10:20pm", "1:2:3:4", "x"}) {
    EXPECT_FALSE(isExactTime(other, day)) << other;
  }
  EXPECT_TRUE(isExactTime("12:20 pm", chosen(0)));
  EXPECT_TRUE(isExactTime("1:20:05AM", chosen(0)));
  EXPECT_FALSE(isExactTime("13:20PM", chosen(0)));
  EXPECT_FALSE(isExactTime("1:20", chosen(0)));
}

TEST(TimeText, UnderstoodTimesAreMeantOrRefused) {
  LocaleInfo greek = localeOf("M/d/yyyy", "/");
  greek.morning = "\xF0.\xEC.";
  greek.afternoon = "\xEC.\xEC.";
  struct Case {
    const char* typed;
    const char* twelve_hours;  // empty: refused
    const char* day;           // on the 24-hour clock
  };
  const Case cases[] = {
      {"17:05", "5:05:00PM", "17:05:00"},
      {"1:05 Pm", "1:05:00PM", "13:05:00"},
      {"1:05p", "1:05:00PM", "13:05:00"},
      {"1:05 p.m.", "1:05:00PM", "13:05:00"},
      {"12:30", "12:30:00AM", "12:30:00"},
      {"12:30 am", "12:30:00AM", "0:30:00"},
      {"5 pm", "5:00:00PM", "17:00:00"},
      {"17.05", "5:05:00PM", "17:05:00"},
      {"7,15,09", "7:15:09AM", "7:15:09"},
      {"1:05\xEC\xEC", "1:05:00PM", "13:05:00"},
      {"no time", "No Time", "No Time"},
      {"17:05 am", "", ""},
      {"24:00", "", ""},
      {"10:75", "", ""},
      {"1705", "", ""},
      {"noon", "", ""},
      {"10:20:60", "", ""},
      {"10:20 xm", "", ""},
      {"1:2:3:4", "", ""},
      {"10:2.3", "", ""},
      {"-1:00", "", ""},
      {"10h20", "", ""},
  };
  for (const auto& [typed, twelve_hours, day] : cases) {
    for (const int format : {0, 1}) {
      const FormatSettings settings = makeFormatSettings({0, format, false}, greek);
      const TypedTime time = understoodTimeOfText(typed, settings);
      std::string text;
      if (time.result == kParseAccepted) {
        const auto part = [](int number) { return static_cast<std::uint8_t>(number); };
        appendTime(text, {part(std::max(0, time.second)), part(time.minute), part(time.hour)},
                   settings.edit_time);
      }
      EXPECT_EQ(text, format == 0 ? twelve_hours : day) << typed;
    }
  }
}

TEST(TimeText, DurationsAndSeconds) {
  EXPECT_EQ(durationText(0), "0:00:00");
  EXPECT_EQ(durationText(360061), "100:01:01");
  EXPECT_EQ(durationText(-61), "-0:01:01");
  EXPECT_EQ(durationText(INT64_MIN), "-2562047788015215:30:08");
  EXPECT_EQ(secondsOfTime({9, 5, 13}), 47109);
  EXPECT_EQ(secondsOfTime({9, 5, kNoTimeHour}), 309);
}

}  // namespace tabelion
