// The life of a database between its file and the current slot of the stack.
#pragma once

#include <functional>
#include <string>

#include "services/application.h"
#include "services/encryption.h"
#include "services/save_database.h"

namespace tabelion {

inline constexpr int kOpened = 1;
inline constexpr int kOpenRefused = 0;  // by the user, by access rights, by another program
inline constexpr int kNotADatabase = -2;

// How opening reaches the password dialog, which lies in a higher layer: shows it, compares with
// the expected access password, and says whether the user confirmed.
using AccessPasswordPrompt = std::function<bool(const std::string& expected)>;

// Checks the file, takes its lock and opens it into the current slot, with the wait cursor shown.
// Every refusal has been explained to the user when this returns; the slot is then empty.
int OpenDatabaseFile(Application& app, const std::string& path,
                     const AccessPasswordPrompt& ask_password);

// Closes the current database and releases its file. Unsaved changes are saved, without a question
// when `ask` is off or the user prefers so; when saving fails the user decides whether to close
// all the same, as the user does when the file was changed by another program. A database that is
// kept enciphered is enciphered before it is saved. False when the database stays open.
enum class AskBeforeSaving { kNo, kYes };
bool CloseDatabase(Application& app, AskBeforeSaving ask,
                   const EncryptionPasswordPrompt& prompt = {});

// At the end of the program: closes what is open from the top of the stack down, saving it.
void CloseAllDatabases(Application& app, const EncryptionPasswordPrompt& prompt = {});

}  // namespace tabelion
