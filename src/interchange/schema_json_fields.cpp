// Field definitions, their settings by type, item lists and ranges as JSON and back.

#include <algorithm>

#include <fmt/format.h>

#include "engine/packed_record.h"
#include "interchange/hex.h"
#include "interchange/popup_keys.h"
#include "interchange/schema_json_parts.h"

namespace tabelion {
namespace {

// Stored default options of dates and times that have a word of their own.
constexpr int kDefaultToday = 2;
constexpr int kDefaultNow = 2;

Json typeJson(FieldType type) {
  if (type == FieldType::kUnused || isValidType(type)) return std::string(traitsOf(type).name);
  return codeOf(type);
}

FieldType readType(const JsonNode& node) {
  if (!node.present()) return FieldType::kUnused;
  if (!node.isText()) return FieldType{static_cast<std::int32_t>(node.integer(0, 65535, 0))};
  const std::string name = node.text("");
  for (std::int32_t code = 0; code <= codeOf(kLastFieldType); ++code) {
    if (traitsOf(FieldType{code}).name == name) return FieldType{code};
  }
  node.refuse(fmt::format("unknown type \"{}\"", name));
  return FieldType::kUnused;
}

bool isDateOrTime(FieldType type) {
  return type == FieldType::kDate || type == FieldType::kTime;
}

Json defaultOptionJson(const FieldDefinition& field) {
  const int option = fieldDefaultOption(field);
  if (field.type == FieldType::kDate && option == kDefaultToday) return "today";
  if (field.type == FieldType::kTime && option == kDefaultNow) return "now";
  return option;
}

void readDefaultOption(const JsonNode& node, FieldDefinition& field) {
  if (!node.present()) return;
  int option = 0;
  if (node.isText()) {
    const std::string word = node.text("");
    if (word == "today" && field.type == FieldType::kDate) {
      option = kDefaultToday;
    } else if (word == "now" && field.type == FieldType::kTime) {
      option = kDefaultNow;
    } else if (word != "none") {
      node.refuse(field.type == FieldType::kDate ? "must be \"none\" or \"today\""
                                                 : "must be \"none\" or \"now\"");
    }
  } else {
    option = static_cast<int>(node.integer(0, 255, 0));
  }
  setFieldDefaultOption(field, option);
}

Json linkJson(const FieldDefinition& field, const TextEncoding& encoding) {
  const LinkSettings link = linkSettings(field);
  Json json = Json::object();
  json["database"] = textJson(link.database, encoding);
  putUnless(json, "display_field", link.display_field, -1);
  putUnless(json, "kind", static_cast<int>(link.kind), 0);
  return json;
}

void readLink(const JsonNode& node, const TextEncoding& encoding, FieldDefinition& field) {
  if (!node.present()) return;
  JsonObject json(node);
  LinkSettings link;
  readText(json["database"], encoding, link.database);
  readNumber(json["display_field"], -1, kFieldSlots - 1, link.display_field);
  readNumber(json["kind"], 0, 255, link.kind);
  if (!setLinkSettings(field, link)) json["database"].refuse("the name is longer than 31 bytes");
  json.finish();
}

Json lookupJson(const FieldDefinition& field, const FieldNames& names,
                const TextEncoding& encoding) {
  const LookupSettings lookup = lookupSettings(field);
  Json json = Json::object();
  if (lookup.link_field >= 0) json["link_field"] = names.reference(lookup.link_field);
  json["shown_field"] = textJson(lookup.shown_field, encoding);
  return json;
}

void readLookup(const JsonNode& node, const FieldNames& names, const TextEncoding& encoding,
                FieldDefinition& field) {
  if (!node.present()) return;
  JsonObject json(node);
  LookupSettings lookup;
  const int slot = names.slotOf(json["link_field"], kFieldSlots - 1, kNoField);
  lookup.link_field = slot == kNoField ? -1 : slot;
  readText(json["shown_field"], encoding, lookup.shown_field);
  if (!setLookupSettings(field, lookup)) {
    json["shown_field"].refuse("the name is longer than 19 bytes");
  }
  json.finish();
}

Json pluginJson(const FieldDefinition& field, const TextEncoding& encoding) {
  const PluginSettings plugin = pluginSettings(field);
  Json json = Json::object();
  json["name"] = textJson(plugin.name, encoding);
  if (!plugin.parameter.empty()) json["parameter"] = textJson(plugin.parameter, encoding);
  return json;
}

void readPlugin(const JsonNode& node, const TextEncoding& encoding, FieldDefinition& field) {
  if (!node.present()) return;
  JsonObject json(node);
  PluginSettings plugin;
  readText(json["name"], encoding, plugin.name);
  readText(json["parameter"], encoding, plugin.parameter);
  if (!setPluginSettings(field, plugin)) {
    node.refuse("the name is longer than 39 bytes, or the parameter longer than 19");
  }
  json.finish();
}

Json itemsJson(const FieldRecord& record, int slot, const TextEncoding& encoding) {
  Json list = Json::array();
  for (std::size_t i = 0; i < record.items.size(); ++i) {
    const PopupItem& item = record.items[i];
    const Json text = textJson(item.text, encoding);
    ItemKey key = item.key;
    std::fill(key.begin() + kItemTextOffset, key.end(), std::uint8_t{0});
    const bool has_own_key = key != describedItemKey(slot, i, item.level());
    if (text.is_string() && item.level() == 0 && !has_own_key) {
      list.push_back(text);
      continue;
    }
    Json json = Json::object();
    json["text"] = text;
    putUnless(json, "level", item.level(), 0);
    if (has_own_key) json["key"] = toHex(ByteView(key).first(kItemTextOffset));
    list.push_back(std::move(json));
  }
  return list;
}

void readItems(const JsonNode& node, int slot, const TextEncoding& encoding, FieldRecord& record) {
  for (const JsonNode& entry : node.list(kMaxItems)) {
    const std::size_t index = record.items.size();
    PopupItem item;
    if (entry.isText()) {
      readText(entry, encoding, item.text);
      item.key = describedItemKey(slot, index, 0);
    } else {
      JsonObject json(entry);
      readText(json["text"], encoding, item.text);
      const auto level = static_cast<int>(json["level"].integer(0, 255, 0));
      item.key = describedItemKey(slot, index, level);
      json["key"].hexInto(item.key.data(), kItemTextOffset);
      json.finish();
    }
    if (item.text.find('\0') != std::string::npos) entry.refuse("the text must not hold a NUL");
    record.items.push_back(std::move(item));
  }
}

Json rangesJson(const FieldRecord& record) {
  Json list = Json::array();
  for (const Range& range : record.ranges) list.push_back(toHex(range));
  return list;
}

void readRanges(const JsonNode& node, FieldRecord& record) {
  for (const JsonNode& entry : node.list(0xFFFF / kRangeSize)) {
    Range range{};
    entry.hexInto(range.data(), range.size());
    record.ranges.push_back(range);
  }
}

// What the named members leave different from the field itself.
Json rawJson(const FieldDefinition& field, const FieldDefinition& described,
             const FieldRecord& record, const FieldRecord& described_record) {
  Json raw = Json::object();
  putHexUnless(raw, "area_d", field.area_d, described.area_d);
  putHexUnless(raw, "area_e", field.area_e, described.area_e);
  putHexUnless(raw, "area_f", field.area_f, described.area_f);
  putHexUnless(raw, "area_i", field.area_i, described.area_i);
  putUnless(raw, "byte_g", field.byte_g, described.byte_g);
  putUnless(raw, "byte_h", field.byte_h, described.byte_h);
  putUnless(raw, "record_type", record.record_type, described_record.record_type);
  putHexUnless(raw, "record_head", record.head, described_record.head);
  putUnless(raw, "record_attributes", record.attributes, described_record.attributes);
  putHexUnless(raw, "record_id", record.unique_id, described_record.unique_id);
  putHexUnless(raw, "record_surplus", record.surplus, described_record.surplus);
  return raw;
}

void readSurplus(const JsonNode& node, Bytes& surplus) {
  if (!node.present()) return;
  surplus.resize(node.text("").size() / 2);
  node.hexInto(surplus.data(), surplus.size());
}

void readRaw(const JsonNode& node, FieldDefinition& field, FieldRecord& record) {
  if (!node.present()) return;
  JsonObject raw(node);
  raw["area_d"].hexInto(field.area_d.data(), field.area_d.size());
  raw["area_e"].hexInto(field.area_e.data(), field.area_e.size());
  raw["area_f"].hexInto(field.area_f.data(), field.area_f.size());
  raw["area_i"].hexInto(field.area_i.data(), field.area_i.size());
  readNumber(raw["byte_g"], 0, 255, field.byte_g);
  readNumber(raw["byte_h"], 0, 255, field.byte_h);
  readNumber(raw["record_type"], 0, 255, record.record_type);
  raw["record_head"].hexInto(record.head.data(), record.head.size());
  readNumber(raw["record_attributes"], 0, 255, record.attributes);
  raw["record_id"].hexInto(record.unique_id.data(), record.unique_id.size());
  readSurplus(raw["record_surplus"], record.surplus);
  raw.finish();
}

void readOneField(const JsonNode& node, int slot, const TextEncoding& encoding,
                  FieldDefinition& field, FieldRecord& record) {
  JsonObject json(node);
  (void)json["slot"];
  readArea(json["name"], encoding, field.name);
  field.type = readType(json["type"]);
  readNumber(json["width"], 0, 65535, field.width);
  readNumber(json["column_width"], -32768, 32767, field.column_width);
  readFlag(json["export"], field.export_flag);
  readFlag(json["record_view"], field.record_view_flag);
  readFlag(json["encrypt"], field.encrypt_flag);
  readNumber(json["option_a"], 0, 255, field.option_a);
  readNumber(json["option_b"], 0, 255, field.option_b);
  readNumber(json["option_c3"], 0, 255, field.option_c3);
  if (field.type == FieldType::kFloat) readNumber(json["decimals"], 0, 255, field.byte_g);
  if (isDateOrTime(field.type)) readDefaultOption(json["default"], field);
  if (field.type == FieldType::kLinkedField || field.type == FieldType::kLinkField) {
    readLink(json["link"], encoding, field);
  }
  // Read by readReferences, once every field has its name.
  if (field.type == FieldType::kLookup) (void)json["lookup"];
  if (field.type == FieldType::kCalculated) (void)json["formula"], (void)json["result"];
  if (field.type == FieldType::kExternal) readPlugin(json["plugin"], encoding, field);
  readItems(json["items"], slot, encoding, record);
  readRanges(json["ranges"], record);
  readRaw(json["raw"], field, record);
  json.finish();
  if (const std::size_t length = fieldRecordLength(record); length > kMaxRecordSize) {
    node.refuse(
        fmt::format("items and ranges take {} bytes; {} is the limit", length, kMaxRecordSize));
  }
}

bool refersToFields(FieldType type) {
  return type == FieldType::kLookup || type == FieldType::kCalculated;
}

// The settings that name other fields of `schema`.
void readReferences(const JsonNode& node, const DatabaseRecord& schema, const FieldNames& names,
                    const TextEncoding& encoding, FieldDefinition& field) {
  JsonObject json(node);
  if (field.type == FieldType::kLookup) readLookup(json["lookup"], names, encoding, field);
  if (field.type == FieldType::kCalculated) readFormula(json, schema, encoding, field);
  // Raw bytes have the last word, so they go in again over these.
  const JsonNode raw_node = json["raw"];
  if (!raw_node.present()) return;
  JsonObject raw(raw_node);
  raw["area_e"].hexInto(field.area_e.data(), field.area_e.size());
  raw["area_f"].hexInto(field.area_f.data(), field.area_f.size());
  raw["area_i"].hexInto(field.area_i.data(), field.area_i.size());
}

// The settings of the field's type. Ones that the program would not store itself, such as a text
// that fills its area to the last byte, are left to the raw areas.
void putTypeSettings(Json& json, const DatabaseRecord& schema, int slot, const FieldNames& names,
                     const TextEncoding& encoding) {
  const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
  FieldDefinition copy = field;
  switch (field.type) {
    case FieldType::kLinkedField:
    case FieldType::kLinkField:
      if (setLinkSettings(copy, linkSettings(field))) json["link"] = linkJson(field, encoding);
      break;
    case FieldType::kLookup:
      if (setLookupSettings(copy, lookupSettings(field))) {
        json["lookup"] = lookupJson(field, names, encoding);
      }
      break;
    case FieldType::kExternal:
      if (setPluginSettings(copy, pluginSettings(field))) {
        json["plugin"] = pluginJson(field, encoding);
      }
      break;
    case FieldType::kCalculated:
      if (setStoredFormula(copy, storedFormula(field))) putFormula(json, schema, slot, encoding);
      break;
    default:
      break;
  }
}

Json namedFieldJson(const Database& database, int slot, const Database& standard,
                    const FieldNames& names, const TextEncoding& encoding) {
  const auto index = static_cast<std::size_t>(slot);
  const FieldDefinition& field = database.schema.fields[index];
  const FieldDefinition& plain = standard.schema.fields[index];
  const FieldRecord& record = database.fields[index];
  Json json = Json::object();
  if (field.name != plain.name) json["name"] = areaJson(field.name, encoding);
  if (field.type != FieldType::kUnused) json["type"] = typeJson(field.type);
  putUnless(json, "width", field.width, plain.width);
  putUnless(json, "column_width", field.column_width, plain.column_width);
  putFlagUnless(json, "export", field.export_flag, plain.export_flag);
  putFlagUnless(json, "record_view", field.record_view_flag, plain.record_view_flag);
  putFlagUnless(json, "encrypt", field.encrypt_flag, plain.encrypt_flag);
  putUnless(json, "option_a", field.option_a, plain.option_a);
  putUnless(json, "option_b", field.option_b, plain.option_b);
  putUnless(json, "option_c3", field.option_c3, plain.option_c3);
  if (field.type == FieldType::kFloat) putUnless(json, "decimals", fieldDecimals(field), 0);
  if (isDateOrTime(field.type) && fieldDefaultOption(field) != 0) {
    json["default"] = defaultOptionJson(field);
  }
  putTypeSettings(json, database.schema, slot, names, encoding);
  putUnlessEmpty(json, "items", itemsJson(record, slot, encoding));
  putUnlessEmpty(json, "ranges", rangesJson(record));
  return json;
}

}  // namespace

Json fieldsJson(const Database& database, const Database& standard, const TextEncoding& encoding) {
  const FieldNames names(database.schema, encoding);
  Json list = Json::array();
  int next_slot = 0;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    const auto index = static_cast<std::size_t>(slot);
    Json json = namedFieldJson(database, slot, standard, names, encoding);
    // Read what was written so far, to see what it leaves out.
    FieldDefinition described = standard.schema.fields[index];
    FieldRecord described_record;
    JsonProblem problem;
    const JsonNode node(&json, "", problem);
    readOneField(node, slot, encoding, described, described_record);
    if (refersToFields(described.type)) {
      readReferences(node, database.schema, names, encoding, described);
    }
    putUnlessEmpty(json, "raw",
                   rawJson(database.schema.fields[index], described, database.fields[index],
                           described_record));
    if (json.empty()) continue;
    if (slot != next_slot) {
      Json with_slot = Json{{"slot", slot}};
      with_slot.update(json);
      json = std::move(with_slot);
    }
    list.push_back(std::move(json));
    next_slot = slot + 1;
  }
  return list;
}

