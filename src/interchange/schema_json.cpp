#include "interchange/schema_json.h"

#include <algorithm>
#include <memory>

#include <fmt/format.h>

#include "interchange/hex.h"
#include "interchange/schema_json_parts.h"
#include "security/access_rights.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

struct Word {
  int value;
  const char* name;
};

// What the security word says about an operation.
constexpr Word kSecurityCodes[] = {{kCodeFree, kSecurityCodeNames[kCodeFree]},
                                   {kCodePassword, kSecurityCodeNames[kCodePassword]},
                                   {kCodeRefused, kSecurityCodeNames[kCodeRefused]},
                                   {kCodeRestricted, kSecurityCodeNames[kCodeRestricted]}};
constexpr Word kEncryptionModes[] = {
    {kEncryptWholeDatabase, kEncryptionModeNames[kEncryptWholeDatabase]},
    {kEncryptRecordsOnSave, kEncryptionModeNames[kEncryptRecordsOnSave]},
    {kEncryptRecordsByHand, kEncryptionModeNames[kEncryptRecordsByHand]},
    {kEncryptNever, kEncryptionModeNames[kEncryptNever]}};
constexpr Word kSearchMatches[] = {{0, "contains"}, {1, "begins"}};

template <std::size_t Count>
Json wordJson(int value, const Word (&words)[Count]) {
  for (const Word& word : words) {
    if (word.value == value) return word.name;
  }
  return value;
}

template <std::size_t Count>
int readWord(const JsonNode& node, const Word (&words)[Count], int most, int otherwise) {
  if (!node.isText()) return static_cast<int>(node.integer(0, most, otherwise));
  const std::string name = node.text("");
  std::string known;
  for (const Word& word : words) {
    if (word.name == name) return word.value;
    known += fmt::format("{}\"{}\"", known.empty() ? "" : ", ", word.name);
  }
  node.refuse(fmt::format("\"{}\" is not one of {}", name, known));
  return otherwise;
}

// Items of the database record that are no part of a description: the fields and views have
// members of their own, the last two change with every use of the file.
bool isDescribedElsewhere(int item) {
  return item == 11 || item == 33 || item == 16 || item == 24;
}

std::string rawItemName(const DatabaseRecordPart& part, std::size_t item_begin) {
  if (part.offset == item_begin) return std::to_string(part.item);
  return fmt::format("{}+{}", part.item, part.offset - item_begin);
}

// Calls `use(name, part)` for every part that the raw items can name.
template <class Use>
void forEachRawItem(const Use& use) {
  std::size_t item_begin = 0;
  int item = 0;
  for (const DatabaseRecordPart& part : databaseRecordParts()) {
    if (part.item != item) item_begin = part.offset;
    item = part.item;
    if (!isDescribedElsewhere(item)) use(rawItemName(part, item_begin), part);
  }
}

Bytes databaseRecordBytes(const DatabaseRecord& schema) {
  Bytes bytes;
  RecordIOFile writer;
  writer.attachForWrite(bytes);
  writeDatabaseRecord(schema, writer);
  writer.endRecord(0, {});
  return bytes;
}

Json rawItemsJson(const DatabaseRecord& schema, const DatabaseRecord& described) {
  const Bytes actual = databaseRecordBytes(schema);
  const Bytes plain = databaseRecordBytes(described);
  Json items = Json::object();
  forEachRawItem([&](const std::string& name, const DatabaseRecordPart& part) {
    putHexUnless(items, name.c_str(), ByteView(actual).subspan(part.offset, part.size),
                 ByteView(plain).subspan(part.offset, part.size));
  });
  return items;
}

void readRawItems(const JsonNode& node, DatabaseRecord& schema) {
  if (!node.present()) return;
  JsonObject json(node);
  Bytes bytes = databaseRecordBytes(schema);
  forEachRawItem([&](const std::string& name, const DatabaseRecordPart& part) {
    json[name].hexInto(bytes.data() + part.offset, part.size);
  });
  json.finish();
  if (!readDatabaseRecord(bytes, schema)) node.refuse("the items do not make a database record");
}

