// What the parts of the schema's JSON description share. Internal to interchange/.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "interchange/json_node.h"
#include "interchange/text_encoding.h"

namespace tabelion {

using SlotOrder = std::array<std::uint8_t, kFieldSlots>;
using SortKeys = std::array<SortKey, 3>;
using FilterBlocks = std::array<FilterBlock, 6>;

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
Json orderJson(const SlotOrder& order, const FieldNames& names);
void readOrder(const JsonNode& node, const FieldNames& names, SlotOrder& order);

// What the texts of a description and its references to fields are told by.
struct DescriptionContext {
  const TextEncoding& encoding;
  const FieldNames& names;
};

enum class NeededMember { kNo, kYes };  // yes: it stands there even when it is empty

// A number that a description gives by a word; other numbers stand as they are.
struct NamedValue {
  std::int64_t value;
  std::string_view word;
};
Json wordJson(std::int64_t value, std::span<const NamedValue> words);
std::int64_t readWord(const JsonNode& node, std::span<const NamedValue> words, std::int64_t most,
                      std::int64_t otherwise);

// Adds the member unless its value is null, "", [] or {}.
void putUnlessEmpty(Json& object, const std::string& name, Json value);

// Fields with their item lists (schema_json_fields.cpp). `standard` is a new database.
Json fieldsJson(const Database& database, const Database& standard,
                const DescriptionContext& context);
void readFields(const JsonNode& node, const TextEncoding& encoding, Database& database);

// Calculated fields (schema_json_formula.cpp): the formula as people write it and its result in
// words. A formula that has no such text, or not the normal one, stands as its tokens with the kind
// of its result; so does one that runs into a circle of formulas, which is refused as a text.
Json formulaJson(const DatabaseRecord& schema, int slot, const TextEncoding& encoding);
Json resultJson(const DatabaseRecord& schema, int slot, const TextEncoding& encoding);
void readFormula(const JsonNode& node, const JsonNode& result, const DatabaseRecord& schema,
                 const TextEncoding& encoding, FieldDefinition& field);
void refuseCircle(const JsonNode& formula, const DatabaseRecord& schema, int slot,
                  const TextEncoding& encoding);

// Filters, sort keys and views (schema_json_views.cpp).
Json filtersJson(const FilterBlocks& filters, const DescriptionContext& context);
void readFilters(const JsonNode& node, const DescriptionContext& context, FilterBlocks& filters);
Json sortJson(const SortKeys& keys, const DescriptionContext& context);
void readSort(const JsonNode& node, const DescriptionContext& context, SortKeys& keys);
// The views in use, and view slots out of use that do not look like new ones.
Json viewsJson(const DatabaseRecord& schema, const DescriptionContext& context);
void readViews(const JsonNode& node, const DescriptionContext& context, DatabaseRecord& schema);
Json spareViewsJson(const DatabaseRecord& schema, const DescriptionContext& context);
void readSpareViews(const JsonNode& node, const DescriptionContext& context,
                    DatabaseRecord& schema);

}  // namespace tabelion
