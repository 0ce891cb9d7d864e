// The records that a command shows: those that the window would, in its order.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"
#include "query/query_settings.h"

namespace tabelion {

struct ShownOptions {
  std::string view;                 // instead of the current one
  std::vector<std::string> filter;  // conditions, instead of the view's
  std::string sort;                 // levels, instead of the view's
};

// Makes the database what the window would make of it, so it is a copy that must not be saved:
// the records in order, Database::record_index those that pass the filter.
Status showRecords(Database& database, const TextEncoding& encoding, const QuerySettings& settings,
                   const ShownOptions& options);

// The slots of the fields named, "Name,Born", that have a value to show; each once.
Result<std::vector<int>> chooseColumns(const Database& database, const TextEncoding& encoding,
                                       std::string_view names);

// The number that a record has in the file, from 1, wherever showRecords put it.
std::uint32_t recordNumber(const Database& database, std::uint32_t position);

}  // namespace tabelion
