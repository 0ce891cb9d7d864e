// Enciphered databases and records, from the list and the form.
#include <algorithm>

#include "screens/files/save_question.h"
#include "screens/records/record_screens.h"

namespace tabelion {
namespace {

const std::u16string kTryAgain =
    u"ERROR: Password does not properly decrypt this data.  Please Try again.";

const std::u16string kOtherPassword =
    u"This is not the password that opened the database. From now on only this password opens the "
    u"encrypted records. Please enter it once more.";

const std::u16string kOnlyThisOpensThem =
    u"From now on only this password opens the encrypted records. Please enter it once more.";

enum Slot { kName, kPin };

class Encryption : public RecordScreens {
 protected:
  void SetUp() override { app.preferences.auto_save_on_close = true; }

  static Look lists(const std::u16string& pin) {
    return [pin](FakeDialog& d) {
      EXPECT_EQ(d.fake(kRecordList).paintRow(0).words(),
                (std::vector<std::u16string>{u"Anna", pin}));
    };
  }

  // Whether the file holds a text in clear.
  bool fileHolds(const std::string& text) {
    const auto bytes = world.files.bytes(path);
    return std::search(bytes.begin(), bytes.end(), text.begin(), text.end()) != bytes.end();
  }
  bool isEnciphered(std::uint32_t record) {
    return isRecordEncrypted(after->records[record].bytes());
  }
};

TEST_F(Encryption, WholeDatabaseOpensWithItsPasswordAndIsEncipheredAgain) {
  makeSafe(kEncryptWholeDatabase);
  encipher("sesame");
  password(u"guess");
  world.phone.says(kTryAgain, u"ACCESS DENIED");
  world.phone.at(kPasswordScreen).look([](FakeDialog& dialog) {
    EXPECT_EQ(dialog.fake(kPasswordLabel).text(), u"Enter Encryption Password");
  });
  password(u"sesame");
  list().look(lists(u"1111"));
  change(1, kPin, u"3333");
  close();
  newPassword(u"anotehr", u"another", kOtherPassword);
  newPassword(u"another", u"another", kOtherPassword);
  run();
  EXPECT_TRUE(isEnciphered(0) && isEnciphered(1));
  EXPECT_EQ(pin(1, "another"), "3333");
  EXPECT_TRUE(PasswordMatchesCheck(after->schema, "another"));
  EXPECT_NE(after->schema.head[kStampFlagOffset] & kDatabaseEncrypted, 0);
  EXPECT_FALSE(fileHolds("1111") || fileHolds("3333"));
}

TEST_F(Encryption, ARememberedPasswordIsNotAskedForAndGuardsEverySave) {
  makeSafe(kEncryptWholeDatabase);
  app.preferences.auto_encrypt = true;
  encipher("sesame");
  password(u"sesame");
  change(0, kPin, u"3333");
  save();
  list().look([&](FakeDialog&) { EXPECT_FALSE(fileHolds("3333") || fileHolds("2222")); });
  list().look(lists(u"3333"));
  closeAndRun();
  EXPECT_EQ(pin(0, "sesame"), "3333");
  EXPECT_EQ(pin(1, "sesame"), "2222");
}

TEST_F(Encryption, LookingAtADatabaseChangesNothingInItsFile) {
  makeSafe(kEncryptWholeDatabase);
  encipher("sesame");
  const std::u16string unchanged =
      u"Nothing was changed. The file stays encrypted with the password that it has. Close it?";
  for (const bool knows_password : {true, false}) {
    password(u"sesame");
    list().look(lists(u"1111"));
    close();
    if (knows_password) {
      password(u"sesame");
    } else {
      cancelPassword();
      world.phone.asks(unchanged, u"QUESTION", MessageAnswer::kYes);
    }
    run();
    EXPECT_EQ(world.files.bytes(path), stored);
  }
  password(u"guess");
  world.phone.says(kTryAgain, u"ACCESS DENIED");
  cancelPassword();
  list().look(lists(u"XXXXX"));
  closeAndRun();
  EXPECT_EQ(world.files.bytes(path), stored);
}

// Saved on the way and given up at the end, in a file whose password is known and in one that has
// none yet.
TEST_F(Encryption, DiscardingLeavesNothingInClear) {
  app.preferences.auto_save_on_close = false;
  for (const bool has_password : {true, false}) {
    makeSafe(kEncryptWholeDatabase);
    if (has_password) {
      encipher("sesame");
      password(u"sesame");
    }
    change(0, kPin, u"3333");
    save();
    list().look([&](FakeDialog&) { EXPECT_EQ(fileHolds("3333"), !has_password); });
    change(0, kPin, u"4444");
    close();
    world.phone.at(kSaveQuestionScreen).activate(kDiscardChangesButton);
    if (!has_password) newPassword(u"sesame", u"sesame", kOnlyThisOpensThem);
    run();
    EXPECT_FALSE(fileHolds("3333") || fileHolds("4444") || fileHolds("2222"));
    EXPECT_EQ(pin(0, "sesame"), "3333");
  }
}

TEST_F(Encryption, ClosingWithoutAPasswordAsksBeforeLeavingRecordsUnprotected) {
  makeSafe(kEncryptWholeDatabase);
  const std::u16string unprotected = u"The records will be saved without encryption. Continue?";
  change(0, kName, u"Anne");
  close();
  cancelPassword();
  world.phone.asks(unprotected, u"QUESTION", MessageAnswer::kNo);
  cancelPassword();
  world.phone.asks(unprotected, u"QUESTION", MessageAnswer::kYes);
  run();
  EXPECT_FALSE(isEnciphered(0) || isEnciphered(1));
  EXPECT_EQ(text(0, kName), "Anne");
}

TEST_F(Encryption, TextsThatOthersCannotReadBackAreNamedFirst) {
  makeSafe(kEncryptWholeDatabase);
  database->schema.fields[kPin].width = 400;
  world.addRow(*database, {"Cleo", std::string(300, 'x')});
  const std::u16string named =
      u"The text of \"Pin\" in record 3 has 300 bytes. Encrypted texts of more than 255 bytes can "
      u"be opened here, but not on other devices.\nEncrypt all the same?";
  close();
  world.phone.asks(named, u"QUESTION", MessageAnswer::kNo);
  close();
  world.phone.asks(named, u"QUESTION", MessageAnswer::kYes);
  newPassword(u"sesame", u"sesame", kOnlyThisOpensThem);
  run();
  EXPECT_EQ(pin(2, "sesame"), std::string(300, 'x'));
}

TEST_F(Encryption, SavingEnciphersRecordByRecord) {
  makeSafe(kEncryptRecordsOnSave);
  change(0, kPin, u"3333");
  newPassword(u"sesaem", u"sesame", kOnlyThisOpensIt);
  newPassword(u"sesame", u"sesame", kOnlyThisOpensIt);
  list().look(lists(u"XXXXX")).press(Key::kEnter);
  password(u"guess");
  world.phone.says(kTryAgain, u"ACCESS DENIED");
  password(u"sesame");
  form().look(shows(kPin, u"3333")).choose({u"Done"});  // unchanged: it stays as it is stored
  list().press(Key::kEnter);
  cancelPassword();
  form().look(shows(kPin, u"XXXXX")).choose({u"Done"});
  change(1, kPin, u"4444");
  password(u"other");
  world.phone.asks(
      u"Password entered does not seem to match last password given to a record in this database. "
      u" Continue anyway?",
      u"QUESTION", MessageAnswer::kNo);
  password(u"sesame");
  closeAndRun();
  EXPECT_EQ(pin(0, "sesame"), "3333");
  EXPECT_EQ(pin(1, "sesame"), "4444");
}

TEST_F(Encryption, OneRecordIsEncipheredAndDecipheredByHand) {
  makeSafe(kEncryptRecordsByHand);
  list().press(Key::kEnter);
  form().write(FormValue(kName), u"Anne").choose({u"Menu", u"Encrypt Record"});
  newPassword(u"sesame", u"sesame", kOnlyThisOpensIt);
  form().look(shows(kPin, u"XXXXX")).choose({u"Menu", u"Decrypt Record"});
  password(u"guess");
  world.phone.says(u"Error: Supplied Password does not properly Decrypt Record!", u"Error");
  form().look(shows(kPin, u"XXXXX")).choose({u"Menu", u"Decrypt Record"});
  password(u"sesame");
  form().look(shows(kPin, u"1111")).choose({u"Menu", u"Encrypt Record"});
  cancelPassword();
  form().look(shows(kPin, u"1111")).choose({u"Menu", u"Encrypt Record"});
  password(u"sesame");
  form().choose({u"Done"});
  closeAndRun();
  EXPECT_EQ(pin(0, "sesame"), "1111");
  EXPECT_FALSE(isEnciphered(1));
}

}  // namespace
}  // namespace tabelion
