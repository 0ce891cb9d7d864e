// Which records a screen shows, and in which order: bringing that up to date.
#pragma once

#include <cstdint>

#include "engine/database.h"
#include "query/filter.h"
#include "query/query_settings.h"

namespace tabelion {

// Lists the records that pass the filter anew (Database::record_index). When the database says that
// its order is stale, the records are sorted first and what depends on the order is worked out
// again. `followed`, when given, is a record's position and stays that record's through all this.
void refreshRecordIndex(Database& database, const QuerySettings& settings,
                        const LinkFilter* link = nullptr, std::uint32_t* followed = nullptr);

// Sorts all records and works out what depends on the order; the list of records shown stays.
void sortAndRecompute(Database& database, const QuerySettings& settings,
                      std::uint32_t* followed = nullptr);

}  // namespace tabelion
