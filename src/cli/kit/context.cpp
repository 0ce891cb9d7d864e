#include "cli/kit/context.h"

#include <algorithm>
#include <chrono>

#include <fmt/format.h>

#include "engine/calendar.h"
#include "engine/packed_record.h"
#include "query/record_index.h"
#include "security/access_rights.h"
#include "security/database_encryption.h"
#include "services/preferences.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

// How long a person waits without a word, and between two.
using SteadyClock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPatience{500};
constexpr std::chrono::milliseconds kBetween{100};

constexpr char kLockHolder[] = "tabelion-cli";

// As many as the window's password dialog takes.
constexpr std::size_t kLongestPassword = 24;

bool isReaderGone(const Streams& streams) {
  return streams.reader_is_gone && streams.reader_is_gone();
}

}  // namespace

ExitCode exitCodeFor(ErrorKind kind) {
  switch (kind) {
    case ErrorKind::kNotFound:
    case ErrorKind::kCannotOpen:
      return ExitCode::kCannotOpen;
    case ErrorKind::kCannotWrite:
    case ErrorKind::kWarning:
      return ExitCode::kCannotWrite;
    case ErrorKind::kLocked:
      return ExitCode::kLocked;
    case ErrorKind::kNotDatabase:
      return ExitCode::kNotDatabase;
    case ErrorKind::kDamaged:
      return ExitCode::kDamaged;
    case ErrorKind::kInvalid:
    case ErrorKind::kRefused:
      break;
  }
  return ExitCode::kRefused;
}

CliContext::CliContext(CliPlatform& platform, Streams& the_streams, GlobalOptions options)
    : streams(the_streams),
      files(platform.files, the_streams),
      clock(platform.clock),
      engine{files, platform.clock, platform.random, {}, {}, {}},
      out(the_streams.out),
      locale_(platform.locale),
      settings_(platform.settings),
      secret_prompt_(platform.ask_secret),
      options_(std::move(options)) {
  files.setPatience(std::chrono::seconds(options_.wait_seconds.value_or(0)), platform.sleep);
  engine.message = [this](const std::string& text) {
    if (!engine_message_.empty()) engine_message_ += "; ";
    engine_message_ += text;
  };
  engine.steps.sort_and_rebuild = [this](Database& database) {
    sortAndRecompute(database, querySettings(databaseCodePage(database) == "UTF-8"));
  };
  engine.steps.refresh = [this](Database& database) {
    if (database.schema.sort_pending != 0) {
      engine.steps.sort_and_rebuild(database);
      database.schema.sort_pending = 0;
    }
    return 1;
  };
}

void CliContext::say(std::string_view text) {
  clearProgress();
  streams.err.write(fmt::format("tabelion-cli: {}\n", text));
}

ExitCode CliContext::fail(const Error& error) {
  say(error.text);
  return exitCodeFor(error.kind);
}

Database* CliContext::openAsItIs(const std::string& path, ExitCode& failure) {
  const auto kind = FileKindOf(engine, path);
  if (!kind.ok()) {
    failure = fail(kind.error());
    return nullptr;
  }
  if (*kind == FileKind::kEarlierFormat) {
    failure = fail({ErrorKind::kNotDatabase,
                    path + ": a database of the earlier format, which cannot be converted"});
    return nullptr;
  }
  if (*kind == FileKind::kSomethingElse) {
    failure = fail({ErrorKind::kNotDatabase, path + ": not a Tabelion database"});
    return nullptr;
  }
  engine_message_.clear();
  if (ReadFile(session_, engine, path) != 1) {
    if (files.readError()) {
      failure = fail(*files.readError());
      return nullptr;
    }
    failure = fail({ErrorKind::kDamaged, fmt::format("{}: {}; \"tabelion-cli check\" tells more",
                                                     path, engine_message_)});
    return nullptr;
  }
  return session_.database.get();
}

Database* CliContext::open(const std::string& path, ExitCode& failure) {
  Database* database = openAsItIs(path, failure);
  return database && mayOpen(*database, failure) && decipher(failure) ? database : nullptr;
}

