// Any file that opens, one record of it changed, added or deleted, saved, and opened again: all
// other records have the same bytes, marks and order as before.
//
//   1 byte what to do, 2 bytes (little-endian) which record, then the file
#include <vector>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "image_files.h"
#include "require.h"

namespace tabelion {
namespace {

struct Kept {
  Bytes bytes;
  std::uint8_t attributes;
  UniqueId unique_id;
  bool operator==(const Kept&) const = default;
};

std::vector<Kept> recordsOf(const Database& database) {
  std::vector<Kept> kept;
  for (const Record& record : database.records) {
    const ByteView bytes = record.bytes();
    kept.push_back({Bytes(bytes.begin(), bytes.end()), record.attributes, record.unique_id});
  }
  return kept;
}

// Applies the edit to database and expectation alike; the number of the one that may differ, or
// none.
std::size_t edit(Database& database, Engine& engine, std::uint8_t what, std::uint32_t position,
                 std::vector<Kept>& expected) {
  const std::uint32_t count = database.records.count();
  if (what % 3 == 0 || count == 0) {
    if (appendRecord(database, engine, Bytes{0, 'x', 0}, what & 64) == kNoPosition) return count;
    expected.emplace_back();
    return count;
  }
  position %= count;
  if (what % 3 == 1) {
    database.records.remove(position);
    expected.erase(expected.begin() + position);
    return expected.size();
  }
  UnpackedRecord record = unpackRecord(database.records[position].bytes());
  record.slots[what % kFieldSlots] = Bytes(what, what);
  Bytes packed;
  if (!packRecord(record, packed) || !database.records.replace(position, packed)) return count;
  return position;
}

void tryEdit(ByteView input) {
  if (input.size() < 3) return;
  const std::uint32_t position = input[1] | input[2] << 8;
  ImageFiles files(input.subspan(3));
  FixedClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
  const auto database = std::make_unique<Database>();
  initDatabase(*database, engine);
  if (openDatabase(*database, engine) != 1) return;
  std::vector<Kept> expected = recordsOf(*database);
  const std::size_t edited = edit(*database, engine, input[0], position, expected);
  setDirty(*database);
  FileLayout layout;
  if (!layOutDatabase(*database, layout)) return;
  Bytes saved;
  for (const BytePiece& piece : layout.pieces)
    saved.insert(saved.end(), piece.begin(), piece.end());

  ImageFiles saved_files(saved);
  Engine second{.files = saved_files, .clock = clock, .random = [] { return 1u; }};
  const auto again = std::make_unique<Database>();
  initDatabase(*again, second);
  require(openDatabase(*again, second) == 1);
  const std::vector<Kept> found = recordsOf(*again);
  require(found.size() == expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) require(i == edited || found[i] == expected[i]);
}

}  // namespace
}  // namespace tabelion

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tabelion::tryEdit({data, size});
  return 0;
}
