#include <fmt/format.h>

#include "cli/commands/completions.h"

namespace tabelion {
namespace {

std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + '\'';
}

// What names of the database the program is asked for; empty where it is not.
std::string namesOf(const OptionForm& option) {
  if (option.takesField() || option.takesFields()) return "(__tabelion_cli_names fields '')";
  if (option.takesAssignment()) return "(__tabelion_cli_names fields =)";
  return option.takesView() ? "(__tabelion_cli_names views '')" : "";
}

// The start of a line that holds while the words before the cursor name this command.
std::string lineFor(const std::string& path) {
  return fmt::format("complete -c tabelion-cli -n 'test (__tabelion_cli_path) = \"{}\"'", path);
}

std::string optionLine(const std::string& start, const OptionForm& option) {
  std::string line = start + " -l " + option.name.substr(2);
  if (!option.words.empty()) {
    line += " -x -a " + quoted(fmt::format("{}", fmt::join(option.words, " ")));
  } else if (const std::string names = namesOf(option); !names.empty()) {
    line += " -x -a " + quoted(names);
  } else if (!option.isFlag()) {
    line += option.takesFile() ? " -r -F" : " -x";
  }
  return line + " -d " + quoted(option.help) + '\n';
}

// Files are offered where an argument is one, and nowhere else.
std::string argumentLines(const std::string& path, const CommandForm& form) {
  bool takes_files = false;
  std::string lines;
  for (const OptionForm& option : form.options) {
    if (!option.isArgument()) continue;
    takes_files |= option.takesFile();
    if (const std::string names = namesOf(option); !names.empty()) {
      lines += lineFor(path) + " -a " + quoted(names) + '\n';
    }
    if (option.words.empty()) continue;
    lines +=
        lineFor(path) + " -a " + quoted(fmt::format("{}", fmt::join(option.words, " "))) + '\n';
  }
  if (!takes_files) lines += lineFor(path) + " -f\n";
  return lines;
}

}  // namespace

std::string fishCompletions(const CommandForm& program) {
  std::string paths;
  std::string lines;
  forEachCommand(program, [&](const std::string& path, const CommandForm& form) {
    lines += argumentLines(path, form);
    for (const OptionForm& option : form.options) {
      if (option.isArgument()) continue;
      lines += optionLine(path.empty() ? "complete -c tabelion-cli" : lineFor(path), option);
    }
    for (const CommandForm& action : form.actions) {
      const std::string inner = path.empty() ? action.name : path + ' ' + action.name;
      paths += fmt::format("            case '{}:{}'\n                set path '{}'\n", path,
                           action.name, inner);
      lines += fmt::format("{} -a {} -d {}\n", lineFor(path), action.name, quoted(action.summary));
    }
  });
  return "# Completes command lines of tabelion-cli in fish.\n\n"
         "# The command, and the one within it, that the words before the cursor name.\n"
         "function __tabelion_cli_path\n"
         "    set -l path ''\n"
         "    for word in (commandline -opc)[2..-1]\n"
         "        switch \"$path:$word\"\n" +
         paths +
         "        end\n    end\n    echo -- $path\nend\n\n"
         "# Names of fields or views of the file that stands in the line, with this behind each.\n"
         "function __tabelion_cli_names\n"
         "    for word in (commandline -opc)[2..-1]\n"
         "        if test -f \"$word\"\n"
         "            for name in (tabelion-cli completions $argv[1] $word 2>/dev/null)\n"
         "                echo -- $name$argv[2]\n"
         "            end\n"
         "            return\n"
         "        end\n"
         "    end\n"
         "end\n\n" +
         lines;
}

}  // namespace tabelion
