// schema: the description of a database as JSON.

#include "cli/command.h"
#include "cli/kit/context.h"
#include "interchange/schema_json.h"

namespace tabelion {
namespace {

ExitCode runSchema(const std::string& file, CliContext& context) {
  ExitCode failure{};
  const auto database = context.openAsItIs(file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  context.out.put(schemaToJson(*database, *encoding).dump(2));
  context.out.put('\n');
  return context.finishOutput();
}

}  // namespace

CommandBody declareSchema(OptionList list) {
  const auto file = std::make_shared<std::string>();
  list.required("FILE", *file, "The database");
  return [file](CliContext& context) { return runSchema(*file, context); };
}

}  // namespace tabelion
