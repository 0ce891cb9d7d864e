// One criterion of the filter while it is edited: what the controls of the dialog say, and its way
// from and to the stored form. Values that were not touched keep their bytes, whatever they are.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/stored_value.h"
#include "interchange/words/criterion_words.h"
#include "query/query_settings.h"

namespace tabelion {

struct CriterionDraft {
  bool enabled = false;
  bool is_or = false;
  bool opens = false;
  bool negated = false;
  bool closes = false;
  int slot = 0;
  CriterionTexts texts;     // UTF-8
  PopupKey item{};          // of a pop-up field; zeros for "No Value"
  std::uint32_t check = 1;  // what a check box must be
  int range = 0;            // of dates (query/date_range.h)
  std::string count;        // the X of such a range
  bool operator==(const CriterionDraft&) const = default;
};

CriterionKind kindOfSlot(const Database& database, int slot);

// What is needed to read and write the values of a database's criteria.
struct CriterionContext {
  const Database& database;
  const TextEncoding& encoding;
  const QuerySettings& settings;
};

CriterionDraft draftOf(const CriterionContext& context, const FilterBlock& criterion);
// The same about another field. What was typed stays where the new field takes such values too,
// else it asks for any value.
CriterionDraft withField(const Database& database, CriterionDraft draft, int slot);

// The box of a draft whose text is no value, and a sentence about it (UTF-8).
struct DraftFault {
  enum class Box { kFirst, kSecond, kCount } box;
  std::string sentence;
};
// Stores what differs from the criterion as it stands. Nothing is stored with a fault.
std::optional<DraftFault> storeDraft(const CriterionContext& context, const CriterionDraft& draft,
                                     FilterBlock& criterion);

// What the draft means today where its boxes do not say it: the days of a named range, that an
// empty text asks for empty fields (UTF-8). Empty where there is nothing to say.
std::string explanationOf(const CriterionContext& context, const CriterionDraft& draft);

}  // namespace tabelion
