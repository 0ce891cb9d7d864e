// Texts and table cells as JSON, written straight to the output.
#pragma once

#include <string_view>

#include "interchange/output_buffer.h"
#include "interchange/table_rows.h"

namespace tabelion {

// A text in UTF-8, in quotes; bytes that are not UTF-8 become U+FFFD.
void putJsonText(OutputBuffer& to, std::string_view text);

// The cell of a column in the current row: null for no value, true and false for a check box, a
// number where the column holds numbers and the text is one to JSON too, else a text.
void putJsonCell(OutputBuffer& to, TableRows& rows, std::size_t column);

}  // namespace tabelion