std::optional<OpenedDatabase> CliContext::openToChange(const std::string& path, ExitCode& failure,
                                                       Opening how) {
  const Status locked = LockFile(session_, engine, path, kLockHolder);
  if (!locked.ok()) {
    failure = fail(locked.error());
    return std::nullopt;
  }
  OpenedDatabase opened;
  opened.database = how == Opening::kForUse ? open(path, failure) : openAsItIs(path, failure);
  if (!opened.database) return std::nullopt;
  const auto encoding = encodingOf(*opened.database);
  if (!encoding.ok()) {
    failure = fail(encoding.error());
    return std::nullopt;
  }
  opened.encoding = *encoding;
  return opened;
}

std::optional<Password> CliContext::askPassword(const SecretSource& source,
                                                const std::string& question,
                                                const TextEncoding& encoding, ExitCode& failure) {
  Result<std::string> text = readSecret(source, files, secret_prompt_, question);
  if (!text.ok()) {
    say(text.error().text);
    failure = ExitCode::kWrongPassword;
    return std::nullopt;
  }
  Encoded bytes = encoding.fromUtf8(*text);
  wipeText(*text);
  std::optional<Password> password;
  if (!bytes.ok() || bytes.bytes.size() > kLongestPassword) {
    say(fmt::format("a password has at most {} characters, all of them in {}", kLongestPassword,
                    encoding.name()));
    failure = ExitCode::kWrongPassword;
  } else {
    password.emplace(bytes.bytes);
  }
  wipeText(bytes.bytes);
  return password;
}

std::optional<Password> CliContext::askNewPassword(const SecretSource& source,
                                                   const std::string& question,
                                                   const TextEncoding& encoding,
                                                   ExitCode& failure) {
  auto password = askPassword(source, question, encoding, failure);
  if (!password || !source.file.empty() || source.descriptor) return password;
  const auto again = askPassword(source, question + ", once more", encoding, failure);
  if (!again) return std::nullopt;
  if (again->text() == password->text()) return password;
  say("the two passwords differ; nothing was changed");
  failure = ExitCode::kWrongPassword;
  return std::nullopt;
}

ExitCode failWith(CliContext& context, const Database& database, const PasswordAttempt& attempt) {
  if (attempt.closed > 0) {
    context.say(fmt::format("{}: the password does not decipher {} of {} enciphered records",
                            database.path, attempt.closed, attempt.closed + attempt.opened));
  } else {
    context.say(fmt::format(
        "{}: the password passes the check of its enciphered records, but what it makes of them "
        "does not look like values; the window can be told to believe it",
        database.path));
  }
  return ExitCode::kWrongPassword;
}

bool CliContext::mayOpen(const Database& database, ExitCode& failure) {
  const int code = OpenCode(database.schema);
  if (code == kOpenFreely) return true;
  if (code == kNeverOpen) {
    failure = fail({ErrorKind::kRefused,
                    database.path + ": its rights do not let it be opened; see \"rights\""});
    return false;
  }
  const auto encoding = encodingOf(database);
  if (!encoding.ok()) {
    failure = fail(encoding.error());
    return false;
  }
  const auto password =
      askPassword(options_.access_password, "Access password", *encoding, failure);
  if (!password) return false;
  if (IsAccessPassword(database.schema, *password)) return true;
  say(database.path + ": this is not its access password");
  failure = ExitCode::kWrongPassword;
  return false;
}

bool CliContext::decipher(ExitCode& failure) {
  Database& database = *session_.database;
  if (!options_.encryption_password.isGiven() || !HasEncipheredRecords(database)) return true;
  for (const Record& record : database.records) {
    if (!isRecordEncrypted(record.bytes())) in_clear_.insert(stampIdentity(record.bytes()));
  }
  const auto encoding = encodingOf(database);
  if (!encoding.ok()) {
    failure = fail(encoding.error());
    return false;
  }
  const auto password =
      askPassword(options_.encryption_password, "Encryption password", *encoding, failure);
  if (!password) return false;
  const PasswordAttempt attempt = TryPassword(session_, *password, true);
  if (attempt.isComplete()) return true;
  failure = failWith(*this, database, attempt);
  return false;
}

