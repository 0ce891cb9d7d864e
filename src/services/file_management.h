// What a user does with whole database files: deletes them, takes in those that were received,
// copies and moves them between the main storage and the card.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "services/application.h"
#include "services/folders.h"

namespace tabelion {

// Deletes the file after a question, unless it is open in another program. A form layout that
// belongs to the database stays. True when the list of databases has to be read again.
bool DeleteDatabase(Application& app, const DatabaseFile& file);

// Offers every database package ("*.TBP") in the documents folder for the database folder. The
// package is deleted, also after a No; it stays when the user wanted it and it could not be copied,
// or when the question was dismissed because nobody is there.
void CollectReceivedFiles(Application& app);

enum class CopyChoice { kOverwrite, kSync, kIgnore };
// Asks what to do about a file (8-bit path) that is there already; shows the question in a dialog.
// Of a form layout, kSync is not offered.
using CopyQuestion = std::function<CopyChoice(const std::string& path, bool form_file)>;

// The volume that a database can be copied or moved to: the one where it is not. None without a
// card.
std::optional<Volume> OtherVolume(Application& app, const DatabaseFile& file);

// Puts the database, and the form layout stored with it, into the other volume's database folder.
// `ask` is asked where a file of that name with another content is there. kSync lets the newer of
// the two stand, by the modification date in the header, and tells the user which one that was;
// where the user wants no question ("SyncOverwrite") it is what happens. A file that is open in
// another program is never replaced. The file that was moved goes when its copy is complete, and
// stays when the other one was kept. True when the list of databases has to be read again; what
// failed has been said.
bool CopyDatabase(Application& app, const DatabaseFile& file, Volume to, const CopyQuestion& ask);
bool MoveDatabase(Application& app, const DatabaseFile& file, Volume to, const CopyQuestion& ask);

// When a file was made or last written, by the local calendar; none when it is not there.
enum class FileDate { kCreated, kModified };
std::optional<CalendarTime> GetFileDate(Application& app, const std::string& path, FileDate which);

}  // namespace tabelion
