// The words of formulas as people write them, for the parser and the printer. Internal to query/.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database_record.h"

namespace tabelion {

// How tight an expression holds together; a looser one inside a tighter one needs parentheses.
enum FormulaStrength : int {
  kOrStrength,
  kAndStrength,
  kNotStrength,
  kCompareStrength,  // does not chain
  kSumStrength,
  kProductStrength,
  kPowerStrength,  // from the right: a ^ b ^ c is a ^ (b ^ c)
  kSignStrength,
  kTightest,
};

enum class FormulaForm : std::uint8_t { kInfix, kPrefix, kCall };

// An operator or function: how it is written and what it is stored as.
struct FormulaWord {
  std::string_view text;
  std::uint8_t token_class;
  std::uint8_t code;
  FormulaForm form;
  FormulaStrength strength;
};
std::span<const FormulaWord> formulaWords();
const FormulaWord* formulaWordOfCode(std::uint8_t token_class, std::uint8_t code);
// In any case of its letters. "-" is the operator of two values here.
const FormulaWord* formulaWordOfText(std::string_view text);

inline constexpr std::string_view kPreviousWord = "previous";

// Whether a byte may begin a plain word, or stand in one. Bytes from 128 on are letters.
bool beginsWord(char c);
bool isInWord(char c);

// The length of the number without a sign at the start of a text; 0 when there is none.
std::size_t formulaNumberLength(std::string_view text);
// What a number is stored as: whole ones of 32 bits as integers, all others as floats.
std::uint8_t constantClass(std::string_view number);

// What formulas call a field: its name, or "NAME #SLOT" when other fields have the name too or the
// slot is unused, "#SLOT" without a name.
std::string formulaFieldName(const DatabaseRecord& schema, int slot);
// The slots that a name may mean: the one that has exactly this name, else those that have it in
// any case of its letters.
std::vector<int> formulaFieldsOfName(const DatabaseRecord& schema, std::string_view name);
// The names of all fields that are in use.
std::vector<std::string> formulaFieldNames(const DatabaseRecord& schema);

// The name as it stands in a formula: in brackets unless it is a plain word without another
// meaning; a "]" in it is doubled.
std::string bracketed(std::string_view name);

}  // namespace tabelion
