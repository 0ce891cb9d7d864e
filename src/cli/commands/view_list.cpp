// The views of a database as a table and as JSON.

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/commands/view_command.h"
#include "cli/kit/json_output.h"
#include "engine/schema_places.h"
#include "query/view.h"

namespace tabelion {
namespace {

using Json = nlohmann::ordered_json;

std::string nameOf(const Database& database, const TextEncoding& encoding, int slot) {
  return encoding.toUtf8(fieldName(database.schema.fields[static_cast<std::size_t>(slot)]));
}

const View& viewAt(const Database& database, int view) {
  return database.schema.views[static_cast<std::size_t>(view)];
}

int criteriaOf(const View& view) {
  return static_cast<int>(
      std::count_if(view.filters.begin(), view.filters.end(),
                    [](const FilterBlock& block) { return block.enabled != 0; }));
}

// The levels that have an effect: a level without a field ends the sort.
std::vector<SortKey> sortOf(const View& view) {
  std::vector<SortKey> keys;
  for (const SortKey& key : view.sort) {
    if (key.field >= kFieldSlots) break;
    keys.push_back(key);
  }
  return keys;
}

// "Place, Day; sorted by Day reverse; 2 criteria".
std::string contentText(const Database& database, const TextEncoding& encoding, int view) {
  const View& at = viewAt(database, view);
  if (at.action == kSwitchDatabase) {
    return fmt::format("switches to {}", encoding.toUtf8(areaText(at.target)));
  }
  std::string text;
  for (const int slot : viewColumns(database.schema, view)) {
    if (!text.empty()) text += ", ";
    text += nameOf(database, encoding, slot);
  }
  std::string sort;
  for (const SortKey& key : sortOf(at)) {
    sort += (sort.empty() ? "; sorted by " : ", ") + nameOf(database, encoding, key.field);
    if (key.order != 1) sort += " reverse";
  }
  text += sort;
  if (const int criteria = criteriaOf(at); criteria > 0) {
    text += fmt::format("; {} criteri{}", criteria, criteria == 1 ? "on" : "a");
  }
  if (at.live_update != 0) text += "; live update";
  return text;
}

std::size_t lettersOf(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

Json fieldsJson(const Database& database, const TextEncoding& encoding, int view) {
  // All fields of the database, in the view's order.
  Json fields = Json::array();
  for (const std::uint8_t slot : viewAt(database, view).field_order) {
    if (slot >= kFieldSlots || !isValidType(database.schema.fields[slot].type)) continue;
    const ViewFieldSettings field = viewFieldSettings(database.schema, view, slot);
    fields.push_back({{"field", nameOf(database, encoding, slot)},
                      {"in_list", field.in_list},
                      {"column_width", field.column_width},
                      {"in_form", field.in_record_view},
                      {"exported", field.exported}});
  }
  return fields;
}

Json viewJson(const Database& database, const TextEncoding& encoding, int view) {
  const View& at = viewAt(database, view);
  Json json;
  json["name"] = encoding.toUtf8(areaText(at.name));
  json["current"] = database.schema.current_view == view;
  json["live_update"] = at.live_update != 0;
  const bool switches = at.action == kSwitchDatabase;
  json["action"] = switches ? "switch database" : "adjust view";
  if (switches) json["target"] = encoding.toUtf8(areaText(at.target));
  json["fields"] = fieldsJson(database, encoding, view);
  Json sort = Json::array();
  for (const SortKey& key : sortOf(at)) {
    sort.push_back({{"field", nameOf(database, encoding, key.field)},
                    {"order", key.order == 1 ? "forward" : "reverse"}});
  }
  json["sort"] = std::move(sort);
  json["criteria"] = criteriaOf(at);
  return json;
}

}  // namespace

void putViewTable(const Database& database, const TextEncoding& encoding, OutputBuffer& out) {
  std::vector<std::string> names;
  std::size_t widest = 0;
  for (int view = 0; view < viewCount(database.schema); ++view) {
    names.push_back(encoding.toUtf8(viewName(database.schema, view)));
    widest = std::max(widest, lettersOf(names.back()));
  }
  for (int view = 0; view < viewCount(database.schema); ++view) {
    const std::string& name = names[static_cast<std::size_t>(view)];
    out.put(database.schema.current_view == view ? "* " : "  ");
    out.put(name);
    out.put(std::string(widest - lettersOf(name) + 2, ' '));
    out.put(contentText(database, encoding, view));
    out.put('\n');
  }
}

void putViewJson(const Database& database, const TextEncoding& encoding, OutputBuffer& out) {
  Json json = versionedJson();
  json["views"] = Json::array();
  for (int view = 0; view < viewCount(database.schema); ++view) {
    json["views"].push_back(viewJson(database, encoding, view));
  }
  putJson(out, json);
}

}  // namespace tabelion
