#include "query/formula.h"

#include <gtest/gtest.h>

#include <cmath>

#include "query/formula_fixtures.h"

namespace tabelion {
namespace {

using namespace std::string_literals;

FormulaResult evaluate(const Tokens& tokens, const std::vector<std::string>& constants = {}) {
  FormulaDatabase world;
  const int slot = world.addFormula(tokens, 0, constants);
  const FormatSettings formats = isoSettings();
  return evaluateFormula(decodeFormula(world.database, slot, formats), world.database, {}, {},
                         formats);
}

double binary(int code, std::string a, std::string b) {
  return evaluate({constant(0), constant(1), op(code)}, {std::move(a), std::move(b)}).value;
}

double unary(int code, std::string x) {
  return evaluate({constant(0), call(code)}, {std::move(x)}).value;
}

TEST(Formula, OperatorsTakeTheDeeperOperandFirst) {
  EXPECT_EQ(binary(0, "7", "2"), 3.5);
  EXPECT_EQ(binary(1, "7", "2"), 14);
  EXPECT_EQ(binary(2, "7", "2"), 9);
  EXPECT_EQ(binary(3, "7", "2"), 5);
  EXPECT_EQ(binary(4, "7", "2"), 49);
  EXPECT_EQ(binary(5, "7", "2"), 2);
  EXPECT_EQ(binary(6, "7", "2"), 7);
  EXPECT_EQ(binary(7, "7", "2"), 4.5);
  EXPECT_EQ(binary(8, "7", "2"), 1);
  EXPECT_EQ(binary(8, "-7", "2"), 1) << "the remainder has the sign of the divisor";
  const std::vector<std::vector<double>> truth = {
      // <, >, <=, >=, <>, =, and, or, xor
      {1, 0, 1, 0, 1, 0, 0, 1, 1},  // 0, 3
      {0, 1, 0, 1, 1, 0, 0, 1, 1},  // 3, 0
      {0, 0, 1, 1, 0, 1, 1, 1, 0},  // 3, 3
  };
  const std::vector<std::pair<std::string, std::string>> pairs = {
      {"0", "3"}, {"3", "0"}, {"3", "3"}};
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    for (int code = 9; code <= 17; ++code) {
      EXPECT_EQ(binary(code, pairs[i].first, pairs[i].second), truth[i][std::size_t(code - 9)])
          << pairs[i].first << " " << code << " " << pairs[i].second;
    }
  }
  EXPECT_EQ(binary(18, "7", "2"), 0) << "an operator that there is not";
  EXPECT_TRUE(std::signbit(binary(5, "0", "-0"))) << "of equal ones the second";
  EXPECT_TRUE(std::signbit(binary(6, "0", "-0")));
}

TEST(Formula, FunctionsAndWhatTheyDoOutsideTheirRange) {
  EXPECT_EQ(unary(0, "9"), 3);
  EXPECT_EQ(unary(0, "-9"), 0);
  EXPECT_DOUBLE_EQ(unary(1, "1"), std::sin(1.0));
  EXPECT_DOUBLE_EQ(unary(2, "1"), std::cos(1.0));
  EXPECT_DOUBLE_EQ(unary(3, "8"), std::log(8.0));
  EXPECT_EQ(unary(3, "0"), 0);
  EXPECT_EQ(unary(4, "1000"), 3);
  EXPECT_EQ(unary(4, "-1"), 0);
  EXPECT_EQ(unary(5, "-1.5"), -2);
  EXPECT_EQ(unary(6, "-1.5"), -1);
  EXPECT_EQ(unary(7, "0"), 1);
  EXPECT_EQ(unary(7, "2"), 0);
  EXPECT_EQ(unary(8, "2"), 0) << "a function that there is not";
  EXPECT_EQ(binary(0, "1", "0"), 0);
  EXPECT_EQ(binary(8, "1", "0"), 0);
  EXPECT_TRUE(std::isnan(binary(4, "-8", "0.5")));
}

TEST(Formula, ConstantsAreReadByTheirClass) {
  const auto constantValue = [](std::string text, TokenClass token_class) {
    return evaluate({constant(0, token_class)}, {std::move(text)}).value;
  };
  EXPECT_EQ(constantValue("12.75", kIntegerToken), 12);
  EXPECT_EQ(constantValue("12.75", kFloatToken), 12.75);
  EXPECT_EQ(constantValue("-3 apples", kFloatToken), -3);
  EXPECT_EQ(constantValue("apples", kFloatToken), 0);
  EXPECT_EQ(evaluate({constant(4)}, {"5"}).value, 0) << "a constant that is not there";

  FormulaDatabase world;
  const int slot = world.addFormula({constant(0)}, 0, {"3,5"});
  const FormatSettings comma = makeFormatSettings({.decimal_comma = true}, LocaleInfo{});
  EXPECT_EQ(decodeFormula(world.database, slot, comma).tokens[0].number, 3.5);
}

TEST(Formula, TheResultIsTheBottomOfTheStack) {
  EXPECT_EQ(evaluate({constant(0), constant(1)}, {"4", "9"}).value, 4);
  EXPECT_EQ(evaluate({}).value, 0);
  EXPECT_FALSE(evaluate({}).corrupt);
  EXPECT_EQ(evaluate({{2, 1}, constant(0), {9, 9}}, {"4"}).value, 4)
      << "tokens of unknown classes do nothing";
}

TEST(Formula, AFormulaThatTakesWhatIsNotThereIsCorrupt) {
  for (const Tokens& tokens : std::vector<Tokens>{
           {call(0)}, {op(2)}, {constant(0), op(2)}, {constant(0), op(2), constant(0)}}) {
    const FormulaResult result = evaluate(tokens, {"4"});
    EXPECT_TRUE(result.corrupt);
    EXPECT_EQ(result.value, -1);
  }
  Formula deep;
  deep.tokens.assign(16, {kFloatToken, 0, 8});
  EXPECT_FALSE(runFormula(deep, nullptr).corrupt);
  deep.tokens.push_back({kFloatToken, 0, 8});
  EXPECT_TRUE(runFormula(deep, nullptr).corrupt) << "a 17th value";
}

TEST(Formula, FieldsOfEveryTypeHaveANumber) {
  FormulaDatabase world;
  PopupItem item;
  item.key[0] = 7;
  item.text = "12 months";
  std::vector<std::string> values;
  const auto add = [&](FieldType type, std::string value) {
    values.push_back(std::move(value));
    return world.addField(type);
  };
  const std::vector<std::pair<int, double>> expected = {
      {add(FieldType::kText, "2.5 kg\0"s), 2.5},
      {add(FieldType::kInteger, "\xFE\xFF\xFF\xFF"s), -2},
      {add(FieldType::kFloat, "-12.50\0"s), -12.5},
      {add(FieldType::kPopup, "\x07"s + std::string(13, '\0')), 12},
      {add(FieldType::kPopup, std::string(14, '\0')), 0},
      {add(FieldType::kCheckBox, "\x05"s), 1},
      {add(FieldType::kLinkedField, "\xFE\xFF\xFF\xFF"s), 4294967294.0},
      {add(FieldType::kNote, "8\0"s), 0},
      {add(FieldType::kDate, "\x2C\x01\x00\x00"s), 300},
      {add(FieldType::kTime, "\x05\x02\x01\x00"s), 3725},
      {add(FieldType::kTime, "\x00\x00\xFF\x00"s), 0},
      {add(FieldType::kLinkField, "\x09\x00\x00\x00"s + std::string(20, '\0') + "4 doors\0"s), 9},
      {add(FieldType::kSeparator, ""), 0},
      {add(FieldType::kCalculated, "1e3\0"s), 1000},
      {add(FieldType::kText254, "17"), 17},
      {add(FieldType::kDate, ""), 0},
      {add(FieldType::kTime, ""), 0},
  };
  world.database.fields[3].items.push_back(item);
  const int lookup = add(FieldType::kLookup, "");
  const int absent = world.addField(FieldType::kInteger);
  const Bytes record = world.addRecord(values);
  const FormatSettings formats = isoSettings();
  const LookupText shown = [](int, ByteView) { return "6.5 miles"s; };
  const auto valueOf = [&](StoredFormula::Token token) {
    world.setFormula(99, {token});
    return evaluateFormula(decodeFormula(world.database, 99, formats), world.database, record, {},
                           formats, &shown)
        .value;
  };
  for (const auto& [slot, number] : expected) EXPECT_EQ(valueOf(fieldOf(slot)), number) << slot;
  EXPECT_EQ(valueOf(fieldOf(lookup)), 6.5);
  EXPECT_EQ(valueOf(fieldOf(absent)), 0);
  EXPECT_EQ(valueOf(previousOf(0)), 0) << "there is no record before";
  for (const int none : {0, 101, -101, -128}) {
    EXPECT_EQ(valueOf({kFieldToken, static_cast<std::uint8_t>(none)}), 0) << none;
  }

  world.field(0).encrypt_flag = 1;
  EXPECT_EQ(valueOf(fieldOf(0)), 2.5) << "flagged, but this record is in clear";
  Bytes enciphered = record;
  enciphered[1 + kStampFlagOffset] = kRecordEncrypted;
  world.setFormula(99, {fieldOf(0), fieldOf(2), op(2), previousOf(2), op(2)});
  EXPECT_EQ(evaluateFormula(decodeFormula(world.database, 99, formats), world.database, enciphered,
                            record, formats)
                .value,
            -25)
      << "the enciphered field counts 0, the field of the record before counts";
}

TEST(Formula, UseOfOtherRecordsIsSeenThroughEveryFieldReferredTo) {
  FormulaDatabase world;
  const int amount = world.addField(FieldType::kFloat);
  const int balance = world.addFormula({previousOf(1), fieldOf(amount), op(2)});
  const int twice = world.addFormula({fieldOf(balance), constant(0), op(1)}, 5, {"2"});
  const int above = world.addFormula({fieldOf(twice), constant(0), op(10)}, 1, {"2"});
  const int own = world.addFormula({fieldOf(amount), fieldOf(amount), op(1)});
  EXPECT_TRUE(usesOtherRecords(world.database, balance));
  EXPECT_TRUE(usesOtherRecords(world.database, above)) << "through two other fields";
  EXPECT_FALSE(usesOtherRecords(world.database, own));
  EXPECT_FALSE(usesOtherRecords(world.database, amount));
  EXPECT_TRUE(formulaCircle(world.database, balance).empty()) << "a running balance is no circle";
}

TEST(Formula, CirclesAreFoundAndNamedInOrder) {
  FormulaDatabase world;
  const int a = world.addFormula({fieldOf(1)});
  const int b = world.addFormula({constant(0), fieldOf(2), op(2)}, 5, {"1"});
  const int c = world.addFormula({fieldOf(1), fieldOf(3), op(2)});
  const int self = world.addFormula({fieldOf(3)});
  const int apart = world.addFormula({fieldOf(5), fieldOf(5), op(1)});
  const int leaf = world.addFormula({constant(0)}, 5, {"1"});
  EXPECT_EQ(formulaCircle(world.database, a), (std::vector<int>{b, c, b}));
  EXPECT_EQ(formulaCircle(world.database, self), (std::vector<int>{self, self}));
  EXPECT_TRUE(formulaCircle(world.database, apart).empty()) << "the same field twice is no circle";
  EXPECT_TRUE(usesOtherRecords(world.database, a));
  EXPECT_FALSE(usesOtherRecords(world.database, leaf));

  // Every field refers to all behind it: far too many ways to try each.
  FormulaDatabase dense;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    Tokens tokens;
    for (int next = slot + 1; next < std::min(slot + 12, kFieldSlots); ++next) {
      tokens.push_back(fieldOf(next));
    }
    dense.addFormula(tokens);
  }
  EXPECT_TRUE(formulaCircle(dense.database, 0).empty());
  dense.setFormula(99, {fieldOf(98)});
  EXPECT_EQ(formulaCircle(dense.database, 98), (std::vector<int>{98, 99, 98}));
  EXPECT_FALSE(formulaCircle(dense.database, 0).empty());
}

}  // namespace
}  // namespace tabelion
