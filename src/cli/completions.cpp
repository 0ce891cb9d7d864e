// completions: what a shell needs to complete command lines.

#include "cli/completions.h"

#include "cli/command.h"
#include "cli/context.h"

namespace tabelion {
namespace {

void visitActions(const std::string& path, const CommandForm& form,
                  const std::function<void(const std::string&, const CommandForm&)>& visit) {
  visit(path, form);
  for (const CommandForm& action : form.actions) {
    visitActions(path.empty() ? action.name : path + ' ' + action.name, action, visit);
  }
}

ExitCode runCompletions(const std::string& shell, CliContext& context) {
  const CommandForm program = programForm();
  context.out.put(shell == "bash"  ? bashCompletions(program)
                  : shell == "zsh" ? zshCompletions(program)
                                   : fishCompletions(program));
  return context.finishOutput();
}

}  // namespace

void forEachCommand(const CommandForm& program,
                    const std::function<void(const std::string&, const CommandForm&)>& visit) {
  visitActions({}, program, visit);
}

CommandBody declareCompletions(OptionList list) {
  const auto shell = std::make_shared<std::string>();
  list.oneOf("SHELL", *shell, {"bash", "zsh", "fish"}, "For which shell");
  return [shell](CliContext& context) { return runCompletions(*shell, context); };
}

}  // namespace tabelion
