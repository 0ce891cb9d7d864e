// The whole program, from its start to its end, on a platform that is handed to it.
#pragma once

#include <string>

#include "platform/platform.h"

namespace tabelion {

struct StartOptions {
  std::string command_line;  // what the program was started with; a plain one opens nothing
  std::string code_page;     // of databases that carry none, for this run; empty: the user's
};

// Shows the chooser and returns, with the program's exit code, when the user leaves it. Every
// database is closed, and saved, by then.
int RunTabelion(Platform& platform, const StartOptions& options);

}  // namespace tabelion