void readSurplus(const JsonNode& node, Bytes& surplus) {
  if (!node.present()) return;
  surplus.resize(node.text("").size() / 2);
  node.hexInto(surplus.data(), surplus.size());
}

Json headerJson(const FileHeader& header) {
  const FileHeader standard;
  Json json = Json::object();
  putUnless(json, "attributes", header.attributes, standard.attributes);
  putUnless(json, "version", header.version, standard.version);
  putUnless(json, "created", header.creation_date, standard.creation_date);
  putUnless(json, "backed_up", header.backup_date, standard.backup_date);
  putUnless(json, "modification_number", header.modification_number, standard.modification_number);
  putUnless(json, "type", header.type, standard.type);
  putUnless(json, "sort_info_offset", header.sort_info_offset, standard.sort_info_offset);
  putUnless(json, "unique_id_seed", header.unique_id_seed, standard.unique_id_seed);
  putUnless(json, "next_record_list", header.next_record_list, standard.next_record_list);
  return json;
}

void readHeaderJson(const JsonNode& node, FileHeader& header) {
  if (!node.present()) return;
  JsonObject json(node);
  readNumber(json["attributes"], 0, UINT16_MAX, header.attributes);
  readNumber(json["version"], 0, UINT16_MAX, header.version);
  readNumber(json["created"], 0, UINT32_MAX, header.creation_date);
  readNumber(json["backed_up"], 0, UINT32_MAX, header.backup_date);
  readNumber(json["modification_number"], 0, UINT32_MAX, header.modification_number);
  readNumber(json["type"], 0, UINT32_MAX, header.type);
  readNumber(json["sort_info_offset"], 0, UINT32_MAX, header.sort_info_offset);
  readNumber(json["unique_id_seed"], 0, UINT32_MAX, header.unique_id_seed);
  readNumber(json["next_record_list"], 0, UINT32_MAX, header.next_record_list);
  json.finish();
}

Json searchJson(const DatabaseRecord& schema, const FieldNames& names,
                const TextEncoding& encoding) {
  Json json = Json::object();
  if (schema.search_field != kNoField) json["field"] = names.reference(schema.search_field);
  putUnlessEmpty(json, "text", areaJson(schema.search_text, encoding));
  putFlagUnless(json, "case_sensitive", schema.search_case, 0);
  if (schema.search_match != 0) json["match"] = wordJson(schema.search_match, kSearchMatches);
  return json;
}

void readSearch(const JsonNode& node, const FieldNames& names, const TextEncoding& encoding,
                DatabaseRecord& schema) {
  JsonObject json(node);
  schema.search_field = static_cast<std::uint8_t>(names.slotOf(json["field"], 255, kNoField));
  readArea(json["text"], encoding, schema.search_text);
  readFlag(json["case_sensitive"], schema.search_case);
  schema.search_match =
      static_cast<std::uint8_t>(readWord(json["match"], kSearchMatches, 255, schema.search_match));
  json.finish();
}

Json securityJson(const DatabaseRecord& schema) {
  Json json = Json::object();
  for (std::size_t i = 0; i < std::size(kOperationNames); ++i) {
    const int code = schema.security_word >> 2 * i & 3;
    if (code != 0) json[kOperationNames[i]] = wordJson(code, kSecurityCodes);
  }
  return json;
}

void readSecurity(const JsonNode& node, DatabaseRecord& schema) {
  JsonObject json(node);
  for (std::size_t i = 0; i < std::size(kOperationNames); ++i) {
    const int code = readWord(json[kOperationNames[i]], kSecurityCodes, 3, 0);
    schema.security_word |= static_cast<std::uint32_t>(code) << 2 * i;
  }
  json.finish();
}

