#include <utility>

#include "screens/files/save_question.h"
#include "screens/records/note_text.h"
#include "screens/records/record_screens.h"

namespace tabelion {
namespace {

class AutoClose : public RecordScreens {
 protected:
  void SetUp() override {
    app.preferences.auto_close_enabled = true;
    app.preferences.auto_close_period_ms = 60000;
    path = world.add("Diary", {{"Title"}, {"Text", FieldType::kNote}, {"At", FieldType::kTime}},
                     {{"Monday"}});
  }
  static Look timerRuns(bool expected) {
    return [expected](FakeDialog& dialog) {
      EXPECT_EQ(dialog.timers.contains(kAutoCloseTimer), expected);
      if (dialog.resource != kRecordListScreen) {  // only the top screen counts
        EXPECT_FALSE(dialog.phone.open(kRecordListScreen).timers.contains(kAutoCloseTimer));
      }
    };
  }

  // The time runs out while the form's next message is up.
  Look nobodyComes = [this](FakeDialog&) {
    world.phone.while_message = [this, done = false]() mutable {
      if (!std::exchange(done, true)) world.phone.open(kEditRecordScreen).fire(kAutoCloseTimer);
    };
  };
  Look sessionEnds = [this](FakeDialog&) { CloseOpenDialogs(app, Closing::kSessionEnds); };
  std::string note() { return std::string(storedText(*slotValue(after->records[0].bytes(), 1))); }
  void closesBy(int expected = kDialogAutoClosed) {
    EXPECT_EQ(runFile(), expected);
    EXPECT_FALSE(IsDatabaseOpen(app));
    EXPECT_TRUE(app.open_dialogs.empty());
  }
};

TEST_F(AutoClose, ChainSavesWhatIsHalfTypedAndEndsEveryScreen) {
  list().look(timerRuns(true)).press(Key::kEnter);
  form().look(timerRuns(true)).type(u" morn").activate(FormValue(1));
  world.phone.at(kNoteScreen).look(timerRuns(true)).type(u"It rai").fire(kAutoCloseTimer);
  closesBy();
  EXPECT_EQ(text(0, 0), "Monday morn");
  EXPECT_EQ(note(), "It rai");
  EXPECT_EQ(world.setting("AutoCloseMinutes"), "60000");  // the preferences are stored on the way
}

// What is not understood, and what nobody saw the meaning of, is told to whoever comes back.
TEST_F(AutoClose, ValueThatCannotBeStoredIsKeptToBeTold) {
  for (const char16_t* typed : {u"10:75", u"10:30"}) {
    open(0);
    form().write(FormValue(2), typed).fire(kAutoCloseTimer);
    closesBy();
    EXPECT_EQ(text(0, 2), "No Time");
    EXPECT_EQ(app.not_stored, std::vector{u"Diary, \"At\": " + std::u16string(typed)});
    app.not_stored.clear();
  }
  // Neither a question nor a message that nobody answers stands in the way.
  open(0);
  form().write(FormValue(2), u"10:30").look(nobodyComes).choose({u"Done"});
  closesBy();
  EXPECT_EQ(app.not_stored.size(), 1u);
}

TEST_F(AutoClose, QuestionThatNobodyAnswersIsDismissedAndNothingIsLost) {
  open(0);
  form().type(u"!").look(nobodyComes).choose({u"Menu", u"Delete Record"});
  closesBy();
  EXPECT_EQ(text(0, 0), "Monday!");

  list().choose({u"New Record"});
  form().type(u"Tuesday").choose({u"Done"});
  close();
  world.phone.at(kSaveQuestionScreen).fire(kAutoCloseTimer);
  closesBy(kDialogClosed);  // what was being done comes to its end
  EXPECT_EQ(text(1, 0), "Tuesday");
  EXPECT_EQ(app.closing, Closing::kNo);

  list().choose({u"New Record"});  // counts as Done would have it, also when nothing was entered
  form().fire(kAutoCloseTimer);
  closesBy();
  EXPECT_EQ(after->records.count(), 3u);
}

TEST_F(AutoClose, EndOfTheSessionStoresAllButWhatIsNotAccepted) {
  open(0);
  form().write(FormValue(2), u"10:75").write(FormValue(0), u"Tuesday").activate(FormValue(1));
  world.phone.at(kNoteScreen).type(u"It rai").look(sessionEnds);
  closesBy();
  EXPECT_EQ(text(0, 0), "Tuesday");
  EXPECT_EQ(note(), "It rai");
  EXPECT_EQ(text(0, 2), "No Time");
  EXPECT_TRUE(world.phone.boxes.empty());
}

TEST_F(AutoClose, PasswordThatNobodyConfirmsOpensNothingAndHoldsNothingUp) {
  makeSafe(kEncryptWholeDatabase);
  encipher("sesame");
  path = world.store(*database);
  const auto untouched = world.files.bytes(path);

  // What is half typed is stored, and enciphered with the password that opened it.
  password(u"sesame");
  open(0);
  form().write(FormValue(1), u"2222").fire(kAutoCloseTimer);
  closesBy();
  EXPECT_EQ(pin(0, "sesame"), "2222");
  // So it is when the dialog was there already, for whichever password.
  for (const bool session_ends : {false, true}) {
    password(u"sesame");
    const std::string changed = session_ends ? "4444" : "3333";
    change(0, 1, std::u16string(changed.begin(), changed.end()));
    close();
    world.phone.at(kSaveQuestionScreen).activate(kSaveChangesButton);
    if (session_ends) {
      world.phone.at(kPasswordScreen).type(u"oth").look(sessionEnds);
    } else {
      world.phone.at(kPasswordScreen).type(u"oth").fire(kAutoCloseTimer);
    }
    closesBy(kDialogClosed);
    EXPECT_EQ(pin(0, "sesame"), changed);
    app.closing = Closing::kNo;
  }

  world.files.put(path, untouched);
  world.phone.at(kPasswordScreen).type(u"sesame").tick(kHidePasswordBox).fire(kAutoCloseTimer);
  closesBy();
  EXPECT_EQ(world.files.bytes(path), untouched);
  EXPECT_EQ(world.setting("HidePassword"), "1");
}

TEST_F(AutoClose, EveryKeyStartsTheTimeAnew) {
  const auto forget = [](FakeDialog& dialog) { dialog.timers.clear(); };
  list().look(forget).press(Key::kRight).look(timerRuns(true)).look(forget);
  save();
  list().look(timerRuns(true));
  close();
  runFile();

  app.preferences.auto_close_enabled = false;
  list().press(Key::kRight).look(timerRuns(false));
  close();
  runFile();
}

}  // namespace
}  // namespace tabelion