void readFields(const JsonNode& node, const TextEncoding& encoding, Database& database) {
  std::array<bool, kFieldSlots> taken{};
  std::vector<std::pair<int, JsonNode>> referring;
  int next_slot = 0;
  for (const JsonNode& entry : node.list(kFieldSlots)) {
    JsonObject json(entry);
    if (!entry.isObject()) continue;
    const JsonNode slot_node = json["slot"];
    const auto slot = static_cast<int>(slot_node.integer(0, kFieldSlots - 1, next_slot));
    if (slot >= kFieldSlots || taken[static_cast<std::size_t>(slot)]) {
      (slot_node.present() ? slot_node : entry)
          .refuse(fmt::format("slot {} is taken or does not exist", slot));
      continue;
    }
    taken[static_cast<std::size_t>(slot)] = true;
    next_slot = slot + 1;
    FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
    readOneField(entry, slot, encoding, field, database.fields[static_cast<std::size_t>(slot)]);
    if (refersToFields(field.type)) referring.emplace_back(slot, entry);
  }
  const FieldNames names(database.schema, encoding);
  for (const auto& [slot, entry] : referring) {
    readReferences(entry, database.schema, names, encoding,
                   database.schema.fields[static_cast<std::size_t>(slot)]);
  }
  for (const auto& [slot, entry] : referring) {
    refuseCircle(JsonObject(entry)["formula"], database.schema, slot, encoding);
  }
}

}  // namespace tabelion
