#include "query/recompute.h"

#include <gtest/gtest.h>

#include "query/formula_fixtures.h"
#include "query/sort.h"

namespace tabelion {
namespace {

using namespace std::string_literals;

struct Books {
  QuerySettings settings{.formats = isoSettings(), .now = {}, .lookup = nullptr};
  FormulaDatabase world;
  Database& database = world.database;
};

// Amount and balance: the balance is the one before plus the amount.
struct Account : Books {
  int amount = world.addField(FieldType::kInteger, "Amount");
  int balance = world.addFormula({previousOf(1), fieldOf(0), op(2)});

  std::vector<std::string> balances() const {
    std::vector<std::string> texts;
    for (std::uint32_t i = 0; i < database.records.count(); ++i) {
      texts.push_back(world.stored(i, balance));
    }
    return texts;
  }
  void sortBy(int slot) { database.schema.sort[0] = {static_cast<std::uint8_t>(slot), 1}; }
  // Only records with an amount of at most `most` pass.
  void showUpTo(int most) {
    FilterBlock& criterion = database.schema.filters[0];
    criterion.enabled = 1;
    criterion.field = static_cast<std::uint16_t>(amount);
    criterion.number1 = static_cast<std::uint32_t>(-1000000);
    criterion.number2 = static_cast<std::uint32_t>(most);
  }
};

TEST(Recompute, StoresTheResultWithTheDecimalsOfItsKind) {
  Books books;
  const int slot = books.world.addFormula({});
  books.world.addRecord({""});
  const auto storedBy = [&](Tokens tokens, int kind, std::vector<std::string> constants) {
    books.world.setFormula(slot, std::move(tokens), kind, std::move(constants));
    EXPECT_EQ(recomputeField(books.database, slot, 0, books.settings), 0);
    return books.world.stored(0, slot);
  };
  const Tokens seven_minus_two = {constant(0), constant(1), op(3)};
  EXPECT_EQ(storedBy(seven_minus_two, 1, {"7", "2"}), "5");
  EXPECT_EQ(storedBy(seven_minus_two, 0, {"7", "2"}), "5.0000");
  EXPECT_EQ(storedBy({constant(0), constant(1), op(0)}, 0, {"1", "0"}), "0.0000");
  const std::vector<std::string> by_kind = {"1234.5678", "1235",    "1235",   "1235",
                                            "1234.568",  "1234.57", "1234.6", "1235"};
  for (int kind = 0; kind <= 7; ++kind) {
    EXPECT_EQ(storedBy({constant(0)}, kind, {"1234.5678"}), by_kind[std::size_t(kind)]) << kind;
  }
  EXPECT_EQ(storedBy({constant(0), constant(0), op(1)}, 0, {"12345678"}), "152415765279684.")
      << "as much as the area holds";
  EXPECT_EQ(storedBy({constant(0), constant(1), op(4)}, 5, {"-8", "0.5"}), "nan");
  books.settings.formats.choices.decimal_comma = true;
  EXPECT_EQ(storedBy({constant(0)}, 5, {"2.5"}), "2,50");
  EXPECT_EQ(recomputeField(books.database, slot, 1, books.settings), -1) << "no such record";
}

TEST(Recompute, ACorruptFormulaIsReportedForEachRecordAndStoresMinusOne) {
  Books books;
  const int slot = books.world.addFormula({op(2)}, 5);
  books.world.addRecord({""});
  books.world.addRecord({"-1.00\0"s});
  std::vector<std::pair<std::uint32_t, int>> told;
  const RecomputeSummary summary =
      recomputeAll(books.database, books.settings,
                   [&](std::uint32_t position, int field) { told.emplace_back(position, field); });
  EXPECT_EQ(told, (std::vector<std::pair<std::uint32_t, int>>{{0, slot}, {1, slot}}));
  EXPECT_EQ(summary.corrupt, 2u);
  EXPECT_EQ(summary.values, 1u);
  EXPECT_EQ(books.world.stored(0, slot), "-1.00");
}

TEST(Recompute, LeavesEverythingElseAsItIs) {
  Books books;
  const int twice = books.world.addFormula({fieldOf(1), fieldOf(1), op(2)}, 1);
  const int amount = books.world.addField(FieldType::kInteger);
  const int triple = books.world.addFormula({fieldOf(0), fieldOf(1), op(2)}, 1);
  const int text = books.world.addField(FieldType::kText);
  const Bytes right = books.world.addRecord({"14\0\xEE"s, integer(7), "21\0"s, "kept\0"s});
  const Bytes wrong = books.world.addRecord({"1"s, integer(-7), "", "kept\0"s});
  const Bytes cut = books.world.addRecord({"14\0"s, integer(7)});
  Bytes with_tail = wrong;
  with_tail.insert(with_tail.end(), {9, 8, 7});
  ASSERT_TRUE(books.database.records.replace(1, with_tail));
  const std::uint8_t* place = books.database.records[0].bytes().data();

  const RecomputeSummary summary = recomputeAll(books.database, books.settings);
  EXPECT_EQ(summary.records, 2u);
  EXPECT_EQ(summary.values, 3u);
  EXPECT_EQ(books.database.records[0].bytes().data(), place) << "what is right stays where it is";
  const UnpackedRecord changed = unpackRecord(books.database.records[1].bytes());
  EXPECT_EQ(books.world.stored(1, twice), "-14");
  EXPECT_EQ(books.world.stored(1, triple), "-21") << "worked out with the new value";
  EXPECT_EQ(books.world.stored(1, text), "kept");
  EXPECT_EQ(changed.tail, (Bytes{9, 8, 7}));
  EXPECT_EQ(changed.slots[std::size_t(amount)], unpackRecord(wrong).slots[std::size_t(amount)]);
  EXPECT_EQ(books.world.stored(2, triple), "21") << "the record had no room for it yet";
  EXPECT_TRUE(isDirty(books.database));
  EXPECT_TRUE(books.database.selected[std::size_t(twice)]);
  EXPECT_FALSE(books.database.selected[std::size_t(amount)]);

  clearDirty(books.database);
  EXPECT_EQ(recomputeAll(books.database, books.settings).values, 0u);
  EXPECT_FALSE(isDirty(books.database));
}

TEST(Recompute, EncipheredFieldsAreLeftAlone) {
  Account account;
  account.world.field(account.balance).encrypt_flag = 1;
  Bytes record = account.world.addRecord({integer(3), "\x11\x22"s});
  record[1 + kStampFlagOffset] = kRecordEncrypted;
  ASSERT_TRUE(account.database.records.replace(0, record));
  EXPECT_EQ(recomputeField(account.database, account.balance, 0, account.settings), 0);
  EXPECT_EQ(account.world.stored(0, account.balance), "\x11\x22");
  EXPECT_EQ(recomputeAll(account.database, account.settings).values, 0u);

  // As an operand an enciphered value is 0, here and in the record before.
  account.world.field(account.balance).encrypt_flag = 0;
  account.world.field(account.amount).encrypt_flag = 1;
  account.world.addRecord({integer(4), "7.00\0"s});
  account.world.setFormula(account.balance, {previousOf(0), fieldOf(0), op(2)});
  EXPECT_EQ(recomputeAll(account.database, account.settings).values, 2u);
  EXPECT_EQ(account.balances(), (std::vector<std::string>{"0.00", "4.00"}));
}

TEST(Recompute, ThePreviousRecordIsTheNearestThatPassesTheFilter) {
  Account account;
  for (const int amount : {5, 100, 7, 9}) account.world.addRecord({integer(amount), ""});
  recomputeAll(account.database, account.settings);
  EXPECT_EQ(account.balances(), (std::vector<std::string>{"5.00", "105.00", "112.00", "121.00"}));
  account.showUpTo(50);
  recomputeAll(account.database, account.settings);
  EXPECT_EQ(account.balances(), (std::vector<std::string>{"5.00", "105.00", "12.00", "21.00"}))
      << "records outside the filter neither count nor change";

  UnpackedRecord saved = unpackRecord(account.database.records[3].bytes());
  saved.slots[0] = Bytes{1, 0, 0, 0};
  recomputeRecord(account.database, saved, 2, account.settings);
  EXPECT_EQ(std::string(storedText(*saved.slots[1])), "6.00") << "record 0 comes before place 2";
  account.world.setFormula(account.balance, {previousOf(0)}, 1);
  recomputeField(account.database, account.balance, 2, account.settings);
  EXPECT_EQ(account.world.stored(2, account.balance), "5");

  // A result that puts its own record out of the filter.
  Account cut;
  for (const int amount : {5, 6, 7}) cut.world.addRecord({integer(amount), "0"s});
  FilterBlock& criterion = cut.database.schema.filters[0];
  criterion.enabled = 1;
  criterion.field = 1;
  criterion.number2 = 5;
  cut.world.setFormula(cut.balance, {previousOf(0), fieldOf(0), op(2)}, 1);
  recomputeAll(cut.database, cut.settings);
  EXPECT_EQ(cut.balances(), (std::vector<std::string>{"5", "11", "12"}))
      << "the record of 11 does not pass any more when the next one looks before itself";
}

TEST(Recompute, ASavedRecordIsWorkedOutInDisplayOrder) {
  Books books;
  books.world.addFormula({fieldOf(1), constant(0), op(2)}, 1, {"1"});
  books.world.addFormula({constant(0)}, 1, {"10"});
  const Bytes record = books.world.addRecord({"", "4\0"s});
  const auto savedTexts = [&] {
    UnpackedRecord saved = unpackRecord(record);
    recomputeRecord(books.database, saved, 0, books.settings);
    return std::pair{std::string(storedText(*saved.slots[0])),
                     std::string(storedText(*saved.slots[1]))};
  };
  EXPECT_EQ(savedTexts(), (std::pair{"5"s, "10"s})) << "the first still sees 4 in the second";
  std::swap(books.database.schema.display_order[0], books.database.schema.display_order[1]);
  EXPECT_EQ(savedTexts(), (std::pair{"11"s, "10"s}));
  std::swap(books.database.schema.display_order[0], books.database.schema.display_order[1]);
  recomputeAll(books.database, books.settings);
  EXPECT_EQ(books.world.stored(0, 0), "11") << "in all records each comes after what it refers to";
}

TEST(Recompute, StaleOrderIsPutRightBeforeOrAfter) {
  Account account;
  for (const int amount : {30, 10, 20}) account.world.addRecord({integer(amount), ""});
  account.sortBy(account.amount);
  recomputeAll(account.database, account.settings);
  EXPECT_EQ(account.balances(), (std::vector<std::string>{"30.00", "40.00", "60.00"}))
      << "nobody said that the order is stale";
  account.database.schema.sort_pending = 1;
  recomputeAll(account.database, account.settings);
  EXPECT_EQ(account.balances(), (std::vector<std::string>{"10.00", "30.00", "60.00"}));
  EXPECT_EQ(account.database.schema.sort_pending, 0);

  account.world.setFormula(account.balance, {constant(0), fieldOf(0), op(3)}, 1, {"0"});
  account.sortBy(account.balance);
  recomputeAll(account.database, account.settings);
  EXPECT_EQ(account.balances(), (std::vector<std::string>{"-30", "-20", "-10"}))
      << "sorted afterwards by what came out";
  EXPECT_EQ(account.database.schema.sort_pending, 0);

  // Totals are those of the order in the end, not of the one that they were worked out in first.
  const int total = account.world.addFormula({previousOf(2), fieldOf(0), op(2)}, 1);
  account.world.setFormula(account.balance, {fieldOf(0)}, 1);
  account.database.schema.sort[0].order = 0;
  recomputeAll(account.database, account.settings);
  EXPECT_EQ(account.balances(), (std::vector<std::string>{"30", "20", "10"}));
  EXPECT_EQ(account.world.stored(2, total), "60");

  Books plain;
  plain.world.addField(FieldType::kInteger);
  plain.database.schema.sort_pending = 1;
  recomputeAll(plain.database, plain.settings);
  EXPECT_EQ(plain.database.schema.sort_pending, 1) << "there is nothing to work out here";
}

}  // namespace
}  // namespace tabelion
