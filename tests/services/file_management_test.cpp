#include "services/file_management.h"

#include "services/recent_files.h"
#include "services/setting_table.h"
#include "support/phone_world.h"

namespace tabelion {
namespace {

class FileManagement : public testing::Test {
 protected:
  void SetUp() override {
    world.files.card = "/card";
    path = world.add("Notes", {{"Name"}}, {{"a"}});
    ASSERT_TRUE(world.files.makeFolder("/card/Tabelion").ok());
  }
  DatabaseFile file() const { return {path, u"Notes", kUnfiled, Volume::kMain, u"Notes"}; }
  // The same database, saved at another hour with other records.
  std::vector<std::uint8_t> savedAt(int hour) {
    const int now = std::exchange(world.clock.utc_now.hour, hour);
    const auto other = world.make("Other", {{"Name"}}, {{"b"}, {"c"}});
    const std::string other_path = world.store(*other);
    auto bytes = world.files.bytes(other_path);
    EXPECT_TRUE(world.files.remove(other_path).ok());
    world.clock.utc_now.hour = now;
    return bytes;
  }
  CopyQuestion answer(CopyChoice choice) {
    return [this, choice](const std::string&, bool form) {
      (form ? form_questions : questions)++;
      return choice;
    };
  }
  void putForm(const std::string& at, const std::string& content) {
    std::string bytes(kHeaderSize, '\0');
    bytes.replace(64, 4, "TBFM");
    world.files.put(at, bytes + content);
  }
  void play(const std::function<void()>& act) { world.phone.play(act); }

