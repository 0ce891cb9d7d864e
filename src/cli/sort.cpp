// sort: put the records into an order, and keep it as the database's.

#include "cli/command.h"
#include "cli/context.h"
#include "engine/file_header.h"
#include "interchange/words/sort_choice.h"
#include "query/record_index.h"

namespace tabelion {
namespace {

struct SortOptions {
  std::string file;
  std::string by;
  bool none = false;
};

// Which levels are to be in force: those asked for, none, or the ones there are.
Result<SortSelection> selectionOf(const SortOptions& options, const Database& database,
                                  const TextEncoding& encoding) {
  if (!options.by.empty()) return chooseSort(database, encoding, options.by);
  SortSelection none;
  none.forward.fill(true);
  return none;
}

// The record that was current stays the current one, wherever it stands now.
void sortAndFollow(Database& database, const QuerySettings& settings) {
  const int index = database.schema.current_record_index - kSchemaRecords;
  auto followed = static_cast<std::uint32_t>(index);
  sortAndRecompute(database, settings, index < 0 ? nullptr : &followed);
  if (index >= 0) {
    database.schema.current_record_index = static_cast<std::uint16_t>(followed + kSchemaRecords);
  }
  database.schema.sort_pending = 0;
}

ExitCode runSort(const SortOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto opened = context.openToChange(options.file, failure);
  if (!opened) return failure;
  Database& database = *opened->database;
  const TextEncoding& encoding = opened->encoding;
  const auto refuse = [&](const Error& error) {
    return context.fail({error.kind, options.file + ": " + error.text});
  };
  if (!options.by.empty() || options.none) {
    const auto selection = selectionOf(options, database, encoding);
    if (!selection.ok()) return refuse(selection.error());
    const std::string refusal = storeSortSelection(database, *selection);
    if (!refusal.empty()) return refuse({ErrorKind::kRefused, encoding.toUtf8(refusal)});
  } else if (database.schema.sort[0].field == kNoField) {
    return refuse({ErrorKind::kInvalid, "is not sorted by any field; --by names some"});
  }
  sortAndFollow(database, context.querySettings(encoding));
  return context.save(database);
}

}  // namespace

CommandBody declareSort(OptionList list) {
  const auto options = std::make_shared<SortOptions>();
  list.required("FILE", options->file, "The database");
  list.optional("--by FIELDS", options->by,
                "Up to three fields with commas between them; \"Field:desc\" in descending order");
  list.flag("--none", options->none, "Sort by no field from now on");
  list.exclusive({"--by", "--none"});
  return [options](CliContext& context) { return runSort(*options, context); };
}

}  // namespace tabelion
