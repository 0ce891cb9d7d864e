// rewrite: open a database and save it under another name.

#include "cli/command.h"
#include "cli/kit/context.h"

namespace tabelion {
namespace {

struct RewriteOptions {
  std::string file;
  std::string out;
};

ExitCode runRewrite(const RewriteOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto lock = context.lock(options.out, failure);
  if (!lock) return failure;
  const auto database = context.openAsItIs(options.file, failure);
  if (!database) return failure;
  database->path = options.out;
  return context.save(*database);
}

}  // namespace

CommandBody declareRewrite(OptionList list) {
  const auto options = std::make_shared<RewriteOptions>();
  list.required("FILE", options->file, "The database");
  list.required("OUT", options->out, "Where it is saved; replaced when it is there");
  return [options](CliContext& context) { return runRewrite(*options, context); };
}

}  // namespace tabelion
