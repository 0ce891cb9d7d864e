#include "cli/run.h"

#include <algorithm>
#include <sstream>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "cli/command.h"

namespace tabelion {
namespace {

constexpr const char* kProgramName = "tabelion-cli";
constexpr const char* kProgramSummary = "Work with Tabelion databases from the command line.";

constexpr Command kCommands[] = {
    {"info", "Show what a database is: name, dates, counts, protection", declareInfo},
    {"dump", "Write the whole file as JSON, also a damaged one", declareDump},
    {"check", "List everything in which a file deviates from a sound one", declareCheck},
    {"schema", "Write the description of a database as JSON", declareSchema},
    {"create", "Make a database from a description, and records from CSV", declareCreate},
    {"import", "Add the rows of a CSV text as records", declareImport},
    {"export", "Write the records as CSV, JSON or SQL", declareExport},
    {"list", "Show the records as the window lists them", declareList},
    {"filter", "Show or set which records a database shows", declareFilter},
    {"find", "Show the records that have a text in a field", declareFind},
    {"rewrite", "Open a database and save it under another name", declareRewrite},
    {"sort", "Put the records into an order, and keep them in it", declareSort},
    {"view", "List, choose, make and change views", declareView},
    {"report", "Show statistics over one field", declareReport},
    {"set", "Change fields of one record", declareSet},
    {"add", "Add one record", declareAdd},
    {"delete", "Delete records", declareDelete},
    {"recalc", "Work out the calculated fields of all records anew", declareRecalc},
    {"encrypt", "Encipher chosen fields of all records with a password", declareEncrypt},
    {"decrypt", "Decipher all records, and keep them in clear", declareDecrypt},
    {"passwd", "Set the password that opening a database asks for", declarePasswd},
    {"rights", "Show or change what a database allows its users to do", declareRights},
    {"completions", "Write what lets a shell complete command lines", declareCompletions},
    {"manual", "Write the manual page", declareManual},
};

constexpr std::uint32_t kMostDescriptor = 1 << 20;

std::string footer() {
  std::string text = "A FILE or OUT of - is standard input or standard output.\n\nExit codes:\n";
  for (const ExitCodeText& entry : kExitCodes) {
    text += fmt::format("  {}  {}\n", static_cast<int>(entry.code), entry.meaning);
  }
  text += "\n\"tabelion-cli COMMAND --help\" tells more about a command.";
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

ExitCode runCli(std::vector<std::string> arguments, CliPlatform& platform, Streams& streams) {
  Parser parser;
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser wants them
    parser.app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    std::ostringstream out;
    std::ostringstream err;
    const int code = parser.app.exit(error, out, err);
    const bool written = streams.out.write(out.str()) && streams.err.write(err.str());
    if (code != 0) return ExitCode::kUsage;
    return written ? ExitCode::kDone : ExitCode::kCannotWrite;
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
