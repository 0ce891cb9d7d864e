#include "interchange/schema_json.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "engine/record_io.h"
#include "support/fake_clock.h"
#include "support/memory_files.h"

namespace tabelion {
namespace {

using Json = nlohmann::ordered_json;

class SchemaJson : public ::testing::Test {
 protected:
  static TextEncoding encoding(const char* name = "CP1252") {
    return TextEncoding::open(name).value();
  }

  // Initialises a database by the description; what is wrong with it, or nothing.
  std::string describe(const Json& json, Database& database) {
    EXPECT_EQ(initDatabase(database, engine), 1);
    const Status status = schemaFromJson(json, encoding(), database);
    return status.ok() ? "" : status.error().text;
  }
  Json describedAgain(const Json& json) {
    Database database;
    EXPECT_EQ(describe(json, database), "");
    const std::string own = databaseCodePage(database);
    return schemaToJson(database, encoding(own.empty() ? "CP1252" : own.c_str()));
  }

  static Bytes schemaBytes(const Database& database) {
    Bytes bytes;
    RecordIOFile writer;
    writer.attachForWrite(bytes);
    writeDatabaseRecord(database.schema, writer);
    writer.endRecord(0, {});
    for (const FieldRecord& field : database.fields) {
      writeFieldRecord(field, writer);
      writer.putByte(field.attributes);
      writer.putBytes(field.unique_id);
      writer.endRecord(0, {});
    }
    writeExtensionRecord(database.extension, writer);
    writer.endRecord(0, {});
    return bytes;
  }

  MemoryFiles files;
  FakeClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
};

TEST_F(SchemaJson, ShortDescriptionMakesAWholeDatabase) {
  Database database;
  const Json json = Json::parse(
      R"({"name": "Bücher", "fields": [{"name": "Name", "type": "text", "width": 30},
          {"slot": 7, "name": "Genre", "type": "pop-up", "items": ["Crime", {"text": "Sea",
          "level": 1}]}, {"name": "Day", "type": "date", "default": "today"}]})");
  ASSERT_EQ(describe(json, database), "");
  EXPECT_EQ(areaText(database.header.name),
            "B\xFC"
            "cher");
  EXPECT_EQ(database.schema.fields[0].width, 30);
  EXPECT_EQ(database.schema.fields[0].column_width, 58);
  EXPECT_EQ(database.schema.fields[1].type, FieldType::kUnused);
  EXPECT_EQ(fieldName(database.schema.fields[1]), "Field 2");
  ASSERT_EQ(database.fields[7].items.size(), 2u);
  EXPECT_EQ(database.fields[7].items[1].level(), 1);
  EXPECT_NE(database.fields[7].items[0].key, database.fields[7].items[1].key);
  EXPECT_EQ(database.schema.fields[8].type, FieldType::kDate)
      << "slots go on from the last one given";
  EXPECT_EQ(fieldDefaultOption(database.schema.fields[8]), 2);
  EXPECT_EQ(schemaToJson(database, encoding()), json) << "and comes back as short";
}

TEST_F(SchemaJson, EverythingThatHasANameComesBackUnderIt) {
  const Json json = Json::parse(R"json({
    "name": "Всё", "category": "Проба", "author": "Нина", "code_page": "UTF-8",
    "fields": [
      {"name": "Имя", "type": "text", "width": 30, "column_width": 80, "export": false,
       "record_view": 7, "encrypt": true, "option_a": 3, "option_b": 0, "option_c3": 9},
      {"name": "Price", "type": "float", "decimals": 2},
      {"name": "Total", "type": "calculated", "formula": {"result_kind": 5,
        "tokens": [{"class": 5, "value": -3}, {"class": 3, "value": 0}, {"class": 1, "value": 2}],
        "constants": ["12", "2.5"]}},
      {"name": "Kind", "type": "pop-up", "items": ["Ä", {"text": "B", "level": 1,
        "key": "7064626c620102030405060708090a0b0c01"}], "ranges": ["000102030405060708090a0b0c0d0e0f"]},
      {"name": "Client", "type": "link field", "link": {"database": "Clients", "display_field": 3,
        "kind": 2}},
      {"name": "Town", "type": "lookup", "lookup": {"link_field": "Client", "shown_field": "Town"}},
      {"name": "Shape", "type": "external", "plugin": {"name": "shapes.dll", "parameter": "x=1"}},
      {"name": "At", "type": "time", "default": "now"},
      {"name": "Twice", "type": "text"}, {"name": "Twice", "type": "text"}],
    "display_order": ["Kind"],
    "sort": [{"field": "Kind", "order": "reverse"}, {"field": null, "order": 4}, {"field": 9}],
    "filters": [{"enabled": true, "field": "Имя", "value1": "а", "number1": -5, "number2": -1,
      "not": true, "closes_group": true}, {"field": 8, "value2": {"hex": "00ff"}, "mode": 9,
      "opens_group": true}],
    "search": {"field": "Имя", "text": "ё", "case_sensitive": true, "match": "begins"},
    "views": [{"name": "Первый", "live_update": true, "order": ["Price"], "columns":
      [{"field": "Имя", "column_width": 0, "export": true}], "filters": [{"field": "Имя", "number2": 1}],
      "sort": [{"field": "Price"}], "item6": 77, "item9": 8},
      {"name": "Other", "action": "switch database", "target": "Clients"}],
    "spare_views": [{"slot": 19, "name": "old"}],
    "current_view": null,
    "security": {"add": "refused", "change": "restricted", "operation7": "password"},
    "access_password": "тайна",
    "encryption": {"mode": "by record", "check_block": "010203040506070809", "check_sum": 45,
      "check_present": true},
    "alarms": {"switch1": true, "date_field": "Kind", "time_field": "At",
      "second_shown_field": "Имя", "snooze_minutes": 5},
    "label_width_adjustment": -12, "stamping": false, "modification_stamps": true,
    "next_auto_number": 4000000000, "next_record_serial": 65535, "edition": "Other",
    "extension": {"entries": ["ffffffffffffffffffffffffffffffff"], "attributes": 64},
    "raw": {"items": {"7": "0102", "35+1": "0507"}, "header": {"version": 3}, "record_id": "010203"}
  })json");
  // Indented texts, so that a failure shows the lines that differ.
  EXPECT_EQ(describedAgain(json).dump(1), json.dump(1));
}

