#include <gtest/gtest.h>

#include <random>

#include "engine/database_record.h"
#include "engine/extension_record.h"
#include "engine/field_record.h"
#include "engine/record_io.h"
#include "engine/schema_places.h"

namespace tabelion {
namespace {

template <class Write>
Bytes written(Write write) {
  Bytes bytes;
  RecordIOFile io;
  io.attachForWrite(bytes);
  write(io);
  EXPECT_EQ(io.endRecord(0, {}), 1);
  return bytes;
}
Bytes writtenSchema(const DatabaseRecord& schema) {
  return written([&](RecordIO& io) { writeDatabaseRecord(schema, io); });
}
Bytes writtenField(const FieldRecord& field) {
  return written([&](RecordIO& io) { writeFieldRecord(field, io); });
}

TEST(DatabaseRecords, AnyBytesComeBackUnchanged) {
  std::minstd_rand random(3);
  for (const std::size_t surplus : {std::size_t{0}, std::size_t{17}}) {
    Bytes bytes(kDatabaseRecordSize + surplus);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
    DatabaseRecord schema;
    ASSERT_TRUE(readDatabaseRecord(bytes, schema));
    EXPECT_EQ(writtenSchema(schema), bytes);
  }
  DatabaseRecord schema;
  EXPECT_FALSE(readDatabaseRecord(Bytes(kDatabaseRecordSize - 1), schema));
}

TEST(DatabaseRecords, NewDatabaseHasItsDefaults) {
  DatabaseRecord schema;
  initSchema(schema);
  const Bytes bytes = writtenSchema(schema);
  ASSERT_EQ(bytes.size(), kDatabaseRecordSize);
  EXPECT_EQ(std::string(bytes.begin() + 22, bytes.begin() + 27), "TblnB");

  // Each unnamed or named default at the place that the parts say it has.
  const auto part = [&](int item) {
    for (const auto& p : databaseRecordParts()) {
      if (p.item == item) return ByteView(bytes).subspan(p.offset);
    }
    return ByteView();
  };
  EXPECT_EQ(loadBe32(part(4).data()), 1u);
  EXPECT_EQ(loadBe32(part(5).data() + 88), 65000u);
  EXPECT_EQ(part(6)[0], 255);
  EXPECT_EQ(part(6)[1], 1);
  EXPECT_EQ(part(9)[0], 1);
  EXPECT_EQ(areaText(part(11).subspan(99 * 116 + 66, 20)), "Field 100");
  EXPECT_EQ(loadBe16(part(11).data() + 2), 40);
  EXPECT_EQ(loadBe16(part(11).data() + 6), 58);
  EXPECT_EQ(part(12)[0], 255);
  EXPECT_EQ(loadBe16(part(15).data()), 1);
  EXPECT_EQ(part(17)[99], 99);
  EXPECT_EQ(areaText(part(22).first(40)), "Pocket PC Tabelion");
  EXPECT_EQ(loadBe16(part(26).data()), 1);
  EXPECT_EQ(part(31)[5], 1);
  EXPECT_EQ(part(33)[33], 1) << "unused view slots have action 1";
  EXPECT_EQ(loadBe16(part(33).data() + 32 + 1 + 1 + 32 + 100 + 4), 58);
  EXPECT_EQ(part(35)[2], 255);
  EXPECT_EQ(part(35)[3], 3);

  std::size_t end = 0;
  for (const auto& p : databaseRecordParts()) {
    EXPECT_EQ(p.offset, end) << "item " << p.item;
    end = p.offset + p.size;
  }
  EXPECT_EQ(end, kDatabaseRecordSize);
}

TEST(FieldRecords, AbsentTextsShareTheirOffsetWithTheNext) {
  EXPECT_EQ(writtenField({}).size(), 31u);

  FieldRecord field;
  for (const char* text : {"", "Red", "", "", "Blue", ""}) {
    PopupItem item;
    item.key[0] = static_cast<std::uint8_t>(field.items.size() + 1);
    item.key[kItemLevelOffset] = 2;
    item.text = text;
    field.items.push_back(item);
  }
  field.ranges.push_back({1, 2, 3});
  const Bytes bytes = writtenField(field);
  EXPECT_EQ(bytes.size(), fieldRecordLength(field));
  EXPECT_EQ(bytes.size(), 31u + 6 * 20 + 16 + 4 + 5);

  FieldRecord read;
  ASSERT_EQ(readFieldRecord(bytes, read), kFieldRecordRead);
  ASSERT_EQ(read.items.size(), 6u);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(read.items[i].text, field.items[i].text) << i;
  EXPECT_EQ(read.items[1].level(), 2);
  EXPECT_EQ(read.ranges, field.ranges);
  EXPECT_EQ(writtenField(read), bytes);
  EXPECT_EQ(findItem(read, read.items[4].valueKey())->text, "Blue");
  EXPECT_EQ(findItem(read, Bytes(14, 99)), nullptr);

  EXPECT_EQ(readFieldRecord({}, read), kFieldRecordNoData);
}

TEST(FieldRecords, ImpossibleCountsAndTextsAreDamage) {
  FieldRecord field;
  field.items.resize(60);
  for (PopupItem& item : field.items) item.text = "x";
  const Bytes sound = writtenField(field);
  FieldRecord read;
  ASSERT_EQ(readFieldRecord(sound, read), kFieldRecordRead);

  const auto damaged = [&](std::size_t at, std::uint8_t value) {
    Bytes bytes = sound;
    bytes[at] = value;
    return readFieldRecord(bytes, read);
  };
  EXPECT_EQ(damaged(23, 61), kFieldRecordDamaged) << "more items than a field has";
  EXPECT_EQ(damaged(26, 0xFF), kFieldRecordDamaged) << "more ranges than the record";
  EXPECT_EQ(damaged(27 + 18, 0xFF), kFieldRecordDamaged) << "text behind the record";
  EXPECT_EQ(damaged(27 + 18, 0), kFieldRecordDamaged) << "text inside the keys";
  Bytes open_text(sound.begin(), sound.end() - 5);  // the last text has lost its NUL
  EXPECT_EQ(readFieldRecord(open_text, read), kFieldRecordDamaged);
  for (std::size_t length = 1; length < 31; ++length) {
    EXPECT_EQ(readFieldRecord(Bytes(length, 0), read), kFieldRecordDamaged) << length;
  }
}

TEST(ExtensionRecords, ForeignOnesAreIgnoredAndKept) {
  const auto writtenExtension = [](const ExtensionRecord& extension) {
    return written([&](RecordIO& io) { writeExtensionRecord(extension, io); });
  };
  ExtensionRecord extension;
  EXPECT_EQ(writtenExtension(extension).size(), 28u);
  extension.entries.resize(3);
  extension.entries[2][15] = 9;
  const Bytes bytes = writtenExtension(extension);
  EXPECT_EQ(bytes.size(), 28u + 48);
  EXPECT_EQ(Bytes(bytes.end() - 3, bytes.end()), (Bytes{0, 0, 1}));

  ExtensionRecord read;
  ASSERT_TRUE(readExtensionRecord(bytes, read));
  EXPECT_EQ(read.entries, extension.entries);
  const Bytes foreign = {21, 1, 2, 3};
  ASSERT_TRUE(readExtensionRecord(foreign, read));
  EXPECT_TRUE(read.entries.empty());
  EXPECT_EQ(writtenExtension(read), foreign);
  Bytes too_many = bytes;
  too_many[23] = 4;
  EXPECT_FALSE(readExtensionRecord(too_many, read));
}

TEST(SchemaPlaces, SettingsOfAFieldComeBackAndKeepOutOfEachOthersWay) {
  FieldDefinition field;
  const LinkSettings link{"Projects and plans", 99, 3};
  ASSERT_TRUE(setLinkSettings(field, link));
  EXPECT_EQ(linkSettings(field), link);
  EXPECT_FALSE(setLinkSettings(field, {std::string(32, 'x'), 0, 0}));
  EXPECT_EQ(linkSettings(field), link) << "a refused setting changes nothing";

  FieldDefinition formula_field;
  formula_field.type = FieldType::kCalculated;
  StoredFormula formula;
  for (std::uint8_t i = 0; i < kMaxFormulaTokens; ++i) {
    formula.tokens.push_back(
        {static_cast<std::uint8_t>(5 - i % 3), static_cast<std::uint8_t>(200 + i)});
  }
  formula.constants = {"3.14159265358", "-2", "100000000000"};
  formula.result_kind = 6;
  ASSERT_TRUE(setStoredFormula(formula_field, formula));
  EXPECT_EQ(storedFormula(formula_field), formula);
  EXPECT_EQ(formula_field.area_f[19], 6) << "the result kind has a place of its own";
  formula.constants.push_back("5");
  EXPECT_FALSE(setStoredFormula(formula_field, formula)) << "no room for the constants";

  FieldDefinition lookup_field;
  EXPECT_EQ(lookupSettings(lookup_field).link_field, -1) << "none in a new field";
  ASSERT_TRUE(setLookupSettings(lookup_field, {0, "Due"}));
  EXPECT_EQ(lookupSettings(lookup_field), (LookupSettings{0, "Due"}));
  ASSERT_TRUE(setPluginSettings(field, {std::string(39, 'p'), std::string(19, 'q')}));
  EXPECT_EQ(pluginSettings(field).name.size(), 39u);
  EXPECT_FALSE(setPluginSettings(field, {std::string(40, 'p'), ""}));
}

TEST(SchemaPlaces, CalculatedFieldsCountAsTheirResultKind) {
  FieldDefinition field;
  field.type = FieldType::kCalculated;
  const FieldType expected[] = {FieldType::kFloat, FieldType::kInteger,   FieldType::kTime,
                                FieldType::kDate,  FieldType::kFloat,     FieldType::kFloat,
                                FieldType::kFloat, FieldType::kCalculated};
  for (std::uint8_t kind = 0; kind < 8; ++kind) {
    field.area_f[kResultKindOffset] = kind;
    EXPECT_EQ(effectiveType(field), expected[kind]) << int{kind};
  }
  field.type = FieldType::kText;
  EXPECT_EQ(effectiveType(field), FieldType::kText);
}

}  // namespace
}  // namespace tabelion
