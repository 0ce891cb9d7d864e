// Table cells as CSV, written straight to the output.
#pragma once

#include <string_view>

#include "interchange/output_buffer.h"
#include "interchange/table_rows.h"

namespace tabelion {

// A text in UTF-8, in quotes where it needs them or is empty.
void putCsvText(OutputBuffer& to, std::string_view text, char delimiter = ',');

// Whether a spreadsheet would take the text for a formula.
bool looksLikeFormula(std::string_view text);

// The cell of a column in the current row. One that is a line by itself is in quotes when it is
// empty: a line of nothing would be no row.
//
// With `is_safe` a text that looks like a formula gets an apostrophe in front of it, with which a
// spreadsheet takes it for the text that it is; numbers stay.
void putCsvCell(OutputBuffer& to, TableRows& rows, std::size_t column, bool is_line,
                bool is_safe = false);

}  // namespace tabelion
