#include <gtest/gtest.h>

#include "screens/kit/month_grid.h"
#include "screens/kit/pick_date.h"
#include "screens/kit/pick_time.h"
#include "screens/kit/screen_numbers.h"
#include "services/modal.h"
#include "support/looks.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

// The clock of the world stands at Thursday, 29 February 2024, 13:00.
class Pickers : public testing::Test {
 protected:
  ScreenScript date() { return world.phone.at(kPickDateScreen); }
  ScreenScript time() { return world.phone.at(kPickTimeScreen); }
  static Look is(const std::u16string& words) {
    return speaks(kMonthCanvas, u"Calendar, " + words);
  }
  // What the user picks, as a count of days; -1 for nothing.
  std::int64_t pick(std::uint32_t days) {
    std::optional<std::uint32_t> picked;
    world.phone.play([&] { picked = PickDate(app, u"Due", days); });
    return picked ? std::int64_t{*picked} : -1;
  }
  std::optional<TimeValue> pick(const TimeValue& from) {
    std::optional<TimeValue> picked;
    world.phone.play([&] { picked = PickTime(app, u"At", from); });
    return picked;
  }

  PhoneWorld world;
  Application app{world.platform};
};

TEST_F(Pickers, MonthIsWalkedByKeys) {
  date().look(is(u"Thursday, 29 February 2024, today"));
  date().press(Key::kRight).look(is(u"Friday, 1 March 2024"));
  date().press(Key::kUp).press(Key::kLeft).look(is(u"Thursday, 22 February 2024"));
  date().press(Key::kDown).type(u"+");
  date().look(is(u"Friday, 28 February 2025")).type(u"--");  // the month is shorter there
  date().press(Key::kEnd).press(Key::kPageDown).press(Key::kEnd);
  date().look(is(u"Friday, 31 March 2023"));
  date().press(Key::kPageDown).press(Key::kHome).look(is(u"Saturday, 1 April 2023"));
  date().choose({u"Menu", u"Next Year (+)"}).choose({u"Menu", u"Previous Month"});
  date().look(reads(kDateBox, u"3/1/2024")).look(hasFocus(kMonthCanvas)).press(Key::kEnter);
  EXPECT_EQ(pick(0), daysSince1904(3, 1, 2024));

  date().press(Key::kPageUp).press(Key::kHome).press(Key::kBack);
  EXPECT_EQ(pick(daysSince1904(5, 9, 2031)), -1);

  // Day 0 would be no date, and no text shows a year of five digits.
  date().press(Key::kUp).press(Key::kPageUp).type(u"-").press(Key::kEnter);
  EXPECT_EQ(pick(3), 1);
  date().press(Key::kRight).press(Key::kPageDown).type(u"+").press(Key::kEnter);
  EXPECT_EQ(pick(daysSince1904(12, 31, 9999)), daysSince1904(12, 31, 9999));
}

TEST_F(Pickers, DigitsTypeADateAsTheFormReadsIt) {
  date().type(u"5/9/31").look(is(u"Saturday, 9 May 1931"));
  date().press(Key::kBack, 2).type(u"2031").look(is(u"Friday, 9 May 2031")).press(Key::kEnter);
  EXPECT_EQ(pick(1), daysSince1904(5, 9, 2031));

  date().type(u"13/1/2024");
  date().look(is(u"This is not a date from 1904 to 9999 like 12/31/2025.")).press(Key::kEnter);
  world.phone.says(u"\"Due\" is not a date from 1904 to 9999 like 12/31/2025.", u"Choose Date");
  date()
      .look(hasFocus(kDateBox))
      .press(Key::kBack)
      .type(u"no date")
      .look(is(u"No Date"))
      .press(Key::kEnter);
  EXPECT_EQ(pick(1), 0);
}

TEST_F(Pickers, PressesReachWhatIsPainted) {
  app.preferences.week_starts_monday = 1;
  date().look([](FakeDialog& dialog) {
    FakeControl& canvas = dialog.fake(kMonthCanvas);
    const auto at = [&](const std::u16string& words) {
      for (const auto& text : canvas.paintCanvas().texts) {
        if (text.text == words) return Point{text.area.x + 1, text.area.y + 1};
      }
      return Point{-1, -1};
    };
    EXPECT_EQ(at(u"Mo").x, at(u"5").x);  // Monday, 5 February
    EXPECT_LT(at(u"Mo").x, at(u"Su").x);
    EXPECT_EQ(at(u"4").x, at(u"Su").x);
    EXPECT_EQ(canvas.paintCanvas().fills.back().area.y, at(u"29").y - 1);
    dialog.handler.onCanvasPressed(dialog, kMonthCanvas, {at(u"Su").x, at(u"February 2024").y});
    EXPECT_EQ(canvas.spoken(), u"Calendar, Friday, 28 February 2025");
    dialog.handler.onCanvasPressed(dialog, kMonthCanvas, at(u"Su"));  // nothing there
    dialog.handler.onCanvasPressed(dialog, kMonthCanvas, at(u"14"));
    EXPECT_EQ(canvas.spoken(), u"Calendar, Friday, 14 February 2025");
    dialog.handler.onCanvasPressed(dialog, kMonthCanvas, at(u"14"));  // takes it
  });
  EXPECT_EQ(pick(0), daysSince1904(2, 14, 2025));
  EXPECT_EQ(WeekdayOf({3, 1, 2100}), 1);  // a Monday, though this calendar has a day before it
}

TEST_F(Pickers, LeftAloneTheyTakeWhatWasChangedAndNothingElse) {
  const auto close = [](FakeDialog& dialog) { dialog.handler.onTimer(dialog, kAutoCloseTimer); };
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = 60000;
  date().look(close);
  EXPECT_EQ(pick(0), -1);
  date().press(Key::kRight).look(close);
  EXPECT_EQ(pick(5), 6);
  date().type(u"13/").look(close);
  EXPECT_EQ(pick(5), -1);
}

TEST_F(Pickers, TimeIsSteppedAndTyped) {
  const auto step = [](ControlId box, int value) {
    return [=](FakeDialog& dialog) {
      dialog.fake(box).select(value);
      dialog.handler.onNotice(dialog, box, Notice::kEdited);
    };
  };
  time().look(reads(kTimeBox, u"1:05:09PM"));
  time().look(step(kHourBox, 14)).look(reads(kTimeWords, u"2:05:00PM"));
  time().look(step(kHourBox, 13)).look(reads(kTimeBox, u"1:05:09PM"));
  time().look(step(kMinuteBox, 59)).press(Key::kEnter);
  EXPECT_EQ(pick(TimeValue{9, 5, 13, 7}), (TimeValue{0, 59, 13, 7}));

  time().write(kTimeBox, u"25:00").press(Key::kEnter);
  world.phone.says(u"\"At\" is not a time like 5:05:00PM.", u"Choose Time");
  time().write(kTimeBox, u"7.15 pm").look(selects(kHourBox, 19)).look(selects(kMinuteBox, 15));
  time().press(Key::kEnter);
  EXPECT_EQ(pick(TimeValue{}), (TimeValue{0, 15, 19}));

  time().look(reads(kTimeWords, u"1:00:00PM"));  // now
  time().focus(kHourBox).press(Key::kBack);
  EXPECT_EQ(pick(TimeValue{}), std::nullopt);
}

}  // namespace
}  // namespace tabelion
