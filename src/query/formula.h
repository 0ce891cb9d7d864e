// Calculated fields: postfix formulas over constants and other fields of the same record or of the
// one before, worked out by a small stack machine in double precision.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "query/field_text.h"
#include "query/format_settings.h"

namespace tabelion {

inline constexpr std::string_view kFormulaErrorText =
    "Formula is invalid or corrupt, please verify";

// Token classes, stored in files: never renumber. Tokens of other classes are kept and do nothing.
enum TokenClass : std::uint8_t {
  kFunctionToken = 0,
  kOperatorToken = 1,
  kIntegerToken = 3,
  kFloatToken = 4,
  kFieldToken = 5,
};

// Decimals of a result's stored text by its kind.
int resultDecimals(int result_kind);

// The field that a field token names: k >= 1 is slot k - 1 of this record, v < 0 slot -v - 1 of the
// previous one. None for 0 and for slots that there are not; such a token stands for 0.
struct FieldReference {
  int slot = 0;
  bool previous = false;
  bool operator==(const FieldReference&) const = default;
};
std::optional<FieldReference> fieldReference(std::int8_t token_value);

// A formula ready to be evaluated, its constants as numbers; one that is not there is 0.
struct Formula {
  struct Token {
    std::uint8_t token_class = 0;
    std::int8_t value = 0;  // code of a function or operator, fieldReference of a field
    double number = 0;      // of a constant
  };
  std::vector<Token> tokens;
  int result_kind = 0;
};
Formula decodeFormula(const DatabaseRecord& schema, int slot, const FormatSettings& formats);
inline Formula decodeFormula(const Database& database, int slot, const FormatSettings& formats) {
  return decodeFormula(database.schema, slot, formats);
}

// The number that formulas see in a stored value in clear:
//   2, 6, 10      the number, that of type 10 without a sign     11   the record it points to
//   5             0 or 1        8   the day count        9   seconds since midnight, no time 0
//   4             the number that the item's text starts with, 0 when it starts with none
//   1, 3, 12, 14, 15, 17   the number that the text starts with; of a result its stored text, so
//                 a date is its day count here too, and a time its seconds
//   others        0
// A lookup field has the number that the text it shows starts with: it needs its record.
double formulaNumber(const FieldDefinition& field, const FieldRecord& items, ByteView value,
                     const FormatSettings& formats);

// A formula's result: the value at the bottom of the stack, the first one pushed, also when others
// are left above it; 0 without any. A formula that takes values that are not there, or holds more
// than kFormulaStackSize at once, is corrupt and gives -1.
inline constexpr std::size_t kFormulaStackSize = 16;
struct FormulaResult {
  double value = 0;
  bool corrupt = false;
};

// `previous` is the nearest record before this one that passes the filter; empty: there is none.
// Values that are absent or enciphered count as 0.
FormulaResult evaluateFormula(const Formula& formula, const Database& database, ByteView record,
                              ByteView previous, const FormatSettings& formats,
                              const LookupText* lookup = nullptr);

// The stack machine alone: `operands[i]` is the number of token i where that is a field.
FormulaResult runFormula(const Formula& formula, const double* operands);

// Whether the formula is corrupt: that does not depend on the values.
bool isCorrupt(const Formula& formula);

// Whether the formula, directly or through any calculated field that it refers to, uses another
// record. A formula that runs into a circle counts as one that does: it has no value of its own.
bool usesOtherRecords(const Database& database, int slot);

// The slots of a circle that the formula of `slot` runs into, in order, the first one repeated at
// the end; empty when there is none. A field of the previous record closes no circle: a balance may
// build on the balance before it.
std::vector<int> formulaCircle(const DatabaseRecord& schema, int slot);
inline std::vector<int> formulaCircle(const Database& database, int slot) {
  return formulaCircle(database.schema, slot);
}

}  // namespace tabelion
