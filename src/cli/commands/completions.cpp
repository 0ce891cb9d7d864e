// completions: what a shell needs to complete command lines.

#include "cli/commands/completions.h"

#include "cli/command.h"
#include "cli/kit/context.h"
#include "interchange/words/field_choice.h"
#include "query/view.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

void visitActions(const std::string& path, const CommandForm& form,
                  const std::function<void(const std::string&, const CommandForm&)>& visit) {
  visit(path, form);
  for (const CommandForm& action : form.actions) {
    visitActions(path.empty() ? action.name : path + ' ' + action.name, action, visit);
  }
}

struct CompletionOptions {
  std::string what;
  std::string file;
};

// Names that a command line about this database can have, a line each, as the shell asks for them.
ExitCode putNames(const CompletionOptions& options, CliContext& context) {
  if (options.file.empty()) {
    context.say("completions: " + options.what + " are those of a FILE");
    return ExitCode::kUsage;
  }
  ExitCode failure{};
  const auto database = context.openAsItIs(options.file, failure);
  if (!database) return failure;
  // What asks for a password tells its names to nobody who has not given it.
  if (OpenCode(database->schema) != kOpenFreely) return ExitCode::kRefused;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  if (options.what == "fields") {
    for (const int slot : fieldsFor(*database, FieldUse::kAnything)) {
      context.out.put(fieldLabel(*database, *encoding, slot) + '\n');
    }
  } else {
    for (const std::string& view : viewsMenu(*database)) {
      context.out.put(encoding->toUtf8(view) + '\n');
    }
  }
  return context.finishOutput();
}

ExitCode runCompletions(const CompletionOptions& options, CliContext& context) {
  const std::string& what = options.what;
  if (what == "fields" || what == "views") return putNames(options, context);
  const CommandForm program = programForm();
  context.out.put(what == "bash"  ? bashCompletions(program)
                  : what == "zsh" ? zshCompletions(program)
                                  : fishCompletions(program));
  return context.finishOutput();
}

}  // namespace

void forEachCommand(const CommandForm& program,
                    const std::function<void(const std::string&, const CommandForm&)>& visit) {
  visitActions({}, program, visit);
}

CommandBody declareCompletions(OptionList list) {
  const auto options = std::make_shared<CompletionOptions>();
  list.oneOf("WHAT", options->what, {"bash", "zsh", "fish", "fields", "views"},
             "The script for a shell, or the names that it asks for");
  list.optional("FILE", options->file, "The database whose fields or views are named");
  return [options](CliContext& context) { return runCompletions(*options, context); };
}

}  // namespace tabelion
