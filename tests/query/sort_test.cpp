#include "query/sort.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <numeric>

#include "query/sort_fields.h"
#include "query_fixtures.h"

namespace tabelion {
namespace {

using namespace std::string_view_literals;
using Slots = std::vector<std::optional<Bytes>>;

// A database whose records carry the order in which they were added as their unique ID.
struct Table {
  Database database;
  FormatSettings formats = chosen(0);

  explicit Table(const std::vector<FieldType>& types) {
    initSchema(database.schema);
    for (std::size_t i = 0; i < types.size(); ++i) database.schema.fields[i].type = types[i];
  }
  // Slots behind the last one given are missing.
  void add(const Slots& slots) {
    UnpackedRecord record;
    for (std::size_t i = 0; i < slots.size(); ++i) record.slots[i] = slots[i];
    Bytes bytes;
    ASSERT_TRUE(packRecord(record, bytes));
    const std::uint32_t number = database.records.count();
    database.records.insert(
        number, bytes,
        {static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number), 0});
  }
  void level(std::size_t index, int slot, bool forward = true) {
    database.schema.sort[index] = {static_cast<std::uint8_t>(slot),
                                   forward ? kSortForward : std::uint8_t{0}};
  }
  std::vector<int> order() const {
    std::vector<int> numbers;
    for (const Record& record : database.records) {
      numbers.push_back(record.unique_id[0] << 8 | record.unique_id[1]);
    }
    return numbers;
  }
  std::vector<int> sorted() {
    sortRecords(database, formats);
    return order();
  }
  int compare(std::uint32_t a, std::uint32_t b, bool forward = true, int slot = 0) const {
    return compareFieldValues(database, database.records[a].bytes(), database.records[b].bytes(),
                              slot, forward, formats);
  }
};

Table oneColumn(FieldType type, const std::vector<Bytes>& values) {
  Table table({type});
  for (const Bytes& value : values) table.add({value});
  table.level(0, 0);
  return table;
}

// The algorithm as it is described, over positions, with every comparison from the records.
std::vector<int> plainlySorted(const Table& table) {
  std::vector<std::uint32_t> at(table.database.records.count());
  std::iota(at.begin(), at.end(), 0u);
  const auto compare = [&](int a, int b) {
    return compareRecords(table.database, at[a], at[b], table.formats);
  };
  std::vector<std::pair<int, int>> stack = {{0, static_cast<int>(at.size()) - 1}};
  while (!stack.empty()) {
    const auto [lo, hi] = stack.back();
    stack.pop_back();
    if (hi <= lo) continue;
    const int mid = (lo + hi) / 2;
    for (const auto& [a, b] : {std::pair{lo, mid}, {lo, hi}, {mid, hi}}) {
      if (compare(a, b) > 0) std::swap(at[a], at[b]);
    }
    if (hi - lo < 3) continue;
    std::swap(at[mid], at[hi - 1]);
    int i = lo;
    int j = hi - 1;
    while (true) {
      for (++i; i < hi - 1 && compare(i, hi - 1) < 0;) ++i;
      for (--j; j > lo && compare(j, hi - 1) > 0;) --j;
      if (i >= j) break;
      std::swap(at[i], at[j]);
    }
    std::swap(at[i], at[hi - 1]);
    stack.push_back({lo, i - 1});
    stack.push_back({i + 1, hi});
  }
  const std::vector<int> before = table.order();
  std::vector<int> order;
  for (const std::uint32_t position : at) order.push_back(before[position]);
  return order;
}

template <class T>
T pick(std::initializer_list<T> values) {
  return *rc::gen::elementOf(std::vector<T>(values));
}

// A value of the type, out of few so that many are equal.
Bytes someValue(FieldType type, bool far_apart) {
  switch (type) {
    case FieldType::kInteger:
    case FieldType::kDate:
      return number(far_apart ? pick({2000000000, -2000000000, -2147483647 - 1, 0, 147483648})
                              : *rc::gen::inRange(-3, 9));
    case FieldType::kFloat:
    case FieldType::kCalculated:
      return bytesOf(pick({"", "-0", "0", "12.5", "-3.25", "9", "1e300", "words", "12.25"}));
    case FieldType::kPopup: {
      Bytes key(kPopupKeySize, 0);
      key[0] = static_cast<std::uint8_t>(*rc::gen::inRange(0, 5));
      return key;
    }
    case FieldType::kCheckBox:
      return {static_cast<std::uint8_t>(*rc::gen::inRange(0, 3))};
    case FieldType::kTime:
      return {static_cast<std::uint8_t>(*rc::gen::inRange(0, 3)), 7,
              pick<std::uint8_t>({0, 23, 255}), 9};
    case FieldType::kLinkField: {
      Bytes link(pick<std::size_t>({0, 24, 25, 24}), 0);
      if (link.size() == 25)
        link.insert(link.begin() + 24, static_cast<std::uint8_t>(pick({'a', 'B'})));
      return link;
    }
    default:
      return bytesOf(pick({""sv, "Anna"sv, "anna"sv, "anna\0x"sv, "ANNABEL"sv, "anna-maria"sv,
                           "\xE9t\xE9"sv, "Zo\xEB"sv, "long text 1"sv, "long text 2"sv}));
  }
}

Table someTable() {
  std::vector<FieldType> types;
  for (int i = 0; i < 4; ++i) {
    types.push_back(pick<FieldType>({FieldType::kText, FieldType::kInteger, FieldType::kFloat,
                                     FieldType::kPopup, FieldType::kCheckBox, FieldType::kDate,
                                     FieldType::kTime, FieldType::kLinkField, FieldType::kLongText,
                                     FieldType::kCalculated, FieldType::kNote}));
  }
  Table table(types);
  for (std::size_t i = 0; i < types.size(); ++i) {
    table.database.schema.fields[i].area_f[kResultKindOffset] =
        static_cast<std::uint8_t>(*rc::gen::inRange(0, 4));
    for (const char* text : {"oslo", "Rom", "rom", "Paris"}) {
      PopupItem item;
      item.text = text;
      item.key[0] = static_cast<std::uint8_t>(table.database.fields[i].items.size());
      table.database.fields[i].items.push_back(item);
    }
  }
  for (std::size_t level = 0; level < 3; ++level) {
    const int slot = *rc::gen::inRange(level == 0 ? 0 : -1, 4);
    table.level(level, slot, *rc::gen::arbitrary<bool>());
  }
  const bool far_apart = *rc::gen::inRange(0, 4) == 0;
  const bool missing = *rc::gen::inRange(0, 3) == 0;
  const int count = *rc::gen::inRange(0, 120);
  for (int i = 0; i < count; ++i) {
    Slots slots;
    const int present = missing ? *rc::gen::inRange(0, 5) : 4;
    for (int slot = 0; slot < present; ++slot) slots.push_back(someValue(types[slot], far_apart));
    table.add(slots);
  }
  return table;
}

}  // namespace

