// What is wrong with a command line, for people.
#pragma once

#include <string>
#include <vector>

#include "cli/kit/option_list.h"

namespace tabelion {

// A sentence about arguments that the parser refused: which word is not known and what comes near
// it, or what is missing. Where nothing of that is found it is what the parser says.
std::string usageFault(const CommandForm& program, const std::vector<std::string>& arguments,
                       const std::string& parser_says);

}  // namespace tabelion
