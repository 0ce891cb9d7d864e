// What a command asks of the command line. The parser is behind it: its header is by far the
// slowest to compile here, so that one source has it and the commands do not.
//
// Everything that is asked for is also written down in a CommandForm, from which the manual page
// and the shells' completions are made.
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tabelion {

// An option or an argument as people and shells need to know it.
struct OptionForm {
  std::string name;        // "--sort", "FILE"
  std::string value_name;  // "FIELDS"; empty for a flag; an argument's is its name
  std::string help;        // one sentence without a full stop
  bool is_required = false;
  bool is_repeatable = false;
  std::vector<std::string> words;  // the values that it takes, where they are few and known

  bool isArgument() const { return !name.starts_with('-'); }
  bool isFlag() const { return value_name.empty(); }
  // Whether a shell offers files for it, or names of the database that the command works on.
  bool takesFile() const {
    return value_name == "FILE" || value_name == "OUT" || value_name == "DATA";
  }
  bool takesField() const { return value_name == "FIELD"; }
  bool takesFields() const { return value_name == "FIELDS"; }  // with commas between
  bool takesAssignment() const { return value_name.starts_with("FIELD="); }
  bool takesView() const { return value_name == "VIEW"; }
};

struct CommandForm {
  std::string name;
  std::string summary;
  std::vector<OptionForm> options;  // in the order in which they were asked for
  std::list<CommandForm> actions;
};

// The values are written while the command line is parsed and must live until then. A name without
// dashes stands for the argument at its place; an option that takes a value names it:
// "--sort FIELDS".
class OptionList {
 public:
  OptionList(CLI::App& app, CommandForm& form) : app_(app), form_(form) {}

  void required(const char* name, std::string& value, const char* help);
  void optional(const char* name, std::string& value, const char* help);
  // Tells an empty text from none.
  void optional(const char* name, std::optional<std::string>& value, const char* help);
  void flag(const char* name, bool& value, const char* help);
  // A whole number in the range, both ends included.
  void number(const char* name, std::optional<std::uint32_t>& value, std::uint32_t least,
              std::uint32_t most, const char* help);
  // An option that may be given several times, or the arguments from its place to the end.
  void several(const char* name, std::vector<std::string>& values, const char* help);
  void atLeastOne(const char* name, std::vector<std::string>& values, const char* help);
  // One of the words; required.
  void oneOf(const char* name, std::string& value, const std::vector<std::string>& words,
             const char* help);
  void optionalOneOf(const char* name, std::string& value, const std::vector<std::string>& words,
                     const char* help);
  // At most one of these is given; the names as on the command line ("--json").
  void exclusive(const std::vector<const char*>& names);
  // A command within the command ("view FILE use"), which has options of its own; one of those
  // there are must be given. `chosen` gets the name of the one that is.
  OptionList action(const char* name, const char* summary, std::string& chosen);

 private:
  OptionForm& write(const char* name, const char* help);
  void restrict(CLI::Option& option, OptionForm& form, const std::vector<std::string>& words);

  CLI::App& app_;
  CommandForm& form_;
};

}  // namespace tabelion
