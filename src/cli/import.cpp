// import: the rows of a CSV text as records, all or none unless asked otherwise.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/context.h"
#include "cli/import_step.h"
#include "cli/recompute_step.h"
#include "interchange/table_import.h"
#include "query/filter.h"
#include "query/recompute.h"
#include "query/record_index.h"

namespace tabelion {
namespace {

struct ImportOptions {
  std::string file;
  std::string data;
  bool skip_bad = false;
};

ExitCode runImport(const ImportOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto lock = context.lock(options.file, failure);
  if (!lock) return failure;
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const ExitCode code = importRows(context, options.data, options.skip_bad, *database);
  if (code != ExitCode::kDone) return code;
  // A database that is piped through goes on even when nothing was added.
  if (!isDirty(*database) && options.file != kPipe) return ExitCode::kDone;
  return context.save(*database);
}

std::string counted(std::uint64_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

// The records from `first` on into the order of the others, and every calculated field worked out.
void bringUpToDate(CliContext& context, const TextEncoding& encoding, std::uint32_t first,
                   Database& database) {
  if (!isDirty(database)) return;
  const QuerySettings settings = context.querySettings(encoding);
  // New records have values also where the filter leaves them out.
  if (isFilterInUse(database.schema)) recomputeAdded(database, first, settings);
  refreshRecordIndex(database, settings);
  sayCorrupt(context, database.path, encoding, database,
             recomputeRecords(context, encoding, database));
}

}  // namespace

ExitCode importRows(CliContext& context, const std::string& path, bool skip_bad,
                    Database& database) {
  const auto image = context.files.read(path);
  if (!image.ok()) return context.fail(image.error());
  const auto encoding = context.encodingOf(database);
  if (!encoding.ok()) return context.fail(encoding.error());
  const std::string_view csv(reinterpret_cast<const char*>(image->bytes.get()), image->size);
  const std::uint32_t first = database.records.count();
  const auto summary =
      importCsv(csv, *encoding, context.engine, database, context.progress("importing"));
  if (!summary.ok()) {
    return context.fail({summary.error().kind, path + ": " + summary.error().text});
  }
  context.clearProgress();
  OutputBuffer err(context.streams.err);
  for (const RefusedRow& row : summary->refused) {
    err.put(fmt::format("tabelion-cli: {}: line {}: {}\n", path, row.line, row.reason));
  }
  err.flush();
  if (summary->refused.empty()) {
    bringUpToDate(context, *encoding, first, database);
    return ExitCode::kDone;
  }
  const std::string refused = counted(summary->refused.size(), "row");
  if (!skip_bad) {
    context.say(
        fmt::format("{}: {} of {} refused; nothing was imported", path, refused, summary->rows));
    return ExitCode::kRefused;
  }
  context.say(fmt::format("{}: {} left out, {} imported", path, refused,
                          counted(summary->records, "record")));
  bringUpToDate(context, *encoding, first, database);
  return ExitCode::kDone;
}

CommandBody declareImport(OptionList list) {
  const auto options = std::make_shared<ImportOptions>();
  list.required("FILE", options->file, "The database");
  list.required("DATA", options->data, "CSV in UTF-8; its first row names the fields");
  list.flag("--skip-bad", options->skip_bad,
            "Import the rows that fit and list the others, instead of importing nothing");
  return [options](CliContext& context) { return runImport(*options, context); };
}

}  // namespace tabelion