// A database that is kept enciphered is enciphered as a whole; else the records that were so
// before, and new ones where saving enciphers.
Sealing CliContext::encipherAgain() {
  const int mode = session_.database->schema.encryption_mode;
  return SealForClosing(session_, engine, nullptr, [&](ByteView record, bool known) {
    return known || mode == kEncryptWholeDatabase ||
           (mode == kEncryptRecordsOnSave && !in_clear_.contains(stampIdentity(record)));
  });
}

ExitCode CliContext::save(Database& database) {
  nameCurrentRecord(database);
  const bool is_opened = &database == session_.database.get();
  if (is_opened) {
    const Sealing sealing = encipherAgain();
    if (sealing.too_long != kNoPosition) {
      return fail(
          {ErrorKind::kRefused, fmt::format("{}: record {} would become too long enciphered",
                                            database.path, sealing.too_long + 1)});
    }
  }
  engine_message_.clear();
  const Status saved =
      is_opened ? WriteSealed(session_, engine) : trySaveDatabase(database, engine);
  if (!saved.ok()) return fail({ErrorKind::kCannotWrite, saved.error().text});
  if (!engine_message_.empty()) say(engine_message_);
  return ExitCode::kDone;
}

std::unique_ptr<FileLock> CliContext::lock(const std::string& path, ExitCode& failure) {
  auto lock = files.lock(path, kLockHolder);
  if (lock.ok()) return std::move(lock).value();
  failure = fail(lock.error());
  return nullptr;
}

Result<TextEncoding> CliContext::userEncoding() {
  std::string name = options_.code_page;
  if (name.empty()) {
    name = ReadSetting(settings_, Setting::kCodePage).value_or(std::string(kDefaultCodePage));
  }
  return TextEncoding::open(name);
}

Result<TextEncoding> CliContext::encodingOf(const Database& database) {
  const std::string own = databaseCodePage(database);
  if (!own.empty()) {
    auto encoding = TextEncoding::open(own);
    if (encoding.ok()) return encoding;
    say(fmt::format("{}: {}; read in the user's code page", database.path, encoding.error().text));
  }
  return userEncoding();
}

QuerySettings CliContext::querySettings(const TextEncoding& encoding) {
  return querySettings(encoding.isUtf8());
}

QuerySettings CliContext::querySettings(bool utf8) {
  const LocaleInfo locale = locale_.info();
  QuerySettings query;
  query.formats = makeFormatSettings(ReadFormatChoices(settings_, locale), locale, utf8);
  query.now = clock.local();
  query.week_starts_monday = ReadNumberSetting(settings_, Setting::kWeekStart).value_or(0) == 1;
  return query;
}

ExitCode CliContext::finishOutput() {
  clearProgress();
  if (out.flush() || isReaderGone(streams)) return ExitCode::kDone;
  return fail({ErrorKind::kCannotWrite, "standard output cannot be written"});
}

ExitCode CliContext::finishAfterSave(const std::string& path) {
  clearProgress();
  if (!out.flush() && !isReaderGone(streams)) {
    say(path + ": is saved, but standard output cannot be written");
  }
  return ExitCode::kDone;
}

ProgressStep CliContext::progress(std::string what) {
  if (!streams.progress) return {};
  return [this, what = std::move(what), next = SteadyClock::now() + kPatience](
             std::uint32_t done, std::uint32_t of) mutable {
    const auto now = SteadyClock::now();
    if (now < next) return;
    next = now + kBetween;
    const std::uint64_t percent = of == 0 ? 100 : std::uint64_t{done} * 100 / of;
    streams.progress->write(fmt::format("\r{} {} %", what, percent));
    shows_progress_ = true;
  };
}

void CliContext::clearProgress() {
  if (shows_progress_) streams.progress->write("\r\x1b[K");
  shows_progress_ = false;
}

std::string fileNameOf(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string headerTimeText(std::uint32_t seconds) {
  const CalendarDate date = dateOfDayCount(seconds / 86400);
  const std::uint32_t rest = seconds % 86400;
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", date.year, date.month, date.day,
                     rest / 3600, rest / 60 % 60, rest % 60);
}

}  // namespace tabelion
