// The table of commands. A command declares its options and hands back what runs it.
#pragma once

#include <functional>
#include <span>

#include "cli/exit_code.h"

namespace CLI {
class App;
}

namespace tabelion {

class CliContext;

using CommandBody = std::function<ExitCode(CliContext&)>;

struct Command {
  const char* name;
  const char* summary;  // one line, for --help and the reference
  CommandBody (*declare)(CLI::App& app);
};

// In the order of --help.
std::span<const Command> commands();

CommandBody declareInfo(CLI::App& app);
CommandBody declareDump(CLI::App& app);
CommandBody declareCheck(CLI::App& app);
CommandBody declareSchema(CLI::App& app);
CommandBody declareCreate(CLI::App& app);
CommandBody declareImport(CLI::App& app);
CommandBody declareExport(CLI::App& app);
CommandBody declareRewrite(CLI::App& app);

}  // namespace tabelion
