#include "query/calculator.h"

#include <algorithm>

#include "engine/schema_places.h"
#include "query/field_text.h"
#include "query/number_text.h"

namespace tabelion {
namespace {

constexpr std::size_t kLongestResult = kNumberTextSize - 1;

void appendResultText(std::string& into, double value, int result_kind,
                      const FormatSettings& formats) {
  appendNumber(into, value, resultDecimals(result_kind), formats.choices.decimal_comma);
  if (into.size() > kLongestResult) into.resize(kLongestResult);
}

}  // namespace

std::string resultText(double value, int result_kind, const FormatSettings& formats) {
  std::string text;
  appendResultText(text, value, result_kind, formats);
  return text;
}

Calculator::Calculator(const Database& database, const std::vector<int>& slots,
                       const QuerySettings& settings)
    : database_(database), settings_(settings) {
  for (const int slot : slots) add(slot);
  new_values_.reserve(calculations_.size());  // views into it stay good
}

void Calculator::add(int slot) {
  const auto index = static_cast<std::size_t>(slot);
  if (database_.schema.fields[index].type != FieldType::kCalculated) return;
  Calculation calculation{index, decodeFormula(database_, slot, settings_.formats), {}, {}};
  const std::vector<Formula::Token>& tokens = calculation.formula.tokens;
  calculation.operands.resize(tokens.size());
  needed_ = std::max(needed_, index + 1);
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const auto reference = fieldReference(tokens[i].value);
    if (tokens[i].token_class != kFieldToken || !reference) continue;
    const auto referred = static_cast<std::size_t>(reference->slot);
    calculation.fields.push_back({i, referred, reference->previous});
    needed_ = std::max(needed_, referred + 1);
    const bool is_new = std::find(previous_slots_.begin(), previous_slots_.end(), referred) ==
                        previous_slots_.end();
    if (reference->previous && is_new) previous_slots_.push_back(referred);
  }
  calculations_.push_back(std::move(calculation));
}

void Calculator::begin(ByteView record) {
  record_ = record;
  enciphered_ = isRecordEncrypted(record);
  known_.reset();
  SlotWalker walker(record);
  present_ = 0;
  while (present_ < needed_) {
    const auto value = walker.next();
    if (!value) break;
    values_[present_++] = *value;
  }
  std::fill(values_.begin() + static_cast<std::ptrdiff_t>(present_),
            values_.begin() + static_cast<std::ptrdiff_t>(needed_), ByteView());
}

void Calculator::begin(const UnpackedRecord& record, ByteView packed) {
  record_ = packed;
  enciphered_ = isRecordEncrypted(record.prefix);
  known_.reset();
  for (std::size_t i = 0; i < needed_; ++i) {
    values_[i] = record.slots[i] ? ByteView(*record.slots[i]) : ByteView();
  }
}

bool Calculator::isMaskedSlot(std::size_t slot) const {
  return enciphered_ && database_.schema.fields[slot].encrypt_flag != 0;
}

double Calculator::numberOf(std::size_t slot) {
  if (!known_[slot]) {
    known_.set(slot);
    numbers_[slot] = readNumber(slot);
  }
  return numbers_[slot];
}

double Calculator::readNumber(std::size_t slot) const {
  const FieldDefinition& field = database_.schema.fields[slot];
  if (isMaskedSlot(slot)) return 0;
  if (field.type != FieldType::kLookup) {
    return formulaNumber(field, database_.fields[slot], values_[slot], settings_.formats);
  }
  const LookupText* lookup = settings_.lookup;
  if (!lookup || !*lookup) return 0;
  return numberOfText((*lookup)(static_cast<int>(slot), record_),
                      settings_.formats.choices.decimal_comma);
}

int Calculator::compute(std::uint32_t position, const CorruptFormula& corrupt) {
  new_values_.clear();
  int corrupt_count = 0;
  for (Calculation& calculation : calculations_) {
    if (isMaskedSlot(calculation.slot)) continue;
    for (const Operand& field : calculation.fields) {
      calculation.operands[field.token] =
          field.previous ? previous_[field.slot] : numberOf(field.slot);
    }
    const FormulaResult result = runFormula(calculation.formula, calculation.operands.data());
    if (result.corrupt) {
      ++corrupt_count;
      if (corrupt) corrupt(position, static_cast<int>(calculation.slot));
    }
    text_.clear();
    appendResultText(text_, result.value, calculation.formula.result_kind, settings_.formats);
    if (storedText(values_[calculation.slot]) != text_) putNewValue(calculation.slot);
  }
  std::sort(new_values_.begin(), new_values_.end(),
            [](const NewValue& a, const NewValue& b) { return a.slot < b.slot; });
  for (const NewValue& value : new_values_) {
    values_[static_cast<std::size_t>(value.slot)] = value.view();
  }
  return corrupt_count;
}

// `text_` is the new value of the slot.
void Calculator::putNewValue(std::size_t slot) {
  NewValue& value = new_values_.emplace_back();
  value.slot = static_cast<int>(slot);
  value.old = values_[slot];
  std::copy(text_.begin(), text_.end(), value.bytes.begin());
  values_[slot] = value.view();
  known_.reset(slot);
}

bool Calculator::packChanged(Bytes& into) const {
  if (new_values_.empty()) return false;
  if (static_cast<std::size_t>(new_values_.back().slot) >= present_) {
    UnpackedRecord unpacked = unpackRecord(record_);
    for (const NewValue& value : new_values_) {
      const ByteView bytes = value.view();
      unpacked.slots[static_cast<std::size_t>(value.slot)].emplace(bytes.begin(), bytes.end());
    }
    return packFitted(database_.schema, unpacked, into);
  }
  // All slots are there: copy what lies between them.
  into.clear();
  ByteWriter writer(into);
  const std::uint8_t* at = record_.data();
  for (const NewValue& value : new_values_) {
    writer.putBytes({at, value.old.data() - 2});
    writer.putLe16(kNumberTextSize);
    writer.putBytes(value.view());
    at = value.old.data() + value.old.size();
  }
  writer.putBytes({at, record_.data() + record_.size()});
  return into.size() <= kMaxRecordSize;
}

void Calculator::keepAsPrevious() {
  for (const std::size_t slot : previous_slots_) previous_[slot] = numberOf(slot);
}

}  // namespace tabelion
