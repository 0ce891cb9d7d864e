// delete: records by their numbers, or those inside or outside the filter.

#include <algorithm>

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/commands/record_command.h"
#include "services/changes/record_steps.h"

namespace tabelion {
namespace {

struct DeleteOptions {
  std::string file;
  std::vector<std::string> records;
  bool filtered = false;
  bool outside = false;
  bool yes = false;

  int ways() const { return (records.empty() ? 0 : 1) + (filtered ? 1 : 0) + (outside ? 1 : 0); }
};

using Positions = std::vector<std::uint32_t>;

Result<Positions> chooseRecords(const DeleteOptions& options, const Database& database,
                                const QuerySettings& settings) {
  if (options.filtered || options.outside) {
    // Without a filter all records would be inside it: that has to be asked for in another way.
    if (!isFilterInUse(database.schema)) {
      return makeError(ErrorKind::kRefused, "has no filter; nothing was deleted");
    }
    return positionsOfGroup(
        database, options.filtered ? RecordGroup::kWithinFilter : RecordGroup::kOutsideFilter,
        settings);
  }
  Positions positions;
  for (const std::string& number : options.records) {
    const auto position = chooseRecord(database, number);
    if (!position.ok()) return position.error();
    positions.push_back(*position);
  }
  std::sort(positions.begin(), positions.end());
  positions.erase(std::unique(positions.begin(), positions.end()), positions.end());
  return positions;
}

std::string counted(std::size_t count) {
  return fmt::format("{} record{}", count, count == 1 ? "" : "s");
}

// Whether the user wants it; without a terminal only --yes says so.
Result<bool> isConfirmed(const DeleteOptions& options, CliContext& context, std::size_t count) {
  if (options.yes) return true;
  if (!context.streams.confirm) {
    return makeError(
        ErrorKind::kRefused,
        fmt::format("{} would be deleted; --yes does it without a question", counted(count)));
  }
  return context.streams.confirm(
      fmt::format("{} of {}: Records deletion is an irreversible operation, still continue?",
                  counted(count), options.file));
}

ExitCode runDelete(const DeleteOptions& options, CliContext& context) {
  if (options.ways() != 1) {
    context.say("delete: give the numbers of records, --filtered or --outside");
    return ExitCode::kUsage;
  }
  ExitCode failure{};
  const auto opened = openFor(context, options.file, Operation::kDelete, failure);
  if (!opened) return failure;
  Database& database = *opened->database;
  const QuerySettings settings = context.querySettings(opened->encoding);
  const auto positions = chooseRecords(options, database, settings);
  if (!positions.ok()) return failAt(context, database, positions.error());
  if (!positions->empty()) {
    const auto confirmed = isConfirmed(options, context, positions->size());
    if (!confirmed.ok()) return failAt(context, database, confirmed.error());
    if (!*confirmed) {
      context.say(options.file + ": nothing was deleted");
      return ExitCode::kRefused;
    }
    DeleteRecords(context.history, context.target(database), *positions, settings);
  }
  // A database that is piped through goes on even when nothing was deleted.
  if (isDirty(database) || options.file == kPipe) {
    const ExitCode saved = context.save(database);
    if (saved != ExitCode::kDone) return saved;
  }
  context.say(fmt::format("{}: {} deleted", options.file, counted(positions->size())));
  return ExitCode::kDone;
}

}  // namespace

CommandBody declareDelete(OptionList list) {
  const auto options = std::make_shared<DeleteOptions>();
  list.required("FILE", options->file, "The database");
  list.several("RECORD", options->records,
               "Numbers of records in database order, from 1, or their ids");
  list.flag("--filtered", options->filtered, "The records that pass the database's filter");
  list.flag("--outside", options->outside, "The records that do not pass it");
  list.flag("--yes", options->yes, "Do not ask");
  return [options](CliContext& context) { return runDelete(*options, context); };
}

}  // namespace tabelion