Json encryptionJson(const DatabaseRecord& schema, const DatabaseRecord& standard) {
  Json json = Json::object();
  if (schema.encryption_mode != standard.encryption_mode) {
    json["mode"] = wordJson(schema.encryption_mode, kEncryptionModes);
  }
  putHexUnless(json, "check_block", schema.password_check, standard.password_check);
  putUnless(json, "check_sum", schema.password_check_sum, standard.password_check_sum);
  putFlagUnless(json, "check_present", schema.password_check_present, 0);
  return json;
}

void readEncryption(const JsonNode& node, DatabaseRecord& schema) {
  JsonObject json(node);
  schema.encryption_mode = static_cast<std::uint8_t>(
      readWord(json["mode"], kEncryptionModes, 255, schema.encryption_mode));
  json["check_block"].hexInto(schema.password_check.data(), schema.password_check.size());
  readNumber(json["check_sum"], 0, 255, schema.password_check_sum);
  readFlag(json["check_present"], schema.password_check_present);
  json.finish();
}

// An alarm field is stored as its slot + 1, and 0 means none.
Json alarmFieldJson(std::uint8_t stored, const FieldNames& names) {
  return stored == 0 ? Json(nullptr) : names.reference(stored - 1);
}

std::uint8_t readAlarmField(const JsonNode& node, const FieldNames& names) {
  const int slot = names.slotOf(node, 254, kNoField);
  return slot == kNoField ? std::uint8_t{0} : static_cast<std::uint8_t>(slot + 1);
}

Json alarmsJson(const DatabaseRecord& schema, const FieldNames& names) {
  const auto& [date, time, first, second] = schema.alarm_fields;
  Json json = Json::object();
  putFlagUnless(json, "switch1", schema.alarm_switches[0], 0);
  putFlagUnless(json, "switch2", schema.alarm_switches[1], 0);
  if (date != 0) json["date_field"] = alarmFieldJson(date, names);
  if (time != 0) json["time_field"] = alarmFieldJson(time, names);
  if (first != 0) json["first_shown_field"] = alarmFieldJson(first, names);
  if (second != 0) json["second_shown_field"] = alarmFieldJson(second, names);
  putUnless(json, "snooze_minutes", static_cast<int>(schema.snooze_minutes), 1);
  return json;
}

void readAlarms(const JsonNode& node, const FieldNames& names, DatabaseRecord& schema) {
  JsonObject json(node);
  readFlag(json["switch1"], schema.alarm_switches[0]);
  readFlag(json["switch2"], schema.alarm_switches[1]);
  schema.alarm_fields = {readAlarmField(json["date_field"], names),
                         readAlarmField(json["time_field"], names),
                         readAlarmField(json["first_shown_field"], names),
                         readAlarmField(json["second_shown_field"], names)};
  readNumber(json["snooze_minutes"], 0, 65535, schema.snooze_minutes);
  json.finish();
}

Json extensionJson(const ExtensionRecord& extension) {
  const ExtensionRecord standard;
  Json json = Json::object();
  Json entries = Json::array();
  for (const ExtensionEntry& entry : extension.entries) entries.push_back(toHex(entry));
  putUnlessEmpty(json, "entries", std::move(entries));
  putHexUnless(json, "head", extension.head, standard.head);
  putHexUnless(json, "closing", extension.closing, standard.closing);
  putHexUnless(json, "surplus", extension.surplus, standard.surplus);
  putHexUnless(json, "ignored", extension.ignored, standard.ignored);
  putUnless(json, "attributes", extension.attributes, standard.attributes);
  putHexUnless(json, "id", extension.unique_id, standard.unique_id);
  return json;
}

