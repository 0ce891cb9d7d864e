// Statistics over one field of the records that pass the filter, as the text that people see.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "query/filter.h"
#include "query/query_settings.h"

namespace tabelion {

inline constexpr std::string_view kNoReportFieldText =
    "You must first select a field to run the report on!";

// The slots that a report can be run on, in field order.
std::vector<int> reportFields(const DatabaseRecord& schema);

// The whole text with its line ends (CR LF), in the database's code page. A field of a type without
// a report gives an empty text.
std::string runReport(const Database& database, int slot, const QuerySettings& settings,
                      const LinkFilter* link = nullptr);

}  // namespace tabelion
