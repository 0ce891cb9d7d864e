// export: the records as CSV, JSON or SQL.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/context.h"
#include "interchange/table_export.h"

namespace tabelion {
namespace {

struct ExportOptions {
  std::string file;
  std::string format;
};

TableFormat formatOf(const std::string& name) {
  if (name == "json") return TableFormat::kJson;
  return name == "sql" ? TableFormat::kSql : TableFormat::kCsv;
}

ExitCode runExport(const ExportOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  std::string table_name = encoding->toUtf8(areaText(database->header.name));
  if (table_name.empty()) table_name = "Records";
  const ExportSummary summary = exportTable(*database, *encoding, formatOf(options.format),
                                            table_name, context.out, context.progress("exporting"));
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
  return [options](CliContext& context) { return runExport(*options, context); };
}

}  // namespace tabelion
