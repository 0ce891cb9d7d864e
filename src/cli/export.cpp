// export: the records as CSV, JSON or SQL.

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/context.h"
#include "interchange/table_export.h"

namespace tabelion {
namespace {

struct ExportOptions {
  std::string file;
  TableFormat format = TableFormat::kCsv;
};

ExitCode runExport(const ExportOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  std::string table_name = encoding->toUtf8(areaText(database->header.name));
  if (table_name.empty()) table_name = "Records";
  const ExportSummary summary = exportTable(*database, *encoding, options.format, table_name,
                                            context.out, context.progress("exporting"));
  const ExitCode written = context.finishOutput();
  if (written == ExitCode::kDone && summary.enciphered_records > 0) {
    context.say(fmt::format("{}: the flagged fields of {} enciphered records are left empty",
                            options.file, summary.enciphered_records));
  }
  return written;
}

}  // namespace

CommandBody declareExport(CLI::App& app) {
  const auto options = std::make_shared<ExportOptions>();
  app.add_option("FILE", options->file, "The database")->required();
  const std::map<std::string, TableFormat> formats = {
      {"csv", TableFormat::kCsv}, {"json", TableFormat::kJson}, {"sql", TableFormat::kSql}};
  app.add_option("--format", options->format, "csv, json or sql")
      ->required()
      ->transform(CLI::Transformer(formats))
      ->type_name("csv|json|sql");
  return [options](CliContext& context) { return runExport(*options, context); };
}

}  // namespace tabelion
