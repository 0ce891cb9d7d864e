// The record list and the form over one database, compared before and after, and the steps that
// scripts for them share.
#pragma once

#include <gmock/gmock.h>

#include "screens/list_test.h"
#include "screens/program/ask_password.h"
#include "screens/records/edit_record.h"
#include "security/database_encryption.h"

namespace tabelion {

inline const std::u16string kOnlyThisOpensIt =
    u"From now on only this password opens the record. Please enter it once more.";

class RecordScreens : public ListTest {
 protected:
  // Names, and PINs that are to be enciphered.
  void makeSafe(EncryptionMode mode) {
    database = world.make("Safe", {{"Name"}, {"Pin"}}, {{"Anna", "1111"}, {"Bert", "2222"}});
    database->schema.fields[1].encrypt_flag = 1;
    database->schema.encryption_mode = mode;
  }
  void encipher(const std::string& with_password) {
    ExpandedKey key;
    MakeKey(with_password, key);
    encryptRecords(*database, world.engine, key);
    SetPasswordCheck(database->schema, with_password, world.engine.random);
  }

  // Runs the script on the database, which becomes a file.
  int run() {
    path = world.store(*database);
    return runFile();
  }
  int runFile() {
    stored = world.files.bytes(path);
    before = world.read(path);
    int result = 0;
    world.phone.play([&] { result = ShowRecordList(app, path); });
    after = world.read(path);
    return result;
  }

  int closeAndRun() {
    close();
    return run();
  }

  void open(int row) { list().row(kRecordList, row).press(Key::kEnter); }
  void change(int row, int slot, const std::u16string& text) {
    open(row);
    form().write(FormValue(slot), text).choose({u"Done"});
  }
  void save() {
    list().choose({u"Menu", u"Save"});
    world.phone.says(u"File Saved", u"Update");
  }
  void close() { list().choose({u"Menu", u"Close"}); }
  void password(const std::u16string& typed) {
    world.phone.at(kPasswordScreen).type(typed).choose({u"OK"});
  }
  // A password that nothing tells the truth of is asked for twice.
  void newPassword(const std::u16string& typed, const std::u16string& again,
                   const std::u16string& notice) {
    password(typed);
    world.phone.says(notice, u"Update");
    password(again);
    if (again != typed) {
      world.phone.says(u"The two passwords differ. Nothing has been encrypted.", u"Error");
    }
  }
  void cancelPassword() { world.phone.at(kPasswordScreen).choose({u"Cancel"}); }

  static Look shows(int slot, const std::u16string& text) { return reads(FormValue(slot), text); }
  static Look standsAt(int slot) { return hasFocus(FormValue(slot)); }
  static Look selects(int row) {
    return [=](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).selectedRow(), row); };
  }
  static Look hasRows(int count) {
    return [=](FakeDialog& dialog) { EXPECT_EQ(dialog.fake(kRecordList).rowCount(), count); };
  }

  std::string text(std::uint32_t record, int slot) {
    return fieldText(*after, after->records[record].bytes(), slot, isoSettings()).text;
  }
  // A PIN of the file, whether it is enciphered or not.
  std::string pin(std::uint32_t record, const std::string& with_password) {
    ExpandedKey key;
    MakeKey(with_password, key);
    Bytes clear;
    if (DecryptRecord(after->schema, after->records[record].bytes(), key, clear) !=
        kRecordDecrypted) {
      return "(wrong password)";
    }
    return fieldText(*after, clear, 1, isoSettings()).text;
  }

  std::string path;
  std::vector<std::uint8_t> stored;  // the file before the script,
  std::unique_ptr<Database> before;  // what it holds,
  std::unique_ptr<Database> after;   // and what it holds after the script
};

}  // namespace tabelion