void readExtension(const JsonNode& node, ExtensionRecord& extension) {
  JsonObject json(node);
  for (const JsonNode& entry : json["entries"].list(65535)) {
    ExtensionEntry bytes{};
    entry.hexInto(bytes.data(), bytes.size());
    extension.entries.push_back(bytes);
  }
  json["head"].hexInto(extension.head.data(), extension.head.size());
  json["closing"].hexInto(extension.closing.data(), extension.closing.size());
  readSurplus(json["surplus"], extension.surplus);
  readSurplus(json["ignored"], extension.ignored);
  readNumber(json["attributes"], 0, 255, extension.attributes);
  json["id"].hexInto(extension.unique_id.data(), extension.unique_id.size());
  json.finish();
}

// A mark that names no code page stands as digits: as a text it would be refused.
Json codePageJson(ByteView mark, const TextEncoding& encoding) {
  Json json = areaJson(mark, encoding);
  const auto* name = json.get_ptr<const std::string*>();
  if (!name || name->empty() || TextEncoding::open(*name).ok()) return json;
  return Json{{"hex", toHex(mark)}};
}

Json rawJson(const Database& database, const Database& described) {
  Json raw = Json::object();
  putUnlessEmpty(raw, "items", rawItemsJson(database.schema, described.schema));
  putUnlessEmpty(raw, "header", headerJson(database.header));
  const auto attributes =
      static_cast<std::uint8_t>(database.schema_attributes & ~unsigned{kAttributeDirty});
  putUnless(raw, "record_attributes", attributes, std::uint8_t{0});
  putHexUnless(raw, "record_id", database.schema_unique_id, UniqueId{});
  putHexUnless(raw, "record_surplus", database.schema.surplus, Bytes{});
  return raw;
}

void readRaw(const JsonNode& node, Database& database) {
  if (!node.present()) return;
  JsonObject json(node);
  readRawItems(json["items"], database.schema);
  readHeaderJson(json["header"], database.header);
  readNumber(json["record_attributes"], 0, 255, database.schema_attributes);
  json["record_id"].hexInto(database.schema_unique_id.data(), database.schema_unique_id.size());
  readSurplus(json["record_surplus"], database.schema.surplus);
  json.finish();
}

// Everything but the raw members and the fields.
void putSettings(Json& json, const Database& database, const Database& standard,
                 const FieldNames& names, const TextEncoding& encoding) {
  const DatabaseRecord& schema = database.schema;
  const DatabaseRecord& plain = standard.schema;
  putUnlessEmpty(json, "display_order", orderJson(schema.display_order, names));
  putUnlessEmpty(json, "sort", sortJson(schema.sort, names));
  putUnlessEmpty(json, "filters", filtersJson(schema.filters, names, encoding));
  putUnlessEmpty(json, "search", searchJson(schema, names, encoding));
  putViews(json, schema, names, encoding);
  if (schema.current_view == kNoView) {
    json["current_view"] = nullptr;
  } else {
    putUnless(json, "current_view", schema.current_view, plain.current_view);
  }
  putUnlessEmpty(json, "security", securityJson(schema));
  putUnlessEmpty(json, "access_password", areaJson(schema.access_password, encoding));
  putUnlessEmpty(json, "encryption", encryptionJson(schema, plain));
  putUnlessEmpty(json, "alarms", alarmsJson(schema, names));
  putUnless(json, "label_width_adjustment", schema.label_width_adjustment,
            plain.label_width_adjustment);
  putFlagUnless(json, "stamping", schema.stamping_option, plain.stamping_option);
  putFlagUnless(json, "modification_stamps", schema.modification_stamp_option,
                plain.modification_stamp_option);
  putUnless(json, "next_auto_number", schema.next_auto_number, plain.next_auto_number);
  putUnless(json, "next_record_serial", schema.next_serial, plain.next_serial);
  if (schema.edition != plain.edition) json["edition"] = areaJson(schema.edition, encoding);
  putUnlessEmpty(json, "extension", extensionJson(database.extension));
}

