// Filter criteria, sort keys and views as JSON and back.

#include "interchange/schema_members.h"

namespace tabelion {
namespace {

constexpr NamedValue kOrders[] = {{1, "forward"}, {0, "reverse"}};
constexpr NamedValue kActions[] = {{kAdjustView, "adjust view"},
                                   {kSwitchDatabase, "switch database"}};

template <std::size_t Count, class Entry>
std::size_t usedCount(const std::array<Entry, Count>& list) {
  std::size_t used = Count;
  while (used > 0 && list[used - 1] == Entry{}) --used;
  return used;
}

// A byte whose two low bits have names; with further bits it stands as a number.
template <class Members, class Byte>
void bitMembers(Members& m, Byte& byte, const char* low_name, const char* high_name,
                const char* rest_name) {
  std::uint8_t number = byte > 3 ? byte : 0;
  bool low = number == 0 && (byte & 1) != 0;
  bool high = number == 0 && (byte & 2) != 0;
  m.number(rest_name, number, 0);
  m.flag(low_name, low, false);
  m.flag(high_name, high, false);
  if constexpr (Members::kReads) {
    byte = static_cast<std::uint8_t>(number | (low ? 1 : 0) | (high ? 2 : 0));
  }
}

// Stands as a signed number; an unsigned one is understood.
template <class Members, class Number>
void limitMember(Members& m, const char* key, Number& number, std::uint32_t standard) {
  auto limit = std::int64_t{static_cast<std::int32_t>(number)};
  m.number(key, limit, static_cast<std::int32_t>(standard), {INT32_MIN, UINT32_MAX});
  if constexpr (Members::kReads) number = static_cast<std::uint32_t>(limit);
}

template <class Members, class Filter>
void filterMembers(Members& m, Filter& filter) {
  const FilterBlock standard;
  const FieldNames& names = m.context().names;
  m.flag("enabled", filter.enabled, standard.enabled);
  m.optionalMember(
      "field",
      // 255 is a slot number here, not "none". The first field is named as well, for the reader.
      [&]() -> std::optional<Json> {
        if (filter == standard) return std::nullopt;
        return filter.field < kFieldSlots ? names.reference(filter.field) : Json(filter.field);
      },
      [&](const auto& node) { setMember(filter.field, names.slotOf(node, 65535, filter.field)); });
  m.area("value1", filter.value1, standard.value1);
  m.area("value2", filter.value2, standard.value2);
  limitMember(m, "number1", filter.number1, standard.number1);
  limitMember(m, "number2", filter.number2, standard.number2);
  bitMembers(m, filter.mode, "not", "or", "mode");
  bitMembers(m, filter.grouping, "opens_group", "closes_group", "grouping");
}

template <class Members, class Key>
void sortKeyMembers(Members& m, Key& key) {
  const FieldNames& names = m.context().names;
  m.optionalMember(
      "field", [&] { return std::optional<Json>(names.reference(key.field)); },
      [&](const auto& node) { setMember(key.field, names.slotOf(node, 255, kNoField)); });
  m.word("order", key.order, 1, kOrders);
}

template <class Members, class Entry>
void entryMembers(Members& m, Entry& entry, const ViewEntry& standard) {
  m.number("column_width", entry.column_width, standard.column_width, kSigned16);
  m.flag("export", entry.export_flag, standard.export_flag);
  m.flag("record_view", entry.record_view_flag, standard.record_view_flag);
}

Json entriesJson(const View& view, const View& standard, const DescriptionContext& context) {
  Json list = Json::array();
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    const ViewEntry& entry = view.entries[static_cast<std::size_t>(slot)];
    const ViewEntry& plain = standard.entries[static_cast<std::size_t>(slot)];
    if (entry == plain) continue;
    Json json = Json{{"field", context.names.reference(slot)}};
    json.update(membersJson(context, [&](auto& m) { entryMembers(m, entry, plain); }));
    list.push_back(std::move(json));
  }
  return list;
}

void readEntries(const JsonNode& node, const DescriptionContext& context, View& view) {
  for (const JsonNode& entry_node : node.list(kFieldSlots)) {
    JsonObject json(entry_node);
    const JsonNode field = json["field"];
    const int slot = context.names.slotOf(field, kFieldSlots - 1, kNoField);
    if (slot >= kFieldSlots) {
      (field.present() ? field : entry_node).refuse("must name a field");
      continue;
    }
    MemberReader members(json, context);
    entryMembers(members, view.entries[static_cast<std::size_t>(slot)], {});
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

// A view slot as a new database has it.
View unusedView() {
  DatabaseRecord standard;
  initSchema(standard);
  return standard.views[0];
}

template <class Members, class ViewType>
void viewMembers(Members& m, ViewType& view, const View& standard) {
  const DescriptionContext& context = m.context();
  m.area("name", view.name, standard.name);
  m.flag("live_update", view.live_update, standard.live_update);
  m.word("action", view.action, standard.action, kActions);
  m.area("target", view.target, standard.target);
  m.order("order", view.field_order);
  m.member(
      "columns", [&] { return entriesJson(view, standard, context); },
      [&](const auto& node) { readEntries(node, context, view); });
  m.filters("filters", view.filters);
  m.sort("sort", view.sort);
  m.number("item6", view.item6, standard.item6);
  m.number("item9", view.item9, standard.item9);
}

Json viewJson(const View& view, const View& standard, const DescriptionContext& context) {
  return membersJson(context, [&](auto& m) { viewMembers(m, view, standard); });
}

}  // namespace

Json filtersJson(const FilterBlocks& filters, const DescriptionContext& context) {
  Json list = Json::array();
  for (std::size_t i = 0; i < usedCount(filters); ++i) {
    list.push_back(membersJson(context, [&](auto& m) { filterMembers(m, filters[i]); }));
  }
  return list;
}

void readFilters(const JsonNode& node, const DescriptionContext& context, FilterBlocks& filters) {
  std::size_t index = 0;
  for (const JsonNode& entry : node.list(filters.size())) {
    readMembers(entry, context, [&](auto& m) { filterMembers(m, filters[index]); });
    ++index;
  }
}

Json sortJson(const SortKeys& keys, const DescriptionContext& context) {
  Json list = Json::array();
  for (std::size_t i = 0; i < usedCount(keys); ++i) {
    list.push_back(membersJson(context, [&](auto& m) { sortKeyMembers(m, keys[i]); }));
  }
  return list;
}

void readSort(const JsonNode& node, const DescriptionContext& context, SortKeys& keys) {
  std::size_t index = 0;
  for (const JsonNode& entry : node.list(keys.size())) {
    readMembers(entry, context, [&](auto& m) { sortKeyMembers(m, keys[index]); });
    ++index;
  }
}

Json viewsJson(const DatabaseRecord& schema, const DescriptionContext& context) {
  const View made = madeView(schema, unusedView());
  Json views = Json::array();
  for (std::size_t slot = 0; slot < std::min<std::size_t>(schema.view_count, kViewSlots); ++slot) {
    views.push_back(viewJson(schema.views[slot], made, context));
  }
  return views;
}

void readViews(const JsonNode& node, const DescriptionContext& context, DatabaseRecord& schema) {
  const View made = madeView(schema, schema.views[0]);
  schema.view_count = 0;
  for (const JsonNode& entry : node.list(kViewSlots)) {
    View& view = schema.views[schema.view_count++];
    view = made;
    readMembers(entry, context, [&](auto& m) { viewMembers(m, view, made); });
  }
}

Json spareViewsJson(const DatabaseRecord& schema, const DescriptionContext& context) {
  const View unused = unusedView();
  Json spare = Json::array();
  for (int slot = schema.view_count; slot < kViewSlots; ++slot) {
    const Json view = viewJson(schema.views[static_cast<std::size_t>(slot)], unused, context);
    if (view.empty()) continue;
    spare.push_back(Json{{"slot", slot}});
    spare.back().update(view);
  }
  return spare;
}

void readSpareViews(const JsonNode& node, const DescriptionContext& context,
                    DatabaseRecord& schema) {
  for (const JsonNode& entry : node.list(kViewSlots)) {
    JsonObject spare(entry);
    const JsonNode slot_node = spare["slot"];
    const std::int64_t slot = slot_node.integer(schema.view_count, kViewSlots - 1, -1);
    if (slot < 0) {
      (slot_node.present() ? slot_node : entry).refuse("must name a view slot that is not in use");
      continue;
    }
    View& view = schema.views[static_cast<std::size_t>(slot)];
    MemberReader members(spare, context);
    viewMembers(members, view, view);
    spare.finish();
  }
}

}  // namespace tabelion
