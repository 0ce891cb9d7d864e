// What the program is told on its command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/dialogs.h"

namespace tabelion {

struct ProgramOptions {
  std::optional<Size> screen;    // of the phone; none: as it was left, 240x320 at first
  double zoom = 0;               // 0: as it was left, chosen from the desktop at first
  std::optional<Scheme> scheme;  // none: as the desktop has it
  std::string documents_folder;
  std::string card_folder;
  std::string code_page;
  std::string samples_folder;    // empty: beside the program
  std::string tour_folder;       // where the tour leaves its pictures; empty: no tour
  std::string open_file;         // a database to open; an absolute path
  std::string command_line;      // the words that are no options
  std::string activation_token;  // from the environment: see main()
};

struct ParsedOptions {
  ProgramOptions options;
  std::optional<int> exit_code;  // the program ends at once with it
};

inline constexpr int kExitNotStarted = 1;  // no display, or another copy that does not answer
inline constexpr int kExitUsage = 2;
inline constexpr Size kPhoneScreen{240, 320};

// What to tell somebody who names a file without an option, as the programs of a desktop are never
// started; empty for other words.
std::string hintAboutFile(const std::vector<std::string>& words);

// To standard error, for a person: names and arguments in it do not reach the terminal's commands.
void sayToTerminal(const std::string& lines);

// Prints help, version and complaints itself.
ParsedOptions parseOptions(int argc, const char* const* argv);

}  // namespace tabelion
