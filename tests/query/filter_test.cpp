#include "query/filter.h"

#include <algorithm>
#include <functional>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "query/date_range.h"
#include "query/field_value.h"
#include "query/text_case.h"
#include "query_fixtures.h"

namespace tabelion {
namespace {

QuerySettings settingsOn(int year, int month, int day, int weekday) {
  QuerySettings settings;
  settings.formats = isoSettings();
  settings.now.year = year;
  settings.now.month = month;
  settings.now.day = day;
  settings.now.weekday = weekday;
  return settings;
}
const QuerySettings kSettings = settingsOn(2024, 5, 15, 3);

FilterBlock criterionOn(int slot) {
  FilterBlock criterion;
  criterion.enabled = 1;
  criterion.field = static_cast<std::uint16_t>(slot);
  return criterion;
}

// The rules of joining, with a stack of open groups: from left to right, a group is joined as the
// criterion that opens it says, whose "not" is its own; brackets of criteria that are off do not
// count.
bool joinedWithStack(const std::array<FilterBlock, kFilterCriteria>& criteria,
                     const std::function<bool(const FilterBlock&)>& test) {
  struct Group {
    std::optional<bool> value;
    bool joined_by_or;
  };
  std::vector<Group> open{{std::nullopt, false}};
  const auto join = [&](bool value, bool by_or) {
    auto& running = open.back().value;
    running = !running ? value : by_or ? *running | value : *running & value;
  };
  const auto close = [&] {
    const Group group = open.back();
    open.pop_back();
    join(*group.value, group.joined_by_or);
  };
  for (const FilterBlock& criterion : criteria) {
    if (!criterion.enabled) continue;
    const bool by_or = criterion.mode & kFilterOr;
    if ((criterion.grouping & kFilterOpens) && (open.size() == 1 || open.back().value)) {
      open.push_back({std::nullopt, by_or});
    }
    join(test(criterion) ^ bool(criterion.mode & kFilterNot), by_or);
    if ((criterion.grouping & kFilterCloses) && open.size() > 1) close();
  }
  while (open.size() > 1) close();
  return open.back().value.value_or(true);
}

TEST(Filter, ComparesTheStoredValueByType) {
  const auto passes = [](const OneField& one, const FilterBlock& criterion) {
    std::array<FilterBlock, kFilterCriteria> criteria;
    criteria[2] = criterion;
    return RecordFilter(one.database, criteria, kSettings).passes(one.record);
  };
  FilterBlock criterion = criterionOn(0);
  for (const FieldType type :
       {FieldType::kText, FieldType::kLongText, FieldType::kTextVariant, FieldType::kText254}) {
    EXPECT_TRUE(passes(OneField(type, bytesOf(std::string_view("\0", 1))), criterion))
        << codeOf(type);
    EXPECT_FALSE(passes(OneField(type, bytesOf("a")), criterion)) << codeOf(type);
  }
  setAreaText(criterion.value1, "RIVER");
  EXPECT_TRUE(passes(OneField(FieldType::kText, bytesOf("by the River")), criterion));
  EXPECT_FALSE(passes(OneField(FieldType::kText, bytesOf(std::string_view("by\0the river", 12))),
                      criterion));

  // A link has a text only behind its head.
  EXPECT_TRUE(passes(OneField(FieldType::kLinkField, linkValue(5, "river")), criterion));
  EXPECT_FALSE(passes(OneField(FieldType::kLinkField, Bytes(24)), criterionOn(0)));
  EXPECT_TRUE(passes(OneField(FieldType::kLinkField, Bytes(25)), criterionOn(0)));

  // Signed and unsigned.
  criterion = criterionOn(0);
  criterion.number1 = static_cast<std::uint32_t>(-5);
  criterion.number2 = 7;
  EXPECT_TRUE(passes(OneField(FieldType::kInteger, {0xFB, 0xFF, 0xFF, 0xFF}), criterion));
  EXPECT_FALSE(passes(OneField(FieldType::kAutoNumber, {0xFF, 0xFF, 0xFF, 0xFF}), criterion));

  // A named range of days only in a date field; no date in its own.
  criterion = criterionOn(0);
  criterion.number1 = kNoDateRange;
  EXPECT_TRUE(passes(OneField(FieldType::kDate, Bytes(4)), criterion));
  EXPECT_FALSE(passes(OneField(FieldType::kDate, {1, 0, 0, 0}), criterion));

  // No time is behind every time.
  criterion = criterionOn(0);
  criterion.value2 = {59, 59, 23};
  EXPECT_TRUE(passes(OneField(FieldType::kTime, {59, 59, 23, 7}), criterion));
  EXPECT_FALSE(passes(OneField(FieldType::kTime, {0, 0, kNoTimeHour, 0}), criterion));
  criterion.value2[2] = kNoTimeHour;
  EXPECT_TRUE(passes(OneField(FieldType::kTime, {0, 0, kNoTimeHour, 0}), criterion));

  // Types that cannot be filtered let pass what has the field at all.
  EXPECT_TRUE(passes(OneField(FieldType::kNote, {0}), criterion));
  EXPECT_FALSE(passes(OneField(FieldType::kNote, {0}), criterionOn(1)));
  EXPECT_FALSE(passes(OneField(FieldType::kNote, {0}), criterionOn(300)));
}

// Fields of every kind that is compared in its own way, and their values as a test knows them.
constexpr std::array<FieldType, 13> kTypes = {
    FieldType::kText,       FieldType::kInteger,    FieldType::kFloat,     FieldType::kPopup,
    FieldType::kCheckBox,   FieldType::kDate,       FieldType::kTime,      FieldType::kCalculated,
    FieldType::kCalculated, FieldType::kCalculated, FieldType::kLinkField, FieldType::kAutoNumber,
    FieldType::kNote};
constexpr std::array<int, 13> kKinds = {0, 0, 0, 0, 0, 0, 0, 1, 2, 5, 0, 0, 0};
// Values and limits are a few small numbers, so that they meet.
using Values = std::vector<int>;  // of the slots that the record has

std::string wordOf(int number) {
  return std::string(static_cast<std::size_t>(number % 3), 'A') + (number > 2 ? "b" : "");
}

Bytes textBytes(const std::string& text) {
  Bytes bytes = bytesOf(text);
  bytes.push_back(0);
  return bytes;
}

Bytes storedValue(FieldType type, int number) {
  const auto byte = static_cast<std::uint8_t>(number);
  switch (type) {
    case FieldType::kText:
      return textBytes(wordOf(number));
    case FieldType::kFloat:
    case FieldType::kCalculated:
      return textBytes(std::to_string(number));
    case FieldType::kPopup: {
      Bytes key(kPopupKeySize, 9);
      key.back() = byte;
      return key;
    }
    case FieldType::kCheckBox:
      return {byte};
    case FieldType::kTime:
      return {byte, 0, 0, 0};
    case FieldType::kLinkField:
      return linkValue(1, wordOf(number));
    default:
      return {byte, 0, 0, 0};
  }
}

FilterBlock criterionBetween(std::size_t slot, int low, int high) {
  FilterBlock criterion = criterionOn(static_cast<int>(slot));
  criterion.number1 = static_cast<std::uint32_t>(low);
  criterion.number2 = static_cast<std::uint32_t>(high);
  const auto put = [](std::array<std::uint8_t, 40>& area, const Bytes& bytes) {
    std::copy(bytes.begin(), bytes.end(), area.begin());
  };
  const bool has_text = kTypes[slot] == FieldType::kText || kTypes[slot] == FieldType::kLinkField;
  if (has_text) {
    put(criterion.value1, textBytes(lowerCaseText(wordOf(low))));
  } else if (kKinds[slot] == 2) {
    put(criterion.value1, storedValue(FieldType::kTime, low));
    put(criterion.value2, storedValue(FieldType::kTime, high));
  } else {
    put(criterion.value1, storedValue(kTypes[slot], low));
    put(criterion.value2, storedValue(kTypes[slot], high));
  }
  if (kTypes[slot] == FieldType::kDate) criterion.number1 = kCustomDateRange;
  return criterion;
}

bool plainTest(const Values& values, std::size_t slot, int low, int high) {
  if (slot >= values.size()) return false;
  const int value = values[slot];
  switch (kTypes[slot]) {
    case FieldType::kText:
    case FieldType::kLinkField: {
      const std::string word = wordOf(low);
      return word.empty() ? wordOf(value).empty() : wordOf(value).find(word) != std::string::npos;
    }
    case FieldType::kPopup:
    case FieldType::kCheckBox:
      return value == low;
    case FieldType::kNote:
      return true;
    default:
      return low <= value && value <= high;
  }
}

RC_GTEST_PROP(Filter, IndexEqualsAPlainEvaluation, ()) {
  Database database;
  initSchema(database.schema);
  for (std::size_t slot = 0; slot < kTypes.size(); ++slot) {
    database.schema.fields[slot].type = kTypes[slot];
    database.schema.fields[slot].area_f[kResultKindOffset] =
        static_cast<std::uint8_t>(kKinds[slot]);
  }
  struct Limits {
    std::size_t slot;
    int low, high;
  };
  std::array<Limits, kFilterCriteria> limits;
  for (std::size_t i = 0; i < limits.size(); ++i) {
    limits[i] = {*rc::gen::inRange<std::size_t>(0, kTypes.size()), *rc::gen::inRange(0, 6),
                 *rc::gen::inRange(0, 6)};
    FilterBlock& criterion = database.schema.filters[i];
    criterion = criterionBetween(limits[i].slot, limits[i].low, limits[i].high);
    criterion.enabled = *rc::gen::inRange<std::uint16_t>(0, 4) > 0;
    criterion.mode = *rc::gen::inRange<std::uint8_t>(0, 4);
    criterion.grouping = *rc::gen::inRange<std::uint8_t>(0, 4);
  }
  const auto all_values = *rc::gen::container<std::vector<Values>>(
      20, rc::gen::resize(14, rc::gen::container<Values>(rc::gen::inRange(0, 6))));
  std::vector<std::uint32_t> expected;
  for (const Values& values : all_values) {
    Bytes record{0};
    for (std::size_t slot = 0; slot < std::min(values.size(), kTypes.size()); ++slot) {
      const Bytes value = storedValue(kTypes[slot], values[slot]);
      ByteWriter(record).putLe16(static_cast<std::uint32_t>(value.size()));
      record.insert(record.end(), value.begin(), value.end());
    }
    ByteWriter(record).putLe16(kEndOfRecord);
    const auto& filters = database.schema.filters;
    const auto test = [&](const FilterBlock& criterion) {
      const auto index = static_cast<std::size_t>(&criterion - filters.data());
      const Limits& limit = limits[index];
      const bool passes = plainTest(values, limit.slot, limit.low, limit.high);
      RC_ASSERT(passes ==
                recordPassesCriterion(database, static_cast<int>(index), record, kSettings));
      return passes;
    };
    const std::uint32_t position = database.records.count();
    if (joinedWithStack(filters, test)) expected.push_back(position);
    database.records.insert(position, record, {});
  }
  rebuildFilterIndex(database, kSettings);
  RC_ASSERT(database.record_index == expected);
}

TEST(Filter, LinkFilterComparesTheStoredForm) {
  OneField one(FieldType::kLinkedField, {7, 0, 0, 0});
  EXPECT_TRUE(RecordFilter(one.database, kSettings).passesEverything());
  LinkFilter link{0, "7"};
  EXPECT_TRUE(RecordFilter(one.database, kSettings, &link).passes(one.record));
  EXPECT_FALSE(RecordFilter(one.database, kSettings, &link).passesEverything());
  link.text = "8";
  EXPECT_FALSE(RecordFilter(one.database, kSettings, &link).passes(one.record));
  // Both must let it pass.
  link.text = "7";
  one.database.schema.filters[0] = criterionOn(0);
  one.database.schema.filters[0].mode = kFilterNot;
  EXPECT_FALSE(RecordFilter(one.database, kSettings, &link).passes(one.record));
}

}  // namespace
}  // namespace tabelion
