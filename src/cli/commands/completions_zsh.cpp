#include <fmt/format.h>

#include "cli/commands/completions.h"

namespace tabelion {
namespace {

// A text inside the single quotes of a line for _arguments, where : [ and ] have a meaning of their
// own.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '\'') {
      result += "'\\''";
      continue;
    }
    if (c == ':' || c == '[' || c == ']' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

std::string valueAction(const OptionForm& option) {
  if (!option.words.empty()) return fmt::format("({})", fmt::join(option.words, " "));
  if (option.takesFile()) return "_files";
  if (option.takesField() || option.takesFields()) return "{_tabelion-cli_names fields}";
  if (option.takesAssignment()) return "{_tabelion-cli_names fields =}";
  return option.takesView() ? "{_tabelion-cli_names views}" : "";
}

// What _arguments is told of the options and arguments of a command, a line each.
std::string argumentLines(const CommandForm& form, const std::string& indent) {
  std::string lines;
  int arguments = 0;
  for (const OptionForm& option : form.options) {
    std::string text;
    if (option.isArgument()) {
      ++arguments;
      text = fmt::format("{}:{}:{}", option.is_repeatable ? "*" : std::to_string(arguments),
                         escaped(option.name), valueAction(option));
    } else {
      if (option.name == "--help" || option.name == "--version") text = "(- *)";
      if (option.is_repeatable) text = "*";
      text += option.name;
      if (!option.isFlag()) text += '=';
      text += '[' + escaped(option.help) + ']';
      if (!option.isFlag()) {
        text += fmt::format(":{}:{}", escaped(option.value_name), valueAction(option));
      }
    }
    lines += fmt::format("{}'{}' \\\n", indent, text);
  }
  return lines;
}

int argumentCount(const CommandForm& form) {
  int count = 0;
  for (const OptionForm& option : form.options) count += option.isArgument() ? 1 : 0;
  return count;
}

std::string functionName(const std::string& path) {
  std::string name = path.empty() ? "_tabelion-cli" : "_tabelion-cli " + path;
  for (char& c : name) {
    if (c == ' ') c = '-';
  }
  return name;
}

// A command with others inside: its arguments, then one of those.
std::string branching(const std::string& path, const CommandForm& form) {
  const int place = argumentCount(form) + 1;
  std::string text = fmt::format(
      "  local state line ret=1\n  local -a commands\n"
      "  _arguments -C \\\n{}    $global \\\n    '{}:command:->command' \\\n"
      "    '*::argument:->argument' && ret=0\n"
      "  case $state in\n    (command)\n      commands=(\n",
      path.empty() ? "" : argumentLines(form, "    "), place);
  for (const CommandForm& action : form.actions) {
    text += fmt::format("        '{}:{}'\n", action.name, escaped(action.summary));
  }
  text += "      )\n      _describe command commands && ret=0\n      ;;\n    (argument)\n";
  // The words become those from the inner command on; the file that they are about is kept.
  if (!path.empty()) text += "      local tabelion_file=$line[1]\n";
  for (int i = 1; i < place; ++i) text += "      shift words; ((CURRENT--))\n";
  text += fmt::format("      case $line[{}] in\n", place);
  for (const CommandForm& action : form.actions) {
    const std::string inner = path.empty() ? action.name : path + ' ' + action.name;
    text += fmt::format("        ({}) {} && ret=0 ;;\n", action.name, functionName(inner));
  }
  return text + "      esac\n      ;;\n  esac\n  return ret\n";
}

}  // namespace

std::string zshCompletions(const CommandForm& program) {
  std::string text =
      "#compdef tabelion-cli\n# Completes command lines of tabelion-cli in zsh.\n\n"
      "# Names of fields or views of the file that stands in the line, with $2 behind each.\n"
      "_tabelion-cli_names() {\n"
      "  local file=$tabelion_file word\n"
      "  local -a names\n"
      "  for word in $words[2,-1]; do\n"
      "    [[ -z $file && -f ${(Q)word} ]] && file=${(Q)word}\n"
      "  done\n"
      "  [[ -n $file ]] || return 1\n"
      "  names=(${(f)\"$(tabelion-cli completions $1 ${(Q)file} 2>/dev/null)\"})\n"
      "  compadd -S \"$2\" -M 'm:{a-zA-Z}={A-Za-z}' -a names\n"
      "}\n\n";
  forEachCommand(program, [&](const std::string& path, const CommandForm& form) {
    text += functionName(path) + "() {\n";
    if (path.empty()) {
      text += "  local -a global\n  global=( \\\n" + argumentLines(form, "    ") + "  )\n";
      text += "  typeset -A opt_args\n";
    }
    if (form.actions.empty()) {
      text += "  _arguments \\\n" + argumentLines(form, "    ") + "    $global\n";
    } else {
      text += branching(path, form);
    }
    text += "}\n\n";
  });
  return text + "_tabelion-cli \"$@\"\n";
}

}  // namespace tabelion
