// What commands print with --json: one object whose first member is "schema_version". Members are
// only ever added under one version; a form that a reader could misunderstand gets the next one.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "interchange/output_buffer.h"
#include "interchange/table_rows.h"

namespace tabelion {

inline constexpr int kJsonSchemaVersion = 2;
inline constexpr const char* kJsonSchemaVersionName = "schema_version";

// An object with the version alone, to which a command adds its figures in order.
nlohmann::ordered_json versionedJson();
// The id of a record; null for one without.
nlohmann::ordered_json idJson(ByteView record);
// Prints an object of figures, indented.
void putJson(OutputBuffer& out, const nlohmann::ordered_json& json);
// On one line without an end; bytes that are not UTF-8 become U+FFFD.
void putCompactJson(OutputBuffer& out, const nlohmann::ordered_json& json);

// Prints an object with records among its members, a record at a time:
//
//   {"schema_version": 2, …, "records": [
//   {"record":12,"values":{"Name":"Zoë","Born":null}},
//   …
//   ], …}
//
// Values are those of `export --format json`; a link field has two, "NAME" and "NAME.key".
class JsonRecords {
 public:
  // The fields of `slots`, in their order; all in slot order where there are none. Everything
  // handed in must outlive this object.
  JsonRecords(const Database& database, const TextEncoding& encoding, OutputBuffer& out,
              std::span<const int> slots = {});

  // Opens the object with the members of `figures` (made by versionedJson) and a list of records.
  void begin(const nlohmann::ordered_json& figures, std::string_view list_name = "records");
  // The record at a position of the store, which is printed as its number, counted from 1. With
  // `more` further members follow the values.
  void put(std::uint32_t position, const nlohmann::ordered_json* more = nullptr);
  // The same under another number, for a copy whose records stand elsewhere than in the file.
  void put(std::uint32_t position, std::uint32_t number,
           const nlohmann::ordered_json* more = nullptr);
  // Closes the list, adds the members of `figures` that are known only now, closes the object.
  void end();
  void end(const nlohmann::ordered_json& figures);

 private:
  const Database& database_;
  OutputBuffer& out_;
  TableRows rows_;
  std::vector<std::size_t> columns_;
  bool is_first_ = true;
};

}  // namespace tabelion
