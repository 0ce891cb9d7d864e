#include "query/formula.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cmath>
#include <limits>

#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "query/number_text.h"
#include "query/time_text.h"

namespace tabelion {
namespace {

double applyFunction(int code, double x) {
  switch (code) {
    case 0:
      return x <= 0 ? 0 : std::sqrt(x);
    case 1:
      return std::sin(x);
    case 2:
      return std::cos(x);
    case 3:
      return x <= 0 ? 0 : std::log(x);
    case 4:
      return x <= 0 ? 0 : std::log10(x);
    case 5:
      return std::floor(x);
    case 6:
      return std::ceil(x);
    case 7:
      return x == 0 ? 1 : 0;
    default:
      return 0;
  }
}

double applyOperator(int code, double a, double b) {
  switch (code) {
    case 0:
      return b == 0 ? 0 : a / b;
    case 1:
      return a * b;
    case 2:
      return a + b;
    case 3:
      return a - b;
    case 4:
      return std::pow(a, b);
    case 5:
      return a < b ? a : b;
    case 6:
      return a > b ? a : b;
    case 7:
      return (a + b) * 0.5;
    case 8:
      return b == 0 ? 0 : a - std::floor(a / b) * b;
    case 9:
      return a < b;
    case 10:
      return a > b;
    case 11:
      return a <= b;
    case 12:
      return a >= b;
    case 13:
      return a != b;
    case 14:
      return a == b;
    case 15:
      return a != 0 && b != 0;
    case 16:
      return a != 0 || b != 0;
    case 17:
      return (a != 0) != (b != 0);
    default:
      return 0;
  }
}

constexpr FormulaResult kCorruptResult{-1, true};

double constantOf(const StoredFormula& stored, const StoredFormula::Token& token,
                  bool decimal_comma) {
  if (token.value >= stored.constants.size()) return 0;
  const std::string& text = stored.constants[token.value];
  return token.type == kIntegerToken ? static_cast<double>(leadingInteger(text))
                                     : numberOfText(text, decimal_comma);
}

// The number of one field of one record.
double numberOfField(const Database& database, ByteView record, int slot,
                     const FormatSettings& formats, const LookupText* lookup) {
  const auto value = slotValue(record, slot);
  const auto index = static_cast<std::size_t>(slot);
  const FieldDefinition& field = database.schema.fields[index];
  if (!value || isMasked(field, record)) return 0;
  if (field.type != FieldType::kLookup)
    return formulaNumber(field, database.fields[index], *value, formats);
  return lookup && *lookup ? numberOfText((*lookup)(slot, record), formats.choices.decimal_comma)
                           : 0;
}

// The fields of the same record, or of the previous one, that a calculated field refers to, in the
// order of its tokens.
std::vector<int> referredSlots(const DatabaseRecord& schema, int slot, bool previous) {
  std::vector<int> slots;
  const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
  if (field.type != FieldType::kCalculated) return slots;
  for (const StoredFormula::Token& token : storedFormula(field).tokens) {
    if (token.type != kFieldToken) continue;
    const auto reference = fieldReference(static_cast<std::int8_t>(token.value));
    if (reference && reference->previous == previous) slots.push_back(reference->slot);
  }
  return slots;
}

// Goes through every field that a formula refers to, each once, however they refer to each other.
struct ReferenceWalk {
  const DatabaseRecord& schema;
  std::bitset<kFieldSlots> done;
  std::vector<int> path;
  std::vector<int> circle;

