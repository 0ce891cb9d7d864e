// add: a new record.

#include "cli/command.h"
#include "cli/commands/field_assignment.h"
#include "cli/commands/record_command.h"

namespace tabelion {
namespace {

struct AddOptions {
  std::string file;
  std::vector<std::string> values;
  bool json = false;
};

ExitCode runAdd(const AddOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto opened = openFor(context, options.file, Operation::kAdd, failure);
  if (!opened) return failure;
  Database& database = *opened->database;
  UnpackedRecord record = newRecord(database.schema);
  const Status assigned = assignFields(database, opened->encoding, options.values, record);
  if (!assigned.ok()) return failAt(context, database, assigned.error());
  return storeAndSave(context, database, opened->encoding, kNoPosition, std::move(record),
                      options.json);
}

}  // namespace

CommandBody declareAdd(OptionList list) {
  const auto options = std::make_shared<AddOptions>();
  list.required("FILE", options->file, "The database");
  list.several("FIELD=VALUE", options->values,
               "What is to be stored; fields that are not named have no value");
  list.flag("--json", options->json, "Print the record's number as JSON");
  return [options](CliContext& context) { return runAdd(*options, context); };
}

}  // namespace tabelion
