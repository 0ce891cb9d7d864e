// Passwords of enciphered databases and records as users meet them: which is asked for when, and
// what is said when it is the wrong one. The rules themselves are in security/ and session/.
#pragma once

#include <functional>

#include "security/password.h"
#include "services/application.h"

namespace tabelion {

// How these reach the password dialog, which lies in a higher layer: puts what was typed into the
// password. False when the user cancelled, or nobody was there.
using EncryptionPasswordPrompt = std::function<bool(Password& typed)>;

// After opening a database that is kept enciphered as a whole, when it holds enciphered records:
// asks until the passwords open every record or the user gives up. 1, or 0 with the rest of the
// records still enciphered. Records that one password opened stay in clear, so another can open the
// others.
int DecryptWholeDatabase(Application& app, const EncryptionPasswordPrompt& prompt);

// Before such a database is closed: enciphers what is in clear, with the remembered password or one
// that is asked for. The password that opened the database is taken at once; another one has to be
// typed twice, and what it means is said. Without a prompt, and when nobody is there, every record
// gets the password that opened it.
// `sealing` has what was done, for UndoSealing; nothing when the user goes on without encryption.
// False when the user does not want to close after all.
bool EncryptWholeDatabase(Application& app, const EncryptionPasswordPrompt& prompt,
                          Sealing& sealing);

// A record of the current database, packed. kRecordDecrypted, kWrongPassword or kHeaderUnreadable,
// which also stands for a cancelled dialog. Of a wrong password it says nothing; of one that passes
// the record's check and makes no sense of its values it asks.
int PromptDecryptRecord(Application& app, Bytes& record, const EncryptionPasswordPrompt& prompt);

// True when the record was enciphered; false, and the record as it was, when no field is flagged,
// the user cancelled, or it would become too long. When nobody is there, the password is the one
// that opened it, or most of those that were opened. One that the database does not know yet has to
// be typed twice.
bool PromptEncryptRecord(Application& app, Bytes& record, const EncryptionPasswordPrompt& prompt);

// Undo and Redo in the current database. A step that would put in clear what is enciphered now
// needs the password, as deciphering does: otherwise "Encrypt Record" would hide nothing from
// whoever finds the program open. False, and nothing done, when there was no step or no right
// password.
enum class HistoryMove { kUndo, kRedo };
bool MoveInHistory(Application& app, HistoryMove move, const EncryptionPasswordPrompt& prompt);

}  // namespace tabelion
