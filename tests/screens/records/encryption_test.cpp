// Enciphered databases and records, from the list and the form.
#include <algorithm>

#include "screens/files/save_question.h"
#include "screens/kit/screen_numbers.h"
#include "screens/program/ask_password.h"
#include "screens/records/edit_record.h"
#include "screens/records/record_list.h"
#include "security/database_encryption.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

const std::u16string kTryAgain =
    u"ERROR: Password does not properly decrypt this data.  Please Try again.";

const std::u16string kOtherPassword =
    u"This is not the password that opened the database. From now on only this password opens the "
    u"encrypted records. Please enter it once more.";

const std::u16string kOnlyThisOpensIt =
    u"From now on only this password opens the record. Please enter it once more.";

enum Slot { kName, kPin };

class Encryption : public testing::Test {
 protected:
  void SetUp() override {
    database = world.make("Safe", {{"Name"}, {"Pin"}}, {{"Anna", "1111"}, {"Bert", "2222"}});
    database->schema.fields[kPin].encrypt_flag = 1;
  }
  void setMode(EncryptionMode mode) { database->schema.encryption_mode = mode; }
  void encipher(const std::string& password) {
    ExpandedKey key;
    MakeKey(password, key);
    encryptRecords(*database, world.engine, key);
    SetPasswordCheck(database->schema, password, world.engine.random);
  }

