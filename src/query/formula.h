// Calculated fields: postfix formulas over constants and other fields of the same record or of the
// one before, worked out by a small stack machine in double precision.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "query/filter.h"
#include "query/query_settings.h"

namespace tabelion {

inline constexpr std::string_view kFormulaErrorText =
    "Formula is invalid or corrupt, please verify";

// Token classes, stored in files: never renumber. Others are kept and do nothing.
enum TokenClass : std::uint8_t {
  kFunctionToken = 0,
  kOperatorToken = 1,
  kIntegerToken = 3,
  kFloatToken = 4,
  kFieldToken = 5,
};

// Decimals of a result's stored text by its kind.
int resultDecimals(int result_kind);

// A formula ready to be evaluated, its constants as numbers.
struct Formula {
  struct Token {
    std::uint8_t token_class = 0;
    std::int8_t value = 0;  // code of a function or operator; field: k >= 1 slot k - 1 of this
                            // record, v < 0 slot -v - 1 of the previous one
    double number = 0;      // of a constant
  };
  std::vector<Token> tokens;
  int result_kind = 0;
};
Formula decodeFormula(const Database& database, int slot, const FormatSettings& formats);

// A formula's result. A formula that asks for values that are not there is corrupt and gives -1.
struct FormulaResult {
  double value = 0;
  bool corrupt = false;
};
// `previous` is the nearest record before this one that passes the filter; empty: there is none.
FormulaResult evaluateFormula(const Formula& formula, const Database& database, ByteView record,
                              ByteView previous, const FormatSettings& formats);

// Whether the formula, directly or through any field that it refers to, uses another record.
// A formula that refers to itself in a circle counts as one that does: it has no value of its own.
bool usesOtherRecords(const Database& database, int slot);

// The slots of a circle that the formula of `slot` runs into, in order, the first one repeated at
// the end; empty when there is none.
std::vector<int> formulaCircle(const Database& database, int slot);

}  // namespace tabelion
