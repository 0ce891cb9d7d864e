// A database in a file in memory, with verbs to change it behind the engine's back.
#pragma once

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "support/fake_clock.h"
#include "support/memory_files.h"

namespace tabelion {

class DatabaseFixture : public ::testing::Test {
 protected:
  DatabaseFixture() {
    engine.message = [this](const std::string& text) { messages.push_back(text); };
    EXPECT_EQ(initDatabase(database, engine), 1);
    database.path = kPath;
  }

  void addField(int slot, FieldType type, const std::string& name) {
    FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
    field.type = type;
    setFieldName(field, name);
  }

  std::uint32_t addText(const std::string& text) {
    UnpackedRecord record = newRecord(database.schema);
    record.slots[0] = Bytes(text.begin(), text.end());
    record.slots[0]->push_back(0);
    Bytes packed;
    EXPECT_TRUE(packRecord(record, packed));
    return appendRecord(database, engine, packed, true);
  }

  void save() { ASSERT_EQ(saveDatabase(database, engine), 1); }
  int open() {
    messages.clear();
    database = Database{};
    database.path = kPath;
    return openDatabase(database, engine);
  }
  Bytes file() { return files.bytes(kPath); }
  void setFile(const Bytes& bytes) { files.put(kPath, bytes); }

  static std::size_t entryPlace(int record) { return 78 + 8 * static_cast<std::size_t>(record); }
  static std::uint32_t recordOffset(const Bytes& bytes, int record) {
    return loadBe32(&bytes[entryPlace(record)]);
  }
  // Puts bytes behind the end of a record and moves every later record along.
  static void growRecord(Bytes& bytes, int record, const Bytes& extra) {
    const int count = loadBe16(&bytes[76]);
    const std::size_t at = record + 1 < count ? recordOffset(bytes, record + 1) : bytes.size();
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(at), extra.begin(), extra.end());
    for (int later = record + 1; later < count; ++later) {
      const std::uint32_t moved =
          recordOffset(bytes, later) + static_cast<std::uint32_t>(extra.size());
      storeBe16(&bytes[entryPlace(later)], moved >> 16);
      storeBe16(&bytes[entryPlace(later) + 2], moved);
    }
  }

  static constexpr const char* kPath = "/Test.PDB";
  MemoryFiles files;
  FakeClock clock;
  std::minstd_rand random{7};
  std::vector<std::string> messages;
  Engine engine{.files = files, .clock = clock, .random = [this] { return random(); }};
  Database database;
};

}  // namespace tabelion
