#include "screens/edit_record.h"
#include "screens/note_text.h"
#include "screens/record_list.h"
#include "screens/screen_numbers.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

class AutoClose : public testing::Test {
 protected:
  void SetUp() override {
    app.preferences.auto_close_enabled = true;
    app.preferences.auto_close_period_ms = 60000;
    path = world.add("Diary", {{"Title"}, {"Text", kNote}, {"At", kTime}}, {{"Monday"}});
  }
  static auto timerRuns(bool expected) {
    return [expected](FakeDialog& dialog) {
      EXPECT_EQ(dialog.timers.contains(kAutoCloseTimer), expected);
      if (dialog.resource != kRecordListScreen) {  // only the top screen counts
        EXPECT_FALSE(dialog.phone.open(kRecordListScreen).timers.contains(kAutoCloseTimer));
      }
    };
  }

  PhoneWorld world;
  Application app{world.platform};
  std::string path;
};

TEST_F(AutoClose, ChainSavesWhatIsHalfTypedAndEndsEveryScreen) {
  world.phone.at(kRecordListScreen).look(timerRuns(true)).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).look(timerRuns(true)).type(u" morn").activate(FormValue(1));
  world.phone.at(kNoteScreen).look(timerRuns(true)).type(u"It rai").fire(kAutoCloseTimer);
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, nullptr, path), kDialogAutoClosed); });
  EXPECT_EQ(world.cell(path, 0, 0), "Monday morn");
  const auto stored = world.read(path);
  EXPECT_EQ(storedText(*slotValue(stored->records[0].bytes(), 1)), "It rai");
  EXPECT_EQ(world.setting("AutoCloseMinutes"), "60000");  // the preferences are stored on the way
  EXPECT_FALSE(IsDatabaseOpen(app));
}

TEST_F(AutoClose, ValueThatIsNotAcceptedKeepsTheFormOpen) {
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(2), u"10:75").fire(kAutoCloseTimer);
  world.phone.says(u"\"At\" is not a time.", u"Edit Record");
  world.phone.at(kEditRecordScreen)
      .look(timerRuns(true))
      .write(FormValue(2), u"11:00")
      .choose({u"Done"});
  world.phone.at(kRecordListScreen).look(timerRuns(true)).fire(kAutoCloseTimer);
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, nullptr, path), kDialogAutoClosed); });
  EXPECT_EQ(world.cell(path, 0, 2), "11:00:00");
}

TEST_F(AutoClose, EveryKeyStartsTheTimeAnew) {
  const auto forget = [](FakeDialog& dialog) { dialog.timers.clear(); };
  world.phone.at(kRecordListScreen)
      .look(forget)
      .press(Key::kRight)
      .look(timerRuns(true))
      .look(forget)
      .choose({u"Menu", u"Save"});
  world.phone.says(u"File Saved", u"Update");
  world.phone.at(kRecordListScreen).look(timerRuns(true)).choose({u"Menu", u"Close"});
  world.phone.play([&] { ShowRecordList(app, nullptr, path); });

  app.preferences.auto_close_enabled = false;
  world.phone.at(kRecordListScreen)
      .press(Key::kRight)
      .look(timerRuns(false))
      .choose({u"Menu", u"Close"});
  world.phone.play([&] { ShowRecordList(app, nullptr, path); });
}

}  // namespace
}  // namespace tabelion
