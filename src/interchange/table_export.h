// Records out of a database as CSV, JSON or SQL, in database order.
//
//   CSV   a header row with the columns' names, then a row for each record; lines end in LF
//   JSON  a list with an object for each record; no value is null
//   SQL   one transaction that creates a table and fills it; SQLite and PostgreSQL both load it
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "interchange/output_buffer.h"
#include "interchange/text_encoding.h"

namespace tabelion {

enum class TableFormat { kCsv, kJson, kSql };

struct ExportSummary {
  std::uint32_t records = 0;
  // Records whose flagged fields were left empty because they are enciphered.
  std::uint32_t enciphered_records = 0;
  bool is_written = false;  // false when the output failed on the way
};

// Called now and then with the records done so far.
using ProgressStep = std::function<void(std::uint32_t done, std::uint32_t of)>;

// What of a database goes out, and how.
struct ExportChoice {
  std::vector<int> slots;  // of the fields, in this order; all where there are none
  const std::vector<std::uint32_t>* positions = nullptr;  // of the records; all where null
  bool with_ids = false;                                  // in a first column, kRecordIdColumn
  bool safe_csv = false;  // texts that look like formulas are made harmless
};

// `table_name` (UTF-8) is what SQL calls the table.
ExportSummary exportTable(const Database& database, const TextEncoding& encoding,
                          TableFormat format, std::string_view table_name,
                          const ExportChoice& choice, OutputBuffer& to,
                          const ProgressStep& progress);

}  // namespace tabelion
