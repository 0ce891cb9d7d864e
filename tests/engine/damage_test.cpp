// Files that nobody should have, but somebody has.
#include <functional>

#include "database_fixture.h"

namespace tabelion {
namespace {

class Damage : public DatabaseFixture {
 protected:
  void SetUp() override {
    addField(0, FieldType::kText, "Name");
    for (int i = 0; i < 5; ++i) addText("record");
    database.fields[0].items.resize(2);
    database.fields[0].items[0].text = "one";
    database.fields[0].items[1].text = "two";
    save();
    sound = file();
  }
  void setOffset(Bytes& bytes, int record, std::uint32_t offset) {
    storeBe16(&bytes[entryPlace(record)], offset >> 16);
    storeBe16(&bytes[entryPlace(record) + 2], offset);
  }
  Bytes sound;
};

TEST_F(Damage, EndsInItsMessage) {
  const std::vector<std::string> cannot_read = {"Could not read file"};
  struct Case {
    const char* name;
    std::function<void(Bytes&)> change;
    std::vector<std::string> messages;
  };
  const Case cases[] = {
      {"list longer than the file",
       [](Bytes& b) { storeBe16(&b[76], 0xFFFF); },
       {"Could not initialize file"}},
      {"header alone", [](Bytes& b) { b.resize(78); }, {"Could not initialize file"}},
      {"too few records", [](Bytes& b) { storeBe16(&b[76], 101); }, cannot_read},
      {"database record too short", [&](Bytes& b) { setOffset(b, 1, recordOffset(b, 1) - 1); },
       cannot_read},
      {"too many items", [&](Bytes& b) { b[recordOffset(b, 1) + 23] = 61; }, cannot_read},
      {"offset runs backwards", [&](Bytes& b) { setOffset(b, 50, 90); }, cannot_read},
      {"data offset runs backwards",
       [&](Bytes& b) { setOffset(b, 104, 90); },
       {"ERROR:Reading Record: 1", "Could not read file"}},
      {"data offset past the end",
       [&](Bytes& b) { setOffset(b, 106, 0x7FFFFFFF); },
       {"ERROR:Reading Record: 3", "Could not read file"}},
      {"last record past the end",
       [&](Bytes& b) { b.resize(recordOffset(b, 106) - 1); },
       {"ERROR:Reading Record: 3", "Could not read file"}},
      {"record longer than 65535",
       [&](Bytes& b) { growRecord(b, 103, Bytes(66000)); },
       {"ERROR:Reading Record: 1", "Could not read file"}},
  };
  for (const Case& c : cases) {
    Bytes bytes = sound;
    c.change(bytes);
    setFile(bytes);
    EXPECT_EQ(open(), 0) << c.name;
    EXPECT_EQ(messages, c.messages) << c.name;
  }
}

TEST_F(Damage, FieldRecordWithoutDataEndsTheReadingOfFieldRecords) {
  database.fields[3].items.resize(1);
  database.fields[3].items[0].text = "kept out";
  save();
  Bytes bytes = file();
  const std::uint32_t second = recordOffset(bytes, 2);
  const std::uint32_t third = recordOffset(bytes, 3);
  bytes.erase(bytes.begin() + second, bytes.begin() + third);
  for (int record = 3; record < 107; ++record) {
    setOffset(bytes, record, recordOffset(bytes, record) - (third - second));
  }
  setFile(bytes);
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(database.fields[0].items.size(), 2u);
  EXPECT_TRUE(database.fields[3].items.empty());
  EXPECT_EQ(database.records.count(), 5u);
}

TEST_F(Damage, MoreRecordsThanADatabaseHoldsAreRefused) {
  // 65,001 empty data records behind a sound schema.
  Bytes list;
  for (int i = 0; i < 65001; ++i) list.insert(list.end(), {0, 0, 0, 0, 0, 0, 0, 0});
  Bytes bytes = sound;
  storeBe16(&bytes[76], 102 + 65001);
  bytes.erase(bytes.begin() + static_cast<std::ptrdiff_t>(entryPlace(102)),
              bytes.begin() + static_cast<std::ptrdiff_t>(entryPlace(107)));
  bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(entryPlace(102)), list.begin(),
               list.end());
  const auto moved = static_cast<std::uint32_t>(list.size() - 40);
  for (int record = 0; record < 102; ++record) {
    setOffset(bytes, record, recordOffset(bytes, record) + moved);
  }
  for (int record = 102; record < 102 + 65001; ++record) {
    setOffset(bytes, record, static_cast<std::uint32_t>(bytes.size()));
  }
  setFile(bytes);
  EXPECT_EQ(open(), 0);
  EXPECT_EQ(messages, std::vector<std::string>{"Could not read file"});
}

// Whatever bytes are changed: no crash, and what opens can be saved and opens again.
TEST_F(Damage, RandomChangesEndInAMessageOrInADatabaseThatSaves) {
  std::minstd_rand dice(5);
  int opened = 0;
  for (int round = 0; round < 3000; ++round) {
    Bytes bytes = sound;
    const unsigned changes = 1 + dice() % 4;
    for (unsigned i = 0; i < changes; ++i) {
      // Mostly where structure is: the header, the list, the field records.
      const std::size_t span = round % 3 == 0 ? bytes.size() : 78 + 8 * 107;
      bytes[dice() % span] = static_cast<std::uint8_t>(dice() >> 7);
    }
    if (round % 10 == 0) bytes.resize(dice() % bytes.size());
    setFile(bytes);
    if (open() == 1) {
      ++opened;
      ASSERT_EQ(saveDatabase(database, engine), 1);
      const Bytes once = file();
      ASSERT_EQ(open(), 1) << "round " << round;
      ASSERT_EQ(saveDatabase(database, engine), 1);
      ASSERT_EQ(file(), once) << "round " << round;
    } else {
      EXPECT_FALSE(messages.empty());
    }
  }
  EXPECT_GT(opened, 300);
}

}  // namespace
}  // namespace tabelion
