#include "screens/program/preferences_screen.h"

#include "screens/kit/screen_numbers.h"
#include "screens/records/record_list.h"
#include "support/looks.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

class PreferencesDialog : public testing::Test {
 protected:
  ScreenScript screen() { return world.phone.at(kPreferencesScreen); }
  void run(int expected) {
    world.phone.play([&] { EXPECT_EQ(ShowPreferences(app), expected); });
  }
  static auto command(CommandId number) {
    return [=](FakeDialog& dialog) { dialog.handler.onCommand(dialog, number); };
  }
  static auto stepTo(int preset) {
    return [=](FakeDialog& dialog) {
      dialog.moveFocus(kMinutesPreset);
      dialog.fake(kMinutesPreset).select(preset);
      dialog.handler.onNotice(dialog, kMinutesPreset, Notice::kEdited);
    };
  }

  PhoneWorld world;
  Application app{world.platform};
  const std::vector<ControlId> seconds{kSaveSeconds, kSecondsLabel};
  const std::vector<ControlId> minutes{kCloseMinutes, kMinutesPreset, kMinutesLabel};
};

TEST_F(PreferencesDialog, DoneStoresInTwoSteps) {
  int restarted = 0;
  app.restart_auto_save = [&] { ++restarted; };
  screen().look(visible(seconds, false)).look(visible(minutes, false)).tick(kSaveOnCloseBox);
  screen().tick(kSaveByTimeBox).look(reads(kSaveSeconds, u"60")).look(visible(seconds, true));
  screen().write(kSaveSeconds, u"4x5").tick(kAutoEncryptBox);
  screen().tick(kAutoCloseBox).look(reads(kAutoCloseBox, u"Auto Close All DBs after"));
  screen().look(visible(minutes, true));
  screen().look(stepTo(5)).look(reads(kCloseMinutes, u"30"));
  screen().look(stepTo(1)).look(reads(kCloseMinutes, u"1"));
  screen().write(kCloseMinutes, u"5").pick(kWeekStartChoice, u"Monday").choose({u"Done"});
  run(kDialogDone);
  EXPECT_TRUE(app.preferences.auto_save_on_close);
  EXPECT_TRUE(app.preferences.auto_encrypt);
  EXPECT_EQ(app.preferences.auto_save_period_ms, 45000);
  EXPECT_EQ(app.preferences.auto_close_period_ms, 300000);
  EXPECT_EQ(restarted, 1);
  EXPECT_EQ(world.setting("AutoSaveSeconds"), "45");
  EXPECT_EQ(world.setting("WeekStart"), "1");
  EXPECT_EQ(world.settings.user.size(), 2u);  // the others wait for the next auto-close

  // The next time everything is shown; the same seconds store and start nothing.
  world.settings.user.clear();
  screen().look(reads(kSaveSeconds, u"45")).look(reads(kCloseMinutes, u"5"));
  screen().look(reads(kAutoCloseBox, u"Auto Close All DBs after")).choose({u"Done"});
  run(kDialogDone);
  EXPECT_EQ(world.setting("AutoSaveSeconds"), "(none)");
  EXPECT_EQ(restarted, 1);

  // No minutes and no seconds switch both off.
  screen().tick(kSaveByTimeBox).look(visible(seconds, false)).write(kCloseMinutes, u"0");
  screen().press(Key::kEnter);
  run(kDialogDone);
  EXPECT_EQ(world.setting("AutoSaveSeconds"), "0");
  EXPECT_EQ(app.preferences.auto_save_period_ms, 0);
  EXPECT_EQ(restarted, 2);
  EXPECT_FALSE(app.preferences.auto_close_enabled);
  EXPECT_EQ(app.preferences.auto_close_period_ms, 0);
}

TEST_F(PreferencesDialog, BackErasesDigitsAndCancelsElsewhere) {
  app.preferences.auto_save_period_ms = 60000;
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = 600000;
  screen().focus(kSaveSeconds).look(command(kBackCommand)).look(reads(kSaveSeconds, u"6"));
  screen().focus(kCloseMinutes).look(command(kBackCommand)).look(reads(kCloseMinutes, u"1"));
  screen().tick(kSaveOnCloseBox).pick(kWeekStartChoice, u"Monday").press(Key::kBack);
  run(kDialogClosed);
  EXPECT_FALSE(app.preferences.auto_save_on_close);
  EXPECT_EQ(app.preferences.auto_save_period_ms, 60000);
  EXPECT_EQ(app.preferences.week_starts_monday, 1);  // chosen is chosen
  EXPECT_TRUE(world.settings.user.empty());
}

TEST_F(PreferencesDialog, AutoCloseAppliesThemAndClosesTheDatabase) {
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = 60000;
  const std::string path = world.add("Diary", {{"Title"}}, {{"Monday"}});
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Preferences"});
  screen().tick(kSaveOnCloseBox).write(kCloseMinutes, u"3").fire(kAutoCloseTimer);
  world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, path), kDialogAutoClosed); });
  EXPECT_FALSE(IsDatabaseOpen(app));
  EXPECT_EQ(world.setting("AutoSave"), "1");
  EXPECT_EQ(world.setting("AutoCloseOption"), "1");
  EXPECT_EQ(world.setting("AutoCloseMinutes"), "180000");
}

}  // namespace
}  // namespace tabelion
