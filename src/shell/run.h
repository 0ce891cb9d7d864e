// The whole program, from its start to its end, on a platform that is handed to it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/platform.h"

namespace tabelion {

struct StartOptions {
  std::string command_line{};      // what the program was started with; a plain one opens nothing
  std::string code_page{};         // of databases that carry none, for this run; empty: the user's
  std::string open_file{};         // a database to open at once; an absolute path, empty: none
  std::string activation_token{};  // with which the desktop lets an earlier copy come to the front
};

// The record that an alarm leads to.
struct AlarmRecord {
  std::string database_path;
  std::uint32_t record = 0;
};
// Shows the alarm of the notification that a command line names; its record when the user wants to
// see it.
using AlarmStep = std::function<std::optional<AlarmRecord>(const std::string& command_line)>;

inline constexpr int kExitNoMemory = 12;

// Shows the chooser and returns, with the program's exit code, when the user leaves it. Every
// database is closed, and saved, by then. When another copy runs, it is handed the command line or
// the file instead, and nothing is shown here. kExitNoMemory when memory ran out: the files are
// then as they were saved last, and what was changed since is in copies that the user is told of.
int RunTabelion(Platform& platform, const StartOptions& options, const AlarmStep& alarm = {});

}  // namespace tabelion
