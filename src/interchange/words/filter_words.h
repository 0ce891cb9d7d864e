// Filters as people write them: up to six conditions, each
//
//   [and | or] [(] [not] FIELD OPERATOR VALUE [)]
//
//   text, link          contains TEXT · is empty
//   integer, number     between A and B · = · <= · >= · < · >
//   pop-up              is ITEM · is empty
//   check box           is checked · is unchecked
//   date                is RANGE, as "is last 30 days" · between · = · <= · >= · < · > · is empty
//   time                between · = · <= · >= · < · > · is empty
//   duration            between · =
//
// "is not" and "!=" say the same as "not" before the field. Dates are ISO dates, numbers have a
// point. One text may hold several conditions; a text or item without quotes then goes on to the
// "and" or "or" that another condition follows. Conditions without either are joined by "and".
#pragma once

#include <array>
#include <string>
#include <vector>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"
#include "query/filter.h"

namespace tabelion {

using FilterCriteria = std::array<FilterBlock, kFilterCriteria>;

// The conditions (UTF-8) as criteria; those that are not needed are off. The error names the place
// and what was expected there.
Result<FilterCriteria> filterOfWords(const Database& database, const TextEncoding& encoding,
                                     const std::vector<std::string>& conditions);

// The criteria that are on, a text for each, which give an equal filter when they are read again.
// One on a field that cannot be filtered by reads "FIELD is anything", which is refused then.
std::vector<std::string> wordsOfFilter(const Database& database, const TextEncoding& encoding,
                                       const FilterCriteria& criteria);

}  // namespace tabelion
