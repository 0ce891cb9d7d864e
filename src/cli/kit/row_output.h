// Records on their way out, as a table for people, as CSV or as JSON.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "interchange/output_buffer.h"
#include "interchange/text_encoding.h"
#include "query/query_settings.h"

namespace tabelion {

enum class RowFormat { kTable, kCsv, kJson };

class RowOutput {
 public:
  virtual ~RowOutput() = default;
  // The record at a position under its number; `field` (UTF-8) is where something was found.
  virtual void put(std::uint32_t position, std::uint32_t number, std::string_view field = {}) = 0;
  virtual void finish() = 0;
};

struct RowSource {
  const Database& database;
  const TextEncoding& encoding;
  const QuerySettings& settings;
  const std::vector<int>& slots;  // the columns
  std::size_t expected_rows = 0;
  bool has_found_field = false;  // one more, for the field in which something was found
  bool has_ids = false;          // one more, for the ids of records that never change
  bool safe_csv = false;         // texts that look like formulas are made harmless
};

// The source and what it refers to must outlive the output. A table has the values as the window
// shows them, CSV and JSON have those of an export.
std::unique_ptr<RowOutput> makeRowOutput(const RowSource& source, RowFormat format,
                                         OutputBuffer& out);

}  // namespace tabelion
