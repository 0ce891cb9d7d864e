// The life of a database between its file and the current slot of the stack.
#pragma once

#include <functional>
#include <string>
#include <vector>

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

// Where a database goes that cannot be written where it is.
enum class FailedSaveChoice { kElsewhere, kGiveUp, kStay };
struct FailedSaveAnswer {
  FailedSaveChoice choice = FailedSaveChoice::kStay;
  std::string folder{};  // for kElsewhere
};

// How closing asks what takes a dialog of a higher layer. What is empty is not asked: changes are
// saved, each record gets the password that opened it, and what cannot be saved is saved elsewhere.
struct ClosingQuestions {
  EncryptionPasswordPrompt password{};
  std::function<SaveChoice(const std::u16string& text)> save{};
  // `folders` are those that a copy could go to.
  std::function<FailedSaveAnswer(const std::string& path, const std::vector<std::string>& folders)>
      failed_save{};
};

// Closes the current database and releases its file. Unsaved changes are saved, without a question
// when `ask` is off or the user prefers so; when saving fails the user decides where else to, as
// the user decides when the file was changed by another program. A database that is kept enciphered
// leaves nothing in clear in its file, unless the user wants it so. False when the database stays
// open.
enum class AskBeforeSaving { kNo, kYes };
bool CloseDatabase(Application& app, AskBeforeSaving ask, const ClosingQuestions& questions = {});

// At the end of the program: closes what is open from the top of the stack down, saving it. At the
// end of the session, when nobody can be asked, what cannot be saved is saved elsewhere.
void CloseAllDatabases(Application& app, const ClosingQuestions& questions = {});

// The same when memory ran out in the middle of something: a database may have been changed in
// part, so its file stays what it is and what was changed goes into a copy. Says so, and where.
void EndWithoutMemory(Application& app);

}  // namespace tabelion
