// What every command works with: files, streams, the way to say what went wrong.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/exit_code.h"
#include "cli/piped_files.h"
#include "cli/streams.h"
#include "engine/database.h"
#include "interchange/table_export.h"
#include "interchange/text_encoding.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/settings.h"
#include "query/query_settings.h"

namespace tabelion {

// What the program is handed at its start.
struct CliPlatform {
  Files& files;
  Clock& clock;
  Locale& locale;
  Settings& settings;
  RandomSource random;
};

class CliContext {
 public:
  CliContext(CliPlatform& platform, Streams& streams, std::string code_page);

  Streams& streams;
  PipedFiles files;
  Clock& clock;
  Engine engine;
  OutputBuffer out;

  // A message of one line on standard error.
  void say(std::string_view text);
  ExitCode fail(const Error& error);

  // Opens the database at `path`. On failure the message has been said and `failure` is set.
  std::unique_ptr<Database> open(const std::string& path, ExitCode& failure);
  // Writes the database to its path.
  ExitCode save(Database& database);
  std::unique_ptr<FileLock> lock(const std::string& path, ExitCode& failure);

  // The code page that the user has set or asked for.
  Result<TextEncoding> userEncoding();
  // The code page of a database: its own mark when that is one, else the user's.
  Result<TextEncoding> encodingOf(const Database& database);

  // What the window's queries take: the user's formats, week start and the present time.
  // The encoding is the database's.
  QuerySettings querySettings(const TextEncoding& encoding);

  // Hands on what is in `out`; kCannotWrite after a message when anything could not be written.
  ExitCode finishOutput();

  // Shows how far `what` has come: on a terminal, and only when it takes a while.
  ProgressStep progress(std::string what);
  void clearProgress();

 private:
  Locale& locale_;
  Settings& settings_;
  std::string code_page_;
  std::string engine_message_;
  bool shows_progress_ = false;
};

// "report.PDB" of "/home/me/report.PDB".
std::string fileNameOf(const std::string& path);
// Seconds since 1904-01-01 as "2024-03-31 17:05:09".
std::string headerTimeText(std::uint32_t seconds);

}  // namespace tabelion
