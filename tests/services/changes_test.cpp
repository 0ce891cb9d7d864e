#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "query/formula.h"
#include "query/recompute.h"
#include "query/record_index.h"
#include "query/sort.h"
#include "query/view.h"
#include "services/changes/record_steps.h"
#include "support/fake_clock.h"
#include "support/memory_files.h"

namespace tabelion {
namespace {

constexpr std::size_t kName = 0, kAmount = 1, kBalance = 2, kNumber = 3, kPopupField = 4;

FilterBlock amountsFrom(std::uint32_t least) {
  FilterBlock criterion;
  criterion.enabled = 1;
  criterion.field = kAmount;
  criterion.number1 = least;
  criterion.number2 = 100;
  return criterion;
}

// Name, amount, the balance up to there, a number; sorted by amount. A second view shows another
// order and only some records.
void defineCash(Database& database) {
  DatabaseRecord& schema = database.schema;
  const FieldType types[] = {FieldType::kText, FieldType::kInteger, FieldType::kCalculated,
                             FieldType::kAutoNumber, FieldType::kPopup};
  for (std::size_t slot = 0; slot < std::size(types); ++slot) {
    schema.fields[slot].type = types[slot];
  }
  setStoredFormula(
      schema.fields[kBalance],
      {{{kFieldToken, static_cast<std::uint8_t>(-3)}, {kFieldToken, 2}, {kOperatorToken, 2}},
       {},
       1});
  schema.sort[0] = {kAmount, 1};
  schema.modification_stamp_option = 1;
  viewsMenu(database);
  addView(database);
  View& view = schema.views[1];
  view.sort[0] = {kName, 0};
  view.filters[0] = amountsFrom(40);
  view.entries[kNumber].column_width = 0;
}

// The file of a database with as many records.
Bytes cashFile(Engine& engine, std::uint32_t records) {
  Database database;
  initDatabase(database, engine);
  defineCash(database);
  const QuerySettings settings{.formats = isoSettings(), .now = {}, .lookup = nullptr};
  for (std::uint32_t i = 0; i < records; ++i) {
    UnpackedRecord record = newRecord(database.schema);
    record.slots[kName] = Bytes{static_cast<std::uint8_t>('a' + i % 3), 0};
    record.slots[kAmount] = Bytes{static_cast<std::uint8_t>(37 * i % 101), 0, 0, 0};
    storeRecord(database, engine, kNoPosition, record, settings);
  }
  database.schema.current_record_index = 0;
  clearDirty(database);
  FileLayout layout;
  EXPECT_TRUE(layOutDatabase(database, layout));
  Bytes file;
  for (const BytePiece& piece : layout.pieces) file.insert(file.end(), piece.begin(), piece.end());
  return file;
}

struct Cash {
  MemoryFiles files;
  FakeClock clock;
  Engine engine{.files = files, .clock = clock, .random = [this] { return ++random; }};
  std::uint32_t random = 1;
  Database database;
  History history;
  std::uint32_t current = 0;
  QuerySettings settings{.formats = isoSettings(), .now = clock.local(), .lookup = nullptr};
  ChangeTarget target{database, current};

  explicit Cash(const Bytes& file) {
    files.put("/Cash.PDB", file);
    database.path = "/Cash.PDB";
    EXPECT_EQ(openDatabase(database, engine), 1);
  }
  explicit Cash(std::uint32_t records) : Cash(makeFile(records)) {}
  static Bytes makeFile(std::uint32_t records) {
    MemoryFiles files;
    FakeClock clock;
    Engine engine{.files = files, .clock = clock, .random = [] { return 4u; }};
    return cashFile(engine, records);
  }

