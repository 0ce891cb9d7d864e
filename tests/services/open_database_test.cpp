#include "services/open_database.h"

#include "security/access_rights.h"
#include "services/access.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

bool neverAsked(const std::string&) {
  ADD_FAILURE() << "asked for a password";
  return false;
}

ClosingQuestions answering(SaveChoice choice) {
  return {.save = [choice](const std::u16string& text) {
    EXPECT_EQ(text, u"Save changes to this database?");
    return choice;
  }};
}

TEST(OpenDatabase, FilesOfOthersAreRefused) {
  PhoneWorld world;
  Application app(world.platform);
  world.files.put("/tmp/letter.pdb", std::string(200, 'x'));
  world.phone.says(u"ERROR: File selected is not a Tabelion Database!", u"Update");
  world.phone.play(
      [&] { EXPECT_EQ(OpenDatabaseFile(app, "/tmp/letter.pdb", neverAsked), kNotADatabase); });
  world.phone.says(u"ERROR: File selected is not a Tabelion Database!", u"Update");
  world.phone.play(
      [&] { EXPECT_EQ(OpenDatabaseFile(app, "/nowhere.pdb", neverAsked), kNotADatabase); });
  EXPECT_FALSE(IsDatabaseOpen(app));
  EXPECT_EQ(world.setting("LastFile0"), "(none)");
}

TEST(OpenDatabase, LegacyFilesAskUntilNo) {
  PhoneWorld world;
  const std::string path = world.add("Old", {{"Name"}}, {});
  std::vector<std::uint8_t> bytes = world.files.bytes(path);
  for (std::size_t i = 0; i < 4; ++i) bytes[64 + i] = static_cast<std::uint8_t>("PmDB"[i]);
  world.files.put(path, bytes);
  Application app(world.platform);
  const std::u16string question =
      u"This database file is not in the current Tabelion database format.  Would you like to "
      u"updated the database to the latest format? (Y/N)";
  world.phone.asks(question, u"QUESTION", MessageAnswer::kYes);
  world.phone.says(u"This is a pending item.", u"OpenDatabaseFile");
  world.phone.asks(question, u"QUESTION", MessageAnswer::kNo);
  world.phone.play([&] { EXPECT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpenRefused); });
}

TEST(OpenDatabase, RightsDecideBeforeTheRecordsAreRead) {
  PhoneWorld world;
  const auto database = world.make("Safe", {{"Name"}}, {{"gold"}});
  setAreaText(database->schema.access_password, "sesame");
  for (const int code : {kCodeFree, kCodePassword, kCodeRefused, kCodeRestricted}) {
    database->schema.security_word = static_cast<std::uint32_t>(code);
    const std::string path = world.store(*database);
    Application app(world.platform);
    std::string expected;
    const auto cancel = [&](const std::string& password) {
      expected = password;
      return false;
    };
    if (code == kCodeRefused || code == kCodeRestricted) {
      world.phone.says(u"Action Not Allowed for this Database!", u"ACCESS DENIED");
    }
    world.phone.play([&] {
      EXPECT_EQ(OpenDatabaseFile(app, path, cancel), code == kCodeFree ? kOpened : kOpenRefused);
    });
    EXPECT_EQ(expected, code == kCodePassword ? "sesame" : "");
    EXPECT_EQ(IsDatabaseOpen(app), code == kCodeFree);
    EXPECT_EQ(CurrentDatabase(app).records.count(), code == kCodeFree ? 1u : 0u);
  }
}

TEST(OpenDatabase, LockedFileNamesItsHolderAndTheLockEndsWithTheClose) {
  PhoneWorld world;
  const std::string path = world.add("Shared", {{"Name"}}, {{"a"}});
  Application app(world.platform);
  world.files.locked_by[path] = "another program";
  world.phone.says(
      u"/documents/Tabelion/Shared.PDB is open in another program; close it there first",
      u"Open Database");
  world.phone.play([&] { EXPECT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpenRefused); });

  world.files.locked_by.clear();
  ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
  EXPECT_FALSE(world.files.lock(path, "second").ok());
  EXPECT_TRUE(CloseDatabase(app, AskBeforeSaving::kYes));
  EXPECT_TRUE(world.files.lock(path, "second").ok());
}

TEST(OpenDatabase, FailedSaveLosesNothing) {
  PhoneWorld world;
  const std::string path = world.add("Notes", {{"Name"}}, {{"a"}, {"b"}});
  const auto before = world.files.bytes(path);
  Application app(world.platform);
  ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
  CurrentDatabase(app).records.remove(0);
  setDirty(CurrentDatabase(app));
  world.files.fail_replace_at = 100;
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kUser), SaveResult::kFailed);
  EXPECT_TRUE(isDirty(CurrentDatabase(app)));

  std::vector<std::string> offered;
  FailedSaveAnswer answer;
  ClosingQuestions questions = answering(SaveChoice::kSave);
  questions.failed_save = [&](const std::string& asked, const std::vector<std::string>& folders) {
    EXPECT_EQ(asked, path);
    offered = folders;
    world.files.fail_replace_at.reset();  // room is made meanwhile
    return answer;
  };
  EXPECT_FALSE(CloseDatabase(app, AskBeforeSaving::kYes, questions));
  EXPECT_TRUE(IsDatabaseOpen(app));
  EXPECT_EQ(world.files.bytes(path), before);
  EXPECT_EQ(offered, (std::vector<std::string>{"/documents", "/state"}));

  world.files.fail_replace_at = 100;
  answer = {FailedSaveChoice::kElsewhere, "/documents"};
  EXPECT_TRUE(CloseDatabase(app, AskBeforeSaving::kYes, questions));
  EXPECT_EQ(world.files.bytes(path), before);
  EXPECT_EQ(world.read("/documents/Notes.PDB")->records.count(), 1u);

  // At the end of the program another attempt follows.
  ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
  CurrentDatabase(app).records.remove(0);
  setDirty(CurrentDatabase(app));
  world.files.fail_replace_at = 100;
  answer = {};
  CloseAllDatabases(app, questions);
  EXPECT_EQ(world.read(path)->records.count(), 1u);
}

