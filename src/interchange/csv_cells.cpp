#include "interchange/csv_cells.h"

#include <string>

#include "interchange/csv_reader.h"

namespace tabelion {
namespace {

void putQuoted(OutputBuffer& to, std::string_view text) {
  to.put('"');
  for (;;) {
    const std::size_t quote = text.find('"');
    to.put(text.substr(0, quote));
    if (quote == std::string_view::npos) break;
    to.put("\"\"");
    text.remove_prefix(quote + 1);
  }
  to.put('"');
}

}  // namespace

void putCsvText(OutputBuffer& to, std::string_view text, char delimiter) {
  if (text.empty() || csvNeedsQuotes(text, delimiter)) {
    putQuoted(to, text);
  } else {
    to.put(text);
  }
}

bool looksLikeFormula(std::string_view text) {
  constexpr std::string_view kStarts = "=+-@\t\r";
  return !text.empty() && kStarts.find(text.front()) != std::string_view::npos;
}

void putCsvCell(OutputBuffer& to, TableRows& rows, std::size_t column, bool is_line, bool is_safe) {
  const CellText cell = rows.cell(column);
  if (is_line && cell.text.empty()) return putQuoted(to, {});
  if (cell.is_plain) return to.put(cell.text);
  if (is_safe && looksLikeFormula(cell.text)) {
    return putCsvText(to, std::string(1, '\'').append(rows.utf8(cell)));
  }
  if (csvNeedsQuotes(cell.text)) {
    putQuoted(to, rows.utf8(cell));
  } else {
    rows.putUtf8(to, cell);
  }
}

}  // namespace tabelion
