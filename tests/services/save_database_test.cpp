#include "services/save_database.h"

#include "services/open_database.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

bool neverAsked(const std::string&) {
  ADD_FAILURE() << "asked for a password";
  return false;
}

// A database that is open with one record more than its file, which another program changes.
class ChangedFile : public testing::Test {
 protected:
  void SetUp() override {
    path = world.add("Notes", {{"Name"}}, {{"a"}});
    theirs = world.files.bytes(world.add("Theirs", {{"Name"}}, {{"x"}, {"y"}, {"z"}}));
    ASSERT_EQ(OpenDatabaseFile(app, path, neverAsked), kOpened);
    world.addRow(CurrentDatabase(app), {"b"});
    app.ask_changed_file = [this](const std::string& asked) {
      EXPECT_EQ(asked, path);
      ++questions;
      return choice;
    };
  }
  std::size_t recordsIn(const std::string& file) { return world.read(file)->records.count(); }
  void expectBothKept(const std::string& name) {
    EXPECT_EQ(world.files.bytes(path), theirs);
    EXPECT_EQ(recordsIn(beside), 2u);
    EXPECT_EQ(areaText(world.read(beside)->header.name), name);
  }

  PhoneWorld world;
  Application app{world.platform};
  std::string path;
  const std::string beside = "/documents/Tabelion/Notes 2.PDB";
  std::vector<std::uint8_t> theirs;
  ChangedFileChoice choice = ChangedFileChoice::kCancel;
  int questions = 0;
};

TEST_F(ChangedFile, UserChoosesAtASave) {
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kUser), SaveResult::kSaved);
  setDirty(CurrentDatabase(app));
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kTimer), SaveResult::kSaved);
  EXPECT_EQ(questions, 0);  // its own saves are no change

  world.files.put(path, theirs);
  setDirty(CurrentDatabase(app));
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kTimer), SaveResult::kPutOff);
  EXPECT_EQ(questions, 0);
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kUser), SaveResult::kPutOff);
  EXPECT_TRUE(isDirty(CurrentDatabase(app)));
  EXPECT_EQ(world.files.bytes(path), theirs);

  choice = ChangedFileChoice::kKeepBoth;
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kUser), SaveResult::kSaved);
  expectBothKept("Notes 2");
  EXPECT_TRUE(world.files.lock(path, "second").ok());
  EXPECT_FALSE(world.files.lock(beside, "second").ok());
  setDirty(CurrentDatabase(app));
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kTimer), SaveResult::kSaved);  // goes on beside

  path = beside;
  world.files.put(beside, theirs);
  choice = ChangedFileChoice::kOverwrite;
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kUser), SaveResult::kSaved);
  EXPECT_EQ(recordsIn(beside), 2u);
  EXPECT_EQ(questions, 3);
}

TEST_F(ChangedFile, ClosingNeverLosesOneOfTheTwo) {
  world.files.put(path, theirs);
  EXPECT_FALSE(CloseDatabase(app, AskBeforeSaving::kNo));
  EXPECT_TRUE(IsDatabaseOpen(app));

  // Where nobody can be asked, and one name is taken and the next is refused.
  world.files.put("/documents/Tabelion/notes 2.pdb", std::string("taken"));
  world.files.read_only.insert("/documents/Tabelion/Notes 3.PDB");
  app.closing = Closing::kUnattended;
  const ClosingQuestions stays{
      .failed_save = [](const auto&, const auto&) { return FailedSaveAnswer{}; }};
  EXPECT_FALSE(CloseDatabase(app, AskBeforeSaving::kNo, stays));
  EXPECT_EQ(CurrentDatabase(app).path, path);
  EXPECT_EQ(areaText(CurrentDatabase(app).header.name), "Notes");
  EXPECT_FALSE(world.files.lock(path, "second").ok());

  ASSERT_TRUE(world.files.remove("/documents/Tabelion/notes 2.pdb").ok());
  app.closing = Closing::kSessionEnds;
  setAreaText(CurrentDatabase(app).header.name, std::string(31, 'n'));
  EXPECT_TRUE(CloseDatabase(app, AskBeforeSaving::kNo));
  expectBothKept(std::string(29, 'n') + " 2");
  EXPECT_EQ(questions, 1);
}

TEST_F(ChangedFile, RemovedFileIsWrittenAgain) {
  ASSERT_TRUE(world.files.remove(path).ok());
  EXPECT_EQ(SaveDatabase(app, SaveOccasion::kTimer), SaveResult::kSaved);
  EXPECT_EQ(recordsIn(path), 2u);
  EXPECT_EQ(questions, 0);
}

TEST_F(ChangedFile, DatabaseWithoutChangesGivesWay) {
  clearDirty(CurrentDatabase(app));
  world.files.put(path, theirs);
  EXPECT_TRUE(CloseDatabase(app, AskBeforeSaving::kNo));
  EXPECT_EQ(world.files.bytes(path), theirs);
  EXPECT_EQ(questions, 0);
}

// Another program may write between the moment a file is looked at and the moment it is read.
TEST_F(ChangedFile, ChangeWhileItIsBeingOpenedIsNoticed) {
  clearDirty(CurrentDatabase(app));
  CloseDatabase(app, AskBeforeSaving::kNo);
  const auto database = world.make("Locked", {{"Name"}}, {{"a"}});
  setAreaText(database->schema.access_password, "sesame");
  database->schema.security_word = 1;  // opening wants the password
  path = world.store(*database);
  const auto change = [&](const std::string&) {
    world.files.put(path, theirs);
    return true;
  };
  ASSERT_EQ(OpenDatabaseFile(app, path, change), kOpened);
  EXPECT_TRUE(FileWasChanged(app));
}

}  // namespace
}  // namespace tabelion
