#include "database_fixture.h"

namespace tabelion {
namespace {

using Saving = DatabaseFixture;
using Opening = DatabaseFixture;

TEST_F(Saving, NewDatabaseHasTheFixedLayout) {
  save();
  const Bytes bytes = file();
  EXPECT_EQ(loadBe16(&bytes[76]), 102);
  EXPECT_EQ(loadBe32(&bytes[52]), 896u);
  EXPECT_EQ(recordOffset(bytes, 0), 936u);
  EXPECT_EQ(recordOffset(bytes, 1), 36788u);
  EXPECT_EQ(recordOffset(bytes, 2), 36788u + 31);
  EXPECT_EQ(bytes.size(), 36788u + 100 * 31 + 28);
  EXPECT_EQ(bytes[entryPlace(0) + 4], 0) << "an unchanged database record is not dirty";
  EXPECT_EQ(bytes[entryPlace(1) + 4], 0x40);
  EXPECT_EQ(bytes[entryPlace(101) + 4], 0);
}

TEST_F(Saving, StampsTheModificationDateInUtcAndMarksChanges) {
  clock.utc_now = {.year = 2100, .month = 3, .day = 1, .hour = 1, .minute = 2, .second = 3};
  database.header.creation_date = 0xFFFFFFF0u;
  database.schema_unique_id = {1, 2, 3};
  setDirty(database);
  save();
  EXPECT_FALSE(isDirty(database));
  const Bytes bytes = file();
  EXPECT_EQ(loadBe32(&bytes[40]), static_cast<std::uint32_t>(71649ull * 86400 + 3723));
  EXPECT_EQ(loadBe32(&bytes[36]), loadBe32(&bytes[40])) << "creation date lowered";
  EXPECT_EQ(bytes[entryPlace(0) + 4], 0x40);
  EXPECT_EQ(Bytes(&bytes[entryPlace(0) + 5], &bytes[entryPlace(0) + 8]), (Bytes{3, 2, 1}));
}

TEST_F(Saving, OpenedFileComesBackByteForByte) {
  addField(0, FieldType::kText, "Name");
  for (int i = 0; i < 50; ++i) addText("record " + std::to_string(i));
  for (std::size_t i = 0; i < 20; ++i) {
    database.records[static_cast<std::uint32_t>(i)].attributes = static_cast<std::uint8_t>(i);
    database.records[static_cast<std::uint32_t>(i)].unique_id = {static_cast<std::uint8_t>(i), 1,
                                                                 2};
  }
  database.extension.entries.resize(2);
  save();
  // Bytes that this program has no meaning for, wherever there is room for them.
  Bytes original = file();
  original[200 + recordOffset(original, 0) + 27] ^= 0x55;
  growRecord(original, 0, Bytes(100, 0xA1));
  growRecord(original, 7, Bytes(9, 0xA2));
  growRecord(original, 101, Bytes(5, 0xA3));
  growRecord(original, 120, Bytes{0xA4, 0xA5});
  growRecord(original, 151, Bytes(70000, 0xA6));  // more than a record can be
  setFile(original);

  ASSERT_EQ(open(), 1);
  EXPECT_EQ(database.records[49].length(), kMaxRecordSize);
  save();
  Bytes saved = file();
  for (std::size_t i = 40; i < 44; ++i) original[i] = saved[i];  // the modification date
  EXPECT_EQ(saved, original);

  // And records that are added or changed leave the others as they were.
  ASSERT_EQ(open(), 1);
  ASSERT_TRUE(database.records.replace(3, Bytes{0, 0xFF, 0xFF}));
  const auto at = addText("new");
  save();
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(database.records[at].unique_id, UniqueId{});
  EXPECT_EQ(database.records[3].attributes, 3);
  const ByteView kept = database.records[4].bytes();
  EXPECT_EQ(Bytes(kept.begin(), kept.end()), Bytes(original.begin() + recordOffset(original, 106),
                                                   original.begin() + recordOffset(original, 107)));
}

// Writing that fails half way: the old file stays, the result says so, the flag is cleared all
// the same. A target that is refused before writing leaves the flag alone.
TEST_F(Saving, FailedWriteClearsTheDirtyFlag) {
  save();
  const Bytes old = file();
  addField(0, FieldType::kText, "Name");
  addText("lost?");
  files.read_only.insert(kPath);
  EXPECT_EQ(saveDatabase(database, engine), 0);
  EXPECT_TRUE(isDirty(database));
  files.read_only.clear();
  files.fail_replace_at = 5000;
  EXPECT_EQ(saveDatabase(database, engine), 0);
  EXPECT_FALSE(isDirty(database));
  EXPECT_EQ(file(), old);
  files.fail_replace_at.reset();
  save();
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(database.records.count(), 1u);
}

TEST_F(Saving, AListThatNoRecordCanHoldIsNamed) {
  addField(4, FieldType::kPopup, "Group");
  save();
  const Bytes before = file();
  database.fields[4].items.assign(kMaxItems, {.text = std::string(1200, 'x')});
  const Status saved = trySaveDatabase(database, engine);
  ASSERT_FALSE(saved.ok());
  EXPECT_EQ(
      saved.error().text,
      "Could not write /Test.PDB: the list of the field \"Group\" takes 73291 bytes; 65535 is "
      "the limit");
  EXPECT_EQ(file(), before);
}

TEST_F(Opening, MissingFileAndForeignFileAreReported) {
  EXPECT_EQ(open(), 0);
  EXPECT_EQ(messages, std::vector<std::string>{"ERROR: Cannot Open File: /Test.PDB for reading"});
  EXPECT_EQ(database.records.count(), 0u);
  setFile(Bytes(500, 0));
  EXPECT_EQ(open(), 0);
  EXPECT_EQ(messages,
            std::vector<std::string>{
                "ERROR: Reading header!\nMake sure you are converting a Tabelion data file!\n"});
}

TEST_F(Opening, UniqueIdsMapToListIndexesWithoutTheExtensionRecord) {
  addField(0, FieldType::kText, "Name");
  addText("a");
  addText("b");
  database.schema_unique_id = {9, 9, 9};
  database.fields[4].unique_id = {8, 8, 8};
  database.records[0].unique_id = {1, 0, 0};
  database.records[1].unique_id = {2, 0, 0};
  save();
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(database.unique_ids.find({9, 9, 9}), 0u);
  EXPECT_EQ(database.unique_ids.find({8, 8, 8}), 5u);
  EXPECT_EQ(database.unique_ids.find({1, 0, 0}), 101u);
  EXPECT_EQ(database.unique_ids.find({2, 0, 0}), 102u);
  EXPECT_EQ(engine.last_probed_header.record_count, 104);
}

TEST_F(Opening, StoredCurrentRecordAndPendingSortAreTakenUp) {
  addField(0, FieldType::kText, "Name");
  addText("a");
  addText("b");
  std::vector<std::string> steps;
  engine.steps.refresh = [&](Database& d) {
    steps.push_back(d.needs_refresh ? "refresh" : "refresh without need");
    return 1;
  };
  engine.steps.sort_and_rebuild = [&](Database&) { steps.push_back("sort"); };
  engine.steps.restore_current_record = [&](Database&, std::uint32_t record) {
    steps.push_back("restore " + std::to_string(record));
  };
  const auto stepsFor = [&](std::uint16_t index, std::uint8_t pending) {
    database.schema.current_record_index = index;
    database.schema.sort_pending = pending;
    save();
    steps.clear();
    EXPECT_EQ(open(), 1);
    return steps;
  };
  using Steps = std::vector<std::string>;
  EXPECT_EQ(stepsFor(103, 1), (Steps{"restore 1", "refresh"}));
  EXPECT_EQ(stepsFor(104, 1), (Steps{"sort", "refresh"})) << "no such record";
  EXPECT_EQ(database.schema.current_record_index, 0);
  EXPECT_EQ(database.schema.sort_pending, 0);
  EXPECT_EQ(stepsFor(0, 0), (Steps{"refresh"}));
}

// An empty field record ends the reading of field records, but no bytes are lost by that.
TEST_F(Opening, WhatLiesBehindAnEmptyFieldRecordSurvives) {
  for (const int slot : {0, 5, 9}) {
    addField(slot, FieldType::kPopup, "Kind");
    database.fields[std::size_t(slot)].items = {{{1}, "Sea"}, {{2}, "Land"}};
    database.fields[std::size_t(slot)].unique_id = {std::uint8_t(slot), 1, 2};
  }
  addText("a");
  save();
  Bytes bytes = file();
  const std::uint32_t begin = recordOffset(bytes, 4);  // of slot 3
  const std::uint32_t size = recordOffset(bytes, 5) - begin;
  bytes.erase(bytes.begin() + begin, bytes.begin() + begin + size);
  for (int later = 5; later < loadBe16(&bytes[76]); ++later) {
    const std::uint32_t moved = recordOffset(bytes, later) - size;
    storeBe16(&bytes[entryPlace(later)], moved >> 16);
    storeBe16(&bytes[entryPlace(later) + 2], moved);
  }
  setFile(bytes);
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(database.fields[0].items.size(), 2u);
  EXPECT_TRUE(database.fields[5].items.empty());
  EXPECT_EQ(database.fields[5].unique_id, UniqueId{}) << "keeps its defaults";
  save();
  const Bytes saved = file();
  EXPECT_TRUE(std::equal(bytes.begin() + 44, bytes.end(), saved.begin() + 44, saved.end()))
      << "all but the modification date";

  // Items of a field behind it have to be found again.
  database.fields[5].items = {{{3}, "Air"}};
  save();
  ASSERT_EQ(open(), 1);
  EXPECT_EQ(database.fields[5].items[0].text, "Air");
  EXPECT_EQ(database.fields[9].items.size(), 2u);
  EXPECT_EQ(database.fields[9].unique_id, (UniqueId{9, 1, 2}));
}

TEST_F(Opening, RowHeaderShowsAShadowOfTheSchema) {
  addField(0, FieldType::kText, "Name");
  addField(1, FieldType::kDate, "Born");
  database.schema.display_order[0] = 1;
  database.schema.display_order[1] = 0;
  setRowHeader(database, true);
  const DatabaseRecord& shown = schemaShown(database);
  EXPECT_EQ(fieldName(shown.fields[0]), "_rowhdr_");
  EXPECT_EQ(shown.fields[0].width, 150);
  EXPECT_EQ(shown.fields[0].column_width, 0);
  EXPECT_EQ(fieldName(shown.fields[2]), "Born");
  EXPECT_EQ(shown.display_order[0], 0);
  EXPECT_EQ(shown.display_order[1], 2);
  EXPECT_EQ(shown.display_order[2], 1);

  const Bytes before(database.schema.display_order.begin(), database.schema.display_order.end());
  for (const std::uint8_t last : {99, 0}) {  // the last slot has no place, wherever it stands
    std::swap(database.schema.display_order[0], database.schema.display_order[last]);
    setRowHeader(database, true);
    Bytes order(shown.display_order.begin(), shown.display_order.end());
    std::sort(order.begin(), order.end());
    for (std::size_t i = 0; i < order.size(); ++i) EXPECT_EQ(order[i], i);
    setRowHeader(database, false);
    std::swap(database.schema.display_order[0], database.schema.display_order[last]);
    EXPECT_EQ(Bytes(database.schema.display_order.begin(), database.schema.display_order.end()),
              before);
    setRowHeader(database, true);
  }
  database.shadow->fields[2].column_width = 99;
  setRowHeader(database, false);
  EXPECT_EQ(database.schema.fields[1].column_width, 99) << "changes made meanwhile are kept";
  EXPECT_EQ(Bytes(database.schema.display_order.begin(), database.schema.display_order.end()),
            before);
  EXPECT_EQ(&schemaShown(database), &database.schema);
}

}  // namespace
}  // namespace tabelion