void readSettings(JsonObject& json, const FieldNames& names, const TextEncoding& encoding,
                  Database& database) {
  DatabaseRecord& schema = database.schema;
  readOrder(json["display_order"], names, schema.display_order);
  readSort(json["sort"], names, schema.sort);
  readFilters(json["filters"], names, encoding, schema.filters);
  readSearch(json["search"], names, encoding, schema);
  readViews(json, names, encoding, schema);
  const JsonNode current_view = json["current_view"];
  if (current_view.isNull()) {
    schema.current_view = kNoView;
  } else {
    readNumber(current_view, 0, 255, schema.current_view);
  }
  readSecurity(json["security"], schema);
  readArea(json["access_password"], encoding, schema.access_password);
  readEncryption(json["encryption"], schema);
  readAlarms(json["alarms"], names, schema);
  readNumber(json["label_width_adjustment"], -32768, 32767, schema.label_width_adjustment);
  schema.stamping_option =
      static_cast<std::uint16_t>(json["stamping"].flag(65535, schema.stamping_option));
  schema.modification_stamp_option = static_cast<std::uint16_t>(
      json["modification_stamps"].flag(65535, schema.modification_stamp_option));
  readNumber(json["next_auto_number"], 0, UINT32_MAX, schema.next_auto_number);
  readNumber(json["next_record_serial"], 0, 65535, schema.next_serial);
  readArea(json["edition"], encoding, schema.edition);
  readExtension(json["extension"], database.extension);
}

void initDescribed(Database& database) {
  initSchema(database.schema);
  initHeader("", database.header);
}

void readDescription(const JsonNode& node, const TextEncoding& encoding, Database& database) {
  if (!node.isObject()) {
    node.refuse("a description must be an object");
    return;
  }
  JsonObject json(node);
  readArea(json["name"], encoding, database.header.name);
  readArea(json["category"], encoding, database.schema.category);
  readArea(json["author"], encoding, database.schema.author);
  readArea(json["code_page"], encoding, database.schema.code_page);
  readFields(json["fields"], encoding, database);
  const FieldNames names(database.schema, encoding);
  readSettings(json, names, encoding, database);
  readRaw(json["raw"], database);
  json.finish();
}

}  // namespace

Json schemaToJson(const Database& database, const TextEncoding& encoding) {
  const auto standard = std::make_unique<Database>();
  initDescribed(*standard);
  const FieldNames names(database.schema, encoding);
  Json json = Json::object();
  json["name"] = areaJson(database.header.name, encoding);
  putUnlessEmpty(json, "category", areaJson(database.schema.category, encoding));
  putUnlessEmpty(json, "author", areaJson(database.schema.author, encoding));
  putUnlessEmpty(json, "code_page", codePageJson(database.schema.code_page, encoding));
  json["fields"] = fieldsJson(database, *standard, encoding);
  putSettings(json, database, *standard, names, encoding);
  // Read what was written so far, to see what it leaves out.
  const auto described = std::make_unique<Database>();
  initDescribed(*described);
  JsonProblem problem;
  readDescription(JsonNode(&json, "", problem), encoding, *described);
  putUnlessEmpty(json, "raw", rawJson(database, *described));
  return json;
}

Status schemaFromJson(const Json& json, const TextEncoding& user_encoding, Database& database) {
  JsonProblem problem;
  const JsonNode node(&json, "", problem);
  // The code page comes first: it says what every other text becomes.
  const TextEncoding* encoding = &user_encoding;
  std::optional<TextEncoding> own;
  if (node.isObject()) {
    const JsonNode code_page = JsonObject(node)["code_page"];
    const std::string name = code_page.isText() ? code_page.text("") : "";
    if (!name.empty()) {
      auto opened = TextEncoding::open(name);
      if (!opened.ok()) return makeError(ErrorKind::kInvalid, "code_page: " + opened.error().text);
      own.emplace(std::move(opened).value());
      encoding = &*own;
    }
  }
  readDescription(node, *encoding, database);
  if (!problem.first.empty()) return makeError(ErrorKind::kInvalid, problem.first);
  return Done{};
}

}  // namespace tabelion
