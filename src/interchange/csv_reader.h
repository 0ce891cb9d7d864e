// Comma-separated values as RFC 4180 has them: cells in double quotes may hold commas, line ends
// and doubled quotes; lines end in LF or CR LF; a byte-order mark at the start is skipped; blank
// lines are no rows. Another character may stand in the comma's place.
#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "engine/bytes.h"

namespace tabelion {

class CsvReader {
 public:
  // The text must outlive the reader.
  explicit CsvReader(std::string_view text, char delimiter = ',');

  enum class Row { kRead, kEnd, kBroken };
  // The next row. kBroken: `problem()` says what is wrong at `line()`; reading ends there.
  Row next();

  // The cells of the row, valid until the next call.
  const std::vector<std::string_view>& cells() const { return cells_; }
  std::size_t line() const { return row_line_; }  // where the row begins, counted from 1
  const std::string& problem() const { return problem_; }
  std::size_t position() const { return at_; }  // bytes of the text read so far

 private:
  bool readQuoted();
  void readPlain();
  std::string_view cellBehindQuotes(std::size_t begin, std::size_t end, std::size_t doubled);

  std::string_view text_;
  char delimiter_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
  std::size_t row_line_ = 1;
  std::vector<std::string_view> cells_;
  std::deque<std::string> unquoted_;  // cells with doubled quotes, taken apart; they stay put
  std::size_t unquoted_used_ = 0;
  std::string problem_;
};

// How many bytes at the start of the text are none of those that end a cell or have to stand in
// quotes: delimiters, quotes and line ends.
std::size_t csvPlainLength(std::string_view text, char delimiter = ',');
inline bool csvNeedsQuotes(std::string_view cell, char delimiter = ',') {
  return csvPlainLength(cell, delimiter) < cell.size();
}

}  // namespace tabelion
