// schema: the description of a database as JSON.

#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/context.h"
#include "interchange/schema_json.h"

namespace tabelion {
namespace {

ExitCode runSchema(const std::string& file, CliContext& context) {
  ExitCode failure{};
  const auto database = context.open(file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  context.out.put(schemaToJson(*database, *encoding).dump(2));
  context.out.put('\n');
  return context.finishOutput();
}

}  // namespace

CommandBody declareSchema(CLI::App& app) {
  const auto file = std::make_shared<std::string>();
  app.add_option("FILE", *file, "The database")->required();
  return [file](CliContext& context) { return runSchema(*file, context); };
}

}  // namespace tabelion
