#include "cli/kit/json_output.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "interchange/json_cells.h"
#include "interchange/record_id.h"

namespace tabelion {
namespace {

using Json = nlohmann::ordered_json;

void putMember(OutputBuffer& out, std::string_view name, const Json& value) {
  putJsonText(out, name);
  out.put(": ");
  putCompactJson(out, value);
}

}  // namespace

Json versionedJson() {
  Json json;
  json[kJsonSchemaVersionName] = kJsonSchemaVersion;
  return json;
}

Json idJson(ByteView record) {
  const std::string id = recordId(record);
  return id.empty() ? Json() : Json(id);
}

void putJson(OutputBuffer& out, const Json& json) {
  out.put(json.dump(2, ' ', false, Json::error_handler_t::replace));
  out.put('\n');
}

void putCompactJson(OutputBuffer& out, const Json& json) {
  out.put(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

JsonRecords::JsonRecords(const Database& database, const TextEncoding& encoding, OutputBuffer& out,
                         std::span<const int> slots)
    : database_(database), out_(out), rows_(database, encoding) {
  const auto& columns = rows_.columns();
  if (slots.empty()) {
    for (std::size_t i = 0; i < columns.size(); ++i) columns_.push_back(i);
  }
  for (const int slot : slots) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (columns[i].slot == slot) columns_.push_back(i);
    }
  }
}

void JsonRecords::begin(const Json& figures, std::string_view list_name) {
  out_.put('{');
  for (const auto& [name, value] : figures.items()) {
    putMember(out_, name, value);
    out_.put(",\n");
  }
  putJsonText(out_, list_name);
  out_.put(": [");
}

void JsonRecords::put(std::uint32_t position, const Json* more) {
  put(position, position + 1, more);
}

void JsonRecords::put(std::uint32_t position, std::uint32_t number, const Json* more) {
  rows_.load(database_.records[position].bytes());
  out_.put(is_first_ ? "\n" : ",\n");
  is_first_ = false;
  out_.put("{\"record\":");
  const fmt::format_int digits(number);
  out_.put({digits.data(), digits.size()});
  out_.put(",\"values\":{");
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (i > 0) out_.put(',');
    putJsonText(out_, rows_.columns()[columns_[i]].name);
    out_.put(':');
    putJsonCell(out_, rows_, columns_[i]);
  }
  out_.put('}');
  if (more != nullptr) {
    for (const auto& [name, value] : more->items()) {
      out_.put(',');
      putJsonText(out_, name);
      out_.put(':');
      putCompactJson(out_, value);
    }
  }
  out_.put('}');
}

void JsonRecords::end() {
  end(Json::object());
}

void JsonRecords::end(const Json& figures) {
  out_.put("\n]");
  for (const auto& [name, value] : figures.items()) {
    out_.put(",\n");
    putMember(out_, name, value);
  }
  out_.put("}\n");
}

}  // namespace tabelion
