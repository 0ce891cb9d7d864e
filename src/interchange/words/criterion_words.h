// One criterion of a filter in words, and as the texts that a person sees and types in the boxes
// of a dialog: "Date" "is Last 30 days", from "5/17/2024" to "". Texts are UTF-8. Dates, times and
// numbers are written and read by the formats handed in: the user's on screens, isoSettings() at
// the command line.
#pragma once

#include <optional>
#include <string>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "interchange/words/criterion_values.h"

namespace tabelion {

// The field's name as an export has it; in quotes unless it is a name of plain words that say
// nothing else in a condition.
std::string fieldWords(const Database& database, const TextEncoding& encoding, int slot);

// What the criterion asks of its field, without NOT, AND and brackets: `contains "salt"`,
// `is Last 30 days`, `between 2 and 7`, `> 5`, `is checked`.
std::string criterionWords(const Database& database, const TextEncoding& encoding,
                           const FilterBlock& criterion, const FormatSettings& formats);

// What stands in the boxes of a criterion: for a text what must be contained in the first, for
// numbers, dates and times the lowest and the highest value, an empty box where there is no such
// end. Items, check boxes and named ranges of dates are chosen, not typed, and have no texts.
struct CriterionTexts {
  std::string first;
  std::string second;
  bool operator==(const CriterionTexts&) const = default;
};
CriterionTexts criterionTexts(CriterionKind kind, const TextEncoding& encoding,
                              const FilterBlock& criterion, const FormatSettings& formats);

// Stores what was typed in the boxes; of a date as days of one's own. What is no value is named,
// `"2/30/2024" is not a date such as 5/17/2024`, and nothing is stored then. Nor is a range that
// holds nothing.
struct TypedFault {
  bool in_second = false;
  std::string sentence;
};
std::optional<TypedFault> storeCriterionTexts(CriterionKind kind, const TextEncoding& encoding,
                                              const CriterionTexts& typed,
                                              const FormatSettings& formats,
                                              FilterBlock& criterion);

}  // namespace tabelion
