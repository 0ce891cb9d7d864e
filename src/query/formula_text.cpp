#include "query/formula_text.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "query/formula.h"
#include "query/formula_words.h"

namespace tabelion {
namespace {

struct Expression {
  std::string text;
  int strength = kTightest;
  std::string as_call;  // of a "not": the same as a function

  std::string within(int strength_around) && {
    return strength < strength_around ? '(' + std::move(text) + ')' : std::move(text);
  }
  // On the right of an operator "not" may stand as a function; on the left it would take in what
  // follows.
  std::string rightWithin(int strength_around) && {
    if (strength < strength_around && !as_call.empty()) return std::move(as_call);
    return std::move(*this).within(strength_around);
  }
};

Error noText(std::string why) {
  return makeError(ErrorKind::kInvalid, std::move(why));
}

bool isConstant(const StoredFormula::Token& token) {
  return token.type == kIntegerToken || token.type == kFloatToken;
}

std::optional<Expression> constantText(const StoredFormula& formula,
                                       const StoredFormula::Token& token) {
  if (token.value >= formula.constants.size()) return std::nullopt;
  const std::string& text = formula.constants[token.value];
  const bool negative = text.starts_with('-');
  const std::string_view number = std::string_view(text).substr(negative ? 1 : 0);
  if (number.empty() || formulaNumberLength(number) != number.size()) return std::nullopt;
  return Expression{text, negative ? kSignStrength : kTightest, {}};
}

std::optional<Expression> fieldText(const StoredFormula::Token& token,
                                    const DatabaseRecord& schema) {
  const auto reference = fieldReference(static_cast<std::int8_t>(token.value));
  if (!reference) return std::nullopt;
  const std::string name = bracketed(formulaFieldName(schema, reference->slot));
  if (!reference->previous) return Expression{name, kTightest, {}};
  return Expression{std::string(kPreviousWord) + '(' + name + ')', kTightest, {}};
}

// The stack of values, as texts.
class Printer {
 public:
  Printer(const StoredFormula& formula, const DatabaseRecord& schema)
      : formula_(formula), schema_(schema) {}

  Result<std::string> print() {
    for (const StoredFormula::Token& token : formula_.tokens) {
      if (const Status done = put(token); !done.ok()) return done.error();
    }
    if (stack_.empty()) return std::string();
    if (stack_.size() > 1) return noText("the formula leaves more than one result");
    return std::move(stack_.back().text);
  }

 private:
  Status put(const StoredFormula::Token& token) {
    if (isConstant(token) || token.type == kFieldToken) {
      auto value = isConstant(token) ? constantText(formula_, token) : fieldText(token, schema_);
      if (!value) {
        return noText(isConstant(token) ? "the formula holds a constant that is no plain number"
                                        : "the formula refers to a field that there is not");
      }
      stack_.push_back(std::move(*value));
      return Done{};
    }
    const FormulaWord* word = formulaWordOfCode(token.type, token.value);
    if (!word) return noText("the formula holds a code that stands for nothing");
    if (stack_.size() < (token.type == kOperatorToken ? 2 : 1)) {
      return noText("the formula takes a value that is not there");
    }
    apply(*word);
    return Done{};
  }

  Expression pop() {
    Expression value = std::move(stack_.back());
    stack_.pop_back();
    return value;
  }

  void apply(const FormulaWord& word) {
    std::string name(word.text);
    Expression last = pop();
    switch (word.form) {
      case FormulaForm::kPrefix:
        stack_.push_back({{}, word.strength, name + '(' + last.text + ')'});
        stack_.back().text = name + ' ' + std::move(last).within(word.strength);
        return;
      case FormulaForm::kCall:
        if (word.token_class == kOperatorToken) last.text = pop().text + ", " + last.text;
        stack_.push_back({name + '(' + last.text + ')', kTightest, {}});
        return;
      case FormulaForm::kInfix: {
        const bool from_left = word.strength != kPowerStrength && word.strength != kCompareStrength;
        const bool from_right = word.strength == kPowerStrength;
        std::string text = pop().within(word.strength + (from_left ? 0 : 1));
        text += ' ' + name + ' ';
        text += std::move(last).rightWithin(word.strength + (from_right ? 0 : 1));
        stack_.push_back({std::move(text), word.strength, {}});
        return;
      }
    }
  }

  const StoredFormula& formula_;
  const DatabaseRecord& schema_;
  std::vector<Expression> stack_;
};

}  // namespace

StoredFormula normalFormula(const StoredFormula& formula) {
  StoredFormula normal = formula;
  normal.constants.clear();
  for (StoredFormula::Token& token : normal.tokens) {
    if (!isConstant(token) || token.value >= formula.constants.size()) continue;
    const std::string& text = formula.constants[token.value];
    auto& constants = normal.constants;
    const auto found = std::find(constants.begin(), constants.end(), text);
    token.value = static_cast<std::uint8_t>(found - constants.begin());
    if (found == constants.end()) constants.push_back(text);
  }
  return normal;
}

Result<std::string> formulaText(const StoredFormula& formula, const DatabaseRecord& schema) {
  Result<std::string> text = Printer(formula, schema).print();
  if (!text.ok()) return text;
  // Names that cannot be told apart, or a constant stored as another class than its text has.
  const auto read = parseFormula(*text, schema, formula.result_kind);
  if (!read.ok() || *read != normalFormula(formula)) {
    return noText("the formula reads back as another one: " + *text);
  }
  return text;
}

}  // namespace tabelion
