#include "query/view.h"

#include <algorithm>
#include <bitset>

#include "query/filter.h"
#include "query/recompute.h"
#include "query/record_index.h"
#include "query/text_cut.h"

namespace tabelion {
namespace {

using FieldOrder = std::array<std::uint8_t, kFieldSlots>;

constexpr int kUsualColumnWidth = 58;

bool isView(const DatabaseRecord& schema, int view) {
  return view >= 0 && view < viewCount(schema);
}

View& viewAt(DatabaseRecord& schema, int view) {
  return schema.views[static_cast<std::size_t>(view)];
}
const View& viewAt(const DatabaseRecord& schema, int view) {
  return schema.views[static_cast<std::size_t>(view)];
}

void setName(std::span<std::uint8_t> area, std::string_view text, bool utf8) {
  setAreaText(area, text.substr(0, cutLength(text, area.size() - 1, utf8)));
}

// Every slot once: first those of `wanted`, then the others as they stand in `rest`, then by
// number. A file may name a slot twice and another one never.
template <class Slots>
FieldOrder completeOrder(const Slots& wanted, const FieldOrder& rest) {
  FieldOrder order{};
  std::bitset<kFieldSlots> seen;
  std::size_t count = 0;
  const auto take = [&](std::size_t slot) {
    if (slot >= kFieldSlots || seen[slot]) return;
    seen.set(slot);
    order[count++] = static_cast<std::uint8_t>(slot);
  };
  for (const auto slot : wanted) take(static_cast<std::size_t>(slot));
  for (const std::uint8_t slot : rest) take(slot);
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) take(slot);
  return order;
}

// A view of what the database shows now.
View viewOfDatabase(const DatabaseRecord& schema, std::string_view name) {
  View view;
  setAreaText(view.name, name);
  view.action = kAdjustView;
  view.field_order = schema.display_order;
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    const FieldDefinition& field = schema.fields[slot];
    view.entries[slot] = {field.column_width, field.export_flag, field.record_view_flag};
  }
  view.filters = schema.filters;
  view.sort = schema.sort;
  return view;
}

int appendView(DatabaseRecord& schema, const View& view) {
  const int index = viewCount(schema);
  if (index >= kViewSlots) return -1;
  viewAt(schema, index) = view;
  schema.view_count = static_cast<std::uint16_t>(index + 1);
  return index;
}

// Puts `value` into `place`; whether that changed anything.
template <class Value>
bool assign(Value& place, const Value& value) {
  if (place == value) return false;
  place = value;
  return true;
}

// The view's columns and flags as the database's own.
bool assignColumns(DatabaseRecord& schema, const View& view) {
  bool changed = assign(schema.display_order, completeOrder(view.field_order, {}));
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    FieldDefinition& field = schema.fields[slot];
    const ViewEntry& entry = view.entries[slot];
    changed |= assign(field.column_width, entry.column_width);
    changed |= assign(field.export_flag, entry.export_flag);
    changed |= assign(field.record_view_flag, entry.record_view_flag);
  }
  return changed;
}

}  // namespace

int viewCount(const DatabaseRecord& schema) {
  return std::min<int>(schema.view_count, kViewSlots);
}

std::string viewName(const DatabaseRecord& schema, int view) {
  return isView(schema, view) ? areaText(viewAt(schema, view).name) : std::string();
}

int viewOfName(const DatabaseRecord& schema, std::string_view name) {
  for (int view = 0; view < viewCount(schema); ++view) {
    if (viewName(schema, view) == name) return view;
  }
  return -1;
}

std::vector<int> viewFields(const DatabaseRecord& schema, int view) {
  std::vector<int> slots;
  if (!isView(schema, view)) return slots;
  for (const std::uint8_t slot : completeOrder(viewAt(schema, view).field_order, {})) {
    if (isValidType(schema.fields[slot].type)) slots.push_back(slot);
  }
  return slots;
}

std::vector<int> viewColumns(const DatabaseRecord& schema, int view) {
  std::vector<int> slots = viewFields(schema, view);
  std::erase_if(slots, [&](int slot) {
    return viewAt(schema, view).entries[static_cast<std::size_t>(slot)].column_width < 1;
  });
  return slots;
}

std::vector<std::string> viewsMenu(Database& database) {
  DatabaseRecord& schema = database.schema;
  if (schema.view_count == 0) {
    appendView(schema, viewOfDatabase(schema, kDefaultViewName));
    schema.current_view = kNoView;
  }
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(viewCount(schema)));
  for (int view = 0; view < viewCount(schema); ++view) names.push_back(viewName(schema, view));
  return names;
}

int addView(Database& database) {
  const int view = appendView(database.schema, viewOfDatabase(database.schema, kNewViewName));
  if (view >= 0) setDirty(database);
  return view;
}

