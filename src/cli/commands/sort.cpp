// sort: put the records into an order, and keep it as the database's.

#include "cli/command.h"
#include "cli/kit/context.h"
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

ExitCode runSort(const SortOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto opened = context.openToChange(options.file, failure);
  if (!opened) return failure;
  Database& database = *opened->database;
  const TextEncoding& encoding = opened->encoding;
  const auto refuse = [&](const Error& error) {
    return context.fail({error.kind, options.file + ": " + error.text});
  };
  std::optional<SortSelection> selection;
  if (!options.by.empty() || options.none) {
    const auto chosen = selectionOf(options, database, encoding);
    if (!chosen.ok()) return refuse(chosen.error());
    selection = *chosen;
  } else if (database.schema.sort[0].field == kNoField) {
    return refuse({ErrorKind::kInvalid, "is not sorted by any field; --by names some"});
  }
  std::string refusal;
  const auto sort = [&] {
    if (selection) refusal = storeSortSelection(database, *selection);
    if (!refusal.empty()) return;
    sortAndRecompute(database, context.querySettings(encoding));
    database.schema.sort_pending = 0;
  };
  // A view with live update takes the order over.
  context.history.Perform(context.target(database), "Sort", sort, SchemaExtent::kWhole);
  if (!refusal.empty()) return refuse({ErrorKind::kRefused, encoding.toUtf8(refusal)});
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
