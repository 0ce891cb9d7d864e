#include "query/formula_text.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cctype>

#include "query/formula_fixtures.h"

namespace tabelion {
namespace {

const std::vector<std::string> kNames = {"Price", "Quantity", "Warranty until", "mod", "a]b", "2nd",
                                         "Größe", "#1",       "Twin",           "Twin"};

struct Shop : FormulaDatabase {
  Shop() {
    for (const std::string& name : kNames) addField(FieldType::kFloat, name);
    setFieldName(field(addField(FieldType::kFloat)), "");
  }
  DatabaseRecord& schema() { return database.schema; }

  StoredFormula parsed(std::string_view text) {
    const auto formula = parseFormula(text, schema(), 5);
    EXPECT_TRUE(formula.ok()) << text << ": " << (formula.ok() ? "" : formula.error().text);
    return formula.ok() ? *formula : StoredFormula{};
  }
  // What the printer makes of a text.
  std::string printed(std::string_view text) {
    const auto printed = formulaText(parsed(text), schema());
    return printed.ok() ? *printed : "error: " + printed.error().text;
  }
  std::string refusal(std::string_view text) {
    const auto formula = parseFormula(text, schema(), 5);
    return formula.ok() ? "accepted" : formula.error().text;
  }
};

TEST(FormulaText, TokensComeInPostfixOrder) {
  Shop shop;
  const StoredFormula formula = shop.parsed("previous(Price) + QUANTITY * -2.50 MOD 3 ^ 3");
  EXPECT_EQ(formula.tokens,
            (Tokens{previousOf(0), fieldOf(1), constant(0), op(1), constant(1, kIntegerToken),
                    constant(1, kIntegerToken), op(4), op(8), op(2)}));
  EXPECT_EQ(formula.constants, (std::vector<std::string>{"-2.50", "3"}));
  EXPECT_EQ(formula.result_kind, 5);
  EXPECT_EQ(shop.parsed("-Price").tokens, (Tokens{constant(0, kIntegerToken), fieldOf(0), op(3)}));
  EXPECT_EQ(shop.parsed("2147483648").tokens, (Tokens{constant(0)})) << "too wide for an integer";
  EXPECT_EQ(shop.parsed("min(Price, sqrt(Quantity))").tokens,
            (Tokens{fieldOf(0), fieldOf(1), call(0), op(5)}));
  EXPECT_TRUE(shop.parsed(" \t").tokens.empty());
}

TEST(FormulaText, PrintsWithAsFewParenthesesAsThereCanBe) {
  Shop shop;
  const std::vector<std::pair<std::string, std::string>> texts = {
      {"((Price)*(Quantity))", "Price * Quantity"},
      {"(1 + 2) * (3 - (4 - 5))", "(1 + 2) * (3 - (4 - 5))"},
      {"((1 - 2) - 3) + 4 / (5 / 6)", "1 - 2 - 3 + 4 / (5 / 6)"},
      {"(2 ^ 3) ^ (4 ^ 5)", "(2 ^ 3) ^ 4 ^ 5"},
      {"-2 ^ -Price", "-2 ^ (0 - Price)"},
      {"-(Price + 1)", "0 - (Price + 1)"},
      {"1--1", "1 - -1"},
      {"NOT (Price = 2) AND Quantity", "not Price = 2 and Quantity"},
      {"(not Price) = (not (1 or 2))", "(not Price) = not(1 or 2)"},
      {"1 + not(not Price)", "1 + not(not Price)"},
      {"Price or (1 and 2) xor 3", "Price or 1 and 2 xor 3"},
      {"(Price or 1) and (2 < 3)", "(Price or 1) and 2 < 3"},
      {"Price <= (1 <> 2)", "Price <= (1 <> 2)"},
      {"AVG((1), (2+3)) * Previous([price])", "avg(1, 2 + 3) * previous(Price)"},
      {".5 + 5. + 1e3", ".5 + 5. + 1e3"},
      {"", ""},
  };
  for (const auto& [text, printed] : texts) EXPECT_EQ(shop.printed(text), printed) << text;
}

TEST(FormulaText, NamesThatAreNoPlainWordsStandInBrackets) {
  Shop shop;
  const std::vector<std::pair<int, std::string>> names = {
      {0, "Price"},          {2, "[Warranty until]"},
      {3, "[mod]"},          {4, "[a]]b]"},
      {5, "[2nd]"},          {6, "Größe"},
      {8, "[Twin #8]"},      {9, "[Twin #9]"},
      {7, "[#1]"},           {10, "[#10]"},
      {20, "[Field 21 #20]"}};
  for (const auto& [slot, name] : names) {
    const StoredFormula formula{{fieldOf(slot)}, {}, 5};
    const auto text = formulaText(formula, shop.schema());
    ASSERT_TRUE(text.ok()) << text.error().text;
    EXPECT_EQ(*text, name);
    EXPECT_EQ(shop.parsed(name), formula) << name;
  }
  EXPECT_EQ(shop.parsed("[warranty UNTIL]").tokens, (Tokens{fieldOf(2)}));
  EXPECT_EQ(shop.refusal("1 + Twin"),
            "column 5: 2 fields are called \"Twin\"; write [Twin #8] or [Twin #9]");
}

TEST(FormulaText, RefusalsNameTheColumnAndWhatIsWrong) {
  Shop shop;
  const std::vector<std::pair<std::string, std::string>> refusals = {
      {"1 + 2 Prise", "column 7: an operator is expected here, not \"Prise\""},
      {"1 + 2*Prise", "column 7: there is no field called \"Prise\"; is \"Price\" meant?"},
      {"Zucchini", "column 1: there is no field called \"Zucchini\""},
      {"1 +", "column 4: the formula ends where a value is expected"},
      {"1 + * 2", "column 5: a value is expected here, not \"*\""},
      {"2 * (1 + 3", "column 5: the \"(\" has no \")\""},
      {"(1 2)", "column 4: an operator or \")\" is expected here, not \"2\""},
      {"sqr(2)", "column 1: there is no function called \"sqr\"; is \"sqrt\" meant?"},
      {"Price(2)", "column 6: an operator is expected here, not \"(\""},
      {"sqrt 2", "column 1: \"sqrt\" is written sqrt(a)"},
      {"min(2)", "column 6: the second value is missing of min(a, b)"},
      {"max(1, 2, 3)", "column 9: there is a value too many for max(a, b)"},
      {"previous(1)", "column 1: \"previous\" is written previous(Field)"},
      {"1 < 2 < 3", "column 7: a comparison within a comparison needs parentheses"},
      {"12x", "column 1: \"12x\" begins no number"},
      {"[Price", "column 1: the \"[\" has no \"]\""},
      {"Price & 2", "column 7: \"&\" means nothing in a formula"},
      {"1 + 1e999", "column 5: the number is too large"},
      {"1+1+1+1+1+1+1",
       "column 13: the formula grows too long here: a field holds 11 numbers, "
       "fields, operators and functions"},
      {"1234567890.25 + 1234567890.125 + 12",
       "column 34: there is no room for this number: with one more for each, a field holds 30 "
       "characters of numbers"},
      {std::string(100000, '('), "column 52: this is nested too deeply"},
  };
  for (const auto& [text, refusal] : refusals) EXPECT_EQ(shop.refusal(text), refusal);
  EXPECT_EQ(shop.refusal("Größe 2"), "column 9: an operator is expected here, not \"2\"");
  setAreaText(shop.schema().code_page, "UTF-8");
  EXPECT_EQ(shop.refusal("Größe 2"), "column 7: an operator is expected here, not \"2\"");
}

TEST(FormulaText, StoredFormulasWithoutATextAreNamed) {
  Shop shop;
  const auto textOf = [&](const StoredFormula& formula) {
    const auto text = formulaText(formula, shop.schema());
    return text.ok() ? *text : "error: " + text.error().text;
  };
  EXPECT_EQ(textOf({{op(2)}, {}, 5}), "error: the formula takes a value that is not there");
  EXPECT_EQ(textOf({{fieldOf(0), fieldOf(0)}, {}, 5}),
            "error: the formula leaves more than one result");
  EXPECT_EQ(textOf({{fieldOf(0), call(8)}, {}, 5}),
            "error: the formula holds a code that stands for nothing");
  EXPECT_EQ(textOf({{{kFieldToken, 0}}, {}, 5}),
            "error: the formula refers to a field that there is not");
  EXPECT_EQ(textOf({{constant(0)}, {"five"}, 5}),
            "error: the formula holds a constant that is no plain number");
  EXPECT_EQ(textOf({{constant(0)}, {"2"}, 5}), "error: the formula reads back as another one: 2")
      << "an integer stored as a float";
  EXPECT_EQ(textOf({{constant(1), constant(2), op(2)}, {"7", "2.5", "2.5"}, 5}), "2.5 + 2.5")
      << "constants in any order";
}

// A formula of random shape that leaves one value.
StoredFormula anyFormula() {
  const std::vector<std::string> numbers = {"0", "7", "-3", "2.5", "-0.5", ".25", "1e2"};
  StoredFormula formula;
  const auto anyValue = [&]() -> StoredFormula::Token {
    const int slot = *rc::gen::inRange(-12, 12);
    if (*rc::gen::arbitrary<bool>()) return slot < 0 ? previousOf(-slot - 1) : fieldOf(slot);
    formula.constants.push_back(*rc::gen::elementOf(numbers));
    const bool whole = formula.constants.back().find_first_of(".e") == std::string::npos;
    return constant(int(formula.constants.size()) - 1, whole ? kIntegerToken : kFloatToken);
  };
  formula.tokens.push_back(anyValue());
  int depth = 1;
  for (int steps = *rc::gen::inRange(0, 30); steps > 0; --steps) {
    // All values but one need an operator yet.
    const int room = kMaxFormulaTokens - int(formula.tokens.size()) - (depth - 1);
    const int kind = *rc::gen::inRange(0, 3);
    if (kind == 0 && room >= 2) {
      formula.tokens.push_back(anyValue());
      ++depth;
    } else if (kind == 1 && room >= 1) {
      formula.tokens.push_back(call(*rc::gen::inRange(0, 8)));
    } else if (kind == 2 && depth >= 2) {
      formula.tokens.push_back(op(*rc::gen::inRange(0, 18)));
      --depth;
    }
  }
  for (; depth > 1; --depth) formula.tokens.push_back(op(*rc::gen::inRange(0, 18)));
  return formula;
}

RC_GTEST_PROP(FormulaText, StoredFormulasReadBackAsTheyWere, ()) {
  Shop shop;
  const StoredFormula formula = anyFormula();
  const auto text = formulaText(formula, shop.schema());
  RC_ASSERT(text.ok());
  const auto read = parseFormula(*text, shop.schema(), formula.result_kind);
  RC_ASSERT(read.ok());
  RC_LOG() << *text;
  RC_ASSERT(*read == normalFormula(formula));
  RC_ASSERT(normalFormula(*read) == *read);
  // No pair of parentheses can be left out, but around a "not" that might be one function deeper.
  for (std::size_t open = 0; open < text->size(); ++open) {
    const bool is_call = open > 0 && std::isalpha(static_cast<unsigned char>((*text)[open - 1]));
    if ((*text)[open] != '(' || is_call || text->compare(open, 5, "(not ") == 0) continue;
    int depth = 0;
    std::size_t close = open;
    do depth += (*text)[close] == '(' ? 1 : (*text)[close] == ')' ? -1 : 0;
    while (depth > 0 && ++close < text->size());
    std::string without = *text;
    without.erase(close, 1).erase(open, 1);
    const auto other = parseFormula(without, shop.schema(), formula.result_kind);
    RC_ASSERT((!other.ok() || *other != *read));
  }
}

}  // namespace
}  // namespace tabelion
