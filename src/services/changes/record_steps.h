// What people do to records, each as one step of a history. None asks for access rights; the list
// of records shown is the caller's to refresh.
#pragma once

#include <cstdint>
#include <vector>

#include "query/record_change.h"
#include "services/changes/history.h"

namespace tabelion {

// storeRecord as "New record" or "Edit of record". Where the record stands then; kNoPosition when
// it was not stored.
std::uint32_t StoreRecord(History& history, ChangeTarget target, Engine& engine,
                          std::uint32_t position, UnpackedRecord record,
                          const QuerySettings& settings, const CorruptFormula& corrupt = {});

// Puts other bytes, which are not longer than a record may be, in the place of a record's.
void ReplaceRecord(History& history, ChangeTarget target, std::string name, std::uint32_t position,
                   ByteView bytes);

// "Delete of record" or "Delete of 312 records". Positions are in any order, each once. The current
// record stays the current one; when it goes, the one before it takes its place.
void DeleteRecords(History& history, ChangeTarget target, std::vector<std::uint32_t> positions,
                   const QuerySettings& settings);

// The same for the records within the filter, outside it, or all. How many there were.
std::size_t DeleteRecordGroup(History& history, ChangeTarget target, RecordGroup group,
                              const QuerySettings& settings, const LinkFilter* link = nullptr);

}  // namespace tabelion
