// Storing, adding and deleting records the way a form does: completed, calculated, in their place.
//
// None of these asks for access rights; callers do. Each leaves running totals of all records right
// for the order that stands, and marks the database dirty. The order of the other records stays:
// the one that is stored is put in its place among them. The list of records shown
// (Database::record_index) is the caller's to refresh.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "query/filter.h"
#include "query/query_settings.h"
#include "query/recompute.h"

namespace tabelion {

// Fills dates and times that were left empty with today and the present time where the field's
// default says so: dates with option 2 or 3, times with option 2.
void fillDefaults(const DatabaseRecord& schema, UnpackedRecord& record, const CalendarTime& now);

// Stores `record` in place of the one at `position`, or as a new one for kNoPosition. In order:
// modification time (where the database keeps it) or auto-numbers and a fresh stamp, the defaults
// above, calculated fields, the place in the sort order. Returns where the record stands then;
// kNoPosition, with nothing changed, when it is too long or the database is full.
std::uint32_t storeRecord(Database& database, Engine& engine, std::uint32_t position,
                          UnpackedRecord record, const QuerySettings& settings,
                          const CorruptFormula& corrupt = {});

// Deletes the records at these positions (any order, each once).
void deleteRecords(Database& database, std::vector<std::uint32_t> positions,
                   const QuerySettings& settings);

// Which records a group deletion takes.
enum class RecordGroup { kWithinFilter, kOutsideFilter, kAll };
std::vector<std::uint32_t> positionsOfGroup(const Database& database, RecordGroup group,
                                            const QuerySettings& settings,
                                            const LinkFilter* link = nullptr);

}  // namespace tabelion
