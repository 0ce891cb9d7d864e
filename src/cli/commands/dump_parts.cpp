#include "cli/commands/dump_parts.h"

#include <fmt/format.h>

#include "cli/kit/context.h"
#include "engine/extension_record.h"
#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "interchange/hex.h"

namespace tabelion {
namespace {

using Json = nlohmann::ordered_json;

void putHex(ByteView bytes, OutputBuffer& out) {
  constexpr std::size_t kStep = OutputBuffer::kSize / 4;
  for (; !bytes.empty() && out.ok(); bytes = bytes.subspan(std::min(kStep, bytes.size()))) {
    out.put(toHex(bytes.first(std::min(kStep, bytes.size()))));
  }
}

Json entryJson(const FileEntry& entry) {
  return Json{{"offset", entry.offset},
              {"length", entry.bytes.size()},
              {"attributes", entry.attributes},
              {"unique_id", uniqueIdNumber(entry.unique_id)}};
}

std::string fourCcText(std::uint32_t code) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) {
    const auto c = static_cast<char>(code >> shift);
    text += c >= ' ' && c <= '~' ? c : '?';
  }
  return text;
}

// Items of the database record that hold text.
bool isTextItem(int item, std::string_view name) {
  return item == 2 || item == 13 || item == 22 || item == 38 || name == "category" ||
         name == "author" || name == "access password";
}

Json filterJson(const FilterBlock& filter) {
  return Json{{"enabled", filter.enabled},
              {"field", filter.field},
              {"value1", toHex(filter.value1)},
              {"value2", toHex(filter.value2)},
              {"number1", filter.number1},
              {"number2", filter.number2},
              {"mode", filter.mode},
              {"grouping", filter.grouping}};
}

Json sortJson(const std::array<SortKey, 3>& keys) {
  Json list = Json::array();
  for (const SortKey& key : keys) list.push_back(Json{{"field", key.field}, {"order", key.order}});
  return list;
}

bool operator==(const FieldDefinition& a, const FieldDefinition& b) {
  return a.type == b.type && a.width == b.width && a.option_a == b.option_a &&
         a.option_b == b.option_b && a.column_width == b.column_width &&
         a.export_flag == b.export_flag && a.record_view_flag == b.record_view_flag &&
         a.option_c3 == b.option_c3 && a.encrypt_flag == b.encrypt_flag && a.area_d == b.area_d &&
         a.area_e == b.area_e && a.area_f == b.area_f && a.byte_g == b.byte_g &&
         a.byte_h == b.byte_h && a.name == b.name && a.area_i == b.area_i;
}

Json viewJson(const View& view, std::size_t index, const DatabaseRecord& schema,
              const TextEncoding& encoding) {
  Json json{{"view", index}, {"name", encoding.toUtf8(areaText(view.name))}};
  json["live_update"] = view.live_update;
  json["action"] = view.action;
  json["target"] = encoding.toUtf8(areaText(view.target));
  json["order"] = view.field_order;
  json["item6"] = view.item6;
  Json entries = Json::array();
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    if (schema.fields[slot].type == FieldType::kUnused) continue;
    const ViewEntry& entry = view.entries[slot];
    entries.push_back(Json{{"slot", slot},
                           {"column_width", entry.column_width},
                           {"export", entry.export_flag},
                           {"record_view", entry.record_view_flag}});
  }
  json["entries"] = std::move(entries);
  Json filters = Json::array();
  for (const FilterBlock& filter : view.filters) {
    if (filter != FilterBlock{}) filters.push_back(filterJson(filter));
  }
  json["filters"] = std::move(filters);
  json["item9"] = view.item9;
  json["sort"] = sortJson(view.sort);
  return json;
}

std::string stampTimeText(std::uint32_t minutes, const CalendarTime& now) {
  const CalendarTime time = stampTime(minutes, now);
  return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}", time.year, time.month, time.day, time.hour,
                     time.minute);
}

Json stampJson(const HeadBlock& stamp, const CalendarTime& now) {
  return Json{{"mark", toHex(ByteView(stamp).first(5))},
              {"random", toHex(ByteView(stamp).subspan(5, 3))},
              {"created", stampTimeText(stampCreated(stamp), now)},
              {"flags", stamp[kStampFlagOffset]},
              {"serial", stampSerial(stamp)},
              {"modified", stampTimeText(stampModified(stamp), now)},
              {"checksum", stamp[kStampChecksumOffset]},
              {"last", stamp[21]}};
}

