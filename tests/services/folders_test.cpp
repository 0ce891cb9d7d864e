#include "services/folders.h"
#include "services/file_management.h"

#include "support/phone_world.h"

namespace tabelion {
namespace {

TEST(Folders, ComeIntoBeingOrAreTakenOver) {
  {
    PhoneWorld world;
    Application app(world.platform);
    EXPECT_EQ(GetDatabaseFolder(app), "/documents/Tabelion");
    EXPECT_TRUE(world.files.exists("/documents/Tabelion"));
    EXPECT_FALSE(world.files.exists("/documents/Tabelion3"));
    EXPECT_EQ(GetCardDatabaseFolder(app), std::nullopt);
  }
  {
    PhoneWorld world;
    world.files.put("/documents/Tabelion3/Old.PDB", std::string("old"));
    Application app(world.platform);
    GetDatabaseFolder(app);
    EXPECT_TRUE(world.files.exists("/documents/Tabelion/Old.PDB"));
  }
  {  // both are there: neither loses a file
    PhoneWorld world;
    world.files.put("/documents/Tabelion3/Old.PDB", std::string("old"));
    world.files.put("/documents/Tabelion/New.PDB", std::string("new"));
    Application app(world.platform);
    GetDatabaseFolder(app);
    EXPECT_TRUE(world.files.exists("/documents/Tabelion3/Old.PDB"));
    EXPECT_TRUE(world.files.exists("/documents/Tabelion/New.PDB"));
  }
}

std::vector<std::u16string> names(const DatabaseList& list) {
  std::vector<std::u16string> texts;
  for (const DatabaseFile& file : list.files) texts.push_back(file.label);
  return texts;
}

TEST(Folders, ListDatabasesOfBothVolumesByCategory) {
  PhoneWorld world;
  world.files.card = "/card";
  const auto music = world.make("music", {{"Title"}}, {});
  setAreaText(music->schema.category, "Home");
  world.store(*music);
  const std::string books = world.add("Books", {{"Title"}}, {});
  const auto utf8 = world.make("Caf\xC3\xA9", {{"Title"}}, {});
  setAreaText(utf8->schema.code_page, "UTF-8");
  const std::string cafe = world.store(*utf8);
  ASSERT_TRUE(world.files.makeFolder("/card/Tabelion").ok());
  ASSERT_TRUE(world.files.move(cafe, "/card/Tabelion/Cafe.pdb").ok());

  // None of these is a database.
  world.files.put("/documents/Tabelion/notes.txt", std::string("text"));
  std::vector<std::uint8_t> alien = world.files.bytes(books);
  alien[64] = 'X';  // creator
  world.files.put("/documents/Tabelion/Alien.pdb", alien);
  std::vector<std::uint8_t> cut = world.files.bytes(books);
  cut.resize(20000);  // within its schema
  world.files.put("/documents/Tabelion/Cut.pdb", cut);

  Application app(world.platform);
  const DatabaseList all = ListDatabases(app, kAllCategories);
  EXPECT_EQ(names(all), (std::vector<std::u16string>{u"Books", u"Café", u"music"}));
  EXPECT_EQ(all.categories, (std::vector<std::u16string>{u"Unfiled", u"Home"}));
  EXPECT_TRUE(all.found_files);
  EXPECT_EQ(names(ListDatabases(app, u"Home")), (std::vector<std::u16string>{u"music"}));
  EXPECT_EQ(names(ListDatabases(app, kUnfiled)), (std::vector<std::u16string>{u"Books", u"Café"}));

  EXPECT_EQ(all.files[0].volume, Volume::kMain);
  EXPECT_EQ(all.files[1].volume, Volume::kCard);
  EXPECT_EQ(OtherVolume(app, all.files[0]), Volume::kCard);
  EXPECT_EQ(OtherVolume(app, all.files[1]), Volume::kMain);

  world.files.documents.clear();  // without the main folder nothing is looked at
  EXPECT_TRUE(ListDatabases(app, kAllCategories).files.empty());
}

TEST(Folders, ListReadsASchemaOfEachFileAndTellsTwinsApart) {
  PhoneWorld world;
  const std::string books = world.add("Books", {{"Title"}}, {});
  std::vector<std::uint8_t> bytes = world.files.bytes(books);
  world.files.put("/documents/Tabelion/._Books.PDB", bytes);
  // Its database record lies behind a gap, as no program of ours writes it.
  constexpr std::uint32_t kGap = 3'000'000;
  const std::uint32_t offset = loadBe32(&bytes[kHeaderSize]);
  for (int i = 0; i < 4; ++i) {
    bytes[kHeaderSize + i] = static_cast<std::uint8_t>((offset + kGap) >> (24 - 8 * i));
  }
  bytes.insert(bytes.begin() + offset, kGap, 0);
  world.files.put("/documents/Tabelion/Old.PDB", bytes);
  world.add("books", {{"Title"}}, {});
  Application app(world.platform);
  world.files.bytes_read = 0;
  EXPECT_EQ(names(ListDatabases(app, kAllCategories)),
            (std::vector<std::u16string>{u"Books (Books.PDB)", u"Books (Old.PDB)",
                                         u"books (books.PDB)"}));
  EXPECT_LT(world.files.bytes_read, 3 * 36000u);
}

TEST(Folders, SampleThatCannotBeCopiedStopsTheInstallation) {
  PhoneWorld world;
  world.files.put("/samples/A.PDB", std::string("a"));
  world.files.put("/samples/B.PDB", std::string("b"));
  world.files.put("/samples/readme.txt", std::string("no database"));
  Application app(world.platform);
  InstallSampleDatabases(app);
  EXPECT_TRUE(world.files.exists("/documents/Tabelion/B.PDB"));
  EXPECT_FALSE(world.files.exists("/documents/Tabelion/readme.txt"));
  EXPECT_TRUE(world.files.exists("/samples/A.PDB"));  // other users want them too

  world.files.put("/documents/Tabelion/A.PDB", std::string("mine"));
  world.phone.says(u"Could Not Initialize Database files", u"Error!");
  world.phone.play([&] { InstallSampleDatabases(app); });
  EXPECT_EQ(world.files.bytes("/documents/Tabelion/A.PDB").size(), 4u);
}

}  // namespace
}  // namespace tabelion
