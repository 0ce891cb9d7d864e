#include "cli/option_list.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

namespace tabelion {

void OptionList::required(const char* name, std::string& value, const char* help) {
  app_.add_option(name, value, help)->required();
}

void OptionList::optional(const char* name, std::string& value, const char* help) {
  app_.add_option(name, value, help);
}

void OptionList::flag(const char* name, bool& value, const char* help) {
  app_.add_flag(name, value, help);
}

void OptionList::oneOf(const char* name, std::string& value,
                       const std::vector<std::string>& words) {
  app_.add_option(name, value, fmt::format("One of {}", fmt::join(words, ", ")))
      ->required()
      ->check(CLI::IsMember(words));
}

}  // namespace tabelion
