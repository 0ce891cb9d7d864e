#include "screens/files/changed_file.h"
#include "screens/files/copy_question.h"
#include "screens/files/database_info.h"
#include "screens/files/save_question.h"
#include "screens/kit/screen_numbers.h"
#include "support/looks.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

TEST(DatabaseInfo, SaysWhatHeaderAndFileSay) {
  for (const Size screen : {Size{240, 320}, Size{320, 240}}) {
    PhoneWorld world(screen);
    const std::string name(31, 'W');
    const auto database = world.make(name, {{"Name"}}, {{"a"}, {"b"}});
    setAreaText(database->schema.author, "J\xFCrgen");
    const std::string path = world.store(*database);
    world.files.setTimes(path, 951782399, 951868799);  // 2000-02-28 and -29, 23:59:59 UTC
    Application app(world.platform);
    app.preferences.auto_close_enabled = true;
    app.preferences.auto_close_period_ms = 60000;
    world.phone.at(kDatabaseInfoScreen)
        .look([&](FakeDialog& dialog) {
          const auto text = [&](ControlId label) {
            return narrow(dialog.fake(label).text() + dialog.fake(InfoValue(label)).text());
          };
          EXPECT_EQ(text(kInfoName), "Database Name :" + name);
          EXPECT_EQ(text(kInfoAuthor), "Author :J\xC3\xBCrgen");
          EXPECT_EQ(text(kInfoRecords), "No.of Records :2");
          EXPECT_EQ(text(kInfoCreated), "Created On :2/29/2000\t 12:59:59AM");
          EXPECT_EQ(text(kInfoModified), "Modified On :3/1/2000\t 12:59:59AM");
          const float kilobytes = static_cast<float>(world.files.bytes(path).size()) * 0.001F;
          EXPECT_EQ(text(kInfoSize),
                    "Database Size :" + std::to_string(kilobytes).substr(0, 5) + " Kb");
          EXPECT_GE(dialog.fake(InfoValue(kInfoName)).place().height, 30);
        })
        .fire(kAutoCloseTimer);
    world.phone.at(kDatabaseInfoScreen).choose({u"Done"});
    world.phone.play([&] {
      EXPECT_EQ(ShowDatabaseInfo(app, path), kDialogDone);
      EXPECT_EQ(ShowDatabaseInfo(app, "/nowhere.pdb"), kDialogDone);
    });
  }
}

TEST(CopyQuestionDialog, EveryAnswerAndTheBoxThatEndsTheQuestions) {
  PhoneWorld world;
  Application app(world.platform);
  const auto ask = [&](bool form) {
    CopyChoice choice = CopyChoice::kOverwrite;
    world.phone.play([&] { choice = AskCopyQuestion(app, "/card/Tabelion/Notes.PDB", form); });
    return choice;
  };
  world.phone.at(kCopyQuestionScreen)
      .look([&](FakeDialog& dialog) {
        EXPECT_EQ(world.setting("SyncOverwrite"), "0");
        EXPECT_EQ(narrow(dialog.fake(1).text()).substr(0, 11), "\"Notes.PDB\"");
      })
      .press(Key::kBack);
  EXPECT_EQ(ask(false), CopyChoice::kIgnore);
  world.phone.at(kCopyQuestionScreen).press(Key::kEnter);
  EXPECT_EQ(ask(false), CopyChoice::kSync);
  world.phone.at(kCopyQuestionScreen).press(Key::kUp).press(Key::kEnter);
  EXPECT_EQ(ask(false), CopyChoice::kOverwrite);
  world.phone.at(kCopyQuestionScreen)
      .look([](FakeDialog& dialog) { EXPECT_FALSE(dialog.has(kSyncButton)); })
      .look(reads(kOverwriteButton, u"Yes"))
      .look(reads(kIgnoreButton, u"No"))
      .tick(kNoQuestionBox)
      .activate(kOverwriteButton);
  EXPECT_EQ(ask(true), CopyChoice::kOverwrite);
  EXPECT_EQ(world.setting("SyncOverwrite"), "1");
}

TEST(FileQuestions, LeavingAndSilenceLoseNothing) {
  PhoneWorld world;
  Application app(world.platform);
  app.preferences.auto_close_enabled = true;
  app.preferences.auto_close_period_ms = 60000;
  for (const int screen : {kChangedFileScreen, kSaveQuestionScreen}) {
    world.phone.at(screen).fire(kAutoCloseTimer);
    world.phone.at(screen).press(Key::kBack);
    world.phone.at(screen).press(Key::kUp).press(Key::kEnter);
    if (screen == kSaveQuestionScreen) world.phone.at(screen).press(Key::kDown).press(Key::kEnter);
  }
  world.phone.play([&] {
    EXPECT_EQ(AskChangedFile(app, "/a/Notes.PDB"), ChangedFileChoice::kKeepBoth);
    EXPECT_EQ(AskChangedFile(app, "/a/Notes.PDB"), ChangedFileChoice::kCancel);
    EXPECT_EQ(AskChangedFile(app, "/a/Notes.PDB"), ChangedFileChoice::kOverwrite);
    EXPECT_EQ(AskToSave(app, u"Save?"), SaveChoice::kNobody);
    EXPECT_EQ(AskToSave(app, u"Save?"), SaveChoice::kStay);
    EXPECT_EQ(AskToSave(app, u"Save?"), SaveChoice::kSave);
    EXPECT_EQ(AskToSave(app, u"Save?"), SaveChoice::kDiscard);
  });
}

}  // namespace
}  // namespace tabelion
