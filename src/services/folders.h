// Where database files live, and which of them there are.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "services/application.h"

namespace tabelion {

// The database folder of the main storage or of the card, which comes into being on first use:
// "Tabelion" in the volume's documents folder. A folder that the previous major version left there
// is taken over under the new name. None where the volume has no documents folder.
std::optional<std::string> GetDatabaseFolder(Application& app);
std::optional<std::string> GetCardDatabaseFolder(Application& app);

// A database file as far as the chooser needs to know it.
struct DatabaseFile {
  std::string path;
  std::u16string name;      // from the file's header
  std::u16string category;  // kUnfiled when the database names none
  Volume volume = Volume::kMain;
  std::u16string label{};  // the name, with the file's behind it where another one has the same
};

// What the chooser shows.
struct DatabaseList {
  std::vector<DatabaseFile> files;         // of the wanted category, sorted by name
  std::vector<std::u16string> categories;  // of all files, in order of first appearance
  bool found_files = true;                 // false when a folder holds no file "*.pdb" at all
};

// Looks through both folders. Reads of each file no more than its schema.
DatabaseList ListDatabases(Application& app, const std::u16string& category);

// Header and database record of a file, without its records; false when it is not a database file
// of this system or its schema cannot be read.
struct DatabaseSummary {
  FileHeader header;
  DatabaseRecord schema;
};
bool ReadDatabaseSummary(Application& app, const std::string& path, DatabaseSummary& summary);

// Where a database file is that stood at `path` when it was listed: there, or under the same name
// in the main folder, or in the card's. None when no folder holds it any more.
std::optional<std::string> FindDatabaseFile(Application& app, const std::string& path);

// The path for a new database: "Untitled" and the first free number, in the main folder.
std::optional<std::string> MakeNewDatabaseName(Application& app);

// Copies the sample databases into the main folder and returns how many; what is there already is
// never overwritten. The samples stay where they are, since they belong to every user of the
// machine. Shows a message at the first failure and stops.
int InstallSampleDatabases(Application& app);

}  // namespace tabelion
