#include "services/encryption.h"

#include <algorithm>

#include "engine/schema_places.h"
#include "services/message.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr std::string_view kNoPassword = "ERROR";  // a remembered text that is none

bool isRemembered(const Password& password) {
  return !password.text().empty() && password.text() != kNoPassword;
}

bool hasRecords(const Database& database, bool enciphered) {
  return std::any_of(database.records.begin(), database.records.end(),
                     [enciphered](const Record& record) {
                       return isRecordEncrypted(record.bytes()) == enciphered;
                     });
}

bool isKeptEnciphered(const Database& database) {
  return database.schema.encryption_mode == kEncryptWholeDatabase && database.records.count() > 0;
}

void showWrongPassword(Application& app) {
  ShowMessage(app, u"ERROR: Password does not properly decrypt this data.  Please Try again.",
              u"ACCESS DENIED", MessageIcon::kError);
}

std::u16string numberText(std::size_t number) {
  return FromUtf8(std::to_string(number));
}

// Names the first value that other devices could not read back; true when the user goes on.
bool acceptsOverlongValues(Application& app, const std::vector<OverlongRecordValue>& overlong) {
  if (overlong.empty()) return true;
  const Database& database = CurrentDatabase(app);
  const auto& [position, value] = overlong.front();
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(value.slot)];
  std::u16string text = u"The text of \"" + ScreenText(app, fieldName(field)) + u"\" in record " +
                        numberText(position + 1) + u" has " + numberText(value.length) +
                        u" bytes. Encrypted texts of more than 255 bytes can be opened here, but "
                        u"not on other devices.";
  if (overlong.size() > 1) text += u" So have " + numberText(overlong.size() - 1) + u" others.";
  return Ask(app, text + u"\nEncrypt all the same?", u"QUESTION") == Answer::kYes;
}

void sayTooLong(Application& app, std::uint32_t position) {
  ShowMessage(app,
              u"Record " + numberText(position + 1) +
                  u" would become too long. Nothing has been encrypted.",
              u"ERROR", MessageIcon::kError);
}

// The records in clear, enciphered with this password. With a remembered one the check block is
// drawn anew for every record; the last one stands.
bool encipherWith(Application& app, const Password& password) {
  WaitCursor waiting(app);
  Database& database = CurrentDatabase(app);
  ExpandedKey key;
  MakeKey(password.text(), key);
  const EncryptSummary summary = EncryptRecords(database, app.engine, key);
  if (summary.too_long != kNoPosition) {
    sayTooLong(app, summary.too_long);
    return false;
  }
  SetPasswordCheck(database.schema, password.text(), app.engine.random);
  return true;
}

}  // namespace

int DecryptWholeDatabase(Application& app, const EncryptionPasswordPrompt& prompt) {
  Database& database = CurrentDatabase(app);
  if (!isKeptEnciphered(database) || !hasRecords(database, true)) return 1;
  for (;;) {
    Password password;
    if (!prompt(password)) return 0;
    ExpandedKey key;
    MakeKey(password.text(), key);
    DecryptSummary summary;
    {
      WaitCursor waiting(app);
      summary = DecryptRecords(database, key);
    }
    if (summary.failed == 0) {
      if (app.preferences.auto_encrypt) app.level().remembered = password;
      MarkDeciphered(database.schema);
      return 1;
    }
    showWrongPassword(app);
  }
}

bool EncryptWholeDatabase(Application& app, const EncryptionPasswordPrompt& prompt) {
  Database& database = CurrentDatabase(app);
  if (!isKeptEnciphered(database) || !hasRecords(database, false)) return true;
  const bool alone = !prompt || app.closing == Closing::kSessionEnds;
  if (!alone && !acceptsOverlongValues(app, OverlongValues(database))) return false;
  Password& remembered = app.level().remembered;
  const Password taken = remembered;
  remembered.clear();
  if (app.preferences.auto_encrypt && isRemembered(taken) && encipherWith(app, taken)) return true;
  if (alone) return true;  // in clear rather than not at all
  for (;;) {
    Password typed;
    if (prompt(typed) && encipherWith(app, typed)) return true;
    if (app.closing == Closing::kSessionEnds) return true;  // nobody can answer any more
    if (Ask(app, u"The records will be saved without encryption. Continue?", u"QUESTION") ==
        Answer::kYes) {
      return true;
    }
  }
}

int PromptDecryptRecord(Application& app, Bytes& record, const EncryptionPasswordPrompt& prompt) {
  Password password;
  if (!prompt(password)) return kHeaderUnreadable;
  ExpandedKey key;
  MakeKey(password.text(), key);
  Bytes clear;
  const int result = DecryptRecord(CurrentDatabase(app).schema, record, key, clear);
  if (result == kRecordDecrypted) record.swap(clear);
  return result;
}

bool PromptEncryptRecord(Application& app, Bytes& record, const EncryptionPasswordPrompt& prompt) {
  Database& database = CurrentDatabase(app);
  if (!HasFlaggedFields(database.schema)) return false;
  std::vector<OverlongRecordValue> overlong;
  for (const OverlongValue& value : OverlongValues(database.schema, record)) {
    overlong.push_back({app.level().current_record, value});
  }
  if (!acceptsOverlongValues(app, overlong)) return false;
  for (;;) {
    Password password;
    if (!prompt(password)) return false;
    if (!PasswordMatchesCheck(database.schema, password.text())) {
      const Answer answer =
          Ask(app,
              u"Password entered does not seem to match last password given to a record in this "
              u"database.  Continue anyway?",
              u"QUESTION");
      if (answer == Answer::kNobody) return false;
      if (answer == Answer::kNo) continue;
    }
    ExpandedKey key;
    MakeKey(password.text(), key);
    Bytes enciphered;
    if (!EncryptRecordFields(
            database.schema, record, key, [&] { return NewStamp(database, app.engine); },
            enciphered)) {
      sayTooLong(app, app.level().current_record);
      return false;
    }
    record.swap(enciphered);
    WipeBytes(enciphered);
    SetPasswordCheck(database.schema, password.text(), app.engine.random);
    return true;
  }
}

bool SaveEnciphered(Application& app, const std::function<bool()>& save) {
  Database& database = CurrentDatabase(app);
  const Password& remembered = app.level().remembered;
  if (!app.preferences.auto_encrypt || !isRemembered(remembered) || !isKeptEnciphered(database) ||
      !hasRecords(database, false) || !encipherWith(app, remembered)) {
    return save();
  }
  const bool saved = save();
  ExpandedKey key;
  MakeKey(remembered.text(), key);
  (void)DecryptRecords(database, key);  // the key that enciphered them just now
  MarkDeciphered(database.schema);
  return saved;
}

}  // namespace tabelion
