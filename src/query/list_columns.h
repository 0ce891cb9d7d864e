// Which fields a list has as columns, and in which order.
#pragma once

#include <vector>

#include "engine/database_record.h"

namespace tabelion {

// The slots in display order whose fields exist. A file may name a slot twice; the first counts.
std::vector<int> slotsInDisplayOrder(const DatabaseRecord& schema);

// Those that a list shows: with a column width, and of a type that has a text for a list.
std::vector<int> listedSlots(const DatabaseRecord& schema);

}  // namespace tabelion
