// Enciphered databases and records as users meet them: which password is asked for when, and what
// is said when it is the wrong one. The rules themselves are in security/.
#pragma once

#include <functional>

#include "security/database_encryption.h"
#include "security/password.h"
#include "services/application.h"

namespace tabelion {

// How these reach the password dialog, which lies in a higher layer: puts what was typed into the
// password. False when the user cancelled.
using EncryptionPasswordPrompt = std::function<bool(Password& typed)>;

// After opening a database that is kept enciphered as a whole, when it holds enciphered records:
// asks until the password opens every record or the user gives up. 1, or 0 with the rest of the
// records still enciphered. Records that one password opened stay in clear, so another can open the
// others.
int DecryptWholeDatabase(Application& app, const EncryptionPasswordPrompt& prompt);

// Before such a database is closed: enciphers what is in clear, with the remembered password or
// one that is asked for. False when the user does not want to close after all.
//
// Without a prompt nobody is there to be asked: the remembered password or none.
// Before anything is enciphered, texts that other devices could not read back are named and the
// user may stop; without a password the user is asked whether to leave the records unprotected.
bool EncryptWholeDatabase(Application& app, const EncryptionPasswordPrompt& prompt);

// A record of the current database, packed. kRecordDecrypted, kWrongPassword or kHeaderUnreadable,
// which also stands for a cancelled dialog. Says nothing.
int PromptDecryptRecord(Application& app, Bytes& record, const EncryptionPasswordPrompt& prompt);

// True when the record was enciphered; false, and the record as it was, when no field is flagged,
// the user cancelled, or it would become too long.
bool PromptEncryptRecord(Application& app, Bytes& record, const EncryptionPasswordPrompt& prompt);

// Runs `save` with the records enciphered under the remembered password, where there is one and
// the database is kept enciphered, and leaves them in clear again: so a file that is saved while
// it is open holds nothing in clear.
bool SaveEnciphered(Application& app, const std::function<bool()>& save);

}  // namespace tabelion
