#include "services/encryption.h"

#include "engine/schema_places.h"
#include "security/database_encryption.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr std::string_view kNoPassword = "ERROR";  // a remembered text that is none

bool canBeRemembered(const Password& password) {
  return !password.text().empty() && password.text() != kNoPassword;
}

std::u16string numberText(std::size_t number) {
  return FromUtf8(std::to_string(number));
}

// Names the first value that other devices could not read back; true when the user goes on.
bool acceptsOverlongValues(Application& app, const std::vector<OverlongRecordValue>& overlong) {
  if (overlong.empty() || IsAlone(app.closing)) return true;
  const Database& database = CurrentDatabase(app);
  const auto& [position, value] = overlong.front();
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(value.slot)];
  std::u16string text = u"The text of \"" + ScreenText(app, fieldName(field)) + u"\" in record " +
                        numberText(position + 1) + u" has " + numberText(value.length) +
                        u" bytes. Encrypted texts of more than 255 bytes can be opened here, but "
                        u"not on other devices.";
  if (overlong.size() > 1) text += u" So have " + numberText(overlong.size() - 1) + u" others.";
  return Ask(app, text + u"\nEncrypt all the same?", u"QUESTION") != Answer::kNo;
}

void sayTooLong(Application& app, std::uint32_t position) {
  ShowMessage(app,
              u"Record " + numberText(position + 1) +
                  u" would become too long. Nothing has been encrypted.",
              u"ERROR", MessageIcon::kError);
}

void sayKept(Application& app, std::uint32_t count) {
  ShowMessage(app,
              numberText(count) +
                  u" records do not look as if they had been decrypted with the right password. "
                  u"They stay encrypted with the one that they have.",
              u"Update", MessageIcon::kInformation);
}

// A typo in a password that nobody typed before would lock its owner out.
bool isTypedAgain(Application& app, const EncryptionPasswordPrompt& prompt, const Password& typed,
                  const std::u16string& means) {
  ShowMessage(app, means + u" Please enter it once more.", u"Update", MessageIcon::kInformation);
  Password again;
  if (!prompt(again)) return false;
  if (again.text() == typed.text()) return true;
  ShowMessage(app, u"The two passwords differ. Nothing has been encrypted.", u"Error",
              MessageIcon::kError);
  return false;
}

bool confirmsForDatabase(Application& app, const EncryptionPasswordPrompt& prompt,
                         const Password& typed) {
  const OpenedRecords& opened = app.level().session.opened;
  std::u16string means = u"From now on only this password opens the encrypted records.";
  if (opened.onlyPassword() != nullptr) {
    means = u"This is not the password that opened the database. " + means;
  } else if (!opened.isEmpty()) {
    means = u"Several passwords opened the database. " + means;
  }
  return isTypedAgain(app, prompt, typed, means);
}

// Where the database knows a last password, it is asked about another one first.
bool confirmsForRecord(Application& app, const EncryptionPasswordPrompt& prompt,
                       const Password& typed) {
  const Session& session = app.level().session;
  const DatabaseRecord& schema = session.database->schema;
  const bool matches = PasswordMatchesCheck(schema, typed.text());
  if ((matches && schema.password_check_present != 0) || session.opened.knows(typed)) return true;
  if (!matches &&
      Ask(app,
          u"Password entered does not seem to match last password given to a record in this "
          u"database.  Continue anyway?",
          u"QUESTION") != Answer::kYes) {
    return false;
  }
  return isTypedAgain(app, prompt, typed, u"From now on only this password opens the record.");
}

// Whether the user gives up encryption, of what is to be written or of what is in the file.
Answer askToGoWithout(Application& app) {
  const Session& session = app.level().session;
  std::u16string text = u"The records will be saved without encryption. Continue?";
  if (!isDirty(*session.database)) {
    text = session.opened.isEmpty() || session.clear_in_file
               ? u"The records stay in the file without encryption. Continue?"
               : u"Nothing was changed. The file stays encrypted with the password that it has. "
                 u"Close it?";
  }
  return Ask(app, text, u"QUESTION");
}

// False when nothing was enciphered.
bool seal(Application& app, const Password* password, Sealing& sealing) {
  WaitCursor waiting(app);
  sealing = SealForClosing(app.level().session, app.engine, password);
  if (sealing.too_long == kNoPosition) return true;
  if (!IsAlone(app.closing)) sayTooLong(app, sealing.too_long);
  return false;
}

bool move(Level& level, Database& database, HistoryMove to) {
  const ChangeTarget target{database, level.current_record};
  return to == HistoryMove::kUndo ? level.history.Undo(target) : level.history.Redo(target);
}

// The enciphered records, as they are, that a step puts in clear. The step is done and taken back.
std::vector<Bytes> putInClearBy(Application& app, HistoryMove to) {
  Level& level = app.level();
  Database& database = CurrentDatabase(app);
  std::vector<Bytes> found;
  std::vector<Bytes> enciphered;
  IdentityIndex by_identity;
  for (const Record& record : database.records) {
    if (!isRecordEncrypted(record.bytes())) continue;
    by_identity.add(stampIdentity(record.bytes()), static_cast<std::uint32_t>(enciphered.size()));
    enciphered.emplace_back(record.bytes().begin(), record.bytes().end());
  }
  by_identity.sort();
  if (enciphered.empty() || !move(level, database, to)) return found;
  for (const Record& record : database.records) {
    if (isRecordEncrypted(record.bytes())) continue;
    by_identity.forEach(stampIdentity(record.bytes()), [&](std::uint32_t number) {
      found.push_back(enciphered[number]);
      return false;
    });
  }
  move(level, database, to == HistoryMove::kUndo ? HistoryMove::kRedo : HistoryMove::kUndo);
  return found;
}

}  // namespace