TEST(Sort, TextsNumbersAndChoicesCompareByWhatTheySay) {
  using namespace std::string_literals;
  Table texts = oneColumn(FieldType::kText, {bytesOf("zeta"), bytesOf("Eta\0zzz"s), bytesOf("eta"),
                                             bytesOf("\xC9ta"), bytesOf("etage")});
  EXPECT_EQ(texts.compare(1, 2), 0);
  EXPECT_EQ(texts.compare(0, 1), 1);
  EXPECT_EQ(texts.compare(0, 1, false), -1);
  EXPECT_EQ(texts.compare(3, 0), 1);  // bytes above the letters are not folded
  EXPECT_EQ(texts.compare(2, 4), -1);

  Table numbers = oneColumn(FieldType::kFloat,
                            {bytesOf("9"), bytesOf("10,5"), bytesOf("x"), bytesOf("10.2"), {}});
  EXPECT_EQ(numbers.compare(2, 4), 0);  // what is no number is 0
  EXPECT_EQ(numbers.compare(0, 1), -1);
  EXPECT_EQ(numbers.compare(1, 3), -1);
  numbers.formats = chosen(0, 0, true);
  EXPECT_EQ(numbers.compare(1, 3), 1);  // now the comma is a point

  for (const auto& [kind, expected] :
       {std::pair{0, -1}, {1, 0}, {2, 0}, {3, 0}, {4, -1}, {6, -1}, {7, 0}}) {
    Table results = oneColumn(FieldType::kCalculated, {bytesOf("7.25"), bytesOf("7.5")});
    results.database.schema.fields[0].area_f[kResultKindOffset] = static_cast<std::uint8_t>(kind);
    EXPECT_EQ(results.compare(0, 1), expected) << kind;
  }

  Table places = oneColumn(FieldType::kPopup, {Bytes(14, 1), Bytes(14, 2), Bytes(14, 3)});
  for (const auto& [key, text] : {std::pair{1, "rome"}, {2, "Oslo"}}) {
    PopupItem item;
    item.key.fill(static_cast<std::uint8_t>(key));
    item.text = text;
    places.database.fields[0].items.push_back(item);
  }
  EXPECT_EQ(places.sorted(), (std::vector<int>{2, 1, 0}));  // "No Value", "Oslo", "rome"

  Table boxes = oneColumn(FieldType::kCheckBox, {{1}, {0}, {2}, {}});
  EXPECT_EQ(boxes.compare(0, 1), 1);
  EXPECT_EQ(boxes.compare(0, 2), -1);
  EXPECT_EQ(boxes.compare(1, 3), 0);
  for (const FieldType type :
       {FieldType::kNote, FieldType::kLinkedField, FieldType::kLookup, FieldType::kExternal}) {
    EXPECT_EQ(oneColumn(type, {{1, 0, 0, 0}, {2, 0, 0, 0}}).compare(0, 1), 0) << codeOf(type);
  }
}