TEST_F(SchemaJson, FormulasAreTextsThatMayNameLaterFields) {
  const Json json = Json::parse(R"json({"name": "", "fields": [
    {"name": "Balance", "type": "calculated", "formula": "previous(Balance) + [Preis für] * 2",
     "result": "2 decimals"},
    {"name": "Preis für", "type": "float"},
    {"name": "Days", "type": "calculated", "formula": "[Preis für] mod Balance"},
    {"name": "None", "type": "calculated", "result": "date"},
    {"name": "Other kind", "type": "calculated", "formula": "1.5", "result": 200}]})json");
  Database database;
  ASSERT_EQ(describe(json, database), "");
  EXPECT_EQ(storedFormula(database.schema.fields[0]),
            (StoredFormula{{{5, 0xFF}, {5, 2}, {3, 0}, {1, 1}, {1, 2}}, {"2"}, 5}));
  EXPECT_EQ(schemaToJson(database, encoding()).dump(1), json.dump(1));

  // What no text gives stands as tokens: a corrupt formula, a circle and what runs into it.
  setStoredFormula(database.schema.fields[0], {{{1, 2}}, {}, 5});
  setStoredFormula(database.schema.fields[2], {{{5, 5}}, {}, 1});
  setStoredFormula(database.schema.fields[3], {{{5, 5}}, {}, 1});
  setStoredFormula(database.schema.fields[4], {{{5, 4}, {5, 3}, {1, 2}}, {}, 1});
  const Json tokens = schemaToJson(database, encoding());
  for (const int field : {0, 2, 3, 4}) {
    EXPECT_TRUE(tokens["fields"][field]["formula"].is_object()) << field;
  }
  EXPECT_EQ(describedAgain(tokens).dump(1), tokens.dump(1));
}

TEST_F(SchemaJson, AnyBytesOfASchemaSurviveTheWayThroughTheDescription) {
  const char* given = std::getenv("TABELION_TEST_SEED");
  const auto seed = given ? std::strtoul(given, nullptr, 10) : std::random_device{}();
  SCOPED_TRACE("TABELION_TEST_SEED=" + std::to_string(seed));
  std::mt19937 random(static_cast<std::mt19937::result_type>(seed));
  const auto below = [&](std::uint32_t limit) { return random() % limit; };
  for (int round = 0; round < 25; ++round) {
    Database database;
    ASSERT_EQ(describe(Json{{"fields", Json::array()}}, database), "");
    Bytes bytes = schemaBytes(database);
    bytes.resize(kDatabaseRecordSize);
    const std::uint32_t changes = round == 0 ? 0 : round < 15 ? 200 : 200000;
    for (std::uint32_t i = 0; i < changes; ++i) {
      bytes[below(kDatabaseRecordSize)] = static_cast<std::uint8_t>(random());
    }
    ASSERT_TRUE(readDatabaseRecord(bytes, database.schema));
    for (FieldDefinition& field : database.schema.fields) {
      if (below(3) == 0) {
        field.type = FieldType{static_cast<std::int32_t>(below(19))};
      }
    }
    for (FieldRecord& field : database.fields) {
      field.attributes = static_cast<std::uint8_t>(random());
      field.items.resize(below(4));
      for (PopupItem& item : field.items) {
        for (std::uint8_t& byte : item.key) byte = static_cast<std::uint8_t>(random());
        storeBe16(&item.key[kItemTextOffset], 0);
        for (std::uint32_t i = below(6); i > 0; --i) {
          item.text += static_cast<char>(1 + below(255));
        }
      }
      field.surplus.resize(below(3));
    }
    // These are marks of daily life and no part of a description.
    database.schema.current_record_index = 0;
    database.schema.sort_pending = 0;
    // A readable mark would change the code page, which is another test.
    database.schema.code_page = {0xFF};

    const Json json = schemaToJson(database, encoding());
    Database again;
    ASSERT_EQ(describe(Json::parse(json.dump()), again), "") << json.dump(1);
    ASSERT_EQ(schemaBytes(again), schemaBytes(database)) << "round " << round;
    ASSERT_EQ(schemaToJson(again, encoding()).dump(1), json.dump(1)) << "round " << round;
  }
}

