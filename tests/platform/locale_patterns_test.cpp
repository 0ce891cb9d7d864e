#include "platform/std/locale_patterns.h"

#include <gtest/gtest.h>

namespace tabelion {
namespace {

TEST(LocalePatterns, DatesReadBackAsTheyAreShown) {
  const struct {
    const char* format;
    const char* pattern;
    const char* separator;
  } cases[] = {
      {"%m/%d/%Y", "MM/dd/yyyy", "/"},      // month first
      {"%d.%m.%Y", "dd.MM.yyyy", "."},      // day first
      {"%Y-%m-%d", "yyyy-MM-dd", "-"},      // year first
      {"%F", "yyyy-MM-dd", "-"},            //
      {"%D", "MM/dd/yyyy", "/"},            //
      {"%d.%m.%y", "dd.MM.yyyy", "."},      // two digits would read back in another century
      {"%-d.%-m.%Y", "d.M.yyyy", "."},      //
      {"%e. %-m. %Y", "d.M.yyyy", "."},     // one separator, the first that can be typed
      {"%Y. %m. %d.", "yyyy.MM.dd", "."},   //
      {"%d %b %Y", "dd/MM/yyyy", "/"},      // month names become numbers
      {"%m-%d-%Y", "MM/dd/yyyy", "/"},      // month first is typed with a slash
      {"%Ey/%Om/%Od", "yyyy/MM/dd", "/"},   // other digits and eras
      {"%Y年%m月%d日", "yyyy/MM/dd", "/"},  //
      {"%A", "M/d/yyyy", "/"},              // nothing usable: as without a locale
      {"%", "M/d/yyyy", "/"},
  };
  for (const auto& c : cases) {
    const LocaleInfo info = patternsFrom({c.format, "%T", "", "AM", "PM", "."});
    EXPECT_EQ(info.short_date_pattern, c.pattern) << c.format;
    EXPECT_EQ(info.date_separator, c.separator) << c.format;
  }
}

TEST(LocalePatterns, TimesReadBackAsTheyAreShown) {
  const struct {
    const char* format;
    const char* afternoon;
    const char* pattern;
    const char* designator;
  } cases[] = {
      {"%T", "PM", "HH:mm:ss", "PM"},
      {"%r", "PM", "h:mm:ss tt", "PM"},
      {"%I:%M:%S %p", "pm", "h:mm:ss tt", "pm"},
      {"%I:%M:%S %p", "\xe4\xb8\x8b\xe5\x8d\x88", "h:mm:ss tt", "PM"},  // not plain
      {"%I:%M:%S %p", "nachm.", "h:mm:ss tt", "PM"},                    // would not read back
      {"%H.%M.%S", "", "HH.mm.ss", "PM"},
      {"%k:%M:%S", "", "H:mm:ss", "PM"},
      {"%H時%M分%S秒", "", "HH:mm:ss", "PM"},
  };
  for (const auto& c : cases) {
    const LocaleInfo info = patternsFrom({"%F", c.format, "%I:%M:%S %p", "am", c.afternoon, ","});
    EXPECT_EQ(info.time_pattern, c.pattern) << c.format;
    EXPECT_EQ(info.afternoon, c.designator) << c.format;
    EXPECT_TRUE(info.decimal_comma);
  }
}

}  // namespace
}  // namespace tabelion
