// The program without its main: a command line in, an exit code out.
#pragma once

#include <string>
#include <vector>

#include "cli/kit/context.h"

namespace tabelion {

// `arguments` are those behind the program's name.
ExitCode runCli(const std::vector<std::string>& arguments, CliPlatform& platform, Streams& streams);

}  // namespace tabelion
