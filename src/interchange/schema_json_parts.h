// What the parts of the schema's JSON description share. Internal to interchange/.
#pragma once

#include <string>
#include <vector>

#include "engine/database.h"
#include "interchange/json_node.h"
#include "interchange/text_encoding.h"

namespace tabelion {

// An 8-bit text as JSON: a text where the code page can carry it, else {"hex": …}.
Json textJson(std::string_view text, const TextEncoding& encoding);
// A fixed area: the text alone when nothing but zeros follows it.
Json areaJson(ByteView area, const TextEncoding& encoding);
// False when missing or refused.
bool readText(const JsonNode& node, const TextEncoding& encoding, std::string& into);
bool readArea(const JsonNode& node, const TextEncoding& encoding, std::span<std::uint8_t> area);

// The fields of a database by name. A field stands by its name in the description where that name
// is its alone, else by its slot number.
class FieldNames {
 public:
  FieldNames(const DatabaseRecord& schema, const TextEncoding& encoding);

  Json reference(int slot) const;  // null for kNoField
  // A slot of 0 to `most`; null means kNoField.
  int slotOf(const JsonNode& node, int most, int otherwise) const;

 private:
  std::vector<std::string> names_;  // per slot; empty where the number has to do
};

// 100 slot numbers: the leading ones that are out of sequence; the rest follow in ascending order.
Json orderJson(const std::array<std::uint8_t, kFieldSlots>& order, const FieldNames& names);
void readOrder(const JsonNode& node, const FieldNames& names,
               std::array<std::uint8_t, kFieldSlots>& order);

// Adds the member unless the value is the default.
template <class Value>
void putUnless(Json& object, const char* name, const Value& value, const Value& standard) {
  if (value != standard) object[name] = value;
}
void putFlagUnless(Json& object, const char* name, std::int64_t value, std::int64_t standard);
void putHexUnless(Json& object, const char* name, ByteView bytes, ByteView standard);
void putUnlessEmpty(Json& object, const char* name, Json value);

template <class Number>
void readNumber(const JsonNode& node, std::int64_t least, std::int64_t most, Number& into) {
  into = static_cast<Number>(node.integer(least, most, into));
}
template <class Number>
void readFlag(const JsonNode& node, Number& into) {
  into = static_cast<Number>(node.flag(255, into));
}

// Fields with their item lists (schema_json_fields.cpp). `standard` is a new database.
Json fieldsJson(const Database& database, const Database& standard, const TextEncoding& encoding);
void readFields(const JsonNode& node, const TextEncoding& encoding, Database& database);

// Calculated fields (schema_json_formula.cpp): the formula as people write it and its result in
// words. A formula that has no such text, or not the normal one, stands as its tokens; so does one
// that runs into a circle of formulas, which is refused as a text.
void putFormula(Json& field_json, const DatabaseRecord& schema, int slot,
                const TextEncoding& encoding);
void readFormula(JsonObject& field_json, const DatabaseRecord& schema, const TextEncoding& encoding,
                 FieldDefinition& field);
void refuseCircle(const JsonNode& formula, const DatabaseRecord& schema, int slot,
                  const TextEncoding& encoding);

// Filters, sort keys and views (schema_json_views.cpp).
Json filtersJson(const std::array<FilterBlock, 6>& filters, const FieldNames& names,
                 const TextEncoding& encoding);
void readFilters(const JsonNode& node, const FieldNames& names, const TextEncoding& encoding,
                 std::array<FilterBlock, 6>& filters);
Json sortJson(const std::array<SortKey, 3>& keys, const FieldNames& names);
void readSort(const JsonNode& node, const FieldNames& names, std::array<SortKey, 3>& keys);
void putViews(Json& json, const DatabaseRecord& schema, const FieldNames& names,
              const TextEncoding& encoding);
void readViews(JsonObject& json, const FieldNames& names, const TextEncoding& encoding,
               DatabaseRecord& schema);

}  // namespace tabelion
