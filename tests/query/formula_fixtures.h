// Databases with calculated fields for the tests of this folder.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "query/field_text.h"
#include "query/formula.h"

namespace tabelion {

using Tokens = std::vector<StoredFormula::Token>;

inline StoredFormula::Token op(int code) {
  return {kOperatorToken, static_cast<std::uint8_t>(code)};
}
inline StoredFormula::Token call(int code) {
  return {kFunctionToken, static_cast<std::uint8_t>(code)};
}
inline StoredFormula::Token constant(int index, TokenClass token_class = kFloatToken) {
  return {token_class, static_cast<std::uint8_t>(index)};
}
inline StoredFormula::Token fieldOf(int slot) {
  return {kFieldToken, static_cast<std::uint8_t>(slot + 1)};
}
inline StoredFormula::Token previousOf(int slot) {
  return {kFieldToken, static_cast<std::uint8_t>(-slot - 1)};
}

// A stored integer.
inline std::string integer(int value) {
  std::string bytes(4, '\0');
  storeLe32(reinterpret_cast<std::uint8_t*>(bytes.data()), static_cast<std::uint32_t>(value));
  return bytes;
}

// Fields are added in slot order, records take the bytes of their values in the same order.
struct FormulaDatabase {
  std::unique_ptr<Database> owned = std::make_unique<Database>();
  Database& database = *owned;
  int fields = 0;

  FormulaDatabase() { initSchema(database.schema); }

  FieldDefinition& field(int slot) { return database.schema.fields[std::size_t(slot)]; }
  int addField(FieldType type, std::string_view name = "") {
    field(fields).type = type;
    if (!name.empty()) setFieldName(field(fields), name);
    return fields++;
  }
  int addFormula(Tokens tokens, int kind = 5, std::vector<std::string> constants = {},
                 std::string_view name = "") {
    const int slot = addField(FieldType::kCalculated, name);
    setFormula(slot, std::move(tokens), kind, std::move(constants));
    return slot;
  }
  void setFormula(int slot, Tokens tokens, int kind = 5, std::vector<std::string> constants = {}) {
    setStoredFormula(field(slot),
                     {std::move(tokens), std::move(constants), static_cast<std::uint8_t>(kind)});
  }
  // The packed record; it is added at the end of the store.
  Bytes addRecord(const std::vector<std::string>& values) {
    UnpackedRecord record;
    record.prefix.assign(23, 0);
    record.prefix[0] = kStampedPrefix;
    for (std::size_t i = 0; i < values.size(); ++i) {
      record.slots[i] = Bytes(values[i].begin(), values[i].end());
    }
    Bytes packed;
    (void)packRecord(record, packed);
    database.records.insert(database.records.count(), packed, {});
    return packed;
  }
  std::string stored(std::uint32_t position, int slot) const {
    const auto value = slotValue(database.records[position].bytes(), slot);
    return value ? std::string(storedText(*value)) : "(absent)";
  }
};

}  // namespace tabelion