TEST(Sort, IntegersFarApartOrderTheWrongWayRound) {
  for (const FieldType type : {FieldType::kInteger, FieldType::kAutoNumber, FieldType::kDate}) {
    Table table = oneColumn(type, {number(-2000000000), number(2000000000)});
    EXPECT_EQ(table.sorted(), (std::vector<int>{1, 0}));
    table.level(0, 0, false);
    EXPECT_EQ(table.sorted(), (std::vector<int>{0, 1}));
    Table half = oneColumn(type, {number(0), number(-2147483648LL)});
    EXPECT_EQ(half.compare(0, 1), -1);  // each is before the other
    EXPECT_EQ(half.compare(1, 0), -1);
    EXPECT_EQ(oneColumn(type, {number(-1), number(1)}).compare(0, 1), -1);
  }
}

TEST(Sort, NoTimeComesLastAndNoLinkFirst) {
  const Table absent_time = oneColumn(FieldType::kTime, {{}, {59, 59, 23, 0}});
  EXPECT_EQ(absent_time.compare(0, 1), 1) << "a time without bytes is none";
  Table times =
      oneColumn(FieldType::kTime, {{0, 0, 255, 0}, {59, 59, 23, 0}, {0, 1, 0, 0}, {9, 0, 0, 200}});
  EXPECT_EQ(times.sorted(), (std::vector<int>{3, 2, 1, 0}));
  Bytes empty_text(25, 0);
  Bytes anna(25, 'a');
  Table links = oneColumn(FieldType::kLinkField, {anna, empty_text, Bytes(24, 9), {}});
  EXPECT_EQ(links.compare(2, 3), 0);
  EXPECT_EQ(links.compare(2, 1), -1);
  EXPECT_EQ(links.compare(1, 0), -1);
  EXPECT_EQ(links.compare(2, 1, false), 1);
}

TEST(Sort, ARecordWithoutTheFieldIsBeforeAnother) {
  Table table({FieldType::kText, FieldType::kText});
  for (const Slots& slots : {Slots{}, {bytesOf("a")}, {}}) table.add(slots);
  for (const bool forward : {true, false}) {
    EXPECT_EQ(table.compare(0, 1, forward), -1);
    EXPECT_EQ(table.compare(1, 0, forward), 1);
    EXPECT_EQ(table.compare(0, 2, forward), -1);
    EXPECT_EQ(table.compare(2, 0, forward), -1);
  }
}

