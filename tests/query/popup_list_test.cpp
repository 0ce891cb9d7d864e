#include "query/popup_list.h"

#include <gtest/gtest.h>

#include "engine/stored_value.h"
#include "query/field_text.h"
#include "query/formula_fixtures.h"
#include "query/recompute.h"

namespace tabelion {
namespace {

struct Priced {
  Priced() {
    for (const char* text : {"10 days", "20 days"}) {
      PopupItem item{.text = text};
      item.key[0] = static_cast<std::uint8_t>(text[0]);
      database.fields[static_cast<std::size_t>(kind)].items.push_back(item);
    }
    for (const std::size_t item : {0u, 1u, 0u}) {
      const ByteView key = database.fields[0].items[item].valueKey();
      world.addRecord({std::string(key.begin(), key.end()), ""});
    }
    recomputeAll(database, settings);
  }
  PopupItems items() { return database.fields[static_cast<std::size_t>(kind)].items; }
  std::string column(int slot) {
    std::string texts;
    for (std::uint32_t i = 0; i < database.records.count(); ++i) {
      texts += world.stored(i, slot) + "|";
    }
    return texts;
  }

  QuerySettings settings{.formats = isoSettings(), .now = {}, .lookup = nullptr};
  FormulaDatabase world;
  Database& database = world.database;
  int kind = world.addField(FieldType::kPopup, "Kind");
  int days = world.addFormula({fieldOf(0)}, 7);
};

TEST(PopupList, WhatIsMadeOfATextFollowsIt) {
  Priced priced;
  EXPECT_EQ(priced.column(priced.days), "10|20|10|");
  priced.database.schema.sort[0] = {static_cast<std::uint8_t>(priced.kind), 1};
  PopupItems items = priced.items();
  items[0].text = "30 days";
  std::uint32_t followed = 1;
  replaceItems(priced.database, priced.kind, items, priced.settings, &followed);
  EXPECT_EQ(priced.column(priced.days), "20|30|30|");
  EXPECT_EQ(followed, 0u);
  EXPECT_TRUE(priced.database.dirty);

  items.erase(items.begin() + 1);
  replaceItems(priced.database, priced.kind, items, priced.settings, &followed);
  EXPECT_EQ(priced.column(priced.days), "30|30|0|");  // "No Value" is the greater text
  EXPECT_EQ(followed, 2u);
}

TEST(PopupList, UsesAreCountedAsFarAsTheyCanBeSeen) {
  Priced priced;
  const auto uses = [&](std::size_t first, std::size_t number) {
    const PopupItems items = priced.items();
    const PopupUses found =
        countUses(priced.database, priced.kind, std::span(items).subspan(first, number));
    return std::to_string(found.records) + " " + std::to_string(found.hidden);
  };
  EXPECT_EQ(uses(0, 1), "2 0");
  EXPECT_EQ(uses(0, 2), "3 0");
  priced.database.schema.fields[static_cast<std::size_t>(priced.kind)].encrypt_flag = 1;
  const ByteView stored = priced.database.records[0].bytes();
  Bytes record(stored.begin(), stored.end());
  record[1 + kStampFlagOffset] |= kRecordEncrypted;
  ASSERT_TRUE(priced.database.records.replace(0, record));
  EXPECT_EQ(uses(0, 1), "1 1");
}

}  // namespace
}  // namespace tabelion
