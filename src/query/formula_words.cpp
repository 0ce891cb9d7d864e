#include "query/formula_words.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "engine/ascii.h"
#include "engine/schema_places.h"
#include "query/formula.h"
#include "query/text_case.h"

namespace tabelion {
namespace {

constexpr FormulaWord infix(std::string_view text, std::uint8_t code, FormulaStrength strength) {
  return {text, kOperatorToken, code, FormulaForm::kInfix, strength};
}
constexpr FormulaWord call(std::string_view text, TokenClass token_class, std::uint8_t code) {
  return {text, token_class, code, FormulaForm::kCall, kTightest};
}

constexpr FormulaWord kWords[] = {
    infix("/", 0, kProductStrength),
    infix("*", 1, kProductStrength),
    infix("+", 2, kSumStrength),
    infix("-", 3, kSumStrength),
    infix("^", 4, kPowerStrength),
    call("min", kOperatorToken, 5),
    call("max", kOperatorToken, 6),
    call("avg", kOperatorToken, 7),
    infix("mod", 8, kProductStrength),
    infix("<", 9, kCompareStrength),
    infix(">", 10, kCompareStrength),
    infix("<=", 11, kCompareStrength),
    infix(">=", 12, kCompareStrength),
    infix("<>", 13, kCompareStrength),
    infix("=", 14, kCompareStrength),
    infix("and", 15, kAndStrength),
    infix("or", 16, kOrStrength),
    infix("xor", 17, kOrStrength),
    call("sqrt", kFunctionToken, 0),
    call("sin", kFunctionToken, 1),
    call("cos", kFunctionToken, 2),
    call("ln", kFunctionToken, 3),
    call("log", kFunctionToken, 4),
    call("floor", kFunctionToken, 5),
    call("ceil", kFunctionToken, 6),
    {"not", kFunctionToken, 7, FormulaForm::kPrefix, kNotStrength},
};

std::string numberMark(int slot) {
  return "#" + std::to_string(slot);
}

const FieldDefinition& fieldAt(const DatabaseRecord& schema, int slot) {
  return schema.fields[static_cast<std::size_t>(slot)];
}

// Whether a formula can call the field by its name alone.
bool hasOwnName(const DatabaseRecord& schema, int slot) {
  const std::string name = fieldName(fieldAt(schema, slot));
  if (name.empty() || !isValidType(fieldAt(schema, slot).type)) return false;
  for (int other = 0; other < kFieldSlots; ++other) {
    if (other == slot || !isValidType(fieldAt(schema, other).type)) continue;
    if (fieldName(fieldAt(schema, other)) == name) return false;
  }
  return true;
}

}  // namespace

std::span<const FormulaWord> formulaWords() {
  return kWords;
}

const FormulaWord* formulaWordOfCode(std::uint8_t token_class, std::uint8_t code) {
  const auto* word = std::find_if(std::begin(kWords), std::end(kWords), [&](const auto& entry) {
    return entry.token_class == token_class && entry.code == code;
  });
  return word == std::end(kWords) ? nullptr : word;
}

const FormulaWord* formulaWordOfText(std::string_view text) {
  const auto* word = std::find_if(std::begin(kWords), std::end(kWords), [&](const auto& entry) {
    return compareAnyCase(entry.text, text) == 0;
  });
  return word == std::end(kWords) ? nullptr : word;
}

bool beginsWord(char c) {
  const char lower = lowerCase(c);
  return (lower >= 'a' && lower <= 'z') || c == '_' || static_cast<unsigned char>(c) >= 128;
}

bool isInWord(char c) {
  return beginsWord(c) || isDigit(c);
}

std::size_t formulaNumberLength(std::string_view text) {
  std::size_t at = 0;
  const auto skipDigits = [&] {
    const std::size_t begin = at;
    while (at < text.size() && isDigit(text[at])) ++at;
    return at - begin;
  };
  std::size_t digits = skipDigits();
  if (at < text.size() && text[at] == '.') {
    ++at;
    digits += skipDigits();
  }
  if (digits == 0) return 0;
  if (at < text.size() && lowerCase(text[at]) == 'e') {
    const std::size_t mark = at++;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    if (skipDigits() == 0) at = mark;
  }
  return at;
}

std::uint8_t constantClass(std::string_view number) {
  std::int32_t value = 0;
  const char* end = number.data() + number.size();
  const auto read = std::from_chars(number.data(), end, value);
  return read.ec == std::errc{} && read.ptr == end ? kIntegerToken : kFloatToken;
}

std::string formulaFieldName(const DatabaseRecord& schema, int slot) {
  std::string name = fieldName(fieldAt(schema, slot));
  if (hasOwnName(schema, slot)) return name;
  return name.empty() ? numberMark(slot) : name + ' ' + numberMark(slot);
}

std::vector<int> formulaFieldsOfName(const DatabaseRecord& schema, std::string_view name) {
  std::vector<int> exact;
  std::vector<int> similar;
  std::vector<int> numbered;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    const std::string own = fieldName(fieldAt(schema, slot));
    if (isValidType(fieldAt(schema, slot).type) && !own.empty()) {
      if (own == name) exact.push_back(slot);
      if (compareAnyCase(own, name) == 0) similar.push_back(slot);
    }
    const std::string number = numberMark(slot);
    std::string_view rest = name;
    if (rest.starts_with(own + ' ')) rest.remove_prefix(own.size() + 1);
    if (rest == number) numbered.push_back(slot);
  }
  if (!exact.empty()) return exact;
  return numbered.empty() ? similar : numbered;
}

std::vector<std::string> formulaFieldNames(const DatabaseRecord& schema) {
  std::vector<std::string> names;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    if (!isValidType(fieldAt(schema, slot).type)) continue;
    names.push_back(formulaFieldName(schema, slot));
  }
  return names;
}

std::string bracketed(std::string_view name) {
  const bool plain = !name.empty() && beginsWord(name.front()) &&
                     std::all_of(name.begin(), name.end(), isInWord) && !formulaWordOfText(name) &&
                     compareAnyCase(name, kPreviousWord) != 0;
  if (plain) return std::string(name);
  std::string text = "[";
  for (const char c : name) {
    text += c;
    if (c == ']') text += ']';
  }
  return text + ']';
}

}  // namespace tabelion
