#include "interchange/csv_cells.h"

#include <array>

#include "interchange/csv_reader.h"

namespace tabelion {
namespace {

constexpr std::uint8_t kCsvSpecial = 1;
constexpr std::uint8_t kNotAscii = 2;
constexpr std::array<std::uint8_t, 256> kCharacterKinds = [] {
  std::array<std::uint8_t, 256> kinds{};
  for (const unsigned char c : {',', '"', '\n', '\r'}) kinds[c] = kCsvSpecial;
  for (std::size_t c = 0x80; c < kinds.size(); ++c) kinds[c] = kNotAscii;
  return kinds;
}();

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

void putCsvCell(OutputBuffer& to, TableRows& rows, std::size_t column, bool is_line) {
  const CellText cell = rows.cell(column);
  if (is_line && cell.text.empty()) return putQuoted(to, {});
  if (cell.is_plain) return to.put(cell.text);
  std::uint8_t kinds = 0;
  for (const char c : cell.text) kinds |= kCharacterKinds[static_cast<unsigned char>(c)];
  const bool convert = (kinds & kNotAscii) != 0 && !cell.is_utf8;
  const std::string_view text = convert ? rows.utf8(cell) : cell.text;
  if ((kinds & kCsvSpecial) != 0) {
    putQuoted(to, text);
  } else {
    to.put(text);
  }
}

}  // namespace tabelion
