#include "screens/kit/pick_date.h"
#include "screens/kit/pick_time.h"
#include "screens/kit/screen_numbers.h"
#include "screens/lists/moment_choices.h"
#include "screens/records/record_form.h"
#include "screens/records/record_list.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

enum Slot { kName, kDay, kHour, kPlace };

// The clock of the world stands at 2024-02-29, 13:00.
class FormChoices : public testing::Test {
 protected:
  ScreenScript form() { return world.phone.at(kEditRecordScreen); }
  // What the record holds after the script, which begins in its form and ends with Done.
  std::string after() {
    Application app(world.platform);
    app.preferences.auto_save_on_close = true;
    form().choose({u"Done"});
    world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
    world.phone.play([&] { ShowRecordList(app, path); });
    return world.cell(path, 0, kDay) + " " + world.cell(path, 0, kHour);
  }
  void open() { world.phone.at(kRecordListScreen).press(Key::kEnter); }

  PhoneWorld world;
  std::string path = world.add(
      "Visits", {{"Name"}, {"Day", FieldType::kDate}, {"Hour", FieldType::kTime}, {"Place"}},
      {{"one", "2031-05-09", "13:05:09", "here"}});
};

TEST_F(FormChoices, MenusGiveUsualDatesAndTimes) {
  const auto choose = [&](int slot, const std::u16string& choice) {
    form().activate(FormQuick(slot));
    world.phone.offers(choice);
  };
  open();
  choose(kDay, u"Tomorrow");
  form().look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.fake(FormValue(kDay)).text(), u"3/1/2024");
    EXPECT_TRUE(dialog.fake(FormValue(kDay)).hasFocus());
  });
  choose(kHour, u"Current Time");
  EXPECT_EQ(after(), "2024-03-01 13:00:00");

  open();
  choose(kDay, u"One Week");
  choose(kHour, u"No Time");
  EXPECT_EQ(after(), "2024-03-07 No Time");

  open();
  choose(kDay, u"No Date");
  choose(kHour, u"");  // the menu is left
  EXPECT_EQ(after(), "NO DATE No Time");
}

TEST_F(FormChoices, PickersBeginAtTheValueAndGiveTheirs) {
  open();
  form().activate(FormQuick(kDay));
  world.phone.offers(u"Choose Date..");
  world.phone.at(kPickDateScreen).press(Key::kRight).press(Key::kEnter);
  form().write(FormValue(kHour), u"7 pm").activate(FormQuick(kHour));
  world.phone.offers(u"Choose Time..");
  world.phone.at(kPickTimeScreen).look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.title, u"Hour");
    EXPECT_EQ(dialog.fake(kHourBox).selection(), 19);
  });
  world.phone.at(kPickTimeScreen).press(Key::kBack);
  EXPECT_EQ(after(), "2031-05-10 19:00:00");
}

TEST_F(FormChoices, PopupListsThemOnAScreen) {
  open();
  form().focus(FormValue(kDay)).choose({u"Menu", u"Popup"});
  world.phone.at(kMomentListScreen).look([](FakeDialog& dialog) {
    std::vector<std::u16string> rows;
    for (int row = 0; row < 4; ++row) {
      rows.push_back(dialog.handler.rowText(dialog, kMomentItems, row));
    }
    EXPECT_EQ(rows, (std::vector<std::u16string>{u"Today", u"No Date", u"Tomorrow", u"One Week"}));
    EXPECT_EQ(dialog.menu_bar.resource, 102);
  });
  world.phone.at(kMomentListScreen).press(Key::kEnter);
  form().focus(FormValue(kHour)).choose({u"Menu", u"Popup"});
  world.phone.at(kMomentListScreen).press(Key::kDown).choose({u"Cancel"});
  form().focus(FormValue(kName)).look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.menuTexts({u"Menu"})[0], u"-Popup");
  });
  EXPECT_EQ(after(), "2024-02-29 13:05:09");
}

TEST_F(FormChoices, UpAndDownGoFromValueToValue) {
  open();
  const auto standsAt = [&](int slot) {
    form().look([slot](FakeDialog& dialog) {
      EXPECT_TRUE(dialog.fake(FormValue(slot)).hasFocus()) << slot;
      EXPECT_TRUE(dialog.fake(FormValue(slot)).text_selected) << slot;
    });
  };
  form().press(Key::kDown, 2);
  standsAt(kHour);
  form().press(Key::kDown);
  standsAt(kPlace);
  form().press(Key::kUp, 2);
  standsAt(kDay);
  form().focus(FormQuick(kDay)).press(Key::kDown);
  standsAt(kHour);
  form().look([](FakeDialog& dialog) {
    const Rect box = dialog.fake(FormValue(kDay)).place();
    const Rect quick = dialog.fake(FormQuick(kDay)).place();
    EXPECT_EQ(box.x + box.width, quick.x);
    EXPECT_EQ(quick.x + quick.width, 232);
  });
  EXPECT_EQ(after(), "2031-05-09 13:05:09");
}

}  // namespace
}  // namespace tabelion
