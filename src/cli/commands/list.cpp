// list: the records that the window shows.

#include <algorithm>

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/row_output.h"
#include "cli/kit/shown_records.h"
#include "engine/packed_record.h"
#include "query/list_columns.h"

namespace tabelion {
namespace {

struct ListOptions {
  std::string file;
  ShownOptions shown;
  std::optional<std::uint32_t> limit;
  std::string fields;
  bool ids = false;
  bool safe_csv = false;
  bool csv = false;
  bool json = false;
};

ExitCode runList(const ListOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  const QuerySettings settings = context.querySettings(*encoding);
  const Status shown = showRecords(*database, *encoding, settings, options.shown);
  if (!shown.ok()) {
    return context.fail({shown.error().kind, options.file + ": " + shown.error().text});
  }
  std::vector<int> slots = listedSlots(database->schema);
  if (!options.fields.empty()) {
    auto chosen = chooseColumns(*database, *encoding, options.fields);
    if (!chosen.ok()) {
      return context.fail({chosen.error().kind, options.file + ": " + chosen.error().text});
    }
    slots = std::move(chosen).value();
  }
  const RowFormat format = options.json  ? RowFormat::kJson
                           : options.csv ? RowFormat::kCsv
                                         : RowFormat::kTable;
  const std::vector<std::uint32_t>& shown_positions = database->record_index;
  const std::size_t count =
      std::min<std::size_t>(options.limit.value_or(kMaxRecords), shown_positions.size());
  const RowSource source{*database, *encoding, settings,    slots,
                         count,     false,     options.ids, options.safe_csv};
  const auto rows = makeRowOutput(source, format, context.out);
  for (std::size_t i = 0; i < count; ++i) {
    database->records.fetchAhead(shown_positions[i], kMaxRecordSize);
    rows->put(shown_positions[i], recordNumber(*database, shown_positions[i]));
  }
  rows->finish();
  return context.finishOutput();
}

}  // namespace

CommandBody declareList(OptionList list) {
  const auto options = std::make_shared<ListOptions>();
  list.required("FILE", options->file, "The database");
  list.optional("--view VIEW", options->shown.view, "As this view shows it");
  list.several("--filter CONDITION", options->shown.filter,
               "Records for which this is true, as \"Born is last 30 days\"; several are joined");
  list.optional("--sort FIELDS", options->shown.sort,
                "Up to three fields with commas between them; \"Field:desc\" in descending order");
  list.optional("--fields FIELDS", options->fields,
                "These fields instead of the view's columns; names with commas between");
  list.flag("--id", options->ids, "With ids of records that never change");
  list.flag("--safe-csv", options->safe_csv,
            "In CSV, an apostrophe in front of texts that a spreadsheet would take for formulas");
  list.number("--limit N", options->limit, 0, kMaxRecords, "No more records than this");
  list.flag("--csv", options->csv, "As CSV, with the values of an export");
  list.flag("--json", options->json, "As JSON, with the values of an export");
  list.exclusive({"--csv", "--json"});
  return [options](CliContext& context) { return runList(*options, context); };
}

}  // namespace tabelion
