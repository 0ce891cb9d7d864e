// Rows that an import could not take: for people, and as a file to be put right and imported again.
#pragma once

#include <string>
#include <vector>

#include "interchange/table_import.h"

namespace tabelion {

// A line for all rows that one fault of one column keeps out:
// `lines 3, 5, 8 and 997 more: Group: "Chess" is not an item of the list; likewise "Go"`.
std::vector<std::string> faultLines(const std::vector<RefusedRow>& refused);

// The rows as they were, with what is wrong with them in one more column, kReasonColumn.
std::string refusedTable(const ImportSummary& summary);

}  // namespace tabelion
