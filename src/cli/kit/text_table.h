// A table for people: columns aligned by the room that their characters take on a terminal.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/output_buffer.h"

namespace tabelion {

// The columns of a text on one line, of which a control takes one.
std::size_t terminalWidth(std::string_view utf8);
// The text with blanks for controls, cut with "…" where it takes more columns.
std::string cutToWidth(std::string_view utf8, std::size_t columns);

// Cells are added row by row, the titles first, and printed at the end, when all widths are known.
// A cell is one line of at most kWidestCell columns, cut with "…" where it is longer; line ends and
// other controls become blanks.
class TextTable {
 public:
  static constexpr std::size_t kWidestCell = 40;

  explicit TextTable(std::size_t columns) : columns_(columns) {}

  // Room for this many rows beside the titles; a page that no text needs costs nothing.
  void reserve(std::size_t rows);
  void alignRight(std::size_t column) { columns_[column].is_right = true; }
  void add(std::string_view utf8);
  // Printable ASCII alone, whatever the encoding: such a text can be added without a look at it.
  static bool isPlain(std::string_view text);
  void addPlain(std::string_view text);
  void print(OutputBuffer& out) const;

 private:
  struct Column {
    std::size_t width = 0;
    bool is_right = false;
  };
  // Its bytes in text_, which follow those of the cell before, and the columns that they take.
  struct Cell {
    std::uint32_t size = 0;
    std::uint32_t width = 0;
  };
  void endCell(std::size_t begin, std::size_t width);
  std::size_t addCharacters(std::string_view text);

  std::vector<Column> columns_;
  std::size_t next_column_ = 0;
  std::vector<Cell> cells_;
  std::string text_;
};

}  // namespace tabelion
