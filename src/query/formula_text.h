// Formulas as people read and write them: "Price * Quantity", "previous(Balance) + Amount".
//
//   or xor   and   not   = <> < > <= >=   + -   * / mod   ^   unary -   (tighter and tighter)
//   functions: sqrt sin cos ln log floor ceil (one value), min max avg (two), previous(Field)
//   fields by name; numbers with a decimal point
//
// Operators of one strength go from the left, ^ from the right; comparisons do not chain, write
// (a < b) = c. "not a = b" is not (a = b); on the right of an operator not(a) is a function too.
// "-a ^ b" is (-a) ^ b. Words are read in any case, names too where only one field can be meant.
//
// A name that is no plain word (letters, digits and "_", beginning with no digit), or is one of
// the words above, stands in brackets, where a "]" is doubled: [Warranty until], [a]]b]. A field
// that shares its name with others is [NAME #SLOT], one without a name [#SLOT].
//
// What comes of it: whole numbers of 32 bits are integer constants, all others float constants,
// each kept as it is written, with its minus sign; "-x" is 0 - x. Constants are numbered in order
// of use, each text once. A formula holds at most 11 tokens and 30 bytes of constants, each with
// its NUL.
#pragma once

#include <string>
#include <string_view>

#include "engine/database_record.h"
#include "engine/schema_places.h"
#include "platform/result.h"

namespace tabelion {

// Texts, that of the Error too, are in the database's code page. The Error names the column in the
// text, from 1: column 7: there is no field called "Prise"; is "Price" meant? A blank text is a
// formula without tokens, whose result is 0.
Result<StoredFormula> parseFormula(std::string_view text, const DatabaseRecord& schema,
                                   int result_kind);

// The text of a stored formula, with no more parentheses than needed; parsing it gives the
// formula's normal form. An Error says why a formula has no text: it is corrupt, leaves more than
// one result, or holds codes or constants that no text gives.
Result<std::string> formulaText(const StoredFormula& formula, const DatabaseRecord& schema);

// The same formula with its constants numbered in order of use, each text once.
StoredFormula normalFormula(const StoredFormula& formula);

}  // namespace tabelion
