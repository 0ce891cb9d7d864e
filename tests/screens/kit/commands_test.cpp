#include "screens/kit/commands.h"

#include <gmock/gmock.h>

#include "screens/kit/screen_numbers.h"
#include "screens/program/about.h"
#include "screens/program/preferences_screen.h"
#include "screens/records/record_list.h"
#include "support/menu_walk.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

using testing::Contains;
using testing::IsSupersetOf;

constexpr int kSample = 900;
constexpr CommandId kRunCommand = 40500;

// A screen whose command is not always there.
class SampleScreen : public CommandScreen<SampleScreen> {
 public:
  CommandTable<SampleScreen> Commands(Dialog&) {
    return {.left = {kRunCommand, u"Run", &SampleScreen::Run, may_run},
            .right = {.text = u"Menu"},
            .keys = {{kBackCommand, {}, [](SampleScreen&, Dialog& dialog) { dialog.end(7); }}}};
  }
  void onInit(Dialog& dialog) override { ShowCommands(dialog); }

  bool may_run = false;
  int runs = 0;

 private:
  void Run(Dialog&) { ++runs; }
};

TEST(Commands, ADisabledOneDoesNothingHoweverItIsCalled) {
  PhoneWorld world;
  Application app(world.platform);
  SampleScreen screen;
  world.phone.at(kSample)
      .look([&](FakeDialog& dialog) {
        dialog.handler.onCommand(dialog, kRunCommand);  // a key's way; the row is disabled
        dialog.handler.onCommand(dialog, 4711);
        EXPECT_EQ(screen.runs, 0);
        screen.may_run = true;
        dialog.handler.onCommand(dialog, kRunCommand);
        EXPECT_EQ(screen.runs, 1);
      })
      .press(Key::kBack);
  world.phone.play([&] { EXPECT_EQ(RunModalDialog(app, {.resource = kSample}, screen), 7); });
}

// Whatever is chosen, with nothing confirmed no record changes.
TEST(Commands, EveryEntryComesBackAndChangesNothingByItself) {
  std::vector<TestField> fields{{"Name"}};
  for (int code = 1; code <= codeOf(kLastFieldType); ++code) {
    fields.push_back({"Of type " + std::to_string(code), FieldType{code}});
  }
  for (const TestRows& rows : {TestRows{}, TestRows{{"Berlin"}, {"Rome"}}}) {
    PhoneWorld world;
    Application app(world.platform);
    app.preferences.auto_save_on_close = true;  // Back keeps a database with changes open
    const std::string path = world.add("Towns", fields, rows);
    const auto show_list = [&] { ShowRecordList(app, path); };
    const auto unchanged = [&](const MenuPath& entry) {
      EXPECT_EQ(world.read(path)->records.count(), rows.size()) << narrow(entry.back());
      EXPECT_TRUE(app.open_dialogs.empty());
    };
    EXPECT_THAT(walkMenus(world.phone,
                          {.screen = kRecordListScreen, .program = show_list, .after = unchanged}),
                IsSupersetOf({MenuPath{u"Menu", u"Preferences"},
                              MenuPath{u"Menu", u"Delete", u"Within Filter"},
                              MenuPath{u"Menu", u"Delete", u"All Records"}}));
    const auto open_record = [&] { world.phone.at(kRecordListScreen).press(Key::kEnter); };
    const auto chosen = walkMenus(world.phone, {.screen = kEditRecordScreen,
                                                .program = show_list,
                                                .enter = open_record,
                                                .after = unchanged});
    EXPECT_THAT(chosen, Contains(MenuPath{u"Menu", u"Go To", u"Last"}));
    for (const char16_t* of_a_record : {u"Delete Record", u"Record Details"}) {
      EXPECT_EQ(testing::Value(chosen, Contains(MenuPath{u"Menu", of_a_record})), !rows.empty());
    }
  }
}

TEST(Commands, EveryEntryOfTheProgramsOwnScreensComesBack) {
  PhoneWorld world;
  Application app(world.platform);
  const auto preferences = [&] { ShowPreferences(app); };
  EXPECT_EQ(walkMenus(world.phone, {kPreferencesScreen, preferences}).size(), 2u);
  const auto about = [&] { ShowAbout(app); };
  EXPECT_EQ(walkMenus(world.phone, {kAboutScreen, about}).size(), 1u);
}

}  // namespace
}  // namespace tabelion