std::string asJsonText(std::string_view text) {
  return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

Json dumpHeader(ByteView file, const FileHeader& header, const TextEncoding& encoding) {
  Json json{{"name", encoding.toUtf8(areaText(header.name))},
            {"attributes", header.attributes},
            {"version", header.version},
            {"creation_date", loadBe32(&file[36])},  // before it is clamped
            {"created", headerTimeText(loadBe32(&file[36]))},
            {"modification_date", header.modification_date},
            {"modified", headerTimeText(header.modification_date)},
            {"backup_date", header.backup_date},
            {"modification_number", header.modification_number},
            {"info_offset", header.info_offset},
            {"sort_info_offset", header.sort_info_offset},
            {"type", fourCcText(header.type)},
            {"creator", fourCcText(header.creator)},
            {"unique_id_seed", header.unique_id_seed},
            {"next_record_list", header.next_record_list},
            {"record_count", header.record_count},
            {"file_size", file.size()}};
  return json;
}

void putDumped(OutputBuffer& out, const DumpedRecord& record) {
  std::string text = record.json.dump(-1, ' ', false, Json::error_handler_t::replace);
  if (record.bytes_name.empty()) return out.put(text);
  text.pop_back();  // its end
  out.put(fmt::format("{},\"{}\":\"", text, record.bytes_name));
  putHex(record.bytes, out);
  out.put("\"}");
}

DumpedRecord dumpDatabaseRecord(const FileEntry& entry, const TextEncoding& encoding) {
  Json items = Json::array();
  for (const DatabaseRecordPart& part : databaseRecordParts()) {
    if (part.offset >= entry.bytes.size()) break;
    const ByteView bytes =
        entry.bytes.subspan(part.offset, std::min(part.size, entry.bytes.size() - part.offset));
    Json item{{"item", part.item}, {"offset", part.offset}, {"size", part.size}};
    if (!part.name.empty()) item["name"] = std::string(part.name);
    if (part.item == 11 || part.item == 33) {
      items.push_back(std::move(item));  // "fields" and "views" have them
      continue;
    }
    if (isTextItem(part.item, part.name)) item["text"] = encoding.toUtf8(areaText(bytes));
    if (bytes.size() <= 4 && bytes.size() == part.size && bytes.size() != 3) {
      item["value"] = bytes.size() == 1   ? bytes[0]
                      : bytes.size() == 2 ? loadBe16(bytes.data())
                                          : loadBe32(bytes.data());
    }
    item["hex"] = toHex(bytes);
    items.push_back(std::move(item));
  }
  Json json{{"entry", entryJson(entry)}, {"items", std::move(items)}};
  if (entry.bytes.size() <= kDatabaseRecordSize) return {std::move(json)};
  return {std::move(json), "surplus", entry.bytes.subspan(kDatabaseRecordSize)};
}

std::vector<Json> dumpFields(const DatabaseRecord& schema, const TextEncoding& encoding) {
  DatabaseRecord standard;
  initSchema(standard);
  std::vector<Json> list;
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    const FieldDefinition& field = schema.fields[slot];
    if (field == standard.fields[slot]) continue;
    Json json{{"slot", slot},
              {"name", encoding.toUtf8(areaText(field.name))},
              {"type", codeOf(field.type)},
              {"type_name", std::string(traitsOf(field.type).name)}};
    json["width"] = field.width;
    json["option_a"] = field.option_a;
    json["option_b"] = field.option_b;
    json["column_width"] = field.column_width;
    json["export"] = field.export_flag;
    json["record_view"] = field.record_view_flag;
    json["option_c3"] = field.option_c3;
    json["encrypt"] = field.encrypt_flag;
    json["area_d"] = toHex(field.area_d);
    json["area_e"] = toHex(field.area_e);
    json["area_f"] = toHex(field.area_f);
    json["byte_g"] = field.byte_g;
    json["byte_h"] = field.byte_h;
    json["name_area"] = toHex(field.name);
    json["area_i"] = toHex(field.area_i);
    list.push_back(std::move(json));
  }
  return list;
}

std::vector<Json> dumpViews(const DatabaseRecord& schema, const TextEncoding& encoding) {
  DatabaseRecord standard;
  initSchema(standard);
  std::vector<Json> list;
  for (std::size_t i = 0; i < kViewSlots; ++i) {
    if (i >= schema.view_count && schema.views[i] == standard.views[i]) continue;
    list.push_back(viewJson(schema.views[i], i, schema, encoding));
  }
  return list;
}

