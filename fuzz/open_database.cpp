// Any bytes at all may be opened and checked: the result is a message or a database that can be
// walked, saved, and opened again with the same content.
#include <cstdint>
#include <cstdlib>

#include "engine/check.h"
#include "engine/database.h"
#include "engine/packed_record.h"
#include "image_files.h"
#include "require.h"

namespace tabelion {
namespace {

void walkRecords(const Database& database) {
  for (const Record& record : database.records) {
    for (int slot = 0; slot < kFieldSlots; ++slot) {
      const auto value = slotValue(record.bytes(), slot);
      if (!value) break;
      const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
      require(unpackValue(field, *value).size() <= std::size_t{70000});
      findItem(database.fields[static_cast<std::size_t>(slot)], *value);
    }
    Bytes packed;
    if (packRecord(unpackRecord(record.bytes()), packed)) {
      require(packed.size() >= record.length());
    }
  }
}

Bytes joined(const std::vector<BytePiece>& pieces) {
  Bytes bytes;
  for (const BytePiece& piece : pieces) bytes.insert(bytes.end(), piece.begin(), piece.end());
  return bytes;
}

void openAndSave(ByteView input) {
  // A file that does not open deviates, and the check can say where.
  const bool sound = checkFile(input).empty();
  ImageFiles files(input);
  FixedClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
  Database database;
  initDatabase(database, engine);
  if (openDatabase(database, engine) != 1) return require(!sound);
  walkRecords(database);
  for (const FieldDefinition& field : database.schema.fields) {
    storedFormula(field);
    linkSettings(field);
    lookupSettings(field);
    pluginSettings(field);
  }
  FileLayout layout;
  if (!layOutDatabase(database, layout)) return;
  const Bytes saved = joined(layout.pieces);

  ImageFiles saved_files(saved);
  Engine second{.files = saved_files, .clock = clock, .random = [] { return 1u; }};
  Database again;
  initDatabase(again, second);
  require(openDatabase(again, second) == 1);
  require(again.records.count() == database.records.count());
  FileLayout second_layout;
  require(layOutDatabase(again, second_layout));
  require(joined(second_layout.pieces) == saved);
}

}  // namespace
}  // namespace tabelion

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tabelion::openAndSave({data, size});
  return 0;
}