TEST(Sort, LevelsEndAtTheFirstWithoutAField) {
  const auto sortedBy = [](std::array<int, 3> levels) {
    Table table({FieldType::kInteger, FieldType::kInteger, FieldType::kInteger});
    table.add({number(1), number(5), number(2)});
    table.add({number(1), number(5), number(1)});
    table.add({number(0), number(9), number(9)});
    for (std::size_t i = 0; i < 3; ++i) table.level(i, levels[i]);
    table.database.dirty = false;
    const std::vector<int> order = table.sorted();
    EXPECT_EQ(table.database.dirty, levels[0] >= 0);
    EXPECT_EQ(compareRecords(table.database, 0, 1, table.formats) == 0, levels[0] < 0);
    return order;
  };
  EXPECT_EQ(sortedBy({0, 1, 2}), (std::vector<int>{2, 1, 0}));
  EXPECT_EQ(sortedBy({-1, 0, 2}), (std::vector<int>{0, 1, 2}));
  Table level_three({FieldType::kInteger, FieldType::kInteger});
  level_three.add({number(1), number(2)});
  level_three.add({number(1), number(1)});
  level_three.level(0, 0);
  level_three.level(2, 1);
  EXPECT_EQ(compareRecords(level_three.database, 0, 1, level_three.formats), 0);
  level_three.database.records.remove(1);
  level_three.sorted();
  EXPECT_FALSE(level_three.database.dirty);  // one record stays as it is
}

TEST(Sort, WithoutAFirstLevelASavedRecordStaysUnlessALowerOneIsSet) {
  Table table =
      oneColumn(FieldType::kInteger, {number(1), number(2), number(2), number(3), number(2)});
  table.level(0, -1);
  EXPECT_EQ(replaceInOrder(table.database, 2, table.formats), 2u);
  table.level(1, 0);  // a lower level alone compares nothing, and yet the record moves
  EXPECT_EQ(replaceInOrder(table.database, 2, table.formats), 4u);
}

// Every record lacks the field that was just added, so each is before each other. A scan for every
// pivot would take minutes here.
TEST(Sort, AFieldThatNoRecordHasYetTakesNoTime) {
  Table table({FieldType::kCheckBox, FieldType::kText});
  for (int i = 0; i < kMaxRecords; ++i) table.add({Bytes{static_cast<std::uint8_t>(i % 3 == 0)}});
  table.level(0, 0);
  table.level(1, 1);
  std::vector<int> order = table.sorted();
  std::sort(order.begin(), order.end());
  EXPECT_EQ(std::unique(order.begin(), order.end()) - order.begin(), kMaxRecords);
  Table few({FieldType::kCheckBox, FieldType::kText});
  for (int i = 0; i < 500; ++i) few.add({Bytes{static_cast<std::uint8_t>(i % 3 == 0)}});
  few.level(0, 0);
  few.level(1, 1);
  const std::vector<int> expected = plainlySorted(few);
  EXPECT_EQ(few.sorted(), expected);
}

RC_GTEST_PROP(Sort, IsTheAlgorithmToTheLastRecord, ()) {
  Table table = someTable();
  for (int again = 0; again < 2; ++again) {  // what is in order already too
    const std::vector<int> expected = plainlySorted(table);
    RC_ASSERT(table.sorted() == expected);
  }
}

RC_GTEST_PROP(Sort, ReplacingIsTakingOutAndPuttingIn, ()) {
  Table table = someTable();
  RC_PRE(table.database.records.count() > 0);
  const auto count = table.database.records.count();
  const auto saved = *rc::gen::inRange(0u, count);
  std::vector<int> expected = table.order();
  const int number = expected[saved];
  std::uint32_t before = 0;
  while (before < count &&
         (before == saved || compareRecords(table.database, saved, before, table.formats) >= 0)) {
    ++before;
  }
  expected.insert(expected.begin() + before, -1);
  std::erase(expected, number);
  std::replace(expected.begin(), expected.end(), -1, number);
  const std::uint32_t now = replaceInOrder(table.database, saved, table.formats);
  RC_ASSERT(table.order() == expected);
  RC_ASSERT(expected[now] == number);
}

}  // namespace tabelion
