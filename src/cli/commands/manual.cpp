// manual: the manual page, made from the command table.

#include <fmt/format.h>

#include "cli/command.h"
#include "cli/commands/completions.h"
#include "cli/kit/context.h"

namespace tabelion {
namespace {

// A text that troff prints as it stands: no escapes, no requests, hyphens that can be copied.
std::string literal(const std::string& text) {
  std::string result;
  if (text.starts_with('.') || text.starts_with('\'')) result += "\\&";
  for (const char c : text) {
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else {
      result += c;
    }
  }
  return result;
}

std::string bold(const std::string& text) {
  return "\\fB" + literal(text) + "\\fP";
}
std::string italic(const std::string& text) {
  return "\\fI" + literal(text) + "\\fP";
}

std::string optionText(const OptionForm& option) {
  if (option.isArgument()) return italic(option.name);
  return option.isFlag() ? bold(option.name) : bold(option.name) + ' ' + italic(option.value_name);
}

std::string usage(const std::string& before, const CommandForm& form) {
  std::string text = before + bold(form.name);
  for (const OptionForm& option : form.options) {
    text += option.is_required ? ' ' + optionText(option) : " [" + optionText(option) + ']';
    if (option.is_repeatable) text += "...";
  }
  if (!form.actions.empty()) text += ' ' + italic("ACTION") + " ...";
  return text;
}

std::string optionEntry(const OptionForm& option) {
  std::string text = ".TP\n" + optionText(option) + '\n' + literal(option.help);
  for (std::size_t i = 0; i < option.words.size(); ++i) {
    text += i == 0 ? ": " : i + 1 == option.words.size() ? " or " : ", ";
    text += bold(option.words[i]);
  }
  return text + '\n';
}

// What a command is for, and what it takes; then the same of the commands within it.
std::string commandEntry(const std::string& before, const CommandForm& form) {
  std::string text = usage(before, form) + "\n.PP\n" + literal(form.summary) + ".\n";
  for (const OptionForm& option : form.options) text += optionEntry(option);
  std::string inner = before + bold(form.name) + ' ';
  for (const OptionForm& option : form.options) {
    if (option.isArgument()) inner += optionText(option) + ' ';
  }
  for (const CommandForm& action : form.actions) text += ".PP\n" + commandEntry(inner, action);
  return text;
}

}  // namespace

std::string manualPage(const CommandForm& program) {
  const std::string name = bold(program.name);
  std::string text = fmt::format(
      ".TH TABELION\\-CLI 1 \"\" \"tabelion\\-cli {}\" \"Tabelion\"\n"
      ".nh\n.ad l\n"
      ".SH NAME\ntabelion\\-cli \\- work with Tabelion databases from the command line\n"
      ".SH SYNOPSIS\n{} [{}] {} ...\n",
      TABELION_VERSION, name, italic("OPTIONS"), italic("COMMAND"));
  text +=
      ".SH DESCRIPTION\nMakes, describes, fills, queries, changes, exports and checks databases.\n"
      "Data goes to standard output, messages go to standard error.\n"
      "A file that is called \\- is standard input or standard output.\n";
  text += ".SH OPTIONS\n";
  for (const OptionForm& option : program.options) text += optionEntry(option);
  text += ".SH COMMANDS\n";
  for (const CommandForm& command : program.actions) {
    text += ".SS " + literal(command.name) + '\n' + commandEntry(name + ' ', command);
  }
  text += ".SH EXIT STATUS\n";
  for (const ExitCodeText& entry : kExitCodes) {
    text += fmt::format(".TP\n{}\n{}\n", static_cast<int>(entry.code), literal(entry.meaning));
  }
  return text;
}

CommandBody declareManual(OptionList) {
  return [](CliContext& context) {
    context.out.put(manualPage(programForm()));
    return context.finishOutput();
  };
}

}  // namespace tabelion
