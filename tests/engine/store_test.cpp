#include "database_fixture.h"

namespace tabelion {
namespace {

using Store = DatabaseFixture;

TEST_F(Store, NewRecordsGetNumbersAndStamps) {
  addField(0, FieldType::kText, "Name");
  addField(1, FieldType::kAutoNumber, "No");
  addField(2, FieldType::kLinkedField, "Tasks");
  clock.local_now = {.year = 2026, .month = 11, .day = 21, .hour = 3, .minute = 7};
  ASSERT_EQ(addText("one"), 0u);
  ASSERT_EQ(addText("two"), 1u);
  const auto number = [this](std::uint32_t position, int slot) {
    return loadLe32(slotValue(database.records[position].bytes(), slot)->data());
  };
  EXPECT_EQ(number(0, 1), 1u);
  EXPECT_EQ(number(0, 2), 2u) << "two such fields of one record get consecutive numbers";
  EXPECT_EQ(number(1, 1), 3u);
  EXPECT_EQ(database.schema.next_auto_number, 5u);
  EXPECT_TRUE(database.selected[1] && database.selected[2] && !database.selected[0]);
  EXPECT_TRUE(isDirty(database));

  const auto stamp = recordStamp(database.records[1].bytes());
  ASSERT_TRUE(stamp);
  EXPECT_EQ(std::string(stamp->begin(), stamp->begin() + 5), "pdblb");
  EXPECT_EQ(stampSerial(*stamp), 2);
  EXPECT_EQ((*stamp)[13], 2) << "the serial is big-endian";
  EXPECT_EQ(stampCreated(*stamp), stampModified(*stamp));
  EXPECT_EQ(stampTime(stampCreated(*stamp), clock.local_now).minute, 7);
  EXPECT_NE(
      Bytes(stamp->begin(), stamp->begin() + 8),
      Bytes(database.records[0].bytes().begin() + 1, database.records[0].bytes().begin() + 9));

  database.schema.stamping_option = 0;
  Bytes bare = {0, 1, 0, 'x', 0xFF, 0xFF};
  ASSERT_EQ(appendRecord(database, engine, bare, true), 2u);
  EXPECT_FALSE(recordStamp(database.records[2].bytes()));
  EXPECT_EQ(number(2, 2), 6u) << "numbers come even without a stamp and where slots were absent";
}

TEST_F(Store, RecordsKeepTheirIdentityWhenMovedReplacedAndRemoved) {
  for (std::uint8_t i = 0; i < 6; ++i) {
    const Bytes record = {0, 1, 0, i, 0xFF, 0xFF};
    appendRecord(database, engine, record, false, {i, 0, 0});
  }
  RecordStore& store = database.records;
  const auto order = [&store] {
    std::string text;
    for (const Record& record : store) text += static_cast<char>('0' + record.unique_id[0]);
    return text;
  };
  store.move(4, 1);
  EXPECT_EQ(order(), "041235");
  store.move(1, 4);
  EXPECT_EQ(order(), "012345");
  ASSERT_TRUE(store.replace(2, Bytes{0, 0xFF, 0xFF}));
  EXPECT_EQ(order(), "012345");
  EXPECT_EQ(store[2].length(), 3u);
  EXPECT_FALSE(store.replace(2, Bytes(65536, 0)));
  EXPECT_FALSE(store.replaceFront(2, 1, Bytes(65534, 0))) << "with the two bytes behind";
  ASSERT_TRUE(store.replaceFront(2, 1, Bytes{1, 2}));
  ASSERT_TRUE(store.replaceFront(2, 2, Bytes{3, 4}));
  EXPECT_TRUE(std::ranges::equal(store[2].bytes(), Bytes{3, 4, 0xFF, 0xFF}));
  EXPECT_EQ(store.insert(1, Bytes{0, 0xFF, 0xFF}, {9, 0, 0}), 1u);
  EXPECT_EQ(order(), "0912345");
  store.remove(0);
  store.removeAll({1, 3, 5});
  EXPECT_EQ(order(), "924");
  store.rearrange(std::vector<std::uint32_t>{2, 0, 1});
  EXPECT_EQ(order(), "492");
}

TEST_F(Store, The65001stRecordIsRefused) {
  const Bytes record = {0, 0xFF, 0xFF};
  for (int i = 0; i < kMaxRecords; ++i) {
    ASSERT_NE(appendRecord(database, engine, record, false), kNoPosition);
  }
  const auto number = database.schema.next_auto_number;
  EXPECT_EQ(appendRecord(database, engine, record, true), kNoPosition);
  EXPECT_EQ(database.records.count(), 65000u);
  EXPECT_EQ(database.schema.next_auto_number, number) << "a refused record uses no number up";
  save();
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(database.records.count(), 65000u);
}

TEST(UniqueIds, TheFirstOfEqualIdsIsFound) {
  UIDMap map;
  map.add({3, 0, 1}, 7);
  map.add({1, 0, 0}, 5);
  map.add({1, 0, 0}, 6);
  EXPECT_EQ(map.find({1, 0, 0}), 5u);
  EXPECT_EQ(map.find({3, 0, 1}), 7u);
  EXPECT_FALSE(map.find({2, 0, 0}));
  map.add({2, 0, 0}, 8);
  EXPECT_EQ(map.find({2, 0, 0}), 8u) << "additions are found as well";
}

}  // namespace
}  // namespace tabelion
