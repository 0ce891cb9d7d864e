#include "interchange/schema_json.h"

#include <algorithm>
#include <memory>

#include <fmt/format.h>

#include "interchange/hex.h"
#include "interchange/schema_members.h"
#include "security/access_rights.h"
#include "security/database_encryption.h"

namespace tabelion {
namespace {

// What the security word says about an operation.
constexpr NamedValue kSecurityCodes[] = {{kCodeFree, kSecurityCodeNames[kCodeFree]},
                                         {kCodePassword, kSecurityCodeNames[kCodePassword]},
                                         {kCodeRefused, kSecurityCodeNames[kCodeRefused]},
                                         {kCodeRestricted, kSecurityCodeNames[kCodeRestricted]}};
constexpr NamedValue kEncryptionModes[] = {
    {kEncryptWholeDatabase, kEncryptionModeNames[kEncryptWholeDatabase]},
    {kEncryptRecordsOnSave, kEncryptionModeNames[kEncryptRecordsOnSave]},
    {kEncryptRecordsByHand, kEncryptionModeNames[kEncryptRecordsByHand]},
    {kEncryptNever, kEncryptionModeNames[kEncryptNever]}};
constexpr NamedValue kSearchMatches[] = {{0, "contains"}, {1, "begins"}};

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

// The items of the database record that no other member says.
template <class Members, class Schema>
void rawItemMembers(Members& m, Schema& schema, const DatabaseRecord& described) {
  Bytes bytes = databaseRecordBytes(schema);
  const Bytes plain = databaseRecordBytes(described);
  forEachRawItem([&](const std::string& name, const DatabaseRecordPart& part) {
    m.hex(name, std::span(bytes).subspan(part.offset, part.size),
          std::span(plain).subspan(part.offset, part.size));
  });
  if constexpr (Members::kReads) (void)readDatabaseRecord(bytes, schema);  // as many as it wrote
}

template <class Members, class Header>
void headerMembers(Members& m, Header& header) {
  const FileHeader standard;
  m.number("attributes", header.attributes, standard.attributes);
  m.number("version", header.version, standard.version);
  m.number("created", header.creation_date, standard.creation_date);
  m.number("backed_up", header.backup_date, standard.backup_date);
  m.number("modification_number", header.modification_number, standard.modification_number);
  m.number("type", header.type, standard.type);
  m.number("sort_info_offset", header.sort_info_offset, standard.sort_info_offset);
  m.number("unique_id_seed", header.unique_id_seed, standard.unique_id_seed);
  m.number("next_record_list", header.next_record_list, standard.next_record_list);
}

// A field by its name, stored as its slot; kNoField is none.
template <class Members, class Number>
void slotMember(Members& m, const char* key, Number& slot) {
  const FieldNames& names = m.context().names;
  m.member(
      key, [&] { return names.reference(slot); },
      [&](const auto& node) {
        setMember(slot, static_cast<std::uint8_t>(names.slotOf(node, 255, kNoField)));
      });
}

// The same, stored as its slot + 1; 0 is none.
template <class Members, class Number>
void slotPlusOneMember(Members& m, const char* key, Number& stored) {
  const FieldNames& names = m.context().names;
  m.member(
      key, [&] { return stored == 0 ? Json() : names.reference(stored - 1); },
      [&](const auto& node) {
        const int slot = names.slotOf(node, 254, kNoField);
        setMember(stored, slot == kNoField ? std::uint8_t{0} : static_cast<std::uint8_t>(slot + 1));
      });
}

template <class Members, class Schema>
void searchMembers(Members& m, Schema& schema, const DatabaseRecord& standard) {
  slotMember(m, "field", schema.search_field);
  m.area("text", schema.search_text, standard.search_text);
  m.flag("case_sensitive", schema.search_case, standard.search_case);
  m.word("match", schema.search_match, standard.search_match, kSearchMatches);
}

template <class Members, class Schema>
void securityMembers(Members& m, Schema& schema) {
  for (std::size_t i = 0; i < std::size(kOperationNames); ++i) {
    std::uint32_t code = schema.security_word >> 2 * i & 3;
    m.word(kOperationNames[i], code, 0, kSecurityCodes, {0, 3});
    if constexpr (Members::kReads) {
      schema.security_word &= ~(std::uint32_t{3} << 2 * i);
      schema.security_word |= code << 2 * i;
    }
  }
}

template <class Members, class Schema>
void encryptionMembers(Members& m, Schema& schema, const DatabaseRecord& standard) {
  m.word("mode", schema.encryption_mode, standard.encryption_mode, kEncryptionModes);
  m.hex("check_block", schema.password_check, standard.password_check);
  m.number("check_sum", schema.password_check_sum, standard.password_check_sum);
  m.flag("check_present", schema.password_check_present, standard.password_check_present);
}

template <class Members, class Schema>
void alarmMembers(Members& m, Schema& schema, const DatabaseRecord& standard) {
  auto& [date, time, first, second] = schema.alarm_fields;
  m.flag("switch1", schema.alarm_switches[0], standard.alarm_switches[0]);
  m.flag("switch2", schema.alarm_switches[1], standard.alarm_switches[1]);
  slotPlusOneMember(m, "date_field", date);
  slotPlusOneMember(m, "time_field", time);
  slotPlusOneMember(m, "first_shown_field", first);
  slotPlusOneMember(m, "second_shown_field", second);
  m.number("snooze_minutes", schema.snooze_minutes, standard.snooze_minutes);
}

Json entriesJson(const std::vector<ExtensionEntry>& entries) {
  Json list = Json::array();
  for (const ExtensionEntry& entry : entries) list.push_back(toHex(entry));
  return list;
}

void readEntries(const JsonNode& node, std::vector<ExtensionEntry>& entries) {
  for (const JsonNode& entry : node.list(65535)) {
    entry.hexInto(entries.emplace_back().data(), sizeof(ExtensionEntry));
  }
}

template <class Members, class Extension>
void extensionMembers(Members& m, Extension& extension) {
  const ExtensionRecord standard;
  m.member(
      "entries", [&] { return entriesJson(extension.entries); },
      [&](const auto& node) { readEntries(node, extension.entries); });
  m.hex("head", extension.head, standard.head);
  m.hex("closing", extension.closing, standard.closing);
  m.bytes("surplus", extension.surplus, standard.surplus);
  m.bytes("ignored", extension.ignored, standard.ignored);
  m.number("attributes", extension.attributes, standard.attributes);
  m.hex("id", extension.unique_id, standard.unique_id);
}

// A mark that names no code page stands as digits: as a text it would be refused.
Json codePageJson(ByteView mark, const TextEncoding& encoding) {
  Json json = areaJson(mark, encoding);
  const auto* name = json.get_ptr<const std::string*>();
  if (!name || name->empty() || TextEncoding::open(*name).ok()) return json;
  return Json{{"hex", toHex(mark)}};
}

// What the other members leave different from the database itself.
template <class Members, class Base>
void rawMembers(Members& m, Base& database, const Database& described) {
  m.object("items", [&](auto& items) { rawItemMembers(items, database.schema, described.schema); });
  m.object("header", [&](auto& header) { headerMembers(header, database.header); });
  auto attributes =
      static_cast<std::uint8_t>(database.schema_attributes & ~unsigned{kAttributeDirty});
  m.number("record_attributes", attributes, 0);
  if constexpr (Members::kReads) database.schema_attributes = attributes;
  m.hex("record_id", database.schema_unique_id, UniqueId{});
  m.bytes("record_surplus", database.schema.surplus, {});
}

// Everything but the raw members and what stands before the fields.
template <class Members, class Base>
void settingsMembers(Members& m, Base& database, const DatabaseRecord& standard) {
  const DescriptionContext& context = m.context();
  auto& schema = database.schema;
  m.order("display_order", schema.display_order);
  m.sort("sort", schema.sort);
  m.filters("filters", schema.filters);
  m.object("search", [&](auto& search) { searchMembers(search, schema, standard); });
  m.member(
      "views", [&] { return viewsJson(schema, context); },
      [&](const auto& node) { readViews(node, context, schema); });
  m.member(
      "spare_views", [&] { return spareViewsJson(schema, context); },
      [&](const auto& node) { readSpareViews(node, context, schema); });
  m.optionalMember(
      "current_view",
      [&]() -> std::optional<Json> {
        if (schema.current_view == standard.current_view) return std::nullopt;
        return schema.current_view == kNoView ? Json() : Json(schema.current_view);
      },
      [&](const auto& node) {
        schema.current_view =
            node.isNull() ? kNoView
                          : static_cast<std::uint8_t>(node.integer(0, 255, schema.current_view));
      });
  m.object("security", [&](auto& security) { securityMembers(security, schema); });
  m.area("access_password", schema.access_password, standard.access_password);
  m.object("encryption",
           [&](auto& encryption) { encryptionMembers(encryption, schema, standard); });
  m.object("alarms", [&](auto& alarms) { alarmMembers(alarms, schema, standard); });
  m.number("label_width_adjustment", schema.label_width_adjustment, standard.label_width_adjustment,
           kSigned16);
  m.flag("stamping", schema.stamping_option, standard.stamping_option);
  m.flag("modification_stamps", schema.modification_stamp_option,
         standard.modification_stamp_option);
  m.number("next_auto_number", schema.next_auto_number, standard.next_auto_number);
  m.number("next_record_serial", schema.next_serial, standard.next_serial);
  m.area("edition", schema.edition, standard.edition);
  m.object("extension", [&](auto& extension) { extensionMembers(extension, database.extension); });
}

void initDescribed(Database& database) {
  initSchema(database.schema);
  initHeader("", database.header);
}

// What stands before the fields.
template <class Members, class Base>
void titleMembers(Members& m, Base& database, const DatabaseRecord& standard) {
  auto& schema = database.schema;
  const TextEncoding& encoding = m.context().encoding;
  m.optionalMember(
      "name", [&] { return std::optional<Json>(areaJson(database.header.name, encoding)); },
      [&](const auto& node) { readArea(node, encoding, database.header.name); });
  m.area("category", schema.category, standard.category);
  m.area("author", schema.author, standard.author);
  m.member(
      "code_page", [&] { return codePageJson(schema.code_page, encoding); },
      [&](const auto& node) { readArea(node, encoding, schema.code_page); });
}

void readDescription(const JsonNode& node, const TextEncoding& encoding, Database& database) {
  if (!node.isObject()) {
    node.refuse("a description must be an object");
    return;
  }
  JsonObject json(node);
  const FieldNames no_names(database.schema, encoding);
  const DescriptionContext title_context{encoding, no_names};
  MemberReader title(json, title_context);
  titleMembers(title, database, database.schema);
  readFields(json["fields"], encoding, database);
  const FieldNames names(database.schema, encoding);
  const DescriptionContext context{encoding, names};
  MemberReader settings(json, context);
  settingsMembers(settings, database, database.schema);
  if (const JsonNode raw = json["raw"]; raw.present()) {
    readMembers(raw, context, [&](auto& m) { rawMembers(m, database, database); });
  }
  json.finish();
}

}  // namespace

Json schemaToJson(const Database& database, const TextEncoding& encoding) {
  const auto standard = std::make_unique<Database>();
  initDescribed(*standard);
  const FieldNames names(database.schema, encoding);
  const DescriptionContext context{encoding, names};
  Json json = membersJson(context, [&](auto& m) { titleMembers(m, database, standard->schema); });
  json["fields"] = fieldsJson(database, *standard, context);
  json.update(
      membersJson(context, [&](auto& m) { settingsMembers(m, database, standard->schema); }));
  // Read what was written so far, to see what it leaves out.
  const auto described = std::make_unique<Database>();
  initDescribed(*described);
  JsonProblem problem;
  readDescription(JsonNode(&json, "", problem), encoding, *described);
  putUnlessEmpty(json, "raw",
                 membersJson(context, [&](auto& m) { rawMembers(m, database, *described); }));
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
