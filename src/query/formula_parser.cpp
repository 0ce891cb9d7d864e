// Infix formulas to postfix tokens: precedence by recursive descent, each token put out where its
// operands are complete, so that the tokens come in their stored order.

#include <algorithm>
#include <cmath>
#include <optional>

#include "engine/ascii.h"
#include "query/formula.h"
#include "query/formula_text.h"
#include "query/formula_words.h"
#include "query/near_names.h"
#include "query/number_text.h"
#include "query/text_case.h"

namespace tabelion {
namespace {

constexpr int kDeepestNesting = 50;

std::string quoted(std::string_view text) {
  return '"' + std::string(text) + '"';
}

class Parser {
 public:
  Parser(std::string_view text, const DatabaseRecord& schema)
      : text_(text), schema_(schema), utf8_(areaText(schema.code_page) == "UTF-8") {
    advance();
  }

  Result<StoredFormula> parse() {
    if (piece_.kind != Piece::kEnd) {
      parseLevel(kOrStrength);
      if (piece_.kind != Piece::kEnd) {
        fail(piece_.begin, "an operator is expected here, not " + quoted(piece_.text));
      }
    }
    if (error_) return *error_;
    return std::move(formula_);
  }

 private:
  // What stands between blanks and signs.
  struct Piece {
    enum Kind : std::uint8_t { kEnd, kNumber, kWord, kField, kSign };
    Kind kind = kEnd;
    std::string_view text;  // as it stands, a field with its brackets
    std::size_t begin = 0;
    std::string name;  // of a field in brackets
  };

  void fail(std::size_t at, const std::string& what) {
    if (error_) return;
    // Columns count characters: bytes that go on with one do not begin another.
    const std::string_view before = text_.substr(0, at);
    const auto column = 1 + std::count_if(before.begin(), before.end(), [this](char c) {
                          return !utf8_ || (static_cast<unsigned char>(c) & 0xC0) != 0x80;
                        });
    error_ = makeError(ErrorKind::kInvalid, "column " + std::to_string(column) + ": " + what);
    piece_ = {};  // reading ends here
    end_ = text_.size();
  }

  void take(Piece::Kind kind, std::size_t length) {
    piece_ = {kind, text_.substr(end_, length), end_, {}};
    end_ += length;
  }

  void advance() {
    while (end_ < text_.size() && isBlank(text_[end_])) ++end_;
    if (error_ || end_ == text_.size()) {
      piece_ = {Piece::kEnd, {}, text_.size(), {}};
      return;
    }
    const std::string_view rest = text_.substr(end_);
    if (const std::size_t length = formulaNumberLength(rest)) {
      if (length < rest.size() && (isInWord(rest[length]) || rest[length] == '.')) {
        return fail(end_, quoted(rest.substr(0, length + 1)) + " begins no number");
      }
      return take(Piece::kNumber, length);
    }
    if (beginsWord(rest[0])) {
      const auto* end = std::find_if_not(rest.begin(), rest.end(), isInWord);
      return take(Piece::kWord, static_cast<std::size_t>(end - rest.begin()));
    }
    if (rest[0] == '[') return takeBracketed(rest);
    const std::string_view two = rest.substr(0, 2);
    if (two == "<=" || two == ">=" || two == "<>") return take(Piece::kSign, 2);
    if (std::string_view("/*+-^<>=(),").find(rest[0]) != std::string_view::npos) {
      return take(Piece::kSign, 1);
    }
    fail(end_, quoted(rest.substr(0, 1)) + " means nothing in a formula");
  }

  void takeBracketed(std::string_view rest) {
    std::string name;
    for (std::size_t at = 1; at < rest.size(); ++at) {
      if (rest[at] == ']' && rest.substr(at + 1, 1) != "]") {
        take(Piece::kField, at + 1);
        piece_.name = std::move(name);
        return;
      }
      if (rest[at] == ']') ++at;
      name += rest[at];
    }
    fail(end_, "the \"[\" has no \"]\"");
  }

