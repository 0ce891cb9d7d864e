// Storing the results of calculated fields in the records.
#pragma once

#include <cstdint>
#include <functional>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "query/query_settings.h"

namespace tabelion {

// Told of each record and field whose formula is corrupt.
using CorruptFormula = std::function<void(std::uint32_t position, int slot)>;

// Computes one field of the record at `position` and stores the text. 0, or -1 when there is no
// such record. A record that is enciphered for the field is left alone.
int recomputeField(Database& database, int slot, std::uint32_t position,
                   const QuerySettings& settings, const CorruptFormula& corrupt = {});

// Every calculated field of one record that is being saved, in display order, in its copy.
// `position` is where the record stands or will stand: the previous record is looked for before it.
void recomputeRecord(const Database& database, UnpackedRecord& record, std::uint32_t position,
                     const QuerySettings& settings, const CorruptFormula& corrupt = {});

struct RecomputeSummary {
  std::uint32_t records = 0;  // whose stored bytes changed
  std::uint64_t values = 0;   // that changed
  std::uint64_t corrupt = 0;  // that a corrupt formula gave
};
// Every calculated field of every record that passes the filter, with the part that the
// sort-pending flag has in it: may sort before and after. Marks the database dirty when anything
// changed.
RecomputeSummary recomputeAll(Database& database, const QuerySettings& settings,
                              const CorruptFormula& corrupt = {});

}  // namespace tabelion
