// set: change fields of one record.

#include "cli/command.h"
#include "cli/commands/field_assignment.h"
#include "cli/commands/record_command.h"

namespace tabelion {
namespace {

struct SetOptions {
  std::string file;
  std::string record;
  std::vector<std::string> values;
  bool json = false;
};

ExitCode runSet(const SetOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto opened = openFor(context, options.file, Operation::kChange, failure);
  if (!opened) return failure;
  Database& database = *opened->database;
  const auto position = chooseRecord(database, options.record);
  if (!position.ok()) return failAt(context, database, position.error());
  UnpackedRecord record = unpackRecord(database.records[*position].bytes());
  const Status assigned = assignFields(database, opened->encoding, options.values, record);
  if (!assigned.ok()) {
    return failAt(
        context, database,
        {assigned.error().kind, "record " + options.record + ": " + assigned.error().text});
  }
  return storeAndSave(context, database, opened->encoding, *position, std::move(record),
                      options.json);
}

}  // namespace

CommandBody declareSet(OptionList list) {
  const auto options = std::make_shared<SetOptions>();
  list.required("FILE", options->file, "The database");
  list.required("RECORD", options->record,
                "Number of the record in database order, from 1, or its id");
  list.atLeastOne("FIELD=VALUE", options->values, "What is to be stored; an empty VALUE is none");
  list.flag("--json", options->json, "Print the record's number as JSON");
  return [options](CliContext& context) { return runSet(*options, context); };
}

}  // namespace tabelion
