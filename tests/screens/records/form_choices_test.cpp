#include "screens/kit/pick_date.h"
#include "screens/kit/pick_time.h"
#include "screens/lists/moment_choices.h"
#include "screens/records/record_form.h"
#include "screens/records/record_screens.h"

namespace tabelion {
namespace {

enum Slot { kName, kDay, kHour, kPlace };

// The clock of the world stands at 2024-02-29, 13:00.
class FormChoices : public RecordScreens {
 protected:
  void SetUp() override {
    app.preferences.auto_save_on_close = true;
    path = world.add("Visits",
                     {{"Name"}, {"Day", FieldType::kDate}, {"Hour", FieldType::kTime}, {"Place"}},
                     {{"one", "2031-05-09", "13:05:09", "here"}});
  }
  void choose(int slot, const std::u16string& choice) {
    form().activate(FormQuick(slot));
    world.phone.offers(choice);
  }
  // What the record holds after the script, which begins in its form and ends with Done.
  std::string stores() {
    form().choose({u"Done"});
    close();
    runFile();
    return text(0, kDay) + " " + text(0, kHour);
  }
};

TEST_F(FormChoices, MenusGiveUsualDatesAndTimes) {
  open(0);
  choose(kDay, u"Tomorrow");
  form().look(shows(kDay, u"3/1/2024")).look(standsAt(kDay));
  choose(kHour, u"Current Time");
  EXPECT_EQ(stores(), "2024-03-01 13:00:00");

  open(0);
  choose(kDay, u"One Week");
  choose(kHour, u"No Time");
  EXPECT_EQ(stores(), "2024-03-07 No Time");

  open(0);
  choose(kDay, u"No Date");
  choose(kHour, u"");  // the menu is left
  EXPECT_EQ(stores(), "NO DATE No Time");
}

TEST_F(FormChoices, PickersBeginAtTheValueAndGiveTheirs) {
  open(0);
  choose(kDay, u"Choose Date..");
  world.phone.at(kPickDateScreen).press(Key::kRight).press(Key::kEnter);
  form().write(FormValue(kHour), u"7 pm");
  choose(kHour, u"Choose Time..");
  world.phone.at(kPickTimeScreen)
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kHourBox).selection(), 19); })
      .press(Key::kBack);
  EXPECT_EQ(stores(), "2031-05-10 19:00:00");
}

TEST_F(FormChoices, PopupListsThemOnAScreen) {
  open(0);
  form().focus(FormValue(kDay)).choose({u"Menu", u"Popup"});
  world.phone.at(kMomentListScreen)
      .look([](FakeDialog& dialog) {
        std::vector<std::u16string> rows;
        for (int row = 0; row < 4; ++row) {
          rows.push_back(dialog.handler.rowText(dialog, kMomentItems, row));
        }
        EXPECT_THAT(rows, testing::ElementsAre(u"Today", u"No Date", u"Tomorrow", u"One Week"));
      })
      .press(Key::kEnter);
  form().focus(FormValue(kHour)).choose({u"Menu", u"Popup"});
  world.phone.at(kMomentListScreen).press(Key::kDown).choose({u"Cancel"});
  form().focus(FormValue(kName)).look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.menuTexts({u"Menu"})[0], u"-Popup");
  });
  EXPECT_EQ(stores(), "2024-02-29 13:05:09");
}

TEST_F(FormChoices, UpAndDownGoFromValueToValue) {
  open(0);
  form().press(Key::kDown, 2).look(standsAt(kHour)).look([](FakeDialog& dialog) {
    EXPECT_TRUE(dialog.fake(FormValue(kHour)).text_selected);
  });
  form().press(Key::kDown).look(standsAt(kPlace)).press(Key::kUp, 2).look(standsAt(kDay));
  form().focus(FormQuick(kDay)).press(Key::kDown).look(standsAt(kHour));
  EXPECT_EQ(stores(), "2031-05-09 13:05:09");
}

}  // namespace
}  // namespace tabelion
