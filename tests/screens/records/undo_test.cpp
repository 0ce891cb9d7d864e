// Undo and Redo in the list and the form.
#include "screens/records/undo.h"

#include "screens/kit/screen_numbers.h"
#include "screens/program/ask_password.h"
#include "screens/records/edit_record.h"
#include "screens/records/record_list.h"
#include "security/access_rights.h"
#include "security/database_encryption.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

using Entries = std::vector<std::u16string>;

class Undo : public testing::Test {
 protected:
  void SetUp() override {
    database = world.make("Songs", {{"Title"}, {"Key"}}, {{"A", "1"}, {"B", "2"}, {"C", "3"}});
    database->schema.sort[0] = {0, 1};
  }
  // Whatever is in the list at the end is closed without a question: nothing may be left to save.
  void play(bool changed = false) {
    path = world.store(*database);
    stored = world.files.bytes(path);
    Application app(world.platform);
    open_app = &app;
    app.preferences.auto_save_on_close = changed;
    list().choose({u"Menu", u"Close"});
    world.phone.play([&] { ShowRecordList(app, path); });
    if (changed) return;
    EXPECT_EQ(world.files.bytes(path), stored);
  }
  ScreenScript list() { return world.phone.at(kRecordListScreen); }
  ScreenScript form() { return world.phone.at(kEditRecordScreen); }
  void open(int row) { list().row(kRecordList, row).press(Key::kEnter); }
  // Rows in the list, the selected one in brackets.
  std::function<void(FakeDialog&)> lists(const std::string& titles) {
    return [titles](FakeDialog& dialog) {
      FakeControl& rows = dialog.fake(kRecordList);
      std::string text;
      for (int row = 0; row < rows.rowCount(); ++row) {
        const std::string title = narrow(rows.paintRow(row).words().at(0));
        text += row == rows.selectedRow() ? "[" + title + "]" : title;
      }
      EXPECT_EQ(text, titles);
    };
  }
  static std::function<void(FakeDialog&)> shows(const std::u16string& title) {
    return [title](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(FormValue(0)).text(), title); };
  }
  // Undo and Redo as the menu has them; a disabled one starts with "-".
  static std::function<void(FakeDialog&)> offers(const Entries& expected) {
    return [expected](FakeDialog& dialog) {
      Entries found;
      for (const std::u16string& text : dialog.menuTexts({u"Menu"})) {
        const auto word = text.find(u"do");
        if (word == 2 || word == 3) found.push_back(text);
      }
      EXPECT_EQ(found, expected);
    };
  }

  PhoneWorld world;
  Application* open_app = nullptr;
  std::unique_ptr<Database> database;
  std::vector<std::uint8_t> stored;
  std::string path;
};

TEST_F(Undo, TheListTakesBackWhatTheFormDid) {
  list().look(offers({u"-Undo", u"-Redo"})).press(Key::kUndo);
  open(1);
  form().write(FormValue(0), u"X").choose({u"Done"});
  list().look(lists("AC[X]"));
  open(1);
  form().choose({u"Menu", u"Delete Record"});
  world.phone.asks(u"Are you sure you want to delete this record?", u"Confirm Delete",
                   MessageAnswer::kYes);
  list().look(lists("[A]X")).press(Key::kDown).choose({u"New Record"});
  form().write(FormValue(0), u"B").choose({u"Done"});
  list()
      .look(lists("A[B]X"))
      .look(offers({u"Undo New record", u"-Redo"}))
      .press(Key::kUndo)
      .look(lists("A[X]"))
      .choose({u"Menu", u"Undo Delete of record"})
      .look(lists("A[C]X"))
      .look(offers({u"Undo Edit of record", u"Redo Delete of record"}))
      .choose({u"Menu", u"Redo Delete of record"})
      .press(Key::kRedo)
      .look(lists("A[B]X"))
      .press(Key::kUndo, 3)
      .look(lists("A[B]C"))
      .look(offers({u"-Undo", u"Redo Edit of record"}));
  play();
}

TEST_F(Undo, InTheFormTypingComesFirstAndIsNeverLost) {
  open(0);
  form()
      .look(offers({u"-Undo", u"-Redo"}))
      .write(FormValue(1), u"9")
      .press(Key::kUndo)
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(FormValue(1)).text(), u""); })
      .press(Key::kUndo)
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(FormValue(1)).text(), u"1"); })
      .press(Key::kUndo)  // nothing was done yet
      .write(FormValue(1), u"8")
      .focus(FormValue(0))
      .look(offers({u"Undo Edit of record", u"-Redo"}))
      .press(Key::kUndo)  // nothing was typed in this box
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(FormValue(1)).text(), u"1"); })
      .look(offers({u"-Undo", u"Redo Edit of record"}))
      .press(Key::kRedo)
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(FormValue(1)).text(), u"8"); })
      .choose({u"Menu", u"Undo Edit of record"})
      .write(FormValue(1), u"7")
      .look(offers({u"Undo Edit of record", u"-Redo Edit of record"}))
      .press(Key::kRedo)
      .look([](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(FormValue(1)).text(), u"7"); })
      .choose({u"Menu", u"Cancel"});
  play();
}

