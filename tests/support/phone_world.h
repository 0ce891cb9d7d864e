// A phone with its files, clock and settings, all in memory, and databases made for a test.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "platform/platform.h"
#include "query/field_text.h"
#include "query/field_value.h"
#include "support/fake_clock.h"
#include "support/fake_instance.h"
#include "support/fake_phone.h"
#include "support/fixed_locale.h"
#include "support/memory_files.h"
#include "support/memory_settings.h"

namespace tabelion {

struct TestField {
  std::string name;
  FieldType type = FieldType::kText;
  int width = 40;
};
using TestRows = std::vector<std::vector<std::string>>;  // dates and times in ISO form

class PhoneWorld {
 public:
  explicit PhoneWorld(Size screen = {240, 320}) : phone(screen) {}

  MemoryFiles files;
  FakeClock clock;
  MemorySettings settings;
  FixedLocale locale;
  FakePhone phone;
  FakeInstance instance;
  Platform platform{files, clock, locale, settings, phone, instance, "/samples"};
  Engine engine{.files = files, .clock = clock, .random = [] { return 4u; }};

  // An open database that is not yet a file; `store` makes it one.
  std::unique_ptr<Database> make(const std::string& name, const std::vector<TestField>& fields,
                                 const TestRows& rows) {
    auto database = std::make_unique<Database>();
    initDatabase(*database, engine);
    setAreaText(database->header.name, name);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      FieldDefinition& field = database->schema.fields[i];
      field.type = fields[i].type;
      field.width = fields[i].width;
      setFieldName(field, fields[i].name);
    }
    for (const auto& row : rows) addRow(*database, row);
    return database;
  }
  void addRow(Database& database, const std::vector<std::string>& row) {
    UnpackedRecord record = newRecord(database.schema);
    for (std::size_t i = 0; i < row.size(); ++i) {
      auto value =
          valueOfText(database.schema.fields[i], database.fields[i], row[i], isoSettings());
      ASSERT_TRUE(value.ok()) << row[i];
      record.slots[i] = *value;
    }
    Bytes packed;
    ASSERT_TRUE(packRecord(record, packed));
    ASSERT_NE(appendRecord(database, engine, packed, true), kNoPosition);
  }
  // Its flagged values then show an X for each byte.
  static void markEnciphered(Database& database, std::uint32_t record) {
    const ByteView stored = database.records[record].bytes();
    Bytes bytes(stored.begin(), stored.end());
    bytes[1 + kStampFlagOffset] |= kRecordEncrypted;
    ASSERT_TRUE(database.records.replace(record, bytes));
  }
  std::string store(Database& database) {
    EXPECT_TRUE(files.makeFolder("/documents/Tabelion").ok());
    database.path = "/documents/Tabelion/" + areaText(database.header.name) + ".PDB";
    EXPECT_EQ(saveDatabase(database, engine), 1);
    return database.path;
  }
  std::string add(const std::string& name, const std::vector<TestField>& fields,
                  const TestRows& rows) {
    return store(*make(name, fields, rows));
  }

  std::unique_ptr<Database> read(const std::string& path) {
    auto database = std::make_unique<Database>();
    database->path = path;
    EXPECT_EQ(openDatabase(*database, engine), 1) << path;
    return database;
  }
  std::string cell(const std::string& path, std::uint32_t record, int slot) {
    const auto database = read(path);
    return fieldText(*database, database->records[record].bytes(), slot, isoSettings()).text;
  }
  std::string setting(const std::string& name) const {
    const auto found = settings.user.find({"Software\\Tabelion3", name});
    return found == settings.user.end() ? "(none)" : found->second;
  }
  void set(const std::string& name, const std::string& text) {
    settings.user[{"Software\\Tabelion3", name}] = text;
  }
};

}  // namespace tabelion