int copyView(Database& database, int view) {
  if (!isView(database.schema, view)) return -1;
  const int copy = appendView(database.schema, viewAt(database.schema, view));
  if (copy >= 0) setDirty(database);
  return copy;
}

bool deleteView(Database& database, int view) {
  DatabaseRecord& schema = database.schema;
  if (!isView(schema, view) || viewName(schema, view) == kDefaultViewName) return false;
  const int last = viewCount(schema) - 1;
  const auto first = schema.views.begin() + view;
  std::rotate(first, first + 1, schema.views.begin() + last + 1);
  viewAt(schema, last).name = {};
  schema.view_count = static_cast<std::uint16_t>(last);
  if (schema.current_view == view) {
    schema.current_view = kNoView;
  } else if (schema.current_view != kNoView && schema.current_view > view) {
    --schema.current_view;
  }
  setDirty(database);
  return true;
}

ViewChange chooseView(Database& database, int view) {
  DatabaseRecord& schema = database.schema;
  ViewChange change;
  if (!isView(schema, view)) return change;
  const View& chosen = viewAt(schema, view);
  change.chosen = true;
  if (chosen.action == kSwitchDatabase) {
    change.switch_to = areaText(chosen.target);
    return change;
  }
  change.sort_changed = assign(schema.sort, chosen.sort);
  change.filter_changed = assign(schema.filters, chosen.filters);
  bool changed = change.sort_changed || change.filter_changed;
  changed |= assignColumns(schema, chosen);
  changed |= assign(schema.current_view, static_cast<std::uint8_t>(view));
  if (changed) setDirty(database);
  if (database.row_header) setRowHeader(database, true);  // its copy follows
  database.needs_refresh = true;
  return change;
}

ViewChange applyView(Database& database, int view, const QuerySettings& settings,
                     std::uint32_t* followed) {
  ViewChange change = chooseView(database, view);
  if (!change.sort_changed && !change.filter_changed) return change;
  if (change.sort_changed) {
    sortAndRecompute(database, settings, followed);
    database.schema.sort_pending = 0;
  } else {
    recomputeDependents(database, settings);
  }
  refreshRecordIndex(database, settings);
  database.needs_refresh = true;
  return change;
}

ViewSettings viewSettings(const DatabaseRecord& schema, int view) {
  if (!isView(schema, view)) return {};
  const View& at = viewAt(schema, view);
  return {areaText(at.name), at.action == kSwitchDatabase, areaText(at.target),
          at.live_update != 0};
}

std::string storeViewSettings(Database& database, int view, const ViewSettings& settings) {
  DatabaseRecord& schema = database.schema;
  if (!isView(schema, view)) return {};
  for (int before = 0; before < view; ++before) {
    if (viewName(schema, before) == settings.name) return std::string(kViewNameTakenText);
  }
  const bool utf8 = databaseCodePage(schema) == "UTF-8";
  View& at = viewAt(schema, view);
  setName(at.name, settings.name, utf8);
  at.action = settings.switches_database ? kSwitchDatabase : kAdjustView;
  if (settings.switches_database) setName(at.target, settings.target, utf8);
  at.live_update = settings.live_update ? 1 : 0;
  setDirty(database);
  return {};
}

// The width of a hidden column is kept below 1, as its negative.
ViewFieldSettings viewFieldSettings(const DatabaseRecord& schema, int view, int slot) {
  if (!isView(schema, view) || slot < 0 || slot >= kFieldSlots) return {};
  const auto index = static_cast<std::size_t>(slot);
  const ViewEntry& entry = viewAt(schema, view).entries[index];
  ViewFieldSettings settings;
  settings.in_list = entry.column_width >= 1;
  settings.column_width = entry.column_width != 0 ? std::abs(entry.column_width)
                          : schema.fields[index].column_width >= 1
                              ? schema.fields[index].column_width
                              : kUsualColumnWidth;
  settings.in_record_view = entry.record_view_flag != 0;
  settings.exported = entry.export_flag != 0;
  return settings;
}

void storeViewFieldSettings(Database& database, int view, int slot,
                            const ViewFieldSettings& settings) {
  if (!isView(database.schema, view) || slot < 0 || slot >= kFieldSlots) return;
  const int width = std::clamp(settings.column_width, 1, kWidestColumn);
  ViewEntry& entry = viewAt(database.schema, view).entries[static_cast<std::size_t>(slot)];
  entry.column_width = settings.in_list ? width : -width;
  entry.record_view_flag = settings.in_record_view ? 1 : 0;
  entry.export_flag = settings.exported ? 1 : 0;
  setDirty(database);
}

void storeViewOrder(Database& database, int view, std::span<const int> slots) {
  if (!isView(database.schema, view)) return;
  FieldOrder& order = viewAt(database.schema, view).field_order;
  order = completeOrder(slots, order);
  setDirty(database);
}

}  // namespace tabelion
