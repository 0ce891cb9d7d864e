#include "query/record_index.h"

#include <algorithm>

#include "query/formula.h"
#include "query/recompute.h"
#include "query/sort.h"

namespace tabelion {
namespace {

// Sorting moves records but not their bytes, so these tell which one it was.
void sortFollowing(Database& database, const FormatSettings& formats, std::uint32_t* followed) {
  const RecordStore& records = database.records;
  const bool follows = followed && *followed < records.count();
  const std::uint8_t* bytes = follows ? records[*followed].bytes().data() : nullptr;
  sortRecords(database, formats);
  if (!bytes) return;
  const auto found = std::find_if(records.begin(), records.end(), [bytes](const Record& record) {
    return record.bytes().data() == bytes;
  });
  *followed = static_cast<std::uint32_t>(found - records.begin());
}

}  // namespace

void refreshRecordIndex(Database& database, const QuerySettings& settings, const LinkFilter* link,
                        std::uint32_t* followed) {
  if (database.schema.sort_pending != 0) {
    sortAndRecompute(database, settings, followed);
    database.schema.sort_pending = 0;
  }
  rebuildFilterIndex(database, settings, link);
  database.needs_refresh = false;
}

void sortAndRecompute(Database& database, const QuerySettings& settings, std::uint32_t* followed) {
  sortFollowing(database, settings.formats, followed);
  recomputeDependents(database, settings);
}

void recomputeDependents(Database& database, const QuerySettings& settings) {
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    if (database.schema.fields[static_cast<std::size_t>(slot)].type != kCalculated ||
        !usesOtherRecords(database, slot)) {
      continue;
    }
    recomputeAll(database, settings);
    return;
  }
}

}  // namespace tabelion
