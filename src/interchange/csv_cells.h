// Table cells as CSV, written straight to the output.
#pragma once

#include <string_view>

#include "interchange/output_buffer.h"
#include "interchange/table_rows.h"

namespace tabelion {

// A text in UTF-8, in quotes where it needs them or is empty.
void putCsvText(OutputBuffer& to, std::string_view text, char delimiter = ',');

// The cell of a column in the current row. One that is a line by itself is in quotes when it is
// empty: a line of nothing would be no row.
void putCsvCell(OutputBuffer& to, TableRows& rows, std::size_t column, bool is_line);

}  // namespace tabelion