TEST(OpenDatabase, WhatTheEndOfTheSessionCannotSaveIsRescuedAndNamedOnce) {
  PhoneWorld world;
  const std::string path = world.add("Notes", {{"Name"}}, {{"a"}, {"b"}});
  for (const char* const copy : {"/documents/Notes.PDB", "/documents/Notes 2.PDB"}) {
    Application app(world.platform);
    ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
    CurrentDatabase(app).records.remove(0);
    setDirty(CurrentDatabase(app));
    world.files.read_only.insert(path);
    app.closing = Closing::kSessionEnds;
    CloseAllDatabases(app);
    EXPECT_FALSE(IsDatabaseOpen(app));
    EXPECT_EQ(world.read(copy)->records.count(), 1u);
    EXPECT_EQ(world.read(path)->records.count(), 2u);
  }
  Application app(world.platform);
  for (const std::u16string copy : {u"Notes.PDB", u"Notes 2.PDB"}) {
    world.phone.says(
        u"When the program had to end, \"/documents/Tabelion/Notes.PDB\" could not be "
        u"saved. It is, with what was changed, in \"/documents/" +
            copy + u"\".",
        u"Update");
  }
  world.phone.play([&] {
    NameRescuedDatabases(app);
    NameRescuedDatabases(app);
  });
}

TEST(OpenDatabase, ClosingAsksOnlyWhenThereIsSomethingToSave) {
  PhoneWorld world;
  const std::string path = world.add("Notes", {{"Name"}}, {{"a"}, {"b"}});
  Application app(world.platform);
  const auto before = world.files.bytes(path);
  ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
  EXPECT_TRUE(CloseDatabase(app, AskBeforeSaving::kYes));

  ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
  setDirty(CurrentDatabase(app));
  EXPECT_FALSE(CloseDatabase(app, AskBeforeSaving::kYes, answering(SaveChoice::kStay)));
  EXPECT_TRUE(IsDatabaseOpen(app) && isDirty(CurrentDatabase(app)));
  EXPECT_TRUE(CloseDatabase(app, AskBeforeSaving::kYes, answering(SaveChoice::kDiscard)));
  EXPECT_EQ(world.files.bytes(path), before);

  app.preferences.auto_save_on_close = true;
  ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
  setDirty(CurrentDatabase(app));
  app.level().current_record = 1;
  EXPECT_TRUE(CloseDatabase(app, AskBeforeSaving::kYes));
  EXPECT_EQ(world.read(path)->schema.current_record_index, 1 + kSchemaRecords);
  ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
  EXPECT_EQ(app.level().current_record, 1u);
}

TEST(OpenDatabase, DamagedFileIsExplainedAndLeavesTheSlotEmpty) {
  PhoneWorld world;
  const std::string path = world.add("Broken", {{"Name"}}, {{"a"}});
  std::vector<std::uint8_t> bytes = world.files.bytes(path);
  bytes[kHeaderSize + kRecordListEntrySize * 3] = 0xFF;  // a field record's offset
  world.files.put(path, bytes);
  Application app(world.platform);
  world.phone.says(u"Could not read file", u"ERROR");
  world.phone.play([&] { EXPECT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpenRefused); });
  EXPECT_FALSE(IsDatabaseOpen(app));
  EXPECT_EQ(CurrentDatabase(app).schema.fields[0].type, FieldType::kUnused);
  EXPECT_TRUE(world.files.lock(path, "second").ok());
}

TEST(AccessRights, PasswordOperationsAreGranted) {
  PhoneWorld world;
  Application app(world.platform);
  CurrentDatabase(app).schema.security_word = 0b01 << 2 | 0b10 << 4 | 0b11 << 6;
  world.phone.says(u"This is a pending item.", u"CheckPassword");
  world.phone.says(u"Sorry, You do Not have Security Access to Perform this Operation!",
                   u"ACCESS DENIED");
  world.phone.play([&] {
    EXPECT_EQ(CheckSecurity(app, Operation::kOpen, true), kAccessGranted);
    EXPECT_EQ(CheckSecurity(app, Operation::kAdd, true), kAccessGranted);
    EXPECT_EQ(CheckSecurity(app, Operation::kChange, true), kAccessRefused);
    EXPECT_EQ(CheckSecurity(app, Operation::kChange, false), kAccessRefused);
    EXPECT_EQ(CheckSecurity(app, Operation::kDelete, true), kAccessRestricted);
    EXPECT_EQ(CheckSecurity(app, Operation::kEditPopups, true), kAccessGranted);
  });
}

}  // namespace
}  // namespace tabelion