TEST_F(SchemaJson, ProblemNamesItsPlace) {
  const std::pair<const char*, const char*> cases[] = {
      {R"([])", "a description must be an object"},
      {R"({"fields": [{}, {"type": "txt"}]})", "fields[1].type: unknown type \"txt\""},
      {R"({"fields": [{"name": "A", "widht": 3}]})", "fields[0].widht: no such setting"},
      {R"({"fields": [{"width": 70000}]})", "fields[0].width: 70000 is outside 0 to 65535"},
      {R"({"fields": [{"width": "3"}]})", "fields[0].width: must be a whole number of 0 to 65535"},
      {R"({"fields": [{"slot": 100}]})", "fields[0].slot: 100 is outside 0 to 99"},
      {R"({"fields": [{"slot": 1}, {"slot": 1}]})",
       "fields[1].slot: slot 1 is taken or does not exist"},
      {R"({"fields": [{"name": "a name that is far too long"}]})",
       "fields[0].name: takes 27 bytes; 19 is the limit"},
      {R"({"fields": [{"name": "Ω"}]})", "fields[0].name: \"Ω\" (U+03A9) is not in CP1252"},
      {R"({"fields": [{"type": "pop-up", "items": ["a", {"text": "b", "key": "0g"}]}]})",
       "fields[0].items[1].key: must be an even number of hexadecimal digits"},
      {R"({"fields": [{"type": "calculated", "formula": {"constants": ["1234567890",
          "1234567890", "1234567890"]}}]})",
       "fields[0].formula.constants: must be texts that are not empty, together at most 30 bytes"},
      {R"({"fields": [{"name": "Größe", "type": "float"},
          {"type": "calculated", "formula": "Größe * Grösse"}]})",
       "fields[1].formula: column 9: there is no field called \"Grösse\"; is \"Größe\" meant?"},
      {R"({"fields": [{"name": "Total", "type": "calculated", "formula": "Net + Tax"},
          {"name": "Net", "type": "float"},
          {"name": "Tax", "type": "calculated", "formula": "Total * 0.2"}]})",
       "fields[0].formula: runs in a circle: \"Total\" uses \"Tax\" uses \"Total\""},
      {R"({"fields": [{"type": "calculated", "formula": "1", "result": "time"}]})",
       "fields[0].result: \"time\" is not one of \"4 decimals\", \"whole number\", \"duration\", "
       "\"date\", \"3 decimals\", \"2 decimals\", \"1 decimal\""},
      {R"({"sort": [{"field": "Nobody"}]})",
       "sort[0].field: no field, or more than one, is called \"Nobody\""},
      {R"({"views": [{"columns": [{"column_width": 3}]}]})",
       "views[0].columns[0]: must name a field"},
      {R"({"security": {"open": "maybe"}})",
       "security.open: \"maybe\" is not one of \"granted\", \"password\", \"refused\", "
       "\"restricted\""},
      {R"({"code_page": "CP9999"})", "code_page: There is no code page \"CP9999\""},
      {R"({"raw": {"items": {"12": "010203"}}})", "raw.items.12: holds 3 bytes; 1 is the limit"},
      {R"({"stamping": "yes"})", "stamping: must be true or false"},
  };
  for (const auto& [text, problem] : cases) {
    Database database;
    EXPECT_EQ(describe(Json::parse(text), database), problem) << text;
  }
}

TEST_F(SchemaJson, ItemListTooLongForItsRecordIsRefused) {
  Json ranges = Json::array();
  for (int i = 0; i < 4095; ++i) ranges.push_back("00");
  Database database;
  EXPECT_EQ(describe(Json{{"fields", {{{"type", "pop-up"}, {"ranges", ranges}, {"items", {"x"}}}}}},
                     database),
            "fields[0]: items and ranges take 65573 bytes; 65535 is the limit");
}

}  // namespace
}  // namespace tabelion
