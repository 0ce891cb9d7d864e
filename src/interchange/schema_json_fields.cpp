// Field definitions, their settings by type, item lists and ranges as JSON and back.

#include <algorithm>

#include <fmt/format.h>

#include "engine/packed_record.h"
#include "interchange/hex.h"
#include "interchange/popup_keys.h"
#include "interchange/schema_members.h"

namespace tabelion {
namespace {

constexpr NamedValue kDateDefaults[] = {{0, "none"}, {2, "today"}};
constexpr NamedValue kTimeDefaults[] = {{0, "none"}, {2, "now"}};

Json typeJson(FieldType type) {
  if (type == FieldType::kUnused) return {};
  if (isValidType(type)) return std::string(traitsOf(type).name);
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

template <class Members, class Link>
void linkMembers(Members& m, Link& link) {
  m.text("database", link.database, NeededMember::kYes);
  m.number("display_field", link.display_field, -1, {-1, kFieldSlots - 1});
  m.number("kind", link.kind, 0);
}

template <class Members, class Lookup>
void lookupMembers(Members& m, Lookup& lookup) {
  const FieldNames& names = m.context().names;
  m.optionalMember(
      "link_field",
      [&]() -> std::optional<Json> {
        if (lookup.link_field < 0) return std::nullopt;
        return names.reference(lookup.link_field);
      },
      [&](const auto& node) {
        const int slot = names.slotOf(node, kFieldSlots - 1, kNoField);
        setMember(lookup.link_field, slot == kNoField ? -1 : slot);
      });
  m.text("shown_field", lookup.shown_field, NeededMember::kYes);
}

template <class Members, class Plugin>
void pluginMembers(Members& m, Plugin& plugin) {
  m.text("name", plugin.name, NeededMember::kYes);
  m.text("parameter", plugin.parameter, NeededMember::kNo);
}

// The settings of a field's type under one member. Ones that the program would not store itself,
// such as a text that fills its area to the last byte, are left to the raw areas.
template <class Settings, class List>
Json settingsJson(const FieldDefinition& field, Settings (*get)(const FieldDefinition&),
                  bool (*set)(FieldDefinition&, const Settings&), const DescriptionContext& context,
                  const List& list) {
  FieldDefinition copy = field;
  const Settings settings = get(field);
  if (!set(copy, settings)) return {};
  return membersJson(context, [&](auto& m) { list(m, settings); });
}

template <class Settings, class List>
void readSettings(const JsonNode& node, FieldDefinition& field,
                  bool (*set)(FieldDefinition&, const Settings&), const DescriptionContext& context,
                  const List& list, std::string_view refusal) {
  if (!node.present()) return;
  Settings settings;
  readMembers(node, context, [&](auto& m) { list(m, settings); });
  if (!set(field, settings)) node.refuse(refusal);
}

constexpr auto kLinkList = [](auto& m, auto& link) { linkMembers(m, link); };
constexpr auto kLookupList = [](auto& m, auto& lookup) { lookupMembers(m, lookup); };
constexpr auto kPluginList = [](auto& m, auto& plugin) { pluginMembers(m, plugin); };

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
    Json json = Json{{"text", text}};
    if (item.level() != 0) json["level"] = item.level();
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

bool refersToFields(FieldType type) {
  return type == FieldType::kLookup || type == FieldType::kCalculated;
}

// What only fields of this type have. Lookups and formulas name other fields, whose names a reader
// does not know yet: it notes here that they are known members, and reads them in readReferences.
template <class Members, class Field>
void typeMembers(Members& m, Field& field, const DatabaseRecord& schema, int slot) {
  const DescriptionContext& context = m.context();
  const auto readLater = [](const JsonNode&) {};
  switch (field.type) {
    case FieldType::kFloat:
      m.number("decimals", field.byte_g, 0);
      break;
    case FieldType::kDate:
      m.word("default", field.byte_h, 0, kDateDefaults);
      break;
    case FieldType::kTime:
      m.word("default", field.byte_h, 0, kTimeDefaults);
      break;
    case FieldType::kLinkedField:
    case FieldType::kLinkField:
      m.member(
          "link",
          [&] { return settingsJson(field, linkSettings, setLinkSettings, context, kLinkList); },
          [&](const auto& node) {
            readSettings(node, field, setLinkSettings, context, kLinkList,
                         "the name is longer than 31 bytes");
          });
      break;
    case FieldType::kLookup:
      m.member(
          "lookup",
          [&] {
            return settingsJson(field, lookupSettings, setLookupSettings, context, kLookupList);
          },
          readLater);
      break;
    case FieldType::kCalculated:
      m.member(
          "formula", [&] { return formulaJson(schema, slot, context.encoding); }, readLater);
      m.member(
          "result", [&] { return resultJson(schema, slot, context.encoding); }, readLater);
      break;
    case FieldType::kExternal:
      m.member(
          "plugin",
          [&] {
            return settingsJson(field, pluginSettings, setPluginSettings, context, kPluginList);
          },
          [&](const auto& node) {
            readSettings(node, field, setPluginSettings, context, kPluginList,
                         "the name is longer than 39 bytes, or the parameter longer than 19");
          });
      break;
    case FieldType::kUnused:
    case FieldType::kText:
    case FieldType::kInteger:
    case FieldType::kPopup:
    case FieldType::kCheckBox:
    case FieldType::kAutoNumber:
    case FieldType::kNote:
    case FieldType::kLongText:
    case FieldType::kSeparator:
    case FieldType::kTextVariant:
    case FieldType::kText254:
      break;
  }
}

// A field but for its raw bytes. `schema` is the one that the field belongs to.
template <class Members, class Field, class Record>
void fieldMembers(Members& m, Field& field, Record& record, const FieldDefinition& standard,
                  const DatabaseRecord& schema, int slot) {
  const TextEncoding& encoding = m.context().encoding;
  m.area("name", field.name, standard.name);
  m.member(
      "type", [&] { return typeJson(field.type); },
      [&](const auto& node) { field.type = readType(node); });
  m.number("width", field.width, standard.width, kUnsigned16);
  m.number("column_width", field.column_width, standard.column_width, kSigned16);
  m.flag("export", field.export_flag, standard.export_flag);
  m.flag("record_view", field.record_view_flag, standard.record_view_flag);
  m.flag("encrypt", field.encrypt_flag, standard.encrypt_flag);
  m.number("option_a", field.option_a, standard.option_a);
  m.number("option_b", field.option_b, standard.option_b);
  m.number("option_c3", field.option_c3, standard.option_c3);
  typeMembers(m, field, schema, slot);
  m.member(
      "items", [&] { return itemsJson(record, slot, encoding); },
      [&](const auto& node) { readItems(node, slot, encoding, record); });
  m.member(
      "ranges", [&] { return rangesJson(record); },
      [&](const auto& node) { readRanges(node, record); });
}

// What the named members leave different from the field itself.
template <class Members, class Field, class Record>
void rawMembers(Members& m, Field& field, Record& record, const FieldDefinition& described,
                const FieldRecord& described_record) {
  m.hex("area_d", field.area_d, described.area_d);
  m.hex("area_e", field.area_e, described.area_e);
  m.hex("area_f", field.area_f, described.area_f);
  m.hex("area_i", field.area_i, described.area_i);
  m.number("byte_g", field.byte_g, described.byte_g);
  m.number("byte_h", field.byte_h, described.byte_h);
  m.number("record_type", record.record_type, described_record.record_type);
  m.hex("record_head", record.head, described_record.head);
  m.number("record_attributes", record.attributes, described_record.attributes);
  m.hex("record_id", record.unique_id, described_record.unique_id);
  m.bytes("record_surplus", record.surplus, described_record.surplus);
}

void readRaw(const JsonNode& node, const DescriptionContext& context, FieldDefinition& field,
             FieldRecord& record) {
  if (!node.present()) return;
  readMembers(node, context, [&](auto& m) { rawMembers(m, field, record, field, record); });
}

// `json` are the members of `node`.
void readField(const JsonNode& node, JsonObject& json, int slot, const DescriptionContext& context,
               const DatabaseRecord& schema, FieldDefinition& field, FieldRecord& record) {
  MemberReader members(json, context);
  fieldMembers(members, field, record, field, schema, slot);
  readRaw(json["raw"], context, field, record);
  json.finish();
  if (const std::size_t length = fieldRecordLength(record); length > kMaxRecordSize) {
    node.refuse(
        fmt::format("items and ranges take {} bytes; {} is the limit", length, kMaxRecordSize));
  }
}

// The settings that name other fields of `schema`.
void readReferences(const JsonNode& node, const DatabaseRecord& schema,
                    const DescriptionContext& context, FieldDefinition& field,
                    FieldRecord& record) {
  JsonObject json(node);
  if (field.type == FieldType::kLookup) {
    readSettings(json["lookup"], field, setLookupSettings, context, kLookupList,
                 "the name is longer than 19 bytes");
  }
  if (field.type == FieldType::kCalculated) {
    readFormula(json["formula"], json["result"], schema, context.encoding, field);
  }
  // Raw bytes have the last word, so they go in again over these.
  readRaw(json["raw"], context, field, record);
}

// Without the slot, which its place in the list may say.
Json fieldJson(const Database& database, int slot, const FieldDefinition& standard,
               const DescriptionContext& context) {
  const auto index = static_cast<std::size_t>(slot);
  const FieldDefinition& field = database.schema.fields[index];
  const FieldRecord& record = database.fields[index];
  Json json = membersJson(
      context, [&](auto& m) { fieldMembers(m, field, record, standard, database.schema, slot); });
  // Read what was written so far, to see what it leaves out.
  FieldDefinition described = standard;
  FieldRecord described_record;
  JsonProblem problem;
  const JsonNode node(&json, "", problem);
  JsonObject members(node);
  readField(node, members, slot, context, database.schema, described, described_record);
  if (refersToFields(described.type)) {
    readReferences(node, database.schema, context, described, described_record);
  }
  putUnlessEmpty(json, "raw", membersJson(context, [&](auto& m) {
                   rawMembers(m, field, record, described, described_record);
                 }));
  return json;
}

}  // namespace

Json fieldsJson(const Database& database, const Database& standard,
                const DescriptionContext& context) {
  Json list = Json::array();
  int next_slot = 0;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    const Json json =
        fieldJson(database, slot, standard.schema.fields[static_cast<std::size_t>(slot)], context);
    if (json.empty()) continue;
    list.push_back(slot == next_slot ? Json::object() : Json{{"slot", slot}});
    list.back().update(json);
    next_slot = slot + 1;
  }
  return list;
}

void readFields(const JsonNode& node, const TextEncoding& encoding, Database& database) {
  std::array<bool, kFieldSlots> taken{};
  std::vector<std::pair<std::size_t, JsonNode>> referring;
  const FieldNames no_names(database.schema, encoding);
  int next_slot = 0;
  for (const JsonNode& entry : node.list(kFieldSlots)) {
    JsonObject json(entry);
    if (!entry.isObject()) continue;
    const JsonNode slot_node = json["slot"];
    const auto slot = static_cast<int>(slot_node.integer(0, kFieldSlots - 1, next_slot));
    const auto index = static_cast<std::size_t>(slot);
    if (slot >= kFieldSlots || taken[index]) {
      (slot_node.present() ? slot_node : entry)
          .refuse(fmt::format("slot {} is taken or does not exist", slot));
      continue;
    }
    taken[index] = true;
    next_slot = slot + 1;
    FieldDefinition& field = database.schema.fields[index];
    readField(entry, json, slot, {encoding, no_names}, database.schema, field,
              database.fields[index]);
    if (refersToFields(field.type)) referring.emplace_back(index, entry);
  }
  const FieldNames names(database.schema, encoding);
  for (const auto& [index, entry] : referring) {
    readReferences(entry, database.schema, {encoding, names}, database.schema.fields[index],
                   database.fields[index]);
  }
  for (const auto& [index, entry] : referring) {
    refuseCircle(JsonObject(entry)["formula"], database.schema, static_cast<int>(index), encoding);
  }
}

}  // namespace tabelion
