// Storing the results of calculated fields in the records.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "query/query_settings.h"

namespace tabelion {

// Told of each record and field whose formula is corrupt. Such a formula's result is -1.
using CorruptFormula = std::function<void(std::uint32_t position, int slot)>;

// The text that is stored for a result: with the decimals of its kind, at most 16 characters.
std::string resultText(double value, int result_kind, const FormatSettings& formats);

// Computes one field of the record at `position` and stores the text. 0, or -1 when there is no
// such record. A record that is enciphered for the field is left alone, as is one whose text would
// be the same: its bytes stay where they are. Sets the field's mark in Database::selected and the
// database dirty when the text is another one.
int recomputeField(Database& database, int slot, std::uint32_t position,
                   const QuerySettings& settings, const CorruptFormula& corrupt = {});

// Every calculated field of one record that is being saved, in its copy. `position` is where the
// record stands or will stand: the previous record is looked for before it.
// Compat: in display order, so that a formula sees the value of before of a field that comes later
// in the form (Recompute.ASavedRecordIsWorkedOutInDisplayOrder).
void recomputeRecord(const Database& database, UnpackedRecord& record, std::uint32_t position,
                     const QuerySettings& settings, const CorruptFormula& corrupt = {});

struct RecomputeSummary {
  std::uint32_t records = 0;  // whose stored bytes changed
  std::uint64_t values = 0;   // that changed
  std::uint64_t corrupt = 0;  // that a corrupt formula gave
  std::uint32_t outside = 0;  // records left as they are, since they do not pass the filter
};
// Every calculated field of every record that passes the filter, each field after those that it
// refers to. Marks the database dirty when anything changed. Does nothing in a database without
// fields of types 15 and 17.
//
// Has a part in keeping the order: when a sort level uses a field of type 15 or 17, the order is
// stale afterwards and the records are sorted at the end. Otherwise, when the sort-pending flag
// says that the order is stale already, they are sorted first: values of the previous record are
// those of the record that will be shown before. The flag is off in the end. Running totals are
// those of the order in the end. `followed`, when given, is a record's position and stays that
// record's.
RecomputeSummary recomputeAll(Database& database, const QuerySettings& settings,
                              const CorruptFormula& corrupt = {},
                              std::uint32_t* followed = nullptr);

// The calculated fields whose values come from other records too (running totals), of every record
// that passes the filter, for the order that stands. Needed whenever records came, went or moved,
// or the filter changed; costs nothing in a database that has no such field. Never sorts.
RecomputeSummary recomputeDependents(Database& database, const QuerySettings& settings,
                                     const CorruptFormula& corrupt = {});

// Every calculated field of the records from `first` on, which were just added, whether they pass
// the filter or not. Leaves the order to recomputeAll.
RecomputeSummary recomputeAdded(Database& database, std::uint32_t first,
                                const QuerySettings& settings, const CorruptFormula& corrupt = {});

}  // namespace tabelion
