// help: what the program or a command does and takes.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "query/near_names.h"

namespace tabelion {
namespace {

ExitCode runHelp(const std::vector<std::string>& command, CliContext& context) {
  if (const auto text = helpText(command)) {
    context.out.put(*text);
    return context.finishOutput();
  }
  std::vector<std::string> known;
  for (const Command& each : commands()) known.emplace_back(each.name);
  const auto near = nearestNames(command.front(), known);
  context.say(fmt::format("help: there is no command \"{}\"{}{}", fmt::join(command, " "),
                          near.empty() ? "" : "; there is ", alternatives(near)));
  return ExitCode::kUsage;
}

}  // namespace

CommandBody declareHelp(OptionList list) {
  const auto command = std::make_shared<std::vector<std::string>>();
  list.several("COMMAND", *command, "The command, and the one within it: \"view set\"");
  return [command](CliContext& context) { return runHelp(*command, context); };
}

}  // namespace tabelion
