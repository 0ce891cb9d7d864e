// The life of an open database between its file and memory: what opening, its passwords, saving and
// closing are, for the window and the command line alike. Nothing here asks, shows or prints; who
// calls it turns results into words.
//
// In order: FileKindOf, LockFile, ReadSchemaOf (may it be opened?), ReadFile, TryPassword as often
// as it takes, WriteFile whenever, SealForClosing and WriteFile, and the session goes out of being.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "engine/database.h"
#include "security/access_rights.h"
#include "security/opened_records.h"

namespace tabelion {

// Of a database record, what says with which password its records are enciphered.
struct EncryptionMarks {
  std::array<std::uint8_t, 9> check{};
  std::uint8_t check_sum = 0;
  std::uint8_t check_present = 0;
  bool database_encrypted = false;
};

struct Session {
  std::unique_ptr<Database> database;
  // Held from before the file is read until it is closed, so no other program changes it meanwhile.
  std::unique_ptr<FileLock> lock;
  bool open = false;
  std::uint64_t file_version = 0;  // FileInfo::version of the file that was read or saved last
  // Which records are in clear because passwords opened them.
  OpenedRecords opened;
  EncryptionMarks marks_in_file;
  bool remembers_password = false;  // closing asks for none
  bool clear_in_file = false;       // WriteFile wrote values in clear that closing enciphers
};

enum class FileKind { kDatabase, kEarlierFormat, kSomethingElse };
// By the first bytes of the file. An Error when there are none to be read.
Result<FileKind> FileKindOf(Engine& engine, const std::string& path);

// Takes the file's lock for `holder` and notes its version: before anything is read, so that a
// change meanwhile is noticed too.
Status LockFile(Session& session, Engine& engine, const std::string& path,
                const std::string& holder);

// Reads the whole file into a database of the session's. 1, or 0 after what the engine had to say.
int ReadFile(Session& session, Engine& engine, const std::string& path);

// A database that says things of itself which no program of this system writes; what its records
// hold is not touched then.
bool LooksCorrupt(const DatabaseRecord& schema);

// 8-bit, in the database's own code page.
bool IsAccessPassword(const DatabaseRecord& schema, const Password& typed);

// Whether a database is enciphered in its file, and in clear while it is open.
bool IsKeptEnciphered(const Database& database);
bool HasEncipheredRecords(const Database& database);
bool HasRecordsInClear(const Database& database);

// Opens what the password opens; `forced` also in a database whose records are enciphered one by
// one. When all is open the database counts as deciphered.
PasswordAttempt TryPassword(Session& session, const Password& password, bool forced = false);
// Whoever was asked knows no further password: what was opened by chance is closed again.
void GiveUpPasswords(Session& session);
// The records are to be written in clear, on purpose: all of them but what is not certain to be
// one.
void KeepWhatIsUncertain(Session& session);

// Whether closing has records to encipher.
bool ClosingEnciphers(const Session& session);

// The records as they are to be written. With a password: all of them under it, on purpose.
// Without: each under the password that opened it, and new ones under the one that opened most;
// nothing happens when none did. `wanted` as OpenedRecords has it, null for all. `changed` says
// whether the file has to be written because of that.
Sealing SealForClosing(Session& session, Engine& engine, const Password* password,
                       const OpenedRecords::RecordTest& wanted = {});
void UndoSealing(Session& session, Sealing& sealing);

// Writes the database to its path, and the session goes on. A database that is kept enciphered is
// written so, as far as its passwords are known. The error is a sentence for the user; the database
// counts as changed after it when it did before.
[[nodiscard]] Status WriteFile(Session& session, Engine& engine);
// The same once SealForClosing has been run.
[[nodiscard]] Status WriteSealed(Session& session, Engine& engine);

// Whether the file is no longer the one that was read or saved last. One that is gone has not
// changed: it is written again.
bool FileWasChanged(const Session& session, Files& files);

}  // namespace tabelion
