#include "query/record_change.h"

#include <gtest/gtest.h>

#include "query/filter.h"
#include "query/formula_fixtures.h"
#include "query/record_index.h"
#include "query/sort.h"
#include "query/view.h"
#include "support/fake_clock.h"
#include "support/memory_files.h"

namespace tabelion {
namespace {

// Sorted by day; each balance is the one before plus the amount.
struct Ledger {
  MemoryFiles files;
  FakeClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 4u; }};
  QuerySettings settings{.formats = isoSettings(), .now = clock.local(), .lookup = nullptr};
  FormulaDatabase world;
  Database& database = world.database;
  int day = world.addField(FieldType::kInteger);
  int amount = world.addField(FieldType::kInteger);
  int balance = world.addFormula({previousOf(2), fieldOf(1), op(2)}, 1);
  int serial = world.addField(FieldType::kAutoNumber);
  int twice = world.addFormula({fieldOf(3), fieldOf(3), op(2)}, 1);

  Ledger() { database.schema.sort[0] = {static_cast<std::uint8_t>(day), 1}; }

  std::uint32_t store(std::uint32_t position, int on_day, int amount_then) {
    UnpackedRecord record = newRecord(database.schema);
    if (position != kNoPosition) record = unpackRecord(database.records[position].bytes());
    const std::string day_bytes = integer(on_day);
    const std::string amount_bytes = integer(amount_then);
    record.slots[0] = Bytes(day_bytes.begin(), day_bytes.end());
    record.slots[1] = Bytes(amount_bytes.begin(), amount_bytes.end());
    return storeRecord(database, engine, position, record, settings);
  }
  std::vector<std::string> column(int slot) const {
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < database.records.count(); ++i) {
      texts.push_back(world.stored(i, slot));
    }
    return texts;
  }
};
using Texts = std::vector<std::string>;

TEST(RecordChange, EveryChangeKeepsTheOrderAndTheRunningTotals) {
  Ledger ledger;
  EXPECT_EQ(ledger.store(kNoPosition, 10, 100), 0u);
  EXPECT_EQ(ledger.store(kNoPosition, 30, 1), 1u);
  EXPECT_EQ(ledger.store(kNoPosition, 20, 10), 1u) << "between the two";
  EXPECT_EQ(ledger.column(ledger.balance), (Texts{"100", "110", "111"}));
  EXPECT_EQ(ledger.column(ledger.twice), (Texts{"2", "6", "4"})) << "of the numbers just given";

  EXPECT_EQ(ledger.store(0, 25, 100), 1u) << "a changed day moves the record";
  EXPECT_EQ(ledger.column(ledger.balance), (Texts{"10", "110", "111"}));
  deleteRecords(ledger.database, {0}, ledger.settings);
  EXPECT_EQ(ledger.column(ledger.balance), (Texts{"100", "101"}));
  EXPECT_TRUE(isDirty(ledger.database));
}

TEST(RecordChange, AStaleOrderIsMendedAndTheCurrentRecordFollowed) {
  Ledger ledger;
  for (const int day : {5, 3, 9}) ledger.world.addRecord({integer(day), integer(day), ""});
  std::uint32_t current = 2;
  refreshRecordIndex(ledger.database, ledger.settings, nullptr, &current);
  EXPECT_EQ(ledger.column(ledger.balance), (Texts{"", "", ""})) << "nothing says that it is stale";
  ledger.database.schema.sort_pending = 1;
  ledger.database.schema.sort[0].order = 0;
  refreshRecordIndex(ledger.database, ledger.settings, nullptr, &current);
  EXPECT_EQ(ledger.column(ledger.balance), (Texts{"9", "14", "17"}));
  EXPECT_EQ(current, 0u);
  EXPECT_EQ(ledger.database.schema.sort_pending, 0);
}

// Equal records change places in a sort, and the sort level here is worked out itself.
struct SortedByResult : Ledger {
  SortedByResult() {
    world.setFormula(twice, {constant(0), fieldOf(day), op(1)}, 1, {"2"});
    database.schema.sort[0].field = static_cast<std::uint8_t>(twice);
  }
  std::vector<std::uint32_t> amounts() const {
    std::vector<std::uint32_t> amounts;
    for (const Record& record : database.records) {
      amounts.push_back(loadLe32(slotValue(record.bytes(), amount)->data()));
    }
    return amounts;
  }
  void expectTotalsOfTheOrder() const {
    std::uint32_t sum = 0;
    Texts sums;
    for (const std::uint32_t each : amounts()) sums.push_back(std::to_string(sum += each));
    EXPECT_EQ(column(balance), sums);
  }
};

TEST(RecordChange, ASavedRecordMovesAloneAndTotalsFollowTheOrder) {
  SortedByResult ledger;
  std::vector<std::uint32_t> expected;
  for (int amount = 1; amount <= 12; ++amount) {
    ledger.store(kNoPosition, 7, amount);
    expected.push_back(static_cast<std::uint32_t>(amount));
  }
  EXPECT_EQ(ledger.amounts(), expected) << "each behind those that it equals";
  EXPECT_EQ(ledger.store(3, 7, 100), 11u);
  expected.erase(expected.begin() + 3);
  expected.push_back(100);
  EXPECT_EQ(ledger.amounts(), expected);
  ledger.expectTotalsOfTheOrder();
  deleteRecords(ledger.database, {5, 0}, ledger.settings);
  expected.erase(expected.begin() + 5);
  expected.erase(expected.begin());
  EXPECT_EQ(ledger.amounts(), expected);
  ledger.expectTotalsOfTheOrder();
}