DumpedRecord dumpFieldRecord(const FileEntry& entry, int slot, const TextEncoding& encoding) {
  Json json{{"slot", slot}, {"entry", entryJson(entry)}};
  FieldRecord field;
  const int result = readFieldRecord(entry.bytes, field);
  if (result != kFieldRecordRead) {
    json["problem"] = result == kFieldRecordNoData ? "no data" : "damaged";
    return {std::move(json), "hex", entry.bytes};
  }
  json["record_type"] = field.record_type;
  if (field.head != HeadBlock{}) json["head"] = toHex(field.head);
  Json items = Json::array();
  for (const PopupItem& item : field.items) {
    items.push_back(Json{{"text", encoding.toUtf8(item.text)},
                         {"level", item.level()},
                         {"text_offset", loadBe16(&item.key[kItemTextOffset])},
                         {"key", toHex(item.key)}});
  }
  if (!items.empty()) json["items"] = std::move(items);
  Json ranges = Json::array();
  for (const Range& range : field.ranges) ranges.push_back(toHex(range));
  if (!ranges.empty()) json["ranges"] = std::move(ranges);
  if (field.surplus.empty()) return {std::move(json)};
  return {std::move(json), "surplus", entry.bytes.last(field.surplus.size())};
}

DumpedRecord dumpExtensionRecord(const FileEntry& entry) {
  Json json{{"entry", entryJson(entry)}};
  ExtensionRecord extension;
  if (!readExtensionRecord(entry.bytes, extension) || !extension.ignored.empty()) {
    json["problem"] = extension.ignored.empty() ? "damaged" : "does not begin with 22";
    return {std::move(json), "hex", entry.bytes};
  }
  json["head"] = toHex(extension.head);
  Json entries = Json::array();
  for (const ExtensionEntry& one : extension.entries) entries.push_back(toHex(one));
  json["entries"] = std::move(entries);
  json["closing"] = toHex(extension.closing);
  if (extension.surplus.empty()) return {std::move(json)};
  return {std::move(json), "surplus", entry.bytes.last(extension.surplus.size())};
}

RecordDump::RecordDump(const Database& database, const TextEncoding& encoding,
                       const CalendarTime& now)
    : database_(database),
      now_(now),
      rows_(database, encoding),
      first_column_(kFieldSlots, rows_.columns().size()) {
  for (const FieldDefinition& field : database.schema.fields) {
    names_.push_back(asJsonText(encoding.toUtf8(fieldName(field))));
  }
  for (std::size_t i = rows_.columns().size(); i-- > 0;) {
    first_column_[static_cast<std::size_t>(rows_.columns()[i].slot)] = i;
  }
}

void RecordDump::put(const FileEntry& entry, std::size_t position, OutputBuffer& out) {
  const ByteView record = entry.bytes;
  out.put(fmt::format("{{\"position\":{},\"entry\":{}", position, entryJson(entry).dump()));
  const std::size_t prefix = std::min(prefixLength(record), record.size());
  out.put(fmt::format(",\"prefix\":\"{}\"", toHex(record.first(prefix))));
  if (const auto stamp = recordStamp(record)) {
    out.put(fmt::format(",\"stamp\":{}", stampJson(*stamp, now_).dump()));
  }
  putSlots(record, out);
  out.put('}');
}

void RecordDump::putSlots(ByteView record, OutputBuffer& out) {
  rows_.load(record);
  SlotWalker walker(record);
  bool ended = false;
  const char* separator = ",\"slots\":[";
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    const auto value = ended ? std::nullopt : walker.next();
    ended = !value;
    if (!value && database_.schema.fields[slot].type == FieldType::kUnused) continue;
    out.put(fmt::format("{}{{\"slot\":{},\"field\":{}", separator, slot, names_[slot]));
    separator = ",";
    if (!value) {
      out.put(",\"absent\":true}");
      continue;
    }
    // In pieces: a value may be as long as a record, its digits twice that.
    out.put(",\"hex\":\"");
    putHex(*value, out);
    out.put('"');
    if (first_column_[slot] < rows_.columns().size()) {
      out.put(",\"text\":");
      out.put(asJsonText(rows_.utf8(rows_.cell(first_column_[slot]))));
    }
    out.put('}');
  }
  out.put(*separator == ',' && separator[1] == '\0' ? "]" : ",\"slots\":[]");
  const std::size_t end = std::min(walker.position(), record.size());
  const bool has_end = record.size() - end >= 2 && loadLe16(&record[end]) == kEndOfRecord;
  out.put(has_end ? ",\"end_marker\":true" : ",\"end_marker\":false");
  const ByteView tail = record.subspan(end + (has_end ? 2 : 0));
  if (tail.empty()) return;
  out.put(",\"tail\":\"");
  putHex(tail, out);
  out.put('"');
}

}  // namespace tabelion
