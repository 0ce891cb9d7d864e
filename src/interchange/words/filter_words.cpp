#include "interchange/words/filter_words.h"

#include "interchange/words/criterion_words.h"

namespace tabelion {

std::vector<std::string> wordsOfFilter(const Database& database, const TextEncoding& encoding,
                                       const FilterCriteria& criteria) {
  const FormatSettings formats = isoSettings();
  std::vector<std::string> conditions;
  std::size_t open_groups = 0;
  for (const FilterBlock& criterion : criteria) {
    if (criterion.enabled == 0) continue;
    std::string words;
    if (!conditions.empty()) words = (criterion.mode & kFilterOr) != 0 ? "or " : "and ";
    if ((criterion.grouping & kFilterOpens) != 0) {
      words += '(';
      ++open_groups;
    }
    if ((criterion.mode & kFilterNot) != 0) words += "not ";
    words += fieldWords(database, encoding, criterion.field);
    words += ' ' + criterionWords(database, encoding, criterion, formats);
    // A bracket that closes nothing does nothing.
    if ((criterion.grouping & kFilterCloses) != 0 && open_groups > 0) {
      words += ')';
      --open_groups;
    }
    conditions.push_back(std::move(words));
  }
  // What is left open runs to the end.
  if (!conditions.empty()) conditions.back().append(open_groups, ')');
  return conditions;
}

}  // namespace tabelion
