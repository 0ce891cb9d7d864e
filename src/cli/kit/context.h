// What every command works with: files, streams, the way to say what went wrong.
#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "cli/kit/exit_code.h"
#include "cli/kit/piped_files.h"
#include "cli/kit/secret.h"
#include "cli/kit/streams.h"
#include "engine/database.h"
#include "interchange/table_export.h"
#include "interchange/text_encoding.h"
#include "platform/clock.h"
#include "platform/locale.h"
#include "platform/settings.h"
#include "query/query_settings.h"
#include "services/changes/history.h"
#include "services/session/session.h"

namespace tabelion {

// What the program is handed at its start.
struct CliPlatform {
  Files& files;
  Clock& clock;
  Locale& locale;
  Settings& settings;
  RandomSource random;
  SecretPrompt ask_secret = {};
  Sleep sleep = {};
};

// What every command may be given.
struct GlobalOptions {
  std::string code_page;
  SecretSource encryption_password;
  SecretSource access_password;
  std::optional<std::uint32_t> wait_seconds;  // for a file that another program has open
};

// A database that is being changed; the context's.
struct OpenedDatabase {
  Database* database = nullptr;
  TextEncoding encoding = TextEncoding::utf8();
};

class CliContext {
 public:
  CliContext(CliPlatform& platform, Streams& streams, GlobalOptions options);

  Streams& streams;
  PipedFiles files;
  Clock& clock;
  Engine engine;
  OutputBuffer out;
  History history;  // of the database that is being changed

  // A message of one line on standard error.
  void say(std::string_view text);
  ExitCode fail(const Error& error);

  // Opens the database at `path`, which lasts as long as the context; a run opens one. Null on
  // failure: the message has been said and `failure` is set.
  Database* openAsItIs(const std::string& path, ExitCode& failure);
  // The same for those who work with its records: only when its rights let it be opened, and with
  // its records in clear when their password was given.
  Database* open(const std::string& path, ExitCode& failure);
  // For changing it: locked first, then opened in one of these two ways. None on failure, which was
  // said.
  enum class Opening { kForUse, kAsItIs };
  std::optional<OpenedDatabase> openToChange(const std::string& path, ExitCode& failure,
                                             Opening how = Opening::kForUse);
  // What steps change: the database, whose current record nobody stands on here.
  ChangeTarget target(Database& database) { return {database, current_record_}; }
  // Writes the database to its path; records that open() deciphered are enciphered again first.
  ExitCode save(Database& database);
  std::unique_ptr<FileLock> lock(const std::string& path, ExitCode& failure);

  // A password of a database from one of its sources, else from the terminal, in the encoding of
  // the database. On failure the message has been said and `failure` is set.
  std::optional<Password> askPassword(const SecretSource& source, const std::string& question,
                                      const TextEncoding& encoding, ExitCode& failure);
  // The same for one that locks from now on: on the terminal it is typed twice.
  std::optional<Password> askNewPassword(const SecretSource& source, const std::string& question,
                                         const TextEncoding& encoding, ExitCode& failure);
  const GlobalOptions& options() const { return options_; }

  // The code page that the user has set or asked for.
  Result<TextEncoding> userEncoding();
  // The code page of a database: its own mark when that is one, else the user's.
  Result<TextEncoding> encodingOf(const Database& database);

  // What the window's queries take: the user's formats, week start and the present time.
  // The encoding is the database's.
  QuerySettings querySettings(const TextEncoding& encoding);

  // Hands on what is in `out`; kCannotWrite after a message when anything could not be written.
  // Who reads through a pipe may stop before the end.
  ExitCode finishOutput();
  // The same when the database at `path` is saved already: what cannot be said of it any more does
  // not undo that, and is no failure.
  ExitCode finishAfterSave(const std::string& path);

  // Shows how far `what` has come: on a terminal, and only when it takes a while.
  ProgressStep progress(std::string what);
  void clearProgress();

 private:
  QuerySettings querySettings(bool utf8);
  bool mayOpen(const Database& database, ExitCode& failure);
  bool decipher(ExitCode& failure);
  Sealing encipherAgain();

  Locale& locale_;
  Settings& settings_;
  SecretPrompt secret_prompt_;
  GlobalOptions options_;
  Session session_;
  std::set<std::uint64_t> in_clear_;  // records that were so when the database was opened
  std::uint32_t current_record_ = kNoPosition;
  std::string engine_message_;
  bool shows_progress_ = false;
};

// Says that a password did not open all that it had to.
ExitCode failWith(CliContext& context, const Database& database, const PasswordAttempt& attempt);

// "report.PDB" of "/home/me/report.PDB".
std::string fileNameOf(const std::string& path);
// Seconds since 1904-01-01 as "2024-03-31 17:05:09".
std::string headerTimeText(std::uint32_t seconds);

}  // namespace tabelion