  bool isSign(std::string_view sign) const {
    return piece_.kind == Piece::kSign && piece_.text == sign;
  }
  // The operator that stands here, when it stands between its values.
  const FormulaWord* infixHere() const {
    if (piece_.kind != Piece::kSign && piece_.kind != Piece::kWord) return nullptr;
    const FormulaWord* word = formulaWordOfText(piece_.text);
    return word && word->form == FormulaForm::kInfix ? word : nullptr;
  }
  bool isNotHere() const {
    return piece_.kind == Piece::kWord && compareAnyCase(piece_.text, "not") == 0;
  }

  void emit(std::uint8_t token_class, int value, std::size_t at) {
    if (formula_.tokens.size() == kMaxFormulaTokens) {
      return fail(at, "the formula grows too long here: a field holds " +
                          std::to_string(kMaxFormulaTokens) +
                          " numbers, fields, operators and functions");
    }
    formula_.tokens.push_back({token_class, static_cast<std::uint8_t>(value)});
  }

  void emitConstant(const std::string& number, std::size_t at) {
    if (!std::isfinite(numberOfText(number, false))) {
      return fail(at, "the number is too large");
    }
    auto& constants = formula_.constants;
    auto found = std::find(constants.begin(), constants.end(), number);
    if (found == constants.end()) {
      std::size_t used = number.size() + 1;
      for (const std::string& constant : constants) used += constant.size() + 1;
      if (used > kFormulaConstantsSize) {
        return fail(at, "there is no room for this number: with one more for each, a field holds " +
                            std::to_string(kFormulaConstantsSize) + " characters of numbers");
      }
      found = constants.insert(constants.end(), number);
    }
    emit(constantClass(number), static_cast<int>(found - constants.begin()), at);
  }

  void emitWord(const FormulaWord& word, std::size_t at) { emit(word.token_class, word.code, at); }

  // What stands in parentheses, or behind a word that may be repeated without end.
  void parseNested(int strength) {
    if (nesting_ == kDeepestNesting) return fail(piece_.begin, "this is nested too deeply");
    ++nesting_;
    parseLevel(strength);
    --nesting_;
  }

  // Everything that holds together at least as tightly as `strength`, up to what is looser.
  void parseLevel(int strength) {
    if (strength == kNotStrength && isNotHere()) return parseNot();
    if (strength == kSignStrength) return parseSigned();
    parseLevel(strength + 1);
    for (;;) {
      const FormulaWord* word = infixHere();
      if (!word || word->strength != strength) return;
      const std::size_t at = piece_.begin;
      advance();
      parseLevel(strength == kPowerStrength ? strength : strength + 1);
      emitWord(*word, at);
      const FormulaWord* next = infixHere();
      if (strength == kCompareStrength && next && next->strength == strength) {
        return fail(piece_.begin, "a comparison within a comparison needs parentheses");
      }
    }
  }

  void parseNot() {
    const std::size_t at = piece_.begin;
    advance();
    parseNested(kNotStrength);
    emitWord(*formulaWordOfText("not"), at);
  }

  void parseSigned() {
    if (!isSign("-")) return parseValue();
    const std::size_t at = piece_.begin;
    advance();
    if (piece_.kind == Piece::kNumber) {
      const std::string number = "-" + std::string(piece_.text);
      advance();
      return emitConstant(number, at);
    }
    emitConstant("0", at);
    parseSigned();
    emitWord(*formulaWordOfText("-"), at);
  }

  void parseValue() {
    const Piece piece = piece_;
    switch (piece.kind) {
      case Piece::kNumber:
        advance();
        return emitConstant(std::string(piece.text), piece.begin);
      case Piece::kField:
        advance();
        return emitField(piece.name, piece.begin, false);
      case Piece::kWord:
        return parseWord(piece);
      case Piece::kSign:
        if (!isSign("(")) break;
        advance();
        parseNested(kOrStrength);
        return close(piece.begin);
      case Piece::kEnd:
        return fail(piece.begin, "the formula ends where a value is expected");
    }
    fail(piece.begin, "a value is expected here, not " + quoted(piece.text));
  }

