#include "services/session/session.h"

#include <algorithm>

#include "engine/schema_places.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

constexpr int kCorruptLabelWidth = 86;  // a form's labels are never that wide

EncryptionMarks marksOf(const DatabaseRecord& schema) {
  return {schema.password_check, schema.password_check_sum, schema.password_check_present,
          (schema.head[kStampFlagOffset] & kDatabaseEncrypted) != 0};
}

void setMarks(DatabaseRecord& schema, const EncryptionMarks& marks) {
  schema.password_check = marks.check;
  schema.password_check_sum = marks.check_sum;
  schema.password_check_present = marks.check_present;
  std::uint8_t& flags = schema.head[kStampFlagOffset];
  flags = static_cast<std::uint8_t>(marks.database_encrypted ? flags | kDatabaseEncrypted
                                                             : flags & ~kDatabaseEncrypted);
}

bool hasRecords(const Database& database, bool enciphered) {
  return std::any_of(database.records.begin(), database.records.end(),
                     [enciphered](const Record& record) {
                       return isRecordEncrypted(record.bytes()) == enciphered;
                     });
}

// What the database says of its passwords once it is sealed. The check block is drawn anew only for
// another password than the file's.
void markSealed(Session& session, Engine& engine, const Password& password, Sealing& sealing) {
  DatabaseRecord& schema = session.database->schema;
  setMarks(schema, session.marks_in_file);
  const bool is_the_files =
      schema.password_check_present != 0 && PasswordMatchesCheck(schema, password.text());
  if (!is_the_files) {
    SetPasswordCheck(schema, password.text(), engine.random);
    sealing.changed = true;
  }
  if (IsKeptEnciphered(*session.database)) schema.head[kStampFlagOffset] |= kDatabaseEncrypted;
}

void noteVersion(Session& session, Files& files) {
  const auto info = files.info(session.database->path);
  session.file_version = info.ok() ? info->version : 0;
}

}  // namespace

Result<FileKind> FileKindOf(Engine& engine, const std::string& path) {
  const auto start = engine.files.readStart(path, kHeaderSize);
  if (!start.ok()) return start.error();
  engine.last_probed_header = parseHeader(*start);
  switch (engine.last_probed_header.creator) {
    case kCreator:
      return FileKind::kDatabase;
    case kLegacyCreator:
      return FileKind::kEarlierFormat;
    default:
      return FileKind::kSomethingElse;
  }
}

Status LockFile(Session& session, Engine& engine, const std::string& path,
                const std::string& holder) {
  auto lock = engine.files.lock(path, holder);
  if (!lock.ok()) return lock.error();
  session.lock = std::move(*lock);
  if (const auto info = engine.files.info(path); info.ok()) session.file_version = info->version;
  return Done{};
}

int ReadFile(Session& session, Engine& engine, const std::string& path) {
  session.opened.forget();
  session.clear_in_file = false;
  if (!session.database) {
    session.database = std::make_unique<Database>();
    initDatabase(*session.database, engine);
  }
  session.database->path = path;
  if (openDatabase(*session.database, engine) != 1) return 0;
  session.marks_in_file = marksOf(session.database->schema);
  session.open = true;
  return 1;
}

bool LooksCorrupt(const DatabaseRecord& schema) {
  return schema.label_width_adjustment >= kCorruptLabelWidth;
}

bool IsAccessPassword(const DatabaseRecord& schema, const Password& typed) {
  return typed.text() == areaText(schema.access_password);
}

bool IsKeptEnciphered(const Database& database) {
  return database.schema.encryption_mode == kEncryptWholeDatabase && database.records.count() > 0;
}

bool HasEncipheredRecords(const Database& database) {
  return hasRecords(database, true);
}

bool HasRecordsInClear(const Database& database) {
  return hasRecords(database, false);
}

PasswordAttempt TryPassword(Session& session, const Password& password, bool forced) {
  const PasswordAttempt attempt = session.opened.open(*session.database, password, forced);
  if (attempt.isComplete() && IsKeptEnciphered(*session.database)) {
    markDeciphered(session.database->schema);
  }
  return attempt;
}

void GiveUpPasswords(Session& session) {
  session.opened.closeUncertain(*session.database, OpenedRecords::Before::kLooking);
}

void KeepWhatIsUncertain(Session& session) {
  session.opened.closeUncertain(*session.database, OpenedRecords::Before::kWritingInClear);
}

bool ClosingEnciphers(const Session& session) {
  return IsKeptEnciphered(*session.database) && HasRecordsInClear(*session.database);
}

Sealing SealForClosing(Session& session, Engine& engine, const Password* password,
                       const OpenedRecords::RecordTest& wanted) {
  const Password* marked = password != nullptr ? password : session.opened.mainPassword();
  if (marked == nullptr) return {};
  Database& database = *session.database;
  Sealing sealing = password != nullptr ? session.opened.sealWith(database, engine, *password)
                                        : session.opened.sealAsOpened(database, engine, wanted);
  if (sealing.too_long != kNoPosition) return sealing;
  if (password == nullptr && !sealing.changed) {
    setMarks(database.schema, session.marks_in_file);
  } else {
    markSealed(session, engine, *marked, sealing);
  }
  return sealing;
}

void UndoSealing(Session& session, Sealing& sealing) {
  if (sealing.clear.empty()) return;
  unseal(*session.database, sealing);
  if (IsKeptEnciphered(*session.database) && !HasEncipheredRecords(*session.database)) {
    markDeciphered(session.database->schema);
  }
}

Status WriteSealed(Session& session, Engine& engine) {
  Database& database = *session.database;
  const bool was_dirty = isDirty(database);
  Status written = trySaveDatabase(database, engine);
  if (!written.ok()) {
    if (was_dirty) setDirty(database);
    return written;
  }
  session.marks_in_file = marksOf(database.schema);
  session.clear_in_file = ClosingEnciphers(session);
  noteVersion(session, engine.files);
  return written;
}

Status WriteFile(Session& session, Engine& engine) {
  Sealing sealing;
  if (IsKeptEnciphered(*session.database)) sealing = SealForClosing(session, engine, nullptr);
  Status written = WriteSealed(session, engine);
  UndoSealing(session, sealing);
  return written;
}

bool FileWasChanged(const Session& session, Files& files) {
  const auto info = files.info(session.database->path);
  return info.ok() && info->version != session.file_version;
}

}  // namespace tabelion
