// Formulas as people read and write them: "Price * Quantity", "previous(Balance) + Amount".
//
//   or, xor  and  not  = <> < > <= >=  + -  * / mod  ^  unary -      (binding tighter and tighter)
//   functions: sqrt sin cos ln log floor ceil not (one value), min max avg (two), previous(Field)
//   fields by name; a name that is no plain word, or is one of the words above, stands in [ ]
//   numbers with a decimal point
//
// Words are read in any case. A formula holds at most 11 tokens and 30 bytes of constants.
#pragma once

#include <string>
#include <string_view>

#include "engine/database_record.h"
#include "engine/schema_places.h"
#include "platform/result.h"

namespace tabelion {

// Texts in the database's code page. The Error names the position in the text, from 1.
Result<StoredFormula> parseFormula(std::string_view text, const DatabaseRecord& schema,
                                   int result_kind);

// The text of a stored formula, with no more parentheses than needed; parsing it gives the same
// tokens. An Error for a formula that has no such form (corrupt, or more than one result).
Result<std::string> formulaText(const StoredFormula& formula, const DatabaseRecord& schema);

}  // namespace tabelion