int DecryptWholeDatabase(Application& app, const EncryptionPasswordPrompt& prompt) {
  Session& session = app.level().session;
  if (!IsKeptEnciphered(*session.database) || !HasEncipheredRecords(*session.database)) return 1;
  for (;;) {
    Password password;
    if (!prompt(password)) {
      GiveUpPasswords(session);
      return 0;
    }
    PasswordAttempt attempt;
    {
      WaitCursor waiting(app);
      attempt = TryPassword(session, password);
    }
    if (attempt.isComplete()) {
      session.remembers_password = app.preferences.auto_encrypt && canBeRemembered(password);
      return 1;
    }
    ShowMessage(app, u"ERROR: Password does not properly decrypt this data.  Please Try again.",
                u"ACCESS DENIED", MessageIcon::kError);
  }
}

bool EncryptWholeDatabase(Application& app, const EncryptionPasswordPrompt& prompt,
                          Sealing& sealing) {
  Session& session = app.level().session;
  if (!ClosingEnciphers(session)) return true;
  const bool remembered = session.remembers_password && app.preferences.auto_encrypt;
  const bool asks = prompt && !remembered && !IsAlone(app.closing);
  const bool is_new = isDirty(*session.database) || session.opened.isEmpty();
  if (asks && is_new && !acceptsOverlongValues(app, overlongValues(*session.database))) {
    return false;
  }
  if (!asks) {
    seal(app, nullptr, sealing);
    return true;
  }
  for (;;) {
    Password typed;
    if (prompt(typed)) {
      const bool known = session.opened.openedAll(typed);
      if (!known && !confirmsForDatabase(app, prompt, typed)) {
        if (!IsAlone(app.closing)) continue;
      } else if (seal(app, &typed, sealing)) {
        if (sealing.kept > 0) sayKept(app, sealing.kept);
        return true;
      }
    }
    const Answer without = IsAlone(app.closing) ? Answer::kNobody : askToGoWithout(app);
    if (without == Answer::kYes) {
      if (isDirty(*session.database)) KeepWhatIsUncertain(session);
      return true;
    }
    if (without == Answer::kNobody) {
      seal(app, nullptr, sealing);
      return true;
    }
  }
}

int PromptDecryptRecord(Application& app, Bytes& record, const EncryptionPasswordPrompt& prompt) {
  OpenedRecords& opened = app.level().session.opened;
  Password password;
  if (!prompt(password)) return kHeaderUnreadable;
  int result = opened.openOne(CurrentDatabase(app), record, password);
  if (result != kDoubtfulPassword) return result;
  if (Ask(app,
          u"This password passes the record's check, but what it makes of the record does not look "
          u"like values. It is most likely another one.\nDecrypt all the same?",
          u"QUESTION") != Answer::kYes) {
    return kWrongPassword;
  }
  return opened.openOne(CurrentDatabase(app), record, password, OpenedRecords::Trust::kBelieves);
}

bool PromptEncryptRecord(Application& app, Bytes& record, const EncryptionPasswordPrompt& prompt) {
  Database& database = CurrentDatabase(app);
  const OpenedRecords& opened = app.level().session.opened;
  if (!hasFlaggedFields(database.schema)) return false;
  std::vector<OverlongRecordValue> overlong;
  for (const OverlongValue& value : overlongValues(database.schema, record)) {
    overlong.push_back({app.level().current_record, value});
  }
  if (!acceptsOverlongValues(app, overlong)) return false;
  for (;;) {
    Password password;
    if (IsAlone(app.closing) || !prompt(password)) {
      const Password* known = opened.passwordFor(record);
      if (!IsAlone(app.closing) || known == nullptr) return false;
      password = *known;
    } else if (!confirmsForRecord(app, prompt, password)) {
      continue;
    }
    Bytes enciphered;
    if (!opened.sealOne(
            database, record, password, [&] { return newStamp(database, app.engine); },
            enciphered)) {
      sayTooLong(app, app.level().current_record);
      return false;
    }
    record.swap(enciphered);
    wipeBytes(enciphered);
    SetPasswordCheck(database.schema, password.text(), app.engine.random);
    return true;
  }
}

bool MoveInHistory(Application& app, HistoryMove to, const EncryptionPasswordPrompt& prompt) {
  Database& database = CurrentDatabase(app);
  std::vector<Bytes> hidden;
  {
    WaitCursor waiting(app);
    if (database.schema.encryption_mode != kEncryptWholeDatabase) hidden = putInClearBy(app, to);
  }
  for (Bytes& record : hidden) {
    const int result = PromptDecryptRecord(app, record, prompt);
    wipeBytes(record);
    if (result == kWrongPassword) {
      ShowMessage(app, u"Error: Supplied Password does not properly Decrypt Record!", u"Error",
                  MessageIcon::kError);
    }
    if (result != kRecordDecrypted) return false;
  }
  WaitCursor waiting(app);
  return move(app.level(), database, to);
}

}  // namespace tabelion
