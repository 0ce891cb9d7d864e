// export: the records as CSV, JSON or SQL.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/shown_records.h"
#include "interchange/table_export.h"
#include "interchange/words/filter_words.h"

namespace tabelion {
namespace {

struct ExportOptions {
  std::string file;
  std::string format;
  std::string fields;
  std::vector<std::string> filter;
  bool ids = false;
  bool safe_csv = false;
};

TableFormat formatOf(const std::string& name) {
  if (name == "json") return TableFormat::kJson;
  return name == "sql" ? TableFormat::kSql : TableFormat::kCsv;
}

// The records that pass go into `positions`, to which the choice points.
Result<ExportChoice> choiceOf(const ExportOptions& options, const Database& database,
                              const TextEncoding& encoding, CliContext& context,
                              std::vector<std::uint32_t>& positions) {
  ExportChoice choice;
  choice.with_ids = options.ids;
  choice.safe_csv = options.safe_csv;
  if (!options.fields.empty()) {
    auto slots = chooseColumns(database, encoding, options.fields);
    if (!slots.ok()) return slots.error();
    choice.slots = std::move(slots).value();
  }
  if (options.filter.empty()) return choice;
  const auto criteria = filterOfWords(database, encoding, options.filter);
  if (!criteria.ok()) return criteria.error();
  const RecordFilter filter(database, *criteria, context.querySettings(encoding));
  for (std::uint32_t position = 0; position < database.records.count(); ++position) {
    if (filter.passes(database.records[position].bytes())) positions.push_back(position);
  }
  choice.positions = &positions;
  return choice;
}

ExitCode runExport(const ExportOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  std::vector<std::uint32_t> positions;
  const auto choice = choiceOf(options, *database, *encoding, context, positions);
  if (!choice.ok()) {
    return context.fail({choice.error().kind, options.file + ": " + choice.error().text});
  }
  std::string table_name = encoding->toUtf8(areaText(database->header.name));
  if (table_name.empty()) table_name = "Records";
  const ExportSummary summary =
      exportTable(*database, *encoding, formatOf(options.format), table_name, *choice, context.out,
                  context.progress("exporting"));
  const ExitCode written = context.finishOutput();
  if (written == ExitCode::kDone && summary.enciphered_records > 0) {
    context.say(fmt::format("{}: the flagged fields of {} enciphered records are left empty",
                            options.file, summary.enciphered_records));
  }
  return written;
}

}  // namespace

CommandBody declareExport(OptionList list) {
  const auto options = std::make_shared<ExportOptions>();
  list.required("FILE", options->file, "The database");
  list.oneOf("--format FORMAT", options->format, {"csv", "json", "sql"}, "What is written");
  list.optional("--fields FIELDS", options->fields,
                "These fields alone, in this order; names with commas between");
  list.several("--filter CONDITION", options->filter,
               "Records for which this is true, as \"Born is last 30 days\"; several are joined");
  list.flag("--id", options->ids, "A first column with ids of records that never change");
  list.flag("--safe-csv", options->safe_csv,
            "In CSV, an apostrophe in front of texts that a spreadsheet would take for formulas");
  return [options](CliContext& context) { return runExport(*options, context); };
}

}  // namespace tabelion
