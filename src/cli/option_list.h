// What a command asks of the command line. The parser is behind it: its header is by far the
// slowest to compile here, so that one source has it and the commands do not.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tabelion {

// The values are written while the command line is parsed and must live until then.
class OptionList {
 public:
  explicit OptionList(CLI::App& app) : app_(app) {}

  // A name with dashes is an option, one without stands for the argument at its place.
  void required(const char* name, std::string& value, const char* help);
  void optional(const char* name, std::string& value, const char* help);
  void flag(const char* name, bool& value, const char* help);
  // Required, and one of the words.
  void oneOf(const char* name, std::string& value, const std::vector<std::string>& words);

 private:
  CLI::App& app_;
};

}  // namespace tabelion
