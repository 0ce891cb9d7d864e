#include <utility>

#include "screens/files/save_question.h"
#include "screens/kit/screen_numbers.h"
#include "screens/program/ask_password.h"
#include "screens/records/edit_record.h"
#include "screens/records/note_text.h"
#include "screens/records/record_list.h"
#include "security/database_encryption.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

class AutoClose : public testing::Test {
 protected:
  void SetUp() override {
    app.preferences.auto_close_enabled = true;
    app.preferences.auto_close_period_ms = 60000;
    path = world.add("Diary", {{"Title"}, {"Text", FieldType::kNote}, {"At", FieldType::kTime}},
                     {{"Monday"}});
  }
  static auto timerRuns(bool expected) {
    return [expected](FakeDialog& dialog) {
      EXPECT_EQ(dialog.timers.contains(kAutoCloseTimer), expected);
      if (dialog.resource != kRecordListScreen) {  // only the top screen counts
        EXPECT_FALSE(dialog.phone.open(kRecordListScreen).timers.contains(kAutoCloseTimer));
      }
    };
  }

  // What happens while the next message is up.
  void meanwhile(std::function<void()> act) {
    world.phone.while_message = [act, done = false]() mutable {
      if (!std::exchange(done, true)) act();
    };
  }
  void nobodyComes(int screen) {
    meanwhile([this, screen] { world.phone.open(screen).fire(kAutoCloseTimer); });
  }
  auto sessionEnds() {
    return [this](FakeDialog&) { CloseOpenDialogs(app, Closing::kSessionEnds); };
  }
  std::string note() {
    const auto database = world.read(path);
    return std::string(storedText(*slotValue(database->records[0].bytes(), 1)));
  }
  void play(int expected = kDialogAutoClosed) {
    world.phone.play([&] { EXPECT_EQ(ShowRecordList(app, path), expected); });
    EXPECT_FALSE(IsDatabaseOpen(app));
    EXPECT_TRUE(app.open_dialogs.empty());
  }

  PhoneWorld world;
  Application app{world.platform};
  std::string path;
};

TEST_F(AutoClose, ChainSavesWhatIsHalfTypedAndEndsEveryScreen) {
  world.phone.at(kRecordListScreen).look(timerRuns(true)).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).look(timerRuns(true)).type(u" morn").activate(FormValue(1));
  world.phone.at(kNoteScreen).look(timerRuns(true)).type(u"It rai").fire(kAutoCloseTimer);
  play();
  EXPECT_EQ(world.cell(path, 0, 0), "Monday morn");
  EXPECT_EQ(note(), "It rai");
  EXPECT_EQ(world.setting("AutoCloseMinutes"), "60000");  // the preferences are stored on the way
}

// What is not understood, and what nobody saw the meaning of, is told to whoever comes back.
TEST_F(AutoClose, ValueThatCannotBeStoredIsKeptToBeTold) {
  for (const char16_t* typed : {u"10:75", u"10:30"}) {
    world.phone.at(kRecordListScreen).press(Key::kEnter);
    world.phone.at(kEditRecordScreen).write(FormValue(2), typed).fire(kAutoCloseTimer);
    play();
    EXPECT_EQ(world.cell(path, 0, 2), "No Time");
    EXPECT_EQ(app.not_stored, std::vector{u"Diary, \"At\": " + std::u16string(typed)});
    app.not_stored.clear();
  }
  // Neither a question nor a message that nobody answers stands in the way.
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(2), u"10:30");
  world.phone.at(kEditRecordScreen)
      .look([this](FakeDialog&) { nobodyComes(kEditRecordScreen); })
      .choose({u"Done"});
  play();
  EXPECT_EQ(app.not_stored.size(), 1u);
}

TEST_F(AutoClose, QuestionThatNobodyAnswersIsDismissedAndNothingIsLost) {
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen)
      .type(u"!")
      .look([this](FakeDialog&) { nobodyComes(kEditRecordScreen); })
      .choose({u"Menu", u"Delete Record"});
  play();
  EXPECT_EQ(world.cell(path, 0, 0), "Monday!");

  world.phone.at(kRecordListScreen).choose({u"New Record"});
  world.phone.at(kEditRecordScreen).type(u"Tuesday").choose({u"Done"});
  world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
  world.phone.at(kSaveQuestionScreen).fire(kAutoCloseTimer);
  play(kDialogClosed);  // what was being done comes to its end
  EXPECT_EQ(world.cell(path, 1, 0), "Tuesday");
  EXPECT_EQ(app.closing, Closing::kNo);
}

