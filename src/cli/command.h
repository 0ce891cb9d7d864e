// The table of commands. A command declares its options and hands back what runs it.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>

#include "cli/kit/exit_code.h"
#include "cli/kit/option_list.h"

namespace tabelion {

class CliContext;

using CommandBody = std::function<ExitCode(CliContext&)>;

struct Command {
  const char* name;
  const char* summary;  // one line, for --help and the reference
  CommandBody (*declare)(OptionList list);
};

// In the order of --help.
std::span<const Command> commands();

// The whole program as its options and commands ask for things, for what is made from that: the
// manual page and the shells' completions.
CommandForm programForm();

// The text of --help, of the program or of a command and its action ("view", "set"); none for what
// is no command.
std::optional<std::string> helpText(std::span<const std::string> command);

#define TABELION_COMMAND(name, declare, source, summary) CommandBody declare(OptionList list);
#include "cli/commands.inc"
#undef TABELION_COMMAND

}  // namespace tabelion
