#include "query/find.h"

#include <algorithm>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "query/field_value.h"
#include "query/text_case.h"
#include "query_fixtures.h"

namespace tabelion {
namespace {

QuerySettings defaultSettings() {
  QuerySettings settings;
  settings.formats = matchingSettings(LocaleInfo{});
  return settings;
}
const QuerySettings kSettings = defaultSettings();

enum Options { kAny = 0, kCase = 1, kBegins = 2 };

bool finds(const OneField& one, std::string_view text, int options = kAny,
           const QuerySettings& settings = kSettings) {
  const bool with_case = options & kCase;
  return fieldMatches(one.database, one.record, 0,
                      with_case ? std::string(text) : lowerCaseText(text), with_case,
                      options & kBegins, settings);
}

RC_GTEST_PROP(TextCase, ContainsAnyCaseEqualsAPlainSearch, ()) {
  // Few letters, so that there are half matches; neighbours of the letters, which fold to none.
  const auto letters = rc::gen::element('a', 'A', 'b', 'B', '@', '[', '`', '{', '\xC1', '\xE1');
  const auto text = *rc::gen::container<std::string>(letters);
  std::string word = *rc::gen::resize(5, rc::gen::container<std::string>(letters));
  if (!text.empty() && *rc::gen::arbitrary<bool>()) {
    word = text.substr(*rc::gen::inRange<std::size_t>(0, text.size()), word.size() + 1);
  }
  const bool expected = lowerCaseText(text).find(lowerCaseText(word)) != std::string::npos;
  RC_ASSERT(containsAnyCase(text, lowerCaseText(word)) == expected);
}

TEST(Find, TextsAreFoldedAndEmptyOnesNeverFound) {
  for (const FieldType type :
       {FieldType::kText, FieldType::kText254, FieldType::kLongText, FieldType::kTextVariant}) {
    const OneField one(type, bytesOf("By the River"));
    EXPECT_TRUE(finds(one, "THE RIVER")) << codeOf(type);
    EXPECT_TRUE(finds(one, "BY", kBegins)) << codeOf(type);
    EXPECT_FALSE(finds(one, "river", kBegins)) << codeOf(type);
    EXPECT_FALSE(finds(one, "river", kCase)) << codeOf(type);
    EXPECT_TRUE(finds(one, "River", kCase)) << codeOf(type);
    EXPECT_FALSE(finds(OneField(type, {0}), "")) << codeOf(type);
    OneField encrypted(type, bytesOf("By the River"));
    encrypted.encrypt();
    EXPECT_FALSE(finds(encrypted, "river")) << codeOf(type);
  }
  // Behind 2000 characters a long text stands as it is.
  const OneField longest(FieldType::kLongText, bytesOf(std::string(1999, '.') + "AB"));
  EXPECT_FALSE(finds(longest, "AB"));
  EXPECT_TRUE(finds(longest, ".a"));
  EXPECT_TRUE(finds(longest, "AB", kCase));

  EXPECT_TRUE(finds(OneField(FieldType::kLinkField, linkValue(4, "River")), "river"));
  EXPECT_FALSE(finds(OneField(FieldType::kLinkField, Bytes(24)), ""));
  for (const FieldType type : {FieldType::kUnused, FieldType::kNote, FieldType::kLinkedField,
                               FieldType::kSeparator, FieldType::kExternal}) {
    EXPECT_FALSE(finds(OneField(type, bytesOf("1")), "1")) << codeOf(type);
  }

  OneField popup(FieldType::kPopup, Bytes(kPopupKeySize, 0));
  popup.addItem(1, "Rowing");
  EXPECT_TRUE(finds(popup, "no value"));
  EXPECT_FALSE(finds(popup, "row"));
  Bytes key(kPopupKeySize, 0);
  key[0] = 1;
  popup.set(key);
  EXPECT_TRUE(finds(popup, "ROW"));
}

TEST(Find, KeptOddities) {
  const OneField minus(FieldType::kInteger, {0xFB, 0xFF, 0xFF, 0xFF});
  EXPECT_FALSE(finds(minus, "-5"));
  EXPECT_TRUE(finds(minus, "5"));
  EXPECT_FALSE(finds(minus, "5", kBegins));
  EXPECT_TRUE(finds(OneField(FieldType::kAutoNumber, {112, 0, 0, 0}), "12"));
  EXPECT_FALSE(finds(OneField(FieldType::kInteger, Bytes(4)), ""));

  EXPECT_TRUE(finds(OneField(FieldType::kCheckBox, {1}), "1"));
  EXPECT_TRUE(finds(OneField(FieldType::kCheckBox, {0}), "0"));
  EXPECT_FALSE(finds(OneField(FieldType::kCheckBox, {2}), "1"));
  EXPECT_FALSE(finds(OneField(FieldType::kCheckBox, {1}), ""));

  EXPECT_FALSE(finds(OneField(FieldType::kFloat, bytesOf("1E5")), "1e5"));
  EXPECT_TRUE(finds(OneField(FieldType::kFloat, bytesOf("1e5")), "1E5"));

  const OneField no_date(FieldType::kDate, Bytes(4));
  EXPECT_TRUE(finds(no_date, "No Date", kCase));
  EXPECT_FALSE(finds(no_date, "No Date"));
  EXPECT_FALSE(finds(no_date, "NO DATE", kCase));
  const OneField date(FieldType::kDate, {1, 0, 0, 0});
  EXPECT_TRUE(finds(date, "1/2/19", kBegins));
  EXPECT_FALSE(finds(date, "2 Jan"));

  const OneField afternoon(FieldType::kTime, {9, 5, 13, 0});
  EXPECT_TRUE(finds(afternoon, "1:05:09PM", kCase));
  EXPECT_FALSE(finds(afternoon, "1:05:09PM"));
  EXPECT_TRUE(finds(OneField(FieldType::kTime, {0, 0, kNoTimeHour, 0}), "No Time", kCase));
  EXPECT_TRUE(finds(OneField(FieldType::kTime, {}), "No Time", kCase));

  OneField result(FieldType::kCalculated, bytesOf("3600"));
  EXPECT_TRUE(finds(result, "360"));
  result.field().area_f[kResultKindOffset] = 2;  // 0x0E10: minute 14, second 16
  EXPECT_TRUE(finds(result, "12:14:16"));
  result.field().area_f[kResultKindOffset] = 3;
  EXPECT_TRUE(finds(result, "1913"));
  result.set(bytesOf("0"));
  EXPECT_TRUE(finds(result, "NO DATE", kCase)) << "shown as dates are, unlike in a date field";
  EXPECT_FALSE(finds(result, "No Date", kCase));
  result.set(bytesOf("3600"));
  result.field().area_f[kResultKindOffset] = 7;
  EXPECT_FALSE(finds(result, "3600"));

  const LookupText lookup = [](int, ByteView) { return std::string("Shown there"); };
  QuerySettings settings = kSettings;
  settings.lookup = &lookup;
  EXPECT_TRUE(finds(OneField(FieldType::kLookup, {}), "Shown", kCase, settings));
  EXPECT_FALSE(finds(OneField(FieldType::kLookup, {}), "Shown", kAny, settings));
}

RC_GTEST_PROP(Find, WalksEveryFieldOfEveryRecordThatPasses, ()) {
  constexpr std::array<FieldType, 8> kTypes = {
      FieldType::kText, FieldType::kInteger, FieldType::kFloat,      FieldType::kPopup,
      FieldType::kDate, FieldType::kTime,    FieldType::kCalculated, FieldType::kNote};
  Database database;
  initSchema(database.schema);
  for (std::size_t slot = 0; slot < kTypes.size(); ++slot) {
    database.schema.fields[slot].type = kTypes[slot];
    database.schema.fields[slot].encrypt_flag = slot % 2;
  }
  for (const char* text : {"7 up", "No. 1", "value"}) {
    PopupItem item;
    item.key.fill(static_cast<std::uint8_t>('1' + database.fields[3].items.size()));
    item.text = text;
    database.fields[3].items.push_back(item);
  }
  FilterBlock& criterion = database.schema.filters[0];
  criterion.enabled = 1;
  setAreaText(criterion.value1, "1");
  // Values of the digits, so that they mean something in every type.
  const auto digits = rc::gen::container<std::string>(rc::gen::element('0', '1', '2', '7', 'N'));
  const auto records = *rc::gen::container<std::vector<std::vector<std::string>>>(
      6, rc::gen::resize(
             9, rc::gen::container<std::vector<std::string>>(rc::gen::resize(14, digits))));
  for (const auto& values : records) {
    UnpackedRecord record = newRecord(database.schema);
    if (*rc::gen::inRange(0, 3) == 0) record.prefix[1 + kStampFlagOffset] = kRecordEncrypted;
    record.slots = {};
    for (std::size_t slot = 0; slot < std::min(values.size(), kTypes.size()); ++slot) {
      record.slots[slot] = bytesOf(values[slot]);
    }
    Bytes packed;
    RC_ASSERT(packRecord(record, packed));
    database.records.insert(database.records.count(), packed, {});
  }
  SearchSettings search;
  search.field = *rc::gen::inRange(-1, 9);
  search.case_sensitive = *rc::gen::arbitrary<bool>();
  search.begins = *rc::gen::arbitrary<bool>();
  search.text =
      *rc::gen::element<std::string>("", "1", "7", "N", "No", "No Value", "/", ":", "12", "M");
  const auto start = *rc::gen::inRange<std::uint32_t>(0, 8);
  const auto start_slot = *rc::gen::inRange(0, 9);

  FoundField expected;
  const std::string text = search.case_sensitive ? search.text : lowerCaseText(search.text);
  for (std::uint32_t i = start; i < database.records.count() && expected.slot < 0; ++i) {
    const ByteView record = database.records[i].bytes();
    if (!recordPassesCriterion(database, 0, record, kSettings)) continue;
    for (int slot = 0; slot < kFieldSlots; ++slot) {
      if (search.field >= 0 ? slot != search.field : i == start && slot < start_slot) continue;
      if (fieldMatches(database, record, slot, text, search.case_sensitive, search.begins,
                       kSettings)) {
        expected = {i, slot};
        break;
      }
    }
  }
  RC_ASSERT(findFrom(database, search, start, start_slot, kSettings) == expected);
}

TEST(Find, SettingsAreStoredInTheDatabase) {
  Database database;
  initSchema(database.schema);
  EXPECT_EQ(searchSettings(database.schema), SearchSettings{});
  SearchSettings search{12, true, true, std::string(40, 'x')};
  storeSearchSettings(database, search);
  EXPECT_TRUE(isDirty(database));
  search.text.resize(34);
  EXPECT_EQ(searchSettings(database.schema), search);
  // A character of UTF-8 is not split.
  setAreaText(database.schema.code_page, "UTF-8");
  search = {-1, false, false, std::string(33, 'x') + "é"};
  storeSearchSettings(database, search);
  search.text.resize(33);
  EXPECT_EQ(searchSettings(database.schema), search);

  const auto names = searchFieldNames(database.schema);
  EXPECT_EQ(names.size(), 101u);
  EXPECT_EQ(names[0], "All Fields");
  EXPECT_EQ(names[100], "Field 100");
}

}  // namespace
}  // namespace tabelion
