#include "app/file_reader.h"

#include <algorithm>

#include "engine/database.h"
#include "interchange/text_encoding.h"
#include "platform/std/std_clock.h"
#include "platform/std/std_files.h"
#include "query/field_text.h"

namespace tabelion {

std::size_t StoredDatabase::count(const std::string& wanted) const {
  return static_cast<std::size_t>(std::count_if(
      texts.begin(), texts.end(),
      [&](const std::string& text) { return text.find(wanted) != std::string::npos; }));
}

bool StoredDatabase::hasLettersBeyondAscii() const {
  return std::any_of(texts.begin(), texts.end(), [](const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](unsigned char c) { return c >= 0x80; });
  });
}

std::optional<StoredDatabase> readStoredDatabase(const std::string& path) {
  StdFiles files;
  StdClock clock;
  Engine engine{files, clock, [] { return std::uint32_t{0}; }};
  Database database;
  database.path = path;
  if (openDatabase(database, engine) != 1) return std::nullopt;
  const TextEncoding encoding = databaseEncoding(database, kDefaultCodePage);
  const FormatSettings formats = isoSettings(encoding.isUtf8());
  StoredDatabase stored;
  stored.path = path;
  stored.name = encoding.toUtf8(areaText(database.header.name));
  stored.record_count = database.records.count();
  for (int slot = 0; slot < static_cast<int>(kFieldSlots); ++slot) {
    const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
    if (!isValidType(field.type)) continue;
    if (field.type == FieldType::kText) stored.text_slots.push_back(slot);
    if (field.type == FieldType::kNote) stored.has_note = true;
    for (std::size_t record = 0; record < stored.record_count; ++record) {
      stored.texts.push_back(encoding.toUtf8(
          editText(database, database.records[static_cast<std::uint32_t>(record)].bytes(), slot,
                   formats)
              .text));
    }
  }
  return stored;
}

std::vector<StoredDatabase> readStoredDatabases(const std::string& folder) {
  std::vector<StoredDatabase> found;
  StdFiles files;
  const auto entries = files.list(folder);
  if (!entries.ok()) return found;
  for (const FolderEntry& entry : *entries) {
    if (entry.is_folder) continue;
    if (auto stored = readStoredDatabase(folder + "/" + entry.name)) {
      found.push_back(std::move(*stored));
    }
  }
  return found;
}

}  // namespace tabelion