  void parseWord(const Piece& piece) {
    advance();
    if (compareAnyCase(piece.text, kPreviousWord) == 0) return parsePrevious(piece);
    const FormulaWord* word = formulaWordOfText(piece.text);
    if (!word) {
      if (isSign("(")) return failUnknownFunction(piece);
      return emitField(piece.text, piece.begin, false);
    }
    if (word->form == FormulaForm::kInfix) {
      return fail(piece.begin, "a value is expected here, not " + quoted(piece.text));
    }
    const bool two = word->token_class == kOperatorToken;
    const std::string form = std::string(word->text) + (two ? "(a, b)" : "(a)");
    const std::size_t open = piece_.begin;
    if (!isSign("(")) return fail(piece.begin, quoted(piece.text) + " is written " + form);
    advance();
    parseNested(kOrStrength);
    if (two) {
      if (!isSign(",")) return fail(piece_.begin, "the second value is missing of " + form);
      advance();
      parseNested(kOrStrength);
    }
    if (isSign(",")) return fail(piece_.begin, "there is a value too many for " + form);
    close(open);
    emitWord(*word, piece.begin);
  }

  void parsePrevious(const Piece& piece) {
    const std::size_t open = piece_.begin;
    if (isSign("(")) {
      advance();
      const Piece field = piece_;
      if (field.kind == Piece::kWord || field.kind == Piece::kField) {
        advance();
        emitField(field.kind == Piece::kField ? std::string_view(field.name) : field.text,
                  field.begin, true);
        return close(open);
      }
    }
    fail(piece.begin, quoted(piece.text) + " is written previous(Field)");
  }

  void close(std::size_t open) {
    if (isSign(")")) return advance();
    if (piece_.kind == Piece::kEnd) return fail(open, "the \"(\" has no \")\"");
    fail(piece_.begin, "an operator or \")\" is expected here, not " + quoted(piece_.text));
  }

  void emitField(std::string_view name, std::size_t at, bool previous) {
    const std::vector<int> slots = formulaFieldsOfName(schema_, name);
    if (slots.size() == 1) return emit(kFieldToken, previous ? -slots[0] - 1 : slots[0] + 1, at);
    if (slots.empty()) {
      return fail(
          at, "there is no field called " + quoted(name) + meant(name, formulaFieldNames(schema_)));
    }
    std::string choices;
    for (const int slot : slots) {
      if (!choices.empty()) choices += " or ";
      choices += bracketed(formulaFieldName(schema_, slot));
    }
    fail(at, std::to_string(slots.size()) + " fields are called " + quoted(name) + "; write " +
                 choices);
  }

  void failUnknownFunction(const Piece& piece) {
    if (!formulaFieldsOfName(schema_, piece.text).empty()) {
      return fail(piece_.begin, "an operator is expected here, not \"(\"");
    }
    std::vector<std::string> functions{std::string(kPreviousWord)};
    for (const FormulaWord& word : formulaWords()) {
      if (word.form != FormulaForm::kInfix) functions.emplace_back(word.text);
    }
    fail(piece.begin,
         "there is no function called " + quoted(piece.text) + meant(piece.text, functions));
  }

  // "; is X meant?", or nothing when nothing is near.
  static std::string meant(std::string_view name, const std::vector<std::string>& known) {
    const std::vector<std::string> near = nearestNames(name, known);
    return near.empty() ? "" : "; is " + alternatives(near) + " meant?";
  }

  std::string_view text_;
  const DatabaseRecord& schema_;
  bool utf8_;
  std::size_t end_ = 0;  // of the piece, in the text
  Piece piece_;
  int nesting_ = 0;
  StoredFormula formula_;
  std::optional<Error> error_;
};

}  // namespace

Result<StoredFormula> parseFormula(std::string_view text, const DatabaseRecord& schema,
                                   int result_kind) {
  Result<StoredFormula> formula = Parser(text, schema).parse();
  if (formula.ok()) formula->result_kind = static_cast<std::uint8_t>(result_kind);
  return formula;
}

}  // namespace tabelion
