// Walks the records of a database as rows of table cells.
#pragma once

#include <span>
#include <vector>

#include "interchange/cell_text.h"
#include "interchange/output_buffer.h"
#include "interchange/table_columns.h"

namespace tabelion {

class TableRows {
 public:
  // The columns of these fields, in their order; of all fields where none are named. Database and
  // encoding must outlive the rows.
  TableRows(const Database& database, const TextEncoding& encoding,
            std::span<const int> slots = {});

  const std::vector<TableColumn>& columns() const { return columns_; }
  const PopupNames& popups(std::size_t column) const { return popups_[column]; }

  // Makes a record the current row. Its bytes must stay until the next one is loaded.
  void load(ByteView record);
  // The cell of a column in the current row; flagged fields of an enciphered record are empty.
  CellText cell(std::size_t column);
  // The cell's text as UTF-8, valid until the next call.
  std::string_view utf8(const CellText& cell);
  void putUtf8(OutputBuffer& to, const CellText& cell);

  bool isEnciphered() const { return is_enciphered_; }

 private:
  const Database& database_;
  const TextEncoding& encoding_;
  std::vector<TableColumn> columns_;
  std::vector<PopupNames> popups_;  // per column
  std::vector<bool> is_flagged_;    // per column: enciphered with its record
  std::vector<ByteView> values_;    // per slot up to the last one in use
  bool is_enciphered_ = false;
  CellScratch scratch_;
  std::string converted_;
};

}  // namespace tabelion
