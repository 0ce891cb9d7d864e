// Filter criteria, sort keys and views as JSON and back.

#include <fmt/format.h>

#include "interchange/schema_json_parts.h"

namespace tabelion {
namespace {

// Bits of a criterion's mode and grouping bytes.
constexpr std::uint8_t kNotBit = 1;
constexpr std::uint8_t kOrBit = 2;
constexpr std::uint8_t kOpensBit = 1;
constexpr std::uint8_t kClosesBit = 2;

template <std::size_t Count, class Entry>
std::size_t usedCount(const std::array<Entry, Count>& list) {
  std::size_t used = Count;
  while (used > 0 && list[used - 1] == Entry{}) --used;
  return used;
}

// A byte whose two low bits have names; further bits stand as a number.
void putBits(Json& json, std::uint8_t byte, const char* low_name, const char* high_name,
             const char* rest_name) {
  if (byte > 3) {
    json[rest_name] = byte;
    return;
  }
  if (byte & 1) json[low_name] = true;
  if (byte & 2) json[high_name] = true;
}

void readBits(JsonObject& json, std::uint8_t& byte, const char* low_name, const char* high_name,
              const char* rest_name) {
  readNumber(json[rest_name], 0, 255, byte);
  if (json[low_name].flag(1, 0) == 1) byte |= kNotBit;
  if (json[high_name].flag(1, 0) == 1) byte |= kOrBit;
}
static_assert(kNotBit == kOpensBit && kOrBit == kClosesBit);

Json filterJson(const FilterBlock& filter, const FieldNames& names, const TextEncoding& encoding) {
  const FilterBlock standard;
  Json json = Json::object();
  putFlagUnless(json, "enabled", filter.enabled, standard.enabled);
  // 255 is a slot number here, not "none". The first field is named as well, for the reader.
  if (filter != standard) {
    json["field"] = filter.field < kFieldSlots ? names.reference(filter.field) : Json(filter.field);
  }
  putUnlessEmpty(json, "value1", areaJson(filter.value1, encoding));
  putUnlessEmpty(json, "value2", areaJson(filter.value2, encoding));
  putUnless(json, "number1", static_cast<std::int32_t>(filter.number1), 0);
  putUnless(json, "number2", static_cast<std::int32_t>(filter.number2),
            static_cast<std::int32_t>(standard.number2));
  putBits(json, filter.mode, "not", "or", "mode");
  putBits(json, filter.grouping, "opens_group", "closes_group", "grouping");
  return json;
}

void readFilter(const JsonNode& node, const FieldNames& names, const TextEncoding& encoding,
                FilterBlock& filter) {
  JsonObject json(node);
  filter.enabled = static_cast<std::uint16_t>(json["enabled"].flag(65535, filter.enabled));
  filter.field = static_cast<std::uint16_t>(names.slotOf(json["field"], 65535, filter.field));
  readArea(json["value1"], encoding, filter.value1);
  readArea(json["value2"], encoding, filter.value2);
  for (const auto& [name, number] :
       {std::pair{"number1", &filter.number1}, std::pair{"number2", &filter.number2}}) {
    *number = static_cast<std::uint32_t>(json[name].integer(INT32_MIN, UINT32_MAX, *number));
  }
  readBits(json, filter.mode, "not", "or", "mode");
  readBits(json, filter.grouping, "opens_group", "closes_group", "grouping");
  json.finish();
}

Json sortKeyJson(const SortKey& key, const FieldNames& names) {
  Json json = Json::object();
  json["field"] = names.reference(key.field);
  if (key.order == 0) json["order"] = "reverse";
  if (key.order > 1) json["order"] = key.order;
  return json;
}

void readSortKey(const JsonNode& node, const FieldNames& names, SortKey& key) {
  JsonObject json(node);
  key.field = static_cast<std::uint8_t>(names.slotOf(json["field"], 255, kNoField));
  const JsonNode order = json["order"];
  if (order.isText()) {
    const std::string word = order.text("");
    if (word != "forward" && word != "reverse") {
      order.refuse("must be \"forward\" or \"reverse\"");
    }
    key.order = word == "reverse" ? 0 : 1;
  } else {
    readNumber(order, 0, 255, key.order);
  }
  json.finish();
}

Json entriesJson(const View& view, const View& standard, const FieldNames& names) {
  Json list = Json::array();
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    const ViewEntry& entry = view.entries[static_cast<std::size_t>(slot)];
    const ViewEntry& plain = standard.entries[static_cast<std::size_t>(slot)];
    if (entry == plain) continue;
    Json json = Json::object();
    json["field"] = names.reference(slot);
    putUnless(json, "column_width", entry.column_width, plain.column_width);
    putFlagUnless(json, "export", entry.export_flag, plain.export_flag);
    putFlagUnless(json, "record_view", entry.record_view_flag, plain.record_view_flag);
    list.push_back(std::move(json));
  }
  return list;
}

void readEntries(const JsonNode& node, const FieldNames& names, View& view) {
  for (const JsonNode& entry_node : node.list(kFieldSlots)) {
    JsonObject json(entry_node);
    const JsonNode field = json["field"];
    const int slot = names.slotOf(field, kFieldSlots - 1, kNoField);
    if (slot >= kFieldSlots) {
      (field.present() ? field : entry_node).refuse("must name a field");
      continue;
    }
    ViewEntry& entry = view.entries[static_cast<std::size_t>(slot)];
    readNumber(json["column_width"], -32768, 32767, entry.column_width);
    readFlag(json["export"], entry.export_flag);
    readFlag(json["record_view"], entry.record_view_flag);
    json.finish();
  }
}

// A view as the program makes one: columns and flags from the fields, action "Adjust View".
View madeView(const DatabaseRecord& schema, const View& unused) {
  View view = unused;
  view.action = kAdjustView;
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    const FieldDefinition& field = schema.fields[slot];
    view.entries[slot] = {field.column_width, field.export_flag, field.record_view_flag};
  }
  return view;
}

