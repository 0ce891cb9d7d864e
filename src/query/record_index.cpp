#include "query/record_index.h"

#include "query/recompute.h"
#include "query/sort.h"

namespace tabelion {

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
  sortRecords(database, settings.formats, followed);
  recomputeDependents(database, settings);
}

}  // namespace tabelion
