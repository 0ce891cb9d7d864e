// Which records a screen shows, and in which order.
#pragma once

#include <numeric>

#include "engine/database.h"

namespace tabelion {

// Every record, in database order.
inline void rebuildRecordIndex(Database& database) {
  database.record_index.resize(database.records.count());
  std::iota(database.record_index.begin(), database.record_index.end(), 0u);
  database.needs_refresh = false;
}

}  // namespace tabelion