Json viewJson(const View& view, const View& standard, const FieldNames& names,
              const TextEncoding& encoding) {
  Json json = Json::object();
  if (view.name != standard.name) json["name"] = areaJson(view.name, encoding);
  putFlagUnless(json, "live_update", view.live_update, standard.live_update);
  if (view.action != standard.action) {
    json["action"] = view.action == kAdjustView       ? Json("adjust view")
                     : view.action == kSwitchDatabase ? Json("switch database")
                                                      : Json(view.action);
  }
  putUnlessEmpty(json, "target", areaJson(view.target, encoding));
  putUnlessEmpty(json, "order", orderJson(view.field_order, names));
  putUnlessEmpty(json, "columns", entriesJson(view, standard, names));
  putUnlessEmpty(json, "filters", filtersJson(view.filters, names, encoding));
  putUnlessEmpty(json, "sort", sortJson(view.sort, names));
  putUnless(json, "item6", view.item6, standard.item6);
  putUnless(json, "item9", view.item9, standard.item9);
  return json;
}

void readAction(const JsonNode& node, View& view) {
  if (!node.isText()) {
    readNumber(node, 0, 255, view.action);
    return;
  }
  const std::string word = node.text("");
  if (word != "adjust view" && word != "switch database") {
    node.refuse("must be \"adjust view\" or \"switch database\"");
  }
  view.action = word == "switch database" ? kSwitchDatabase : kAdjustView;
}

void readView(const JsonNode& node, const FieldNames& names, const TextEncoding& encoding,
              View& view) {
  JsonObject json(node);
  (void)json["slot"];
  readArea(json["name"], encoding, view.name);
  readFlag(json["live_update"], view.live_update);
  readAction(json["action"], view);
  readArea(json["target"], encoding, view.target);
  readOrder(json["order"], names, view.field_order);
  readEntries(json["columns"], names, view);
  readFilters(json["filters"], names, encoding, view.filters);
  readSort(json["sort"], names, view.sort);
  readNumber(json["item6"], 0, UINT32_MAX, view.item6);
  readNumber(json["item9"], 0, 65535, view.item9);
  json.finish();
}

}  // namespace

Json filtersJson(const std::array<FilterBlock, 6>& filters, const FieldNames& names,
                 const TextEncoding& encoding) {
  Json list = Json::array();
  for (std::size_t i = 0; i < usedCount(filters); ++i) {
    list.push_back(filterJson(filters[i], names, encoding));
  }
  return list;
}

void readFilters(const JsonNode& node, const FieldNames& names, const TextEncoding& encoding,
                 std::array<FilterBlock, 6>& filters) {
  std::size_t index = 0;
  for (const JsonNode& entry : node.list(filters.size())) {
    readFilter(entry, names, encoding, filters[index++]);
  }
}

Json sortJson(const std::array<SortKey, 3>& keys, const FieldNames& names) {
  Json list = Json::array();
  for (std::size_t i = 0; i < usedCount(keys); ++i) list.push_back(sortKeyJson(keys[i], names));
  return list;
}

void readSort(const JsonNode& node, const FieldNames& names, std::array<SortKey, 3>& keys) {
  std::size_t index = 0;
  for (const JsonNode& entry : node.list(keys.size())) readSortKey(entry, names, keys[index++]);
}

void putViews(Json& json, const DatabaseRecord& schema, const FieldNames& names,
              const TextEncoding& encoding) {
  DatabaseRecord standard;
  initSchema(standard);
  const View& unused = standard.views[0];
  const View made = madeView(schema, unused);
  Json views = Json::array();
  Json spare = Json::array();
  for (int slot = 0; slot < kViewSlots; ++slot) {
    const View& view = schema.views[static_cast<std::size_t>(slot)];
    if (slot < schema.view_count) {
      views.push_back(viewJson(view, made, names, encoding));
      continue;
    }
    const Json entry = viewJson(view, unused, names, encoding);
    if (entry.empty()) continue;
    Json with_slot = Json{{"slot", slot}};
    with_slot.update(entry);
    spare.push_back(std::move(with_slot));
  }
  putUnlessEmpty(json, "views", std::move(views));
  putUnlessEmpty(json, "spare_views", std::move(spare));
}

void readViews(JsonObject& json, const FieldNames& names, const TextEncoding& encoding,
               DatabaseRecord& schema) {
  const View made = madeView(schema, schema.views[0]);
  std::uint16_t count = 0;
  for (const JsonNode& entry : json["views"].list(kViewSlots)) {
    View& view = schema.views[count++];
    view = made;
    readView(entry, names, encoding, view);
  }
  schema.view_count = count;
  for (const JsonNode& entry : json["spare_views"].list(kViewSlots)) {
    JsonObject spare(entry);
    const JsonNode slot_node = spare["slot"];
    const std::int64_t slot = slot_node.integer(count, kViewSlots - 1, -1);
    if (slot < 0) {
      (slot_node.present() ? slot_node : entry).refuse("must name a view slot that is not in use");
      continue;
    }
    readView(entry, names, encoding, schema.views[static_cast<std::size_t>(slot)]);
  }
}

}  // namespace tabelion
