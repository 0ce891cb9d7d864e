#include "query/date_text.h"

#include <gtest/gtest.h>

#include "query_fixtures.h"

namespace tabelion {
namespace {

std::string shown(const CalendarDate& date, const char* pattern, const char* separator) {
  return dateText(date, makeFormatSettings({}, localeOf(pattern, separator)));
}

}  // namespace

TEST(DateText, FollowsThePattern) {
  const CalendarDate date{2, 9, 2003};
  EXPECT_EQ(shown(date, "M/d/yyyy", "/"), "2/9/2003");
  EXPECT_EQ(shown(date, "dd.MM.yy", "."), "09.02.03");
  EXPECT_EQ(shown(date, "dd/MMM/yyyy", "/"), "09/02/2003");  // never a name
  EXPECT_EQ(shown(date, "yyyy-mm-dd", "-"), "2003-02-09");
  EXPECT_EQ(shown(date, "ddd/M/d", "/"), "/2/9");          // unknown part, its separator stays
  EXPECT_EQ(shown(date, "d//M", "/"), "9/2/");             // runs count as one, a part is missing
  EXPECT_EQ(shown(date, "d.M.yyyy", ". "), "9. 2. 2003");  // splits at the first character
  EXPECT_EQ(shown(date, "d M yyyy", "/"), "//");
}

TEST(DateText, DayZeroIsNoDateAndTheCalendarHasEveryFourthLeapYear) {
  const FormatSettings settings = chosen(0);
  EXPECT_EQ(dateText(0u, settings), "NO DATE");
  EXPECT_EQ(dateText(CalendarDate{1, 0, 1800}, settings), "NO DATE");
  EXPECT_EQ(dateText(1u, settings), "1/2/1904");
  EXPECT_EQ(dateText(59u, settings), "2/29/1904");
  EXPECT_EQ(dateText(60u, settings), "3/1/1904");
  EXPECT_EQ(dateText(365u, settings), "12/31/1904");
  EXPECT_EQ(dateText(366u, settings), "1/1/1905");
  EXPECT_EQ(dateText(daysSince1904(2, 29, 2100), settings), "2/29/2100");
  EXPECT_EQ(dateText(daysSince1904(12, 31, 2040), settings), "12/31/2040");
}

TEST(DateText, TypedDatesAreClamped) {
  const FormatSettings us = chosen(0);
  EXPECT_EQ(dateOfText("1/2/05", us), (CalendarDate{1, 2, 2005}));
  EXPECT_EQ(dateOfText("1/2/06", us), (CalendarDate{1, 2, 1906}));
  EXPECT_EQ(dateOfText("1/2/99", us), (CalendarDate{1, 2, 1999}));
  EXPECT_EQ(dateOfText("0/40/2010", us), (CalendarDate{1, 1, 2010}));
  EXPECT_EQ(dateOfText("2/31/2010", us), (CalendarDate{2, 31, 2010}));
  EXPECT_EQ(dateOfText("7", us), (CalendarDate{7, 1, 2000}));
  EXPECT_EQ(dateOfText("//3//4//1999", us), (CalendarDate{3, 4, 1999}));
  EXPECT_EQ(dateOfText("", us), CalendarDate{});
  EXPECT_EQ(dateOfText("still no date yet", us), CalendarDate{});
  const CalendarDate expected{3, 4, 1999};
  const char* const typed[] = {"3/4/1999", "4/3/1999", "4.3.1999", "4-3-1999",
                               "1999/3/4", "1999.3.4", "1999-3-4"};
  for (int format = 0; format < 7; ++format) {
    EXPECT_EQ(dateOfText(typed[format], chosen(format)), expected) << format;
  }
  EXPECT_EQ(dateOfText(typed[0], chosen(7)), expected);
  EXPECT_EQ(dateOfText(typed[0], chosen(-1)), expected);
}

TEST(DateText, ExactDatesHaveNothingToClamp) {
  const FormatSettings settings = chosen(6);
  for (const char* exact : {"2031-5-9", "2032-02-29", "1904-01-02", "9999-12-31", "", "NO DATE"}) {
    EXPECT_EQ(exactDateOfText(exact, settings), dateOfText(exact, settings)) << exact;
  }
  for (const char* other :
       {"2031-13-9", "2031-2-29", "2031-5", "31/5/2009", "1903-12-31", "2031-5-9-1", "2031-5-x",
        "10000-1-1", "no date", "31-5-9", "2031", "1904-01-01"}) {
    EXPECT_FALSE(exactDateOfText(other, settings)) << other;
  }
}

TEST(DateText, UnderstoodDatesAreMeantOrRefused) {
  struct Case {
    int format;
    const char* typed;
    const char* shown;  // empty: refused
  };
  const Case cases[] = {
      {0, "12/31/1999", "12/31/1999"},
      {0, "1/2/26", "1/2/1926"},
      {0, "7", "7/1/2000"},
      {0, "3/4/", "3/4/2000"},
      {0, "1999-12-31", "12/31/1999"},
      {0, " 1 / 2 / 2005", "1/2/2005"},
      {0, "still No Date", "NO DATE"},
      {2, "31.12.1999", "31.12.1999"},
      {2, "31. 12. 99.", "31.12.1999"},
      {2, "31.12.", "31.12.2000"},
      {2, "1999.12.31", "31.12.1999"},
      {4, "2032/02/29", "2032/2/29"},
      {0, "31.12.1999", ""},
      {0, "31/12/1999", ""},
      {0, "2/30/2000", ""},
      {0, "0/40/2010", ""},
      {0, "3.4.1999", ""},
      {0, "tomorrow", ""},
      {0, "1/2/2005x", ""},
      {0, "1/2/2005/6", ""},
      {0, "1/-2/2005", ""},
      {0, "1/1/1850", ""},
      {0, "1999-12-31T10:00", ""},
      {0, "/", ""},
      {2, "31/12/1999", ""},
      {6, "1999-13-01", ""},
  };
  for (const auto& [format, typed, expected] : cases) {
    const FormatSettings settings = chosen(format);
    const auto date = understoodDateOfText(typed, settings);
    std::string text;
    if (date) appendDate(text, *date, settings.edit_date);
    EXPECT_EQ(text, expected) << typed << " by choice " << format;
  }
}

}  // namespace tabelion