  void visit(int slot) {
    const auto on_path = std::find(path.begin(), path.end(), slot);
    if (on_path != path.end()) {
      circle.assign(on_path, path.end());
      circle.push_back(slot);
      return;
    }
    const auto index = static_cast<std::size_t>(slot);
    if (done[index]) return;
    path.push_back(slot);
    for (const int next : referredSlots(schema, slot, false)) {
      visit(next);
      if (!circle.empty()) return;
    }
    path.pop_back();
    done.set(index);
  }
};

}  // namespace

int resultDecimals(int result_kind) {
  switch (result_kind) {
    case 0:
      return 4;
    case 4:
      return 3;
    case 5:
      return 2;
    case 6:
      return 1;
    default:
      return 0;
  }
}

std::optional<FieldReference> fieldReference(std::int8_t token_value) {
  const auto byte = static_cast<std::uint8_t>(token_value);
  if (byte == 0) return std::nullopt;
  const bool previous = byte >= 0x80;
  const int slot = previous ? 0xFF - byte : byte - 1;
  if (!isSlot(slot)) return std::nullopt;
  return FieldReference{slot, previous};
}

Formula decodeFormula(const DatabaseRecord& schema, int slot, const FormatSettings& formats) {
  Formula formula;
  if (!isSlot(slot)) return formula;
  const StoredFormula stored = storedFormula(schema.fields[static_cast<std::size_t>(slot)]);
  formula.result_kind = stored.result_kind;
  formula.tokens.reserve(stored.tokens.size());
  for (const StoredFormula::Token& token : stored.tokens) {
    const bool constant = token.type == kIntegerToken || token.type == kFloatToken;
    formula.tokens.push_back(
        {token.type, static_cast<std::int8_t>(token.value),
         constant ? constantOf(stored, token, formats.choices.decimal_comma) : 0});
  }
  return formula;
}

double formulaNumber(const FieldDefinition& field, const FieldRecord& items, ByteView value,
                     const FormatSettings& formats) {
  if (value.empty()) return 0;
  switch (traitsOf(field.type).form) {
    case ValueForm::kText:
    case ValueForm::kNumberText:
    case ValueForm::kResult:
      return numberOfText(storedText(value), formats.choices.decimal_comma);
    case ValueForm::kInteger:
      return static_cast<std::int32_t>(numberOfValue(value));
    case ValueForm::kDays:
    case ValueForm::kKey:
      return numberOfValue(value);
    case ValueForm::kLink:
      return linkKey(value);
    case ValueForm::kFlag:
      return value[0] != 0;
    case ValueForm::kClock:
      return secondsOfTime(timeOfValue(value));
    case ValueForm::kPopupKey: {
      const PopupItem* item = findItem(items, value);
      return item ? numberOfText(item->text, formats.choices.decimal_comma) : 0;
    }
    case ValueForm::kNone:
    case ValueForm::kNote:
    case ValueForm::kLookup:
    case ValueForm::kBlock:
      break;
  }
  return 0;
}

FormulaResult runFormula(const Formula& formula, const double* operands) {
  std::array<double, kFormulaStackSize> stack;
  std::size_t count = 0;
  for (std::size_t i = 0; i < formula.tokens.size(); ++i) {
    const Formula::Token& token = formula.tokens[i];
    switch (token.token_class) {
      case kFunctionToken:
        if (count == 0) return kCorruptResult;
        stack[count - 1] = applyFunction(token.value, stack[count - 1]);
        break;
      case kOperatorToken:
        if (count < 2) return kCorruptResult;
        --count;
        stack[count - 1] = applyOperator(token.value, stack[count - 1], stack[count]);
        break;
      case kIntegerToken:
      case kFloatToken:
      case kFieldToken:
        if (count == stack.size()) return kCorruptResult;
        stack[count++] = token.token_class == kFieldToken ? operands[i] : token.number;
        break;
      default:
        break;
    }
  }
  if (count == 0) return {};
  // One text for every value that is no number, whatever its sign.
  if (std::isnan(stack[0])) return {std::numeric_limits<double>::quiet_NaN(), false};
  return {stack[0], false};
}

FormulaResult evaluateFormula(const Formula& formula, const Database& database, ByteView record,
                              ByteView previous, const FormatSettings& formats,
                              const LookupText* lookup) {
  std::vector<double> operands(formula.tokens.size());
  for (std::size_t i = 0; i < operands.size(); ++i) {
    const Formula::Token& token = formula.tokens[i];
    if (token.token_class != kFieldToken) continue;
    const auto reference = fieldReference(token.value);
    if (!reference) continue;
    operands[i] = numberOfField(database, reference->previous ? previous : record, reference->slot,
                                formats, lookup);
  }
  return runFormula(formula, operands.data());
}

bool isCorrupt(const Formula& formula) {
  const std::vector<double> zeros(formula.tokens.size());
  return runFormula(formula, zeros.data()).corrupt;
}

std::vector<int> formulaCircle(const DatabaseRecord& schema, int slot) {
  ReferenceWalk walk{schema, {}, {}, {}};
  if (isSlot(slot)) walk.visit(slot);
  return walk.circle;
}

bool usesOtherRecords(const Database& database, int slot) {
  ReferenceWalk walk{database.schema, {}, {}, {}};
  if (isSlot(slot)) walk.visit(slot);
  if (!walk.circle.empty()) return true;
  for (int reached = 0; reached < kFieldSlots; ++reached) {
    if (!walk.done[static_cast<std::size_t>(reached)]) continue;
    if (!referredSlots(database.schema, reached, true).empty()) return true;
  }
  return false;
}

}  // namespace tabelion
