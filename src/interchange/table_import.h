// Rows of CSV into a database, all of them or, when asked, those that fit.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "interchange/table_export.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"
#include "query/format_settings.h"

namespace tabelion {

// How the text is written.
struct ImportForm {
  // What stands between cells; without it the one of , ; tab and | that makes the header row name
  // the most fields.
  std::optional<char> delimiter;
  // How dates are written where not as 2024-03-31.
  std::optional<FormatSettings> dates;
};

struct CellFault {
  std::string column;  // empty for a fault of the row as a whole
  std::string reason;  // `"Chess" is not an item of the list`
};

struct RefusedRow {
  std::size_t line = 0;            // of the text, counted from 1; where the row begins
  std::vector<std::string> cells;  // as read, without a reason
  std::vector<CellFault> faults;
};

// A last column of this name, which a list of refused rows has, is passed over.
inline constexpr std::string_view kReasonColumn = "(reason)";

struct ImportSummary {
  char delimiter = ',';
  std::vector<std::string> header;
  std::uint32_t rows = 0;     // read, without the header row
  std::uint32_t records = 0;  // added
  std::vector<RefusedRow> refused;
};

// Appends a record for each row. The first row names the fields, exactly or in any case of the
// letters A to Z and with blanks around them; fields that it does not name stay without a value,
// auto-numbers take the next number unless the row gives one, and records get their stamp as new
// ones do. A broken text or an unknown column is an error and adds nothing. Rows that do not fit
// are left out and listed with all that is wrong with them: the caller decides what that means for
// the rest. The texts are UTF-8; `encoding` is the database's.
Result<ImportSummary> importCsv(std::string_view csv, const ImportForm& form,
                                const TextEncoding& encoding, Engine& engine, Database& database,
                                const ProgressStep& progress);

}  // namespace tabelion
