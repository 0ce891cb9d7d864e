// What the program says of itself in other formats, made from what its commands declare.
#pragma once

#include <functional>
#include <string>

#include "cli/kit/option_list.h"

namespace tabelion {

// Scripts for the shells; each completes commands, options, words that an option takes, and files.
std::string bashCompletions(const CommandForm& program);
std::string zshCompletions(const CommandForm& program);
std::string fishCompletions(const CommandForm& program);

// The manual page, section 1, for troff with its man macros.
std::string manualPage(const CommandForm& program);

// Calls visit(path, form) for the program and every command and action: "", "view", "view set".
void forEachCommand(const CommandForm& program,
                    const std::function<void(const std::string&, const CommandForm&)>& visit);

}  // namespace tabelion
