#include "cli/run.h"

#include <algorithm>
#include <sstream>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/kit/usage.h"

namespace tabelion {
namespace {

constexpr const char* kProgramName = "tabelion-cli";
constexpr const char* kProgramSummary = "Work with Tabelion databases from the command line.";

constexpr Command kCommands[] = {
#define TABELION_COMMAND(name, declare, source, summary) {#name, summary, declare},
#include "cli/commands.inc"
#undef TABELION_COMMAND
};

constexpr std::uint32_t kMostDescriptor = 1 << 20;
constexpr std::uint32_t kMostSeconds = 24 * 3600;

std::string footer() {
  std::string text = "A FILE or OUT of - is standard input or standard output.\n\nExit codes:\n";
  for (const ExitCodeText& entry : kExitCodes) {
    text += fmt::format("  {}  {}\n", static_cast<int>(entry.code), entry.meaning);
  }
  text += "\n\"tabelion-cli help COMMAND\" tells more about a command.";
  return text;
}

// The parser with all commands declared, and what they declared.
struct Parser {
  CLI::App app{kProgramSummary, kProgramName};
  GlobalOptions options;
  CommandForm form{kProgramName, kProgramSummary, {}, {}};
  std::vector<std::pair<CLI::App*, CommandBody>> bodies;

  Parser() {
    app.set_version_flag("--version", std::string("tabelion-cli ") + TABELION_VERSION);
    app.footer(footer());
    app.require_subcommand(1);
    app.fallthrough();
    declareGlobals(OptionList(app, form));
    // The parser has these two on its own.
    form.options.push_back(
        {"--help", "", "Print help, also of a command, and exit", false, false, {}});
    form.options.push_back({"--version", "", "Print the version and exit", false, false, {}});
    for (const Command& command : commands()) {
      CLI::App* sub = app.add_subcommand(command.name, command.summary);
      form.actions.push_back({command.name, command.summary, {}, {}});
      bodies.emplace_back(sub, command.declare(OptionList(*sub, form.actions.back())));
    }
  }

  void declareGlobals(OptionList list) {
    list.optional("--code-page NAME", options.code_page,
                  "Code page of databases that name none (default: the user's setting, else 1252)");
    SecretSource& password = options.encryption_password;
    list.optional("--password-file FILE", password.file,
                  "File whose first line is the password of enciphered records");
    list.number("--password-fd NUMBER", password.descriptor, 0, kMostDescriptor,
                "The same from an open file descriptor");
    list.flag("--ask-password", password.ask,
              "Ask for the password of enciphered records on the terminal");
    list.exclusive({"--password-file", "--password-fd", "--ask-password"});
    list.number("--wait SECONDS", options.wait_seconds, 0, kMostSeconds,
                "How long to wait for a file that another program has open, instead of giving up");
    list.optional("--access-password-file FILE", options.access_password.file,
                  "File whose first line is the password that opening asks for");
  }
};

}  // namespace

std::span<const Command> commands() {
  return kCommands;
}

CommandForm programForm() {
  return Parser().form;
}

std::optional<std::string> helpText(std::span<const std::string> command) {
  const Parser parser;
  const CLI::App* app = &parser.app;
  const CommandForm* form = &parser.form;
  std::string before;  // what is typed in front of the command
  for (const std::string& name : command) {
    before += (before.empty() ? "" : " ") + form->name;
    for (const OptionForm& option : form->options) {
      if (option.isArgument()) before += ' ' + option.name;
    }
    const auto named = [&](const auto& each) { return each.name == name; };
    const auto inner = std::find_if(form->actions.begin(), form->actions.end(), named);
    if (inner == form->actions.end()) return std::nullopt;
    form = &*inner;
    app =
        app->get_subcommands([&](const CLI::App* sub) { return sub->get_name() == name; }).front();
  }
  return app->help(before);
}

ExitCode runCli(const std::vector<std::string>& arguments, CliPlatform& platform,
                Streams& streams) {
  Parser parser;
  try {
    // As the parser wants them.
    parser.app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream err;
    if (parser.app.exit(error, out, err) == 0) {
      const bool is_written =
          streams.out.write(out.str()) || (streams.reader_is_gone && streams.reader_is_gone());
      return is_written ? ExitCode::kDone : ExitCode::kCannotWrite;
    }
    streams.err.write(
        fmt::format("tabelion-cli: {}\n", usageFault(parser.form, arguments, error.what())));
    return ExitCode::kUsage;
  }
  CliContext context(platform, streams, parser.options);
  for (const auto& [sub, body] : parser.bodies) {
    if (!sub->parsed()) continue;
    const ExitCode code = body(context);
    context.clearProgress();
    return code;
  }
  return ExitCode::kUsage;
}

}  // namespace tabelion
