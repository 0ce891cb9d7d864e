// One open database, whole in memory, and its life: made empty, opened, saved, closed.
//
// Operations return 1 for success and 0 for failure. The engine shows nothing itself; words for
// the user go through Engine::message.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/database_record.h"
#include "engine/extension_record.h"
#include "engine/field_record.h"
#include "engine/file_header.h"
#include "engine/record_store.h"
#include "engine/schema_places.h"
#include "engine/uid_map.h"
#include "platform/clock.h"
#include "platform/files.h"

namespace tabelion {

struct Database;

// What other layers do when a database was read or made. An empty step succeeds.
struct RefreshSteps {
  // Sorts when asked for and rebuilds the list of records shown. 1 or 0.
  std::function<int(Database&)> refresh;
  // Sorts the records and rebuilds the view; run when a file says that its order is stale.
  std::function<void(Database&)> sort_and_rebuild;
  // Makes this data record the current one again.
  std::function<void(Database&, std::uint32_t)> restore_current_record;
};

// What the engine needs from outside, and what it keeps for the whole process.
// The references outlive it.
struct Engine {
  Files& files;
  Clock& clock;
  RandomSource random;
  // Sentences for the user as they come up, ASCII but for the paths in them.
  std::function<void(const std::string&)> message = [](const std::string&) {};
  RefreshSteps steps = {};
  FileHeader last_probed_header = {};
};

// Large (the schema alone is some 40 kB), so it lives on the heap and is never copied. One thread
// uses it at a time.
struct Database {
  // The schema part; while the row-header column is on, consumers are given its shadow copy.
  DatabaseRecord schema;
  std::uint8_t schema_attributes = 0;
  UniqueId schema_unique_id{};
  std::uint32_t schema_offset = 0;

  RecordStore records;
  ExtensionRecord extension;
  std::string path;  // 8-bit
  FileHeader header;
  std::array<FieldRecord, kFieldSlots> fields;
  // Bytes behind the longest last record that can be read, written back at the end of the file.
  Bytes surplus;

  // Run-time state.
  bool needs_refresh = false;         // the list of records shown is out of date
  std::bitset<kFieldSlots> selected;  // per slot: changed since last asked
  bool row_header = false;
  std::unique_ptr<DatabaseRecord> shadow;  // allocated once, kept
  UIDMap unique_ids;
  std::vector<std::uint32_t> record_index;  // positions of the records shown, in order
  bool dirty = false;
  std::uint64_t times_marked_dirty = 0;  // so that nobody's change goes by another unseen
};

// Whether the file lacks anything of what is in memory. appendRecord marks that; code that changes
// members itself has to.
inline bool isDirty(const Database& database) {
  return database.dirty;
}
inline void setDirty(Database& database) {
  database.dirty = true;
  ++database.times_marked_dirty;
}
inline void clearDirty(Database& database) {
  database.dirty = false;
}

// An empty database with all defaults. Returns 1, or the refresh step's result.
int initDatabase(Database& database, Engine& engine);

// Reads the file at `database.path`. 1, or 0 after a message; a database that failed to open must
// not be used.
int openDatabase(Database& database, Engine& engine);

// Rewrites the whole file at `database.path`. 1 when it was written, 0 when the old file stays.
// Compat: once writing has begun the dirty flag is cleared, also when the write fails
// (Saving.FailedWriteClearsTheDirtyFlag); who shows the result sets it again.
int saveDatabase(Database& database, Engine& engine);
// The same, with the reason of a failure in words for the user. A file that was written but may not
// outlast a power failure counts as saved; Engine::message says so.
Status trySaveDatabase(Database& database, Engine& engine);

// For a program that has no current record of its own, before it saves: the record that was the
// current one at the last save stays it, wherever it stands now. Item 24 is 0 when it was deleted.
void nameCurrentRecord(Database& database);

// Take parts out of a database that is being discarded: nothing is marked dirty, and views of
// records that others hold are void.
void freeRecords(Database& database);
void freeFieldItems(Database& database, int slot);
void closeDatabase(Database& database);  // frees records and items

// 1 when the file can be read, 0 when not, for whatever reason.
int fileExists(Files& files, const std::string& path);

// The file as a save writes it: `head` owns everything before the data records, `pieces` are the
// runs of bytes in order (head, data records, surplus) and point into `head` and the database.
struct FileLayout {
  Bytes head;
  std::vector<BytePiece> pieces;  // good until the database changes
};
// Computes the layout and sets offsets, record count and, in a changed database, the dirty bit of
// the database record. False when the file would pass the 4 GiB that record offsets can express.
[[nodiscard]] bool layOutDatabase(Database& database, FileLayout& layout);

// Appends a record: unique ID as given, attribute 0. With `stamp`, fields of types 6 and 10 take
// the next auto-numbers and, when the stamping option is on, the record gets a fresh stamp (its
// prefix becomes 23 bytes). Marks the database dirty. The new position, or kNoPosition when the
// store is full (65,000 records) or the record too long.
std::uint32_t appendRecord(Database& database, Engine& engine, ByteView bytes, bool stamp,
                           const UniqueId& unique_id = {});

// Sets the modification time in a record's stamp; a record without a stamp is left alone.
void touchStamp(Bytes& record, const CalendarTime& local);

// The synthetic first column. While on, schemaShown() is a copy in which slot 0 is a text field
// "_rowhdr_" and the real slots 0 to 98 stand one higher.
void setRowHeader(Database& database, bool on);
const DatabaseRecord& schemaShown(const Database& database);

// The code page that the database carries ("UTF-8", "CP1251"), or empty for the user's.
std::string databaseCodePage(const DatabaseRecord& schema);
inline std::string databaseCodePage(const Database& database) {
  return databaseCodePage(database.schema);
}

}  // namespace tabelion