// A new record counts as Done would have it, also when nothing was entered.
TEST_F(AutoClose, NewRecordIsStored) {
  world.phone.at(kRecordListScreen).choose({u"New Record"});
  world.phone.at(kEditRecordScreen).fire(kAutoCloseTimer);
  play();
  EXPECT_EQ(world.read(path)->records.count(), 2u);
}

TEST_F(AutoClose, EndOfTheSessionStoresAllButWhatIsNotAccepted) {
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen)
      .write(FormValue(2), u"10:75")
      .write(FormValue(0), u"Tuesday")
      .activate(FormValue(1));
  world.phone.at(kNoteScreen).type(u"It rai").look(sessionEnds());
  play();
  EXPECT_EQ(world.cell(path, 0, 0), "Tuesday");
  EXPECT_EQ(note(), "It rai");
  EXPECT_EQ(world.cell(path, 0, 2), "No Time");
  EXPECT_TRUE(world.phone.boxes.empty());
}

TEST_F(AutoClose, PasswordThatNobodyConfirmsOpensNothingAndHoldsNothingUp) {
  auto database = world.make("Safe", {{"Name"}, {"Pin"}}, {{"Anna", "1111"}});
  database->schema.fields[1].encrypt_flag = 1;
  database->schema.encryption_mode = kEncryptWholeDatabase;
  ExpandedKey key;
  MakeKey("sesame", key);
  encryptRecords(*database, world.engine, key);
  SetPasswordCheck(database->schema, "sesame", world.engine.random);
  path = world.store(*database);
  const auto stored = world.files.bytes(path);
  const auto opens = [&] { world.phone.at(kPasswordScreen).type(u"sesame").choose({u"OK"}); };

  // What is half typed is stored, and enciphered with the password that opened it.
  opens();
  world.phone.at(kRecordListScreen).press(Key::kEnter);
  world.phone.at(kEditRecordScreen).write(FormValue(1), u"2222").fire(kAutoCloseTimer);
  play();
  const auto decrypted = [&] {
    const auto after = world.read(path);
    Bytes clear;
    EXPECT_EQ(DecryptRecord(after->schema, after->records[0].bytes(), key, clear),
              kRecordDecrypted);
    return fieldText(*after, clear, 1, isoSettings()).text;
  };
  EXPECT_EQ(decrypted(), "2222");
  // So it is when the dialog was there already, for whichever password.
  for (const bool session_ends : {false, true}) {
    opens();
    world.phone.at(kRecordListScreen).press(Key::kEnter);
    const std::string changed = session_ends ? "4444" : "3333";
    world.phone.at(kEditRecordScreen)
        .write(FormValue(1), std::u16string(changed.begin(), changed.end()))
        .choose({u"Done"});
    world.phone.at(kRecordListScreen).choose({u"Menu", u"Close"});
    world.phone.at(kSaveQuestionScreen).activate(kSaveChangesButton);
    if (session_ends) {
      world.phone.at(kPasswordScreen).type(u"oth").look(sessionEnds());
    } else {
      world.phone.at(kPasswordScreen).type(u"oth").fire(kAutoCloseTimer);
    }
    play(kDialogClosed);
    EXPECT_EQ(decrypted(), changed);
    app.closing = Closing::kNo;
  }

  world.files.put(path, stored);
  world.phone.at(kPasswordScreen).type(u"sesame").tick(kHidePasswordBox).fire(kAutoCloseTimer);
  play();
  EXPECT_EQ(world.files.bytes(path), stored);
  EXPECT_EQ(world.setting("HidePassword"), "1");
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
  world.phone.play([&] { ShowRecordList(app, path); });

  app.preferences.auto_close_enabled = false;
  world.phone.at(kRecordListScreen)
      .press(Key::kRight)
      .look(timerRuns(false))
      .choose({u"Menu", u"Close"});
  world.phone.play([&] { ShowRecordList(app, path); });
}

}  // namespace
}  // namespace tabelion
