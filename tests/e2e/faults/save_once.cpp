// Makes a database, or changes one and saves it once; what the fault tests drive.
//
//   save_once make FILE RECORDS
//   save_once change FILE SEED
//
// Exit codes: 0 saved, 1 not saved (the file is as it was), 2 wrong arguments, 3 saved, with a
// warning. The clock stands still, so that a change gives the same bytes whenever it is made.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "platform/std/std_files.h"
#include "support/fake_clock.h"

namespace tabelion {
namespace {

constexpr int kSaved = 0;
constexpr int kNotSaved = 1;
constexpr int kUsage = 2;
constexpr int kWarned = 3;

Bytes makeRecord(const std::string& text) {
  UnpackedRecord record;
  record.prefix = {0};
  record.slots[0].emplace(text.begin(), text.end());
  Bytes packed;
  if (!packRecord(record, packed)) std::abort();  // far below the size limit
  return packed;
}

int make(Database& database, Engine& engine, int records) {
  initDatabase(database, engine);
  database.schema.fields[0].type = FieldType::kText;
  for (int i = 0; i < records; ++i) {
    appendRecord(database, engine, makeRecord("record " + std::to_string(i)), false);
  }
  return saveDatabase(database, engine) == 1 ? kSaved : kNotSaved;
}

// Changes every second record, so that a save writes thousands of separate runs of bytes.
int change(Database& database, Engine& engine, const std::string& seed) {
  const auto lock = engine.files.lock(database.path, "save_once");
  if (!lock || openDatabase(database, engine) != 1) return kNotSaved;
  for (std::uint32_t i = 0; i < database.records.count(); i += 2) {
    const Bytes changed = makeRecord("changed " + std::to_string(i) + " with " + seed);
    if (!database.records.replace(i, changed)) return kNotSaved;
  }
  setDirty(database);
  bool warned = false;
  engine.message = [&](const std::string&) { warned = true; };
  if (saveDatabase(database, engine) != 1) return kNotSaved;
  return warned ? kWarned : kSaved;
}

int run(int count, char** arguments) {
  if (count != 4) return kUsage;
  const std::string_view command = arguments[1];
  StdFiles files;
  FakeClock clock;
  Engine engine{files, clock, [] { return 7u; }, {}, {}, {}};
  engine.message = [](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); };
  const auto database = std::make_unique<Database>();
  database->path = arguments[2];
  if (command == "make") return make(*database, engine, std::atoi(arguments[3]));
  if (command == "change") return change(*database, engine, arguments[3]);
  return kUsage;
}

}  // namespace
}  // namespace tabelion

int main(int count, char** arguments) {
  return tabelion::run(count, arguments);
}
