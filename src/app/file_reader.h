// Reads a database file as another program would, to check what was really stored.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tabelion {

// Texts are UTF-8.
struct StoredDatabase {
  std::string path;
  std::string name;
  std::size_t record_count = 0;
  std::vector<std::string> texts;  // of every field of every record
  std::vector<int> text_slots;     // fields that take one line of any text
  bool has_note = false;

  std::size_t count(const std::string& wanted) const;  // stored texts that contain this one
  bool hasLettersBeyondAscii() const;
};

// None when the file cannot be opened.
std::optional<StoredDatabase> readStoredDatabase(const std::string& path);
// Every database in a folder, in the order of their file names.
std::vector<StoredDatabase> readStoredDatabases(const std::string& folder);

}  // namespace tabelion
