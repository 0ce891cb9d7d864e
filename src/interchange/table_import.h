// Rows of CSV into a database, all of them or, when asked, those that fit.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "interchange/table_export.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"

namespace tabelion {

struct RefusedRow {
  std::size_t line = 0;  // of the text, counted from 1; where the row begins
  std::string reason;    // "Field: what is wrong"
};

struct ImportSummary {
  std::uint32_t rows = 0;     // read, without the header row
  std::uint32_t records = 0;  // added
  std::vector<RefusedRow> refused;
};

// Appends a record for each row. The first row names the fields; fields that it does not name
// stay without a value, auto-numbers take the next number unless the row gives one, and records
// get their stamp as new ones do. A broken text or an unknown column is an error and adds nothing.
// Rows that do not fit are left out and listed: the caller decides what that means for the rest.
// The texts are UTF-8; `encoding` is the database's.
Result<ImportSummary> importCsv(std::string_view csv, const TextEncoding& encoding, Engine& engine,
                                Database& database, const ProgressStep& progress);

}  // namespace tabelion