  void play() {
    path = world.store(*database);
    stored = world.files.bytes(path);
    Application app(world.platform);
    app.preferences.auto_save_on_close = saves_on_close;
    app.preferences.auto_encrypt = remembers;
    world.phone.play([&] { ShowRecordList(app, path); });
    after = world.read(path);
  }
  ScreenScript list() { return world.phone.at(kRecordListScreen); }
  ScreenScript form() { return world.phone.at(kEditRecordScreen); }
  void password(const std::u16string& text) {
    world.phone.at(kPasswordScreen)
        .look([](FakeDialog& dialog) {
          EXPECT_EQ(dialog.fake(kPasswordLabel).text(), u"Enter Encryption Password");
        })
        .type(text)
        .choose({u"OK"});
  }
  void cancelPassword() { world.phone.at(kPasswordScreen).choose({u"Cancel"}); }
  static std::function<void(FakeDialog&)> shows(const std::u16string& pin) {
    return [pin](FakeDialog& d) { EXPECT_EQ(d.fake(FormValue(kPin)).text(), pin); };
  }
  static std::function<void(FakeDialog&)> lists(const std::u16string& pin) {
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
  // The records of the file with their values in clear.
  std::string pin(std::uint32_t record, const std::string& with_password) {
    ExpandedKey key;
    MakeKey(with_password, key);
    Bytes clear;
    if (DecryptRecord(after->schema, after->records[record].bytes(), key, clear) !=
        kRecordDecrypted) {
      return "(wrong password)";
    }
    return fieldText(*after, clear, kPin, isoSettings()).text;
  }

  PhoneWorld world;
  bool remembers = false;
  bool saves_on_close = true;
  std::unique_ptr<Database> database;
  std::unique_ptr<Database> after;
  std::vector<std::uint8_t> stored;
  std::string path;
};

TEST_F(Encryption, WholeDatabaseOpensWithItsPasswordAndIsEncipheredAgain) {
  setMode(kEncryptWholeDatabase);
  encipher("sesame");
  password(u"guess");
  world.phone.says(kTryAgain, u"ACCESS DENIED");
  password(u"sesame");
  list().look(lists(u"1111")).row(kRecordList, 1).press(Key::kEnter);
  form().look(shows(u"2222")).write(FormValue(kPin), u"3333").choose({u"Done"});
  list().choose({u"Menu", u"Close"});
  password(u"anotehr");
  world.phone.says(kOtherPassword, u"Update");
  password(u"another");
  world.phone.says(u"The two passwords differ. Nothing has been encrypted.", u"Error");
  password(u"another");
  world.phone.says(kOtherPassword, u"Update");
  password(u"another");
  play();
  EXPECT_TRUE(isEnciphered(0) && isEnciphered(1));
  EXPECT_EQ(pin(1, "another"), "3333");
  EXPECT_TRUE(PasswordMatchesCheck(after->schema, "another"));
  EXPECT_NE(after->schema.head[kStampFlagOffset] & kDatabaseEncrypted, 0);
  EXPECT_FALSE(fileHolds("1111") || fileHolds("3333"));
}

TEST_F(Encryption, WrongPasswordsChangeNothing) {
  setMode(kEncryptWholeDatabase);
  encipher("sesame");
  password(u"guess");
  world.phone.says(kTryAgain, u"ACCESS DENIED");
  cancelPassword();
  list().look(lists(u"XXXXX")).choose({u"Menu", u"Close"});
  play();
  EXPECT_EQ(world.files.bytes(path), stored);
}

TEST_F(Encryption, ARememberedPasswordIsNotAskedForAndGuardsEverySave) {
  setMode(kEncryptWholeDatabase);
  remembers = true;
  encipher("sesame");
  password(u"sesame");
  list().press(Key::kEnter);
  form().write(FormValue(kPin), u"3333").choose({u"Done"});
  list().choose({u"Menu", u"Save"});
  world.phone.says(u"File Saved", u"Update");
  list()
      .look([&](FakeDialog&) { EXPECT_FALSE(fileHolds("3333") || fileHolds("2222")); })
      .look(lists(u"3333"))
      .choose({u"Menu", u"Close"});
  play();
  EXPECT_EQ(pin(0, "sesame"), "3333");
  EXPECT_EQ(pin(1, "sesame"), "2222");
}

TEST_F(Encryption, LookingAtADatabaseChangesNothingInItsFile) {
  setMode(kEncryptWholeDatabase);
  encipher("sesame");
  const std::u16string unchanged =
      u"Nothing was changed. The file stays encrypted with the password that it has. Close it?";
  for (const bool knows_password : {true, false}) {
    password(u"sesame");
    list().look(lists(u"1111")).choose({u"Menu", u"Close"});
    if (knows_password) {
      password(u"sesame");
    } else {
      cancelPassword();
      world.phone.asks(unchanged, u"QUESTION", MessageAnswer::kYes);
    }
    play();
    EXPECT_EQ(world.files.bytes(path), stored);
  }
}

// Saved on the way and given up at the end, in a file whose password is known and in one that has
// none yet.
TEST_F(Encryption, DiscardingLeavesNothingInClear) {
  setMode(kEncryptWholeDatabase);
  saves_on_close = false;
  for (const bool has_password : {true, false}) {
    if (has_password) {
      encipher("sesame");
      password(u"sesame");
    } else {
      database = world.make("Safe", {{"Name"}, {"Pin"}}, {{"Anna", "1111"}, {"Bert", "2222"}});
      database->schema.fields[kPin].encrypt_flag = 1;
      setMode(kEncryptWholeDatabase);
    }
    list().press(Key::kEnter);
    form().write(FormValue(kPin), u"3333").choose({u"Done"});
    list().choose({u"Menu", u"Save"});
    world.phone.says(u"File Saved", u"Update");
    list()
        .look([&](FakeDialog&) { EXPECT_EQ(fileHolds("3333"), !has_password); })
        .press(Key::kEnter);
    form().write(FormValue(kPin), u"4444").choose({u"Done"});
    list().choose({u"Menu", u"Close"});
    world.phone.at(kSaveQuestionScreen).activate(kDiscardChangesButton);
    if (!has_password) {
      password(u"sesame");
      world.phone.says(
          u"From now on only this password opens the encrypted records. Please enter it once more.",
          u"Update");
      password(u"sesame");
    }
    play();
    EXPECT_FALSE(fileHolds("3333") || fileHolds("4444") || fileHolds("2222"));
    EXPECT_EQ(pin(0, "sesame"), "3333");
  }
}

TEST_F(Encryption, ClosingWithoutAPasswordAsksBeforeLeavingRecordsUnprotected) {
  setMode(kEncryptWholeDatabase);
  const std::u16string unprotected = u"The records will be saved without encryption. Continue?";
  list().press(Key::kEnter);
  form().write(FormValue(kName), u"Anne").choose({u"Done"});
  list().choose({u"Menu", u"Close"});
  cancelPassword();
  world.phone.asks(unprotected, u"QUESTION", MessageAnswer::kNo);
  cancelPassword();
  world.phone.asks(unprotected, u"QUESTION", MessageAnswer::kYes);
  play();
  EXPECT_FALSE(isEnciphered(0) || isEnciphered(1));
  EXPECT_EQ(fieldText(*after, after->records[0].bytes(), kName, isoSettings()).text, "Anne");
}

TEST_F(Encryption, TextsThatOthersCannotReadBackAreNamedFirst) {
  setMode(kEncryptWholeDatabase);
  database->schema.fields[kPin].width = 400;
  world.addRow(*database, {"Cleo", std::string(300, 'x')});
  const std::u16string named =
      u"The text of \"Pin\" in record 3 has 300 bytes. Encrypted texts of more than 255 bytes can "
      u"be opened here, but not on other devices.\nEncrypt all the same?";
  list().choose({u"Menu", u"Close"});
  world.phone.asks(named, u"QUESTION", MessageAnswer::kNo);
  list().choose({u"Menu", u"Close"});
  world.phone.asks(named, u"QUESTION", MessageAnswer::kYes);
  password(u"sesame");
  world.phone.says(
      u"From now on only this password opens the encrypted records. Please enter it once more.",
      u"Update");
  password(u"sesame");
  play();
  EXPECT_EQ(pin(2, "sesame"), std::string(300, 'x'));
}

TEST_F(Encryption, SavingEnciphersRecordByRecord) {
  setMode(kEncryptRecordsOnSave);
  list().press(Key::kEnter);
  form().write(FormValue(kPin), u"3333").choose({u"Done"});
  password(u"sesaem");
  world.phone.says(kOnlyThisOpensIt, u"Update");
  password(u"sesame");
  world.phone.says(u"The two passwords differ. Nothing has been encrypted.", u"Error");
  password(u"sesame");
  world.phone.says(kOnlyThisOpensIt, u"Update");
  password(u"sesame");
  list().look(lists(u"XXXXX")).press(Key::kEnter);
  password(u"guess");
  world.phone.says(kTryAgain, u"ACCESS DENIED");
  password(u"sesame");
  form().look(shows(u"3333")).choose({u"Done"});  // unchanged: it stays as it is stored
  list().press(Key::kEnter);
  cancelPassword();
  form().look(shows(u"XXXXX")).choose({u"Done"});
  list().row(kRecordList, 1).press(Key::kEnter);
  form().write(FormValue(kPin), u"4444").choose({u"Done"});
  password(u"other");
  world.phone.asks(
      u"Password entered does not seem to match last password given to a record in this database. "
      u" Continue anyway?",
      u"QUESTION", MessageAnswer::kNo);
  password(u"sesame");
  list().choose({u"Menu", u"Close"});
  play();
  EXPECT_EQ(pin(0, "sesame"), "3333");
  EXPECT_EQ(pin(1, "sesame"), "4444");
}

TEST_F(Encryption, OneRecordIsEncipheredAndDecipheredByHand) {
  setMode(kEncryptRecordsByHand);
  list().press(Key::kEnter);
  form().write(FormValue(kName), u"Anne").choose({u"Menu", u"Encrypt Record"});
  password(u"sesame");
  world.phone.says(kOnlyThisOpensIt, u"Update");
  password(u"sesame");
  form().look(shows(u"XXXXX")).choose({u"Menu", u"Decrypt Record"});
  password(u"guess");
  world.phone.says(u"Error: Supplied Password does not properly Decrypt Record!", u"Error");
  form().look(shows(u"XXXXX")).choose({u"Menu", u"Decrypt Record"});
  password(u"sesame");
  form().look(shows(u"1111")).choose({u"Menu", u"Encrypt Record"});
  cancelPassword();
  form().look(shows(u"1111")).choose({u"Menu", u"Encrypt Record"});
  password(u"sesame");
  form().choose({u"Done"});
  list().choose({u"Menu", u"Close"});
  play();
  EXPECT_EQ(pin(0, "sesame"), "1111");
  EXPECT_FALSE(isEnciphered(1));
}

TEST_F(Encryption, OtherDatabasesOfferNothingOfTheKind) {
  list().press(Key::kEnter);
  form()
      .look([](FakeDialog& dialog) {
        for (const std::u16string& text : dialog.menuTexts({u"Menu"})) {
          EXPECT_NE(text, u"Encrypt Record");
        }
      })
      .choose({u"Done"});
  list().choose({u"Menu", u"Close"});
  play();
  EXPECT_EQ(world.files.bytes(path), stored);
}

}  // namespace
}  // namespace tabelion