TEST_F(Undo, ANewRecordGoesAndTheOneBeforeItIsShown) {
  open(1);
  form()
      .choose({u"Menu", u"New Record"})
      .write(FormValue(0), u"Aa")
      .choose({u"Menu", u"Undo New record"})
      .look(shows(u"B"))
      .press(Key::kRedo)
      .look(shows(u"Aa"))
      .press(Key::kPageDown)
      .look(shows(u"B"))
      .press(Key::kUndo)
      .look(shows(u"B"))
      .choose({u"Done"});
  list().look(lists("A[B]C"));
  play();
}

TEST_F(Undo, AFormWithoutRecordsCloses) {
  database->records.removeAll({0, 1, 2});
  list().choose({u"New Record"});
  form().write(FormValue(0), u"X").press(Key::kPageUp).press(Key::kUndo);
  list().look(lists("")).press(Key::kRedo).look(lists("[X]")).press(Key::kUndo);
  play();
}

TEST_F(Undo, AGroupOfRecordsIsOneStep) {
  database = world.make("Songs", {{"Title"}, {"Bars", FieldType::kInteger}},
                        {{"A", "1"}, {"B", "2"}, {"C", "3"}, {"D", "4"}, {"E", "5"}});
  FilterBlock& criterion = database->schema.filters[0];
  criterion.enabled = 1;
  criterion.field = 1;
  criterion.number1 = 2;
  criterion.number2 = 4;
  const auto delete_group = [this](const std::u16string& group, MessageAnswer answer) {
    list().choose({u"Menu", u"Delete", group});
    world.phone.asks(u"Records deletion is an irreversible operation, still continue?", u"Delete?",
                     answer);
  };
  const auto leaves = [this](std::uint32_t count) {
    return [=, this](FakeDialog&) { EXPECT_EQ(CurrentDatabase(*open_app).records.count(), count); };
  };
  list().row(kRecordList, 1);
  delete_group(u"Within Filter", MessageAnswer::kNo);
  delete_group(u"All Records", MessageAnswer::kNobody);  // silence is no Yes
  list().look(lists("B[C]D"));
  delete_group(u"Within Filter", MessageAnswer::kYes);
  list().look(lists("")).look(leaves(2)).choose({u"Menu", u"Undo Delete of 3 records"});
  list().look(lists("B[C]D"));
  delete_group(u"Outside Filter", MessageAnswer::kYes);
  list().look(lists("B[C]D")).look(leaves(3)).press(Key::kUndo);
  delete_group(u"All Records", MessageAnswer::kYes);
  list().look(leaves(0)).choose({u"Menu", u"Undo Delete of 5 records"}).look(lists("B[C]D"));
  list().look([this](FakeDialog&) {
    setSecurityCode(CurrentDatabase(*open_app).schema, Operation::kDelete, kCodeRefused);
  });
  list().choose({u"Menu", u"Delete", u"All Records"});
  world.phone.says(u"Sorry, You do Not have Security Access to Perform this Operation!",
                   u"ACCESS DENIED");
  play();
}

TEST_F(Undo, ASaveMakesTheStatesBeforeItChangedOnes) {
  open(0);
  form().write(FormValue(1), u"5").choose({u"Done"});
  list().choose({u"Menu", u"Save"});
  world.phone.says(u"File Saved", u"Update");
  list().press(Key::kUndo).look([&](FakeDialog&) {
    EXPECT_TRUE(isDirty(CurrentDatabase(*open_app)));
  });
  play(true);
  EXPECT_EQ(world.cell(path, 0, 1), "1");
}

TEST_F(Undo, AnEncipheredRecordIsItsOldSelfAgainForWhoKnowsThePassword) {
  database->schema.fields[1].encrypt_flag = 1;
  database->schema.encryption_mode = kEncryptRecordsByHand;
  const auto password = [this](const std::u16string& typed) {
    world.phone.at(kPasswordScreen).type(typed).choose({u"OK"});
  };
  const auto shows = [](const std::u16string& key) {
    return [key](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(FormValue(1)).text(), key); };
  };
  open(0);
  form().choose({u"Menu", u"Encrypt Record"});
  password(u"sesame");
  world.phone.says(u"From now on only this password opens the record. Please enter it once more.",
                   u"Update");
  password(u"sesame");
  form().look(shows(u"XX")).choose({u"Menu", u"Decrypt Record"});
  password(u"sesame");
  form()
      .look(shows(u"1"))
      .choose({u"Menu", u"Undo Decryption of record"})
      .look(shows(u"XX"))
      .choose({u"Menu", u"Undo Encryption of record"});
  password(u"simsim");
  world.phone.says(u"Error: Supplied Password does not properly Decrypt Record!", u"Error");
  form().look(shows(u"XX")).press(Key::kRedo);
  world.phone.at(kPasswordScreen).choose({u"Cancel"});
  form()
      .look(shows(u"XX"))
      .look(offers({u"Undo Encryption of record", u"Redo Decryption of record"}))
      .press(Key::kUndo);
  password(u"sesame");
  form().look(shows(u"1")).choose({u"Done"});
  play();
}

}  // namespace
}  // namespace tabelion
