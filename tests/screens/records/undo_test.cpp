// Undo and Redo in the list and the form.
#include "screens/records/undo.h"

#include "screens/records/record_screens.h"
#include "security/access_rights.h"

namespace tabelion {
namespace {

using Entries = std::vector<std::u16string>;

class Undo : public RecordScreens {
 protected:
  void SetUp() override {
    database = world.make("Songs", {{"Title"}, {"Key"}}, {{"A", "1"}, {"B", "2"}, {"C", "3"}});
    database->schema.sort[0] = {0, 1};
  }
  // Whatever is in the list at the end is closed without a question: nothing may be left to save.
  void runWithoutTrace() {
    closeAndRun();
    EXPECT_EQ(world.files.bytes(path), stored);
  }
  // Rows in the list, the selected one in brackets.
  static Look lists(const std::string& titles) {
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
  // Undo and Redo as the menu has them; a disabled one starts with "-".
  static Look offers(const Entries& expected) {
    return [expected](FakeDialog& dialog) {
      Entries found;
      for (const std::u16string& text : dialog.menuTexts({u"Menu"})) {
        const auto word = text.find(u"do");
        if (word == 2 || word == 3) found.push_back(text);
      }
      EXPECT_EQ(found, expected);
    };
  }
};

TEST_F(Undo, TheListTakesBackWhatTheFormDid) {
  list().look(offers({u"-Undo", u"-Redo"})).press(Key::kUndo);
  change(1, 0, u"X");
  list().look(lists("AC[X]"));
  open(1);
  form().choose({u"Menu", u"Delete Record"});
  world.phone.asks(u"Are you sure you want to delete this record?", u"Confirm Delete",
                   MessageAnswer::kYes);
  list().look(lists("[A]X")).press(Key::kDown).choose({u"New Record"});
  form().write(FormValue(0), u"B").choose({u"Done"});
  list().look(lists("A[B]X")).look(offers({u"Undo New record", u"-Redo"}));
  list().press(Key::kUndo).look(lists("A[X]"));
  list().choose({u"Menu", u"Undo Delete of record"}).look(lists("A[C]X"));
  list().look(offers({u"Undo Edit of record", u"Redo Delete of record"}));
  list().choose({u"Menu", u"Redo Delete of record"}).press(Key::kRedo).look(lists("A[B]X"));
  list().press(Key::kUndo, 3).look(lists("A[B]C"));
  list().look(offers({u"-Undo", u"Redo Edit of record"}));
  runWithoutTrace();
}

TEST_F(Undo, InTheFormTypingComesFirstAndIsNeverLost) {
  open(0);
  form().look(offers({u"-Undo", u"-Redo"})).write(FormValue(1), u"9");
  form().press(Key::kUndo).look(shows(1, u"")).press(Key::kUndo).look(shows(1, u"1"));
  form().press(Key::kUndo);  // nothing was done yet
  form().write(FormValue(1), u"8").focus(FormValue(0));
  form().look(offers({u"Undo Edit of record", u"-Redo"}));
  form().press(Key::kUndo).look(shows(1, u"1"));  // nothing was typed in this box
  form().look(offers({u"-Undo", u"Redo Edit of record"})).press(Key::kRedo).look(shows(1, u"8"));
  form().choose({u"Menu", u"Undo Edit of record"}).write(FormValue(1), u"7");
  form().look(offers({u"Undo Edit of record", u"-Redo Edit of record"}));
  form().press(Key::kRedo).look(shows(1, u"7")).choose({u"Menu", u"Cancel"});
  runWithoutTrace();
}

TEST_F(Undo, ANewRecordGoesAndTheOneBeforeItIsShown) {
  open(1);
  form().choose({u"Menu", u"New Record"}).write(FormValue(0), u"Aa");
  form().choose({u"Menu", u"Undo New record"}).look(shows(0, u"B"));
  form().press(Key::kRedo).look(shows(0, u"Aa")).press(Key::kPageDown).look(shows(0, u"B"));
  form().press(Key::kUndo).look(shows(0, u"B")).choose({u"Done"});
  list().look(lists("A[B]C"));
  runWithoutTrace();
}

TEST_F(Undo, AFormWithoutRecordsCloses) {
  database->records.removeAll({0, 1, 2});
  list().choose({u"New Record"});
  form().write(FormValue(0), u"X").press(Key::kPageUp).press(Key::kUndo);
  list().look(lists("")).press(Key::kRedo).look(lists("[X]")).press(Key::kUndo);
  runWithoutTrace();
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
    return [=, this](FakeDialog&) { EXPECT_EQ(CurrentDatabase(app).records.count(), count); };
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
    setSecurityCode(CurrentDatabase(app).schema, Operation::kDelete, kCodeRefused);
  });
  list().choose({u"Menu", u"Delete", u"All Records"});
  world.phone.says(u"Sorry, You do Not have Security Access to Perform this Operation!",
                   u"ACCESS DENIED");
  runWithoutTrace();
}

TEST_F(Undo, ASaveMakesTheStatesBeforeItChangedOnes) {
  app.preferences.auto_save_on_close = true;
  change(0, 1, u"5");
  save();
  list().press(Key::kUndo).look([&](FakeDialog&) { EXPECT_TRUE(isDirty(CurrentDatabase(app))); });
  closeAndRun();
  EXPECT_EQ(text(0, 1), "1");
}

TEST_F(Undo, AnEncipheredRecordIsItsOldSelfAgainForWhoKnowsThePassword) {
  database->schema.fields[1].encrypt_flag = 1;
  database->schema.encryption_mode = kEncryptRecordsByHand;
  open(0);
  form().choose({u"Menu", u"Encrypt Record"});
  newPassword(u"sesame", u"sesame", kOnlyThisOpensIt);
  form().look(shows(1, u"XX")).choose({u"Menu", u"Decrypt Record"});
  password(u"sesame");
  form().look(shows(1, u"1")).choose({u"Menu", u"Undo Decryption of record"});
  form().look(shows(1, u"XX")).choose({u"Menu", u"Undo Encryption of record"});
  password(u"simsim");
  world.phone.says(u"Error: Supplied Password does not properly Decrypt Record!", u"Error");
  form().look(shows(1, u"XX")).press(Key::kRedo);
  cancelPassword();
  form().look(offers({u"Undo Encryption of record", u"Redo Decryption of record"}));
  form().look(shows(1, u"XX")).press(Key::kUndo);
  password(u"sesame");
  form().look(shows(1, u"1")).choose({u"Done"});
  runWithoutTrace();
}

}  // namespace
}  // namespace tabelion