TEST(RecordChange, AChosenViewSortsOnceAndTotalsFollowTheOrder) {
  SortedByResult ledger;
  for (std::uint32_t i = 0; i < 16; ++i) {
    ledger.store(kNoPosition, static_cast<int>(i % 3), static_cast<int>(i + 1));
  }
  addView(ledger.database);
  View& view = ledger.database.schema.views[0];
  view.sort[0].order = 0;
  view.filters[0].enabled = 1;
  view.filters[0].field = static_cast<std::uint16_t>(ledger.day);
  Ledger once;  // sorted a single time, by the same order
  for (const Record& record : ledger.database.records) {
    once.database.records.insert(once.database.records.count(), record.bytes(), {});
  }
  once.database.schema = ledger.database.schema;
  once.database.schema.sort = view.sort;
  sortRecords(once.database, once.settings.formats);

  applyView(ledger.database, 0, ledger.settings);
  ledger.expectTotalsOfTheOrder();
  EXPECT_EQ(ledger.column(ledger.amount), once.column(once.amount));
  EXPECT_EQ(ledger.database.schema.sort_pending, 0);
}

TEST(RecordChange, ARecordIsFollowedThroughASort) {
  SortedByResult ledger;
  for (int amount = 1; amount <= 12; ++amount) ledger.store(kNoPosition, 7, amount);
  for (std::uint32_t start = 0; start < 12; ++start) {
    std::uint32_t current = start;
    const std::uint32_t amount = ledger.amounts()[start];
    ledger.database.schema.sort_pending = 1;
    refreshRecordIndex(ledger.database, ledger.settings, nullptr, &current);
    EXPECT_EQ(ledger.amounts()[current], amount) << start;
  }
}

TEST(RecordChange, StoredValuesHaveTheSizeOfTheirType) {
  Ledger ledger;
  const int note = ledger.world.addField(FieldType::kNote);
  ledger.world.addField(FieldType::kText);
  ledger.world.addRecord({integer(5), "\1", "7", integer(1), "2", "memo", "text"});
  UnpackedRecord record = unpackRecord(ledger.database.records[0].bytes());
  EXPECT_EQ(storeRecord(ledger.database, ledger.engine, 0, record, ledger.settings), 0u);
  record = unpackRecord(ledger.database.records[0].bytes());
  EXPECT_EQ(record.slots[1], (Bytes{1, 0, 0, 0}));
  EXPECT_EQ(record.slots[std::size_t(ledger.balance)]->size(), kNumberTextSize);
  EXPECT_EQ(record.slots[std::size_t(note)]->size(), kNoteSize);
  EXPECT_EQ(record.slots[std::size_t(note) + 1]->size(), 4u) << "texts as long as they are";
  recomputeAll(ledger.database, ledger.settings);
  EXPECT_EQ(slotValue(ledger.database.records[0].bytes(), ledger.balance)->size(), kNumberTextSize);
}

TEST(RecordChange, GroupsAreChosenByTheFilter) {
  Ledger ledger;
  for (const int day : {1, 2, 3, 4}) ledger.store(kNoPosition, day, 1);
  FilterBlock& criterion = ledger.database.schema.filters[0];
  criterion.enabled = 1;
  criterion.number1 = 2;
  criterion.number2 = 3;
  const auto group = [&](RecordGroup which) {
    return positionsOfGroup(ledger.database, which, ledger.settings);
  };
  using Positions = std::vector<std::uint32_t>;
  EXPECT_EQ(group(RecordGroup::kWithinFilter), (Positions{1, 2}));
  EXPECT_EQ(group(RecordGroup::kOutsideFilter), (Positions{0, 3}));
  EXPECT_EQ(group(RecordGroup::kAll), (Positions{0, 1, 2, 3}));
  deleteRecords(ledger.database, group(RecordGroup::kOutsideFilter), ledger.settings);
  EXPECT_EQ(ledger.database.records.count(), 2u);
}

TEST(RecordChange, DefaultsFillEmptyValuesButNoEncipheredOnes) {
  Ledger ledger;
  FieldDefinition& field = ledger.world.field(ledger.day);
  field.type = FieldType::kDate;
  setFieldDefaultOption(field, 2);
  UnpackedRecord record = newRecord(ledger.database.schema);
  fillDefaults(ledger.database.schema, record, {.year = 2024, .month = 2, .day = 29});
  EXPECT_EQ(loadLe32(record.slots[0]->data()), daysSince1904(2, 29, 2024));
  record.slots[0] = Bytes(4);
  record.prefix[0] = kStampedPrefix;
  record.prefix[1 + kStampFlagOffset] = kRecordEncrypted;
  field.encrypt_flag = 1;
  fillDefaults(ledger.database.schema, record, {.year = 2024, .month = 2, .day = 29});
  EXPECT_EQ(*record.slots[0], Bytes(4)) << "these zeros are cipher text";
}

}  // namespace
}  // namespace tabelion
