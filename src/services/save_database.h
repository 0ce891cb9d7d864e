// Saving the current database, also when another program has changed its file meanwhile.
#pragma once

#include <string>
#include <vector>

#include "services/application.h"

namespace tabelion {

inline constexpr char kLockHolder[] = "tabelion";

// Whether the file is no longer the one that was read or saved last. One that is gone has not
// changed: it is written again.
bool FileWasChanged(Application& app);

enum class SaveTarget { kItsFile, kFileBeside, kNowhere };
// Where to save: asks the user when the file was changed. When nobody can be asked, both are kept.
SaveTarget ChooseSaveTarget(Application& app);

// Whether a database that is kept enciphered is still to be enciphered for its file.
enum class RecordsAre { kAsOpened, kAsTheyGoIntoTheFile };
// Stores the current record number in the database and writes it. kFileBeside gives the database a
// new name, with a number, for its file and its header, and goes on under it. False when it could
// not be written: the database then still counts as changed. Shows nothing.
bool WriteDatabase(Application& app, SaveTarget target, RecordsAre records);

// That the last save failed, and why.
std::u16string SaveFailureText(const Application& app);

// The folders to which a database can go that cannot be written where it is, the likeliest first.
std::vector<std::string> OtherFolders(Application& app);
// Writes the database, enciphered as it is to be, into another folder, under a name that is free
// there, and goes on with that file. False when that fails too.
bool WriteCopy(Application& app, const std::string& folder);
// The same with nobody there: into the first folder that takes it. The next start names the copy.
bool RescueDatabase(Application& app, const std::vector<std::string>& folders);
// What was rescued since the last start, named once.
void NameRescuedDatabases(Application& app);

enum class SaveOccasion {
  kUser,   // who waits for it and can be asked
  kTimer,  // in the middle of whatever the user is doing
};
enum class SaveResult { kSaved, kFailed, kPutOff };
// kPutOff: cancelled by the user, or due to the timer while the file was changed. The timer neither
// interrupts whoever is typing nor makes a second file behind their back; the changes stay in
// memory, and the next save or the close asks.
SaveResult SaveDatabase(Application& app, SaveOccasion occasion);

}  // namespace tabelion
