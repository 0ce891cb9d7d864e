// Formulas as stored bytes and as text. Stored ones, whatever they are, are worked out, followed
// and, where they have a text, read back from it; a text that is accepted fits into a field, is
// whole, and stays the same through printing and reading.
//
//   't' and a text, or any other byte and, for one field after another, 70 bytes of its
//   definition; what is behind all fields is a record
#include "query/formula.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "engine/database.h"
#include "engine/schema_places.h"
#include "query/formula_text.h"
#include "require.h"

namespace tabelion {
namespace {

constexpr std::size_t kCalculatedFields = 4;
constexpr const char* kNames[] = {"Total", "Twin", "Twin", "a]b", "Price", "mod", "Two words", "7"};

Database& shop() {
  static Database database;
  static const bool made = [] {
    initSchema(database.schema);
    for (int slot = 0; slot <= codeOf(kLastFieldType); ++slot) {
      FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
      field.type =
          slot < static_cast<int>(kCalculatedFields) ? FieldType::kCalculated : FieldType{slot};
      if (slot < static_cast<int>(std::size(kNames))) setFieldName(field, kNames[slot]);
    }
    return true;
  }();
  require(made);
  return database;
}

// Reads and prints until nothing changes, which must be at once.
void readBack(const std::string& text, const StoredFormula& formula) {
  const auto read = parseFormula(text, shop().schema, formula.result_kind);
  require(read.ok());
  require(*read == normalFormula(formula));
}

void tryStored(ByteView input) {
  Database& database = shop();
  for (std::size_t slot = 0; slot < kCalculatedFields; ++slot) {
    FieldDefinition& field = database.schema.fields[slot];
    field.area_f = {};
    field.area_i = {};
    for (const std::span<std::uint8_t> area :
         {std::span<std::uint8_t>(field.area_f), std::span<std::uint8_t>(field.area_i)}) {
      const std::size_t size = std::min(area.size(), input.size());
      std::copy_n(input.begin(), size, area.begin());
      input = input.subspan(size);
    }
  }
  const FormatSettings formats = isoSettings();
  for (int slot = 0; slot < static_cast<int>(kCalculatedFields); ++slot) {
    const Formula formula = decodeFormula(database, slot, formats);
    const FormulaResult result = evaluateFormula(formula, database, input, input, formats);
    require(result.corrupt == isCorrupt(formula));
    if (!formulaCircle(database, slot).empty()) require(usesOtherRecords(database, slot));
    const StoredFormula stored =
        storedFormula(database.schema.fields[static_cast<std::size_t>(slot)]);
    const auto text = formulaText(stored, database.schema);
    if (!text.ok()) continue;
    require(!result.corrupt);
    readBack(*text, stored);
  }
}

void tryText(std::string_view input) {
  const auto formula = parseFormula(input, shop().schema, 5);
  if (!formula.ok()) return require(formula.error().text.starts_with("column "));
  FieldDefinition field;
  require(setStoredFormula(field, *formula));
  require(storedFormula(field) == *formula);
  const auto text = formulaText(*formula, shop().schema);
  require(text.ok());
  readBack(*text, *formula);
}

}  // namespace
}  // namespace tabelion

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  if (data[0] == 't') {
    tabelion::tryText({reinterpret_cast<const char*>(data + 1), size - 1});
  } else {
    tabelion::tryStored({data + 1, size - 1});
  }
  return 0;
}