  // The file that a save would write now, but for the mark that it has changed.
  Bytes file() {
    const bool dirty = std::exchange(database.dirty, false);
    FileLayout layout;
    EXPECT_TRUE(layOutDatabase(database, layout));
    database.dirty = dirty;
    Bytes bytes;
    for (const BytePiece& piece : layout.pieces) {
      bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    return bytes;
  }

  std::uint32_t store(std::uint32_t position, std::uint8_t letter, std::uint8_t amount) {
    UnpackedRecord record = position == kNoPosition
                                ? newRecord(database.schema)
                                : unpackRecord(database.records[position].bytes());
    record.slots[kName] = Bytes{letter, 0};
    record.slots[kAmount] = Bytes{amount, 0, 0, 0};
    return StoreRecord(history, target, engine, position, std::move(record), settings);
  }
  std::string column(std::size_t slot) const {
    std::string text;
    for (const Record& record : database.records) {
      const auto value = slotValue(record.bytes(), static_cast<int>(slot));
      if (slot == kAmount) {
        text += std::to_string(loadLe32(value->data()));
      } else {
        text += storedText(*value);
      }
      text += ' ';
    }
    return text;
  }
  std::string undoName() {
    const std::string* name = history.UndoName(database);
    return name == nullptr ? "" : *name;
  }
  std::string redoName() {
    const std::string* name = history.RedoName(database);
    return name == nullptr ? "" : *name;
  }
};

TEST(Changes, AreTakenBackAndDoneAgainByName) {
  Cash cash(0);
  EXPECT_FALSE(cash.history.Undo(cash.target));
  cash.store(kNoPosition, 'a', 10);
  cash.store(kNoPosition, 'b', 5);
  cash.current = 1;
  EXPECT_EQ(cash.store(1, 'a', 1), 0u);
  EXPECT_EQ(cash.column(kBalance), "1 6 ");
  EXPECT_EQ(cash.undoName(), "Edit of record");
  EXPECT_EQ(cash.current, 0u) << "it went with its record";

  ASSERT_TRUE(cash.history.Undo(cash.target));
  EXPECT_EQ(cash.column(kBalance), "5 15 ");
  EXPECT_EQ(cash.current, 1u);
  EXPECT_EQ(cash.redoName(), "Edit of record");
  ASSERT_TRUE(cash.history.Undo(cash.target));
  EXPECT_EQ(cash.undoName(), "New record");
  EXPECT_EQ(cash.column(kName), "a ");
  EXPECT_EQ(cash.database.schema.next_auto_number, 2u) << "its number is free again";
  ASSERT_TRUE(cash.history.Redo(cash.target) && cash.history.Redo(cash.target));
  EXPECT_FALSE(cash.history.Redo(cash.target));
  EXPECT_EQ(cash.column(kAmount), "1 5 ");
  EXPECT_EQ(cash.current, 0u);

  cash.history.Undo(cash.target);
  cash.store(0, 'c', 5);
  EXPECT_EQ(cash.redoName(), "") << "what was done instead took its place";
  cash.history.Perform(cash.target, "Nothing", [] {});
  EXPECT_EQ(cash.undoName(), "Edit of record");
}

TEST(Changes, AnAttemptThatFailsLeavesNoTrace) {
  Cash cash(3);
  const Bytes opened = cash.file();
  const auto attempt = [&](bool result) {
    return cash.history.Attempt(cash.target, "Import", [&] {
      cash.store(kNoPosition, 'q', 50);  // a step of its own elsewhere
      cash.current = 3;
      return result;
    });
  };
  EXPECT_FALSE(attempt(false));
  EXPECT_EQ(cash.file(), opened);
  EXPECT_FALSE(isDirty(cash.database));
  EXPECT_EQ(cash.current, 0u);
  EXPECT_EQ(cash.undoName(), "");
  EXPECT_TRUE(attempt(true));
  EXPECT_EQ(cash.undoName(), "Import");
  ASSERT_TRUE(cash.history.Undo(cash.target));
  EXPECT_EQ(cash.file(), opened);
}

TEST(Changes, ADatabaseIsAsDirtyAsItsStateWasSavedOrNot) {
  Cash cash(2);
  const auto isDirtyAfter = [&](bool moved) {
    EXPECT_TRUE(moved);
    return isDirty(cash.database);
  };
  cash.store(0, 'x', 1);
  EXPECT_FALSE(isDirtyAfter(cash.history.Undo(cash.target)));
  EXPECT_TRUE(isDirtyAfter(cash.history.Redo(cash.target)));
  ASSERT_EQ(saveDatabase(cash.database, cash.engine), 1);
  cash.store(0, 'y', 1);
  EXPECT_FALSE(isDirtyAfter(cash.history.Undo(cash.target))) << "what the file holds now";
  EXPECT_TRUE(isDirtyAfter(cash.history.Undo(cash.target)));
  EXPECT_FALSE(isDirtyAfter(cash.history.Redo(cash.target)));

  // Something else was changed that no step knows of.
  setDirty(cash.database);
  EXPECT_TRUE(isDirtyAfter(cash.history.Undo(cash.target)));
  EXPECT_TRUE(isDirtyAfter(cash.history.Redo(cash.target)));
}

TEST(Changes, NoStepIsTakenBackInRecordsThatMovedMeanwhile) {
  Cash cash(3);
  cash.store(0, 'x', 50);
  cash.database.schema.sort[0] = {kName, 1};
  sortRecords(cash.database, cash.settings.formats);
  const Bytes file = cash.file();
  EXPECT_EQ(cash.undoName(), "");
  EXPECT_FALSE(cash.history.Undo(cash.target));
  EXPECT_EQ(cash.file(), file);
}

TEST(Changes, TheOldestStepsAreForgottenWhole) {
  Cash cash(40);
  cash.history = History(3000);
  for (std::uint8_t amount = 0; amount < 60; ++amount) cash.store(39, 'x', amount);
  EXPECT_LE(cash.history.MemoryInUse(), 3000u);
  const Bytes last = cash.file();
  int undone = 0;
  while (cash.history.Undo(cash.target)) ++undone;
  EXPECT_GT(undone, 0);
  EXPECT_LT(undone, 60);
  while (cash.history.Redo(cash.target)) --undone;
  EXPECT_EQ(undone, 0);
  EXPECT_EQ(cash.file(), last);

  std::vector<std::uint32_t> all(40);
  for (std::uint32_t i = 0; i < all.size(); ++i) all[i] = i;
  for (std::uint32_t i = 0; i < all.size(); ++i) cash.store(i, 'y', 3);  // bytes of their own
  const Bytes full = cash.file();
  DeleteRecords(cash.history, cash.target, all, cash.settings);
  EXPECT_GT(cash.history.MemoryInUse(), 3000u);
  EXPECT_EQ(cash.undoName(), "Delete of 40 records") << "the last one stays, however large";
  ASSERT_TRUE(cash.history.Undo(cash.target));
  EXPECT_EQ(cash.undoName(), "");
  EXPECT_EQ(cash.file(), full);
}

TEST(Changes, AGroupGoesAndTheCurrentRecordStaysOrGivesWayToTheOneBefore) {
  const auto afterDeleting = [](RecordGroup group, std::uint32_t current) {
    Cash cash(0);
    for (const int amount : {10, 20, 30, 40, 50}) {
      cash.store(kNoPosition, 'a', static_cast<std::uint8_t>(amount));
    }
    cash.database.schema.filters[0] = amountsFrom(20);
    cash.database.schema.filters[0].number2 = 40;
    cash.current = current;
    const Bytes before = cash.file();
    const std::size_t deleted = DeleteRecordGroup(cash.history, cash.target, group, cash.settings);
    std::string text = std::to_string(deleted) + ": " + cash.column(kAmount) + "at " +
                       std::to_string(cash.current);
    EXPECT_EQ(cash.undoName(), "Delete of " + std::to_string(deleted) + " records");
    EXPECT_TRUE(cash.history.Undo(cash.target));
    EXPECT_EQ(cash.file(), before);
    EXPECT_EQ(cash.current, current);
    return text;
  };
  EXPECT_EQ(afterDeleting(RecordGroup::kWithinFilter, 4), "3: 10 50 at 1");
  EXPECT_EQ(afterDeleting(RecordGroup::kWithinFilter, 2), "3: 10 50 at 0");
  EXPECT_EQ(afterDeleting(RecordGroup::kOutsideFilter, 2), "2: 20 30 40 at 1");
  EXPECT_EQ(afterDeleting(RecordGroup::kOutsideFilter, 4), "2: 20 30 40 at 2");
  EXPECT_EQ(afterDeleting(RecordGroup::kAll, 3), "5: at 0");
}

// What one round of the property does. All through the functions that screens and commands use.
enum class Act {
  kAdd,
  kEdit,
  kDelete,
  kDeleteGroup,
  kSort,
  kRecompute,
  kChooseView,
  kDefine,
  kCipher,
  kAmend,
  kUndo,
  kRedo,
  kCount
};
struct Move {
  Act act;
  std::uint8_t a;
  std::uint8_t b;
};

std::ostream& operator<<(std::ostream& out, const Move& move) {
  return out << static_cast<int>(move.act) << '/' << int{move.a} << '/' << int{move.b};
}

void perform(Cash& cash, const Move& move) {
  Database& database = cash.database;
  const std::uint32_t count = database.records.count();
  const std::uint32_t position = count == 0 ? kNoPosition : move.a % count;
  const auto whole = [&](const std::function<void()>& change) {
    cash.history.Perform(cash.target, "Change", change, SchemaExtent::kWhole);
  };
  switch (move.act) {
    case Act::kAdd:
      cash.store(kNoPosition, static_cast<std::uint8_t>('a' + move.a % 4), move.b % 128);
      break;
    case Act::kEdit:
      cash.store(position, static_cast<std::uint8_t>('a' + move.a % 4), move.b % 128);
      break;
    case Act::kDelete: {
      std::vector<std::uint32_t> positions;
      for (std::uint32_t i = 0; i < count; ++i) {
        if ((move.b >> (i % 8) & 1) != 0) positions.push_back(i);
      }
      std::reverse(positions.begin(), positions.end());
      DeleteRecords(cash.history, cash.target, positions, cash.settings);
      break;
    }
    case Act::kDeleteGroup:
      DeleteRecordGroup(cash.history, cash.target, RecordGroup(move.a % 3), cash.settings);
      break;
    case Act::kSort:
      cash.history.Perform(cash.target, "Sort", [&] {
        SortKey& level = database.schema.sort[0];
        level = {static_cast<std::uint8_t>(move.a % 2), static_cast<std::uint8_t>(1 - level.order)};
        sortAndRecompute(database, cash.settings, &cash.current);
      });
      break;
    case Act::kRecompute:
      whole([&] {
        const auto sign = static_cast<std::uint8_t>(2 + move.a % 2);
        database.schema.fields[kBalance].area_f[22] = sign;
        recomputeAll(database, cash.settings);
      });
      break;
    case Act::kChooseView:
      whole([&] { applyView(database, move.a % 2, cash.settings); });
      break;
    case Act::kDefine:
      whole([&] {
        database.schema.fields[move.a % 8].width += 1;
        database.schema.views[move.b % 3].name[0] = move.a;
        PopupItem item;
        item.key[0] = move.a;
        item.text = "item";
        auto& items = database.fields[kPopupField].items;
        if (move.b % 3 == 0) items.clear();
        items.push_back(item);
        setDirty(database);
      });
      break;
    case Act::kCipher: {
      if (position == kNoPosition) break;
      const ByteView old = database.records[position].bytes();
      Bytes bytes(old.begin(), old.end());
      bytes[1 + kStampFlagOffset] ^= kRecordEncrypted;
      bytes.resize(bytes.size() + move.b % 2, 7);
      ReplaceRecord(cash.history, cash.target, "Encryption of record", position, bytes);
      break;
    }
    case Act::kAmend:
      if (cash.undoName().empty()) break;  // what is no part of a step stays
      cash.history.Amend(cash.target, [&] { database.schema.next_serial += move.a; });
      break;
    case Act::kUndo:
      for (int i = 0; i <= move.a % 3; ++i) cash.history.Undo(cash.target);
      break;
    case Act::kRedo:
      for (int i = 0; i <= move.a % 3; ++i) cash.history.Redo(cash.target);
      break;
    case Act::kCount:
      break;
  }
}

// RC_PARAMS="max_success=100000" in the environment runs it that often.
RC_GTEST_PROP(Changes, AllUndoneAreTheFileAsItWasOpenedAndAllRedoneTheFileAsItWas, ()) {
  static const std::vector<Bytes> kFiles = {Cash::makeFile(0), Cash::makeFile(1),
                                            Cash::makeFile(6)};
  const auto moves = *rc::gen::container<std::vector<Move>>(rc::gen::construct<Move>(
      rc::gen::map(rc::gen::inRange(0, static_cast<int>(Act::kCount)),
                   [](int act) { return static_cast<Act>(act); }),
      rc::gen::arbitrary<std::uint8_t>(), rc::gen::arbitrary<std::uint8_t>()));
  Cash cash(kFiles[*rc::gen::inRange<std::size_t>(0, kFiles.size())]);
  const Bytes opened = cash.file();
  const std::uint32_t first = cash.current;
  for (const Move& move : moves) perform(cash, move);
  while (cash.history.Redo(cash.target)) continue;
  const Bytes last = cash.file();
  const std::uint32_t last_record = cash.current;
  const bool last_dirty = isDirty(cash.database);

  std::vector<Bytes> seen = {last};
  while (cash.history.Undo(cash.target)) seen.push_back(cash.file());
  RC_ASSERT(seen.back() == opened);
  RC_ASSERT(!isDirty(cash.database));
  RC_ASSERT(seen.size() == 1 || cash.current == first);
  for (std::size_t i = seen.size(); i-- > 1;) {
    RC_ASSERT(seen[i] == cash.file());
    RC_ASSERT(cash.history.Redo(cash.target));
  }
  RC_ASSERT(cash.file() == last);
  RC_ASSERT(isDirty(cash.database) == last_dirty);
  RC_ASSERT(seen.size() == 1 || cash.current == last_record);
}

}  // namespace
}  // namespace tabelion