  PhoneWorld world;
  Application app{world.platform};
  std::string path;
  const std::string on_card = "/card/Tabelion/Notes.PDB";
  int questions = 0;
  int form_questions = 0;
};

TEST_F(FileManagement, DeletingAsksAndSparesWhatIsOpenElsewhere) {
  world.phone.asks(u"Notes", u"Delete?", MessageAnswer::kNo);
  play([&] { EXPECT_FALSE(DeleteDatabase(app, file())); });

  world.files.locked_by[path] = "another program";
  world.phone.asks(u"Notes", u"Delete?", MessageAnswer::kYes);
  world.phone.says(
      u"/documents/Tabelion/Notes.PDB is open in another program; close it there first",
      u"Delete Database");
  play([&] { EXPECT_FALSE(DeleteDatabase(app, file())); });
  world.files.locked_by.clear();

  world.files.read_only.insert(path);
  world.phone.asks(u"Notes", u"Delete?", MessageAnswer::kYes);
  world.phone.says(u"Unable to delete database.", u"Delete Database");
  play([&] { DeleteDatabase(app, file()); });
  EXPECT_TRUE(world.files.exists(path));

  world.files.read_only.clear();
  world.phone.asks(u"Notes", u"Delete?", MessageAnswer::kYes);
  play([&] { EXPECT_TRUE(DeleteDatabase(app, file())); });
  EXPECT_FALSE(world.files.exists(path));
  EXPECT_TRUE(world.files.locked_by.empty());
}

TEST_F(FileManagement, ReceivedPackageGoesUnlessAWantedCopyFailed) {
  const std::string package = "/documents/Notes.TBP";
  const auto received = savedAt(15);
  const auto before = world.files.bytes(path);
  const std::u16string copy =
      u"\"Notes\" has been received via Infrared or Bluetooth.\t\t\t\tWould you like to copy it "
      u"into your Tabelion Folder?";
  const std::u16string replace =
      u"The file alredy exist in Tabelion Folder. Do you want to replace It?";
  world.files.put("/documents/Letter.TBP", std::string(200, 'x'));  // no database
  const auto receive = [&] {
    world.files.put(package, received);
    play([&] { CollectReceivedFiles(app); });
    return world.files.exists(package);
  };

  world.phone.asks(copy, u"Copy?", MessageAnswer::kNo);
  EXPECT_FALSE(receive());

  world.phone.asks(copy, u"Copy?", MessageAnswer::kYes);
  world.phone.asks(replace, u"Replace?", MessageAnswer::kNo);
  EXPECT_FALSE(receive());
  EXPECT_EQ(world.files.bytes(path), before);

  world.phone.asks(copy, u"Copy?", MessageAnswer::kYes);
  world.phone.asks(replace, u"Replace?", MessageAnswer::kYes);
  world.files.fail_replace_at = 100;
  world.phone.says(u"Could not write /documents/Tabelion/Notes.PDB: the disk is full", u"Copy?");
  EXPECT_TRUE(receive());
  EXPECT_EQ(world.files.bytes(path), before);
  world.files.fail_replace_at.reset();

  // Nobody has said No when the question was dismissed.
  world.phone.while_message = [&] { world.phone.dismissBoxes(); };
  EXPECT_TRUE(receive());
  world.phone.while_message = [] {};

  world.phone.asks(copy, u"Copy?", MessageAnswer::kYes);
  world.phone.asks(replace, u"Replace?", MessageAnswer::kYes);
  EXPECT_FALSE(receive());
  EXPECT_EQ(world.files.bytes(path), received);  // under the name that was there
  EXPECT_FALSE(world.files.exists("/documents/Tabelion/Notes.pdb"));
  EXPECT_TRUE(world.files.exists("/documents/Letter.TBP"));
}

TEST_F(FileManagement, CopyAsksOnlyAboutAnotherContent) {
  const auto ours = world.files.bytes(path);
  const auto copy = [&](CopyChoice choice) {
    bool copied = false;
    play([&] { copied = CopyDatabase(app, file(), Volume::kCard, answer(choice)); });
    return copied;
  };
  EXPECT_TRUE(copy(CopyChoice::kIgnore));
  EXPECT_TRUE(copy(CopyChoice::kIgnore));
  EXPECT_EQ(questions, 0);
  EXPECT_EQ(world.files.bytes(on_card), ours);

  const auto newer = savedAt(15);
  world.files.put(on_card, newer);
  EXPECT_FALSE(copy(CopyChoice::kIgnore));
  world.phone.says(u"\"Notes.PDB\" on the card is newer and was kept.", u"Copy Database");
  EXPECT_FALSE(copy(CopyChoice::kSync));
  EXPECT_EQ(questions, 2);
  EXPECT_EQ(world.files.bytes(on_card), newer);

  world.files.locked_by[on_card] = "another program";
  world.phone.says(u"/card/Tabelion/Notes.PDB is open in another program; close it there first",
                   u"Copy Database");
  EXPECT_FALSE(copy(CopyChoice::kOverwrite));
  world.files.locked_by.clear();
  EXPECT_TRUE(copy(CopyChoice::kOverwrite));
  EXPECT_EQ(world.files.bytes(on_card), ours);

  // Without the question: the newer one stands, and what cannot be compared stays.
  world.set("SyncOverwrite", "1");
  questions = 0;
  world.files.put(on_card, savedAt(9));
  world.phone.says(u"\"Notes.PDB\" on the card was older and has been replaced.", u"Copy Database");
  EXPECT_TRUE(copy(CopyChoice::kOverwrite));
  EXPECT_EQ(world.files.bytes(on_card), ours);
  world.files.put(on_card, std::string(200, 'x'));
  world.phone.says(u"\"Notes.PDB\" on the card was kept, since neither is newer.",
                   u"Copy Database");
  EXPECT_FALSE(copy(CopyChoice::kOverwrite));
  EXPECT_EQ(questions, 0);
}

TEST_F(FileManagement, MovedDatabaseLeavesItsPlaceOnlyWhenTheCopyIsWhole) {
  const std::string form = "/documents/Tabelion/Notes_TBF.PDB";
  const std::string form_on_card = "/card/Tabelion/Notes_TBF.PDB";
  putForm(form, "ours");
  putForm(form_on_card, "theirs");
  const auto ours = world.files.bytes(path);
  const auto move = [&](CopyChoice choice) {
    play([&] { MoveDatabase(app, file(), Volume::kCard, answer(choice)); });
  };

  world.files.read_only.insert(form_on_card);
  world.phone.says(u"Could not write /card/Tabelion/Notes_TBF.PDB: the file is read-only",
                   u"Move Database");
  move(CopyChoice::kOverwrite);
  EXPECT_TRUE(world.files.exists(path) && world.files.exists(form));
  world.files.read_only.clear();

  world.files.put(on_card, savedAt(15));
  world.phone.says(u"\"Notes.PDB\" on the card is newer and was kept.", u"Move Database");
  move(CopyChoice::kSync);
  EXPECT_EQ(world.files.bytes(path), ours);

  form_questions = 0;
  move(CopyChoice::kOverwrite);
  EXPECT_EQ(form_questions, 1);
  EXPECT_EQ(world.files.bytes(on_card), ours);
  EXPECT_EQ(world.files.bytes(form_on_card).back(), 's');
  EXPECT_EQ(world.files.bytes(form_on_card).size(), kHeaderSize + 4);
  EXPECT_FALSE(world.files.exists(path) || world.files.exists(form));
}

TEST_F(FileManagement, NewNamesTakeTheFirstFreeNumber) {
  world.files.put("/documents/Tabelion/untitled1.pdb", std::string("x"));
  world.files.put("/documents/Tabelion/Untitled3.PDB", std::string("x"));
  EXPECT_EQ(MakeNewDatabaseName(app), "/documents/Tabelion/Untitled2.PDB");
}

TEST_F(FileManagement, RecentFilesKeepTenAndTheLastOnTop) {
  for (const char* name : {"/0", "/1", "/2", "/3", "/4", "/5", "/6", "/7", "/8", "/9", "/x"}) {
    RememberRecentFile(app, name);
  }
  RememberRecentFile(app, "/5");
  RememberRecentFile(app, "/X");
  RememberRecentFile(app, std::string(1024, 'x'));  // could not be read back
  std::string all;
  for (const std::string& recent : ReadRecentFiles(app)) all += recent;
  EXPECT_EQ(all, "/x/5/9/8/7/6/4/3/2/1");
  EXPECT_EQ(world.setting("LastFile9"), "/1");
}

TEST_F(FileManagement, SettingsOfManyHaveTheirNumberInTheirPlace) {
  Settings& settings = world.settings;
  const std::vector<std::uint8_t> record_id(14, 7);
  WriteBinarySetting(settings, Setting::kAlarmRecordId, record_id, 40);
  WriteSetting(settings, Setting::kAlarmRecord, "12", 41);
  EXPECT_EQ(settings.subKeys(kAlarmsKey), (std::vector<std::string>{"40", "41"}));
  EXPECT_EQ(ReadBinarySetting(settings, Setting::kAlarmRecordId, 40), record_id);
  EXPECT_EQ(ReadNumberSetting(settings, Setting::kAlarmRecord, 41), 12);
}

}  // namespace
}  // namespace tabelion
