// Calculated fields, as create, import and recalc work them out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/kit/context.h"
#include "query/recompute.h"

namespace tabelion {

struct CorruptField {
  int slot = 0;
  std::uint32_t first_position = 0;
  std::uint64_t values = 0;  // that became -1
};

struct RecomputeOutcome {
  RecomputeSummary summary;
  std::vector<CorruptField> corrupt;  // in the order in which they were met
};

// All records within the filter.
RecomputeOutcome recomputeRecords(CliContext& context, const TextEncoding& encoding,
                                  Database& database);

// A message for each corrupt formula.
void sayCorrupt(CliContext& context, const std::string& file, const TextEncoding& encoding,
                const Database& database, const RecomputeOutcome& outcome);

}  // namespace tabelion
