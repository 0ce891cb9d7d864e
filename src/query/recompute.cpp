#include "query/recompute.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <vector>

#include "engine/schema_places.h"
#include "query/filter.h"
#include "query/formula.h"
#include "query/number_text.h"
#include "query/sort.h"

namespace tabelion {
namespace {

constexpr std::size_t kLongestResult = kNumberTextSize - 1;

struct Calculation {
  int slot = 0;
  Formula formula;
  std::vector<double> operands;  // parallel to the formula's tokens
};

// A value that differs from the stored one: its text and a NUL.
struct NewValue {
  int slot = 0;
  ByteView old;  // what is stored now
  std::array<std::uint8_t, kNumberTextSize> bytes{};
  std::size_t size = 0;

  ByteView view() const { return ByteView(bytes).first(size); }
};

void appendResultText(std::string& into, double value, int result_kind,
                      const FormatSettings& formats) {
  appendNumber(into, value, resultDecimals(result_kind), formats.choices.decimal_comma);
  if (into.size() > kLongestResult) into.resize(kLongestResult);
}

// Some calculated fields of a database, prepared to be worked out for one record after another.
class Calculator {
 public:
  // The fields of `slots` that are calculated, in that order.
  Calculator(const Database& database, const std::vector<int>& slots, const QuerySettings& settings)
      : database_(database), settings_(settings) {
    for (const int slot : slots) add(slot);
  }

  bool isEmpty() const { return calculations_.empty(); }
  bool usesPreviousRecord() const { return uses_previous_; }

  void begin(ByteView record) {
    record_ = record;
    enciphered_ = isRecordEncrypted(record);
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
  // The same for a record that is taken apart; `packed` serves lookups.
  void begin(const UnpackedRecord& record, ByteView packed) {
    record_ = packed;
    enciphered_ = isRecordEncrypted(record.prefix);
    for (std::size_t i = 0; i < needed_; ++i) {
      values_[i] = record.slots[i] ? ByteView(*record.slots[i]) : ByteView();
    }
  }

  // Works the fields out for the record begun. What differs from what is stored is in newValues(),
  // by rising slot, until the next call. How many formulas were corrupt.
  int compute(std::uint32_t position, const CorruptFormula& corrupt);
  const std::vector<NewValue>& newValues() const { return new_values_; }

  // The record begun, with its new values in it. False when there are none, or no room for them.
  [[nodiscard]] bool packChanged(Bytes& into) const;

  // Makes the record that was worked out last the previous one of what comes.
  void keepAsPrevious() {
    for (std::size_t slot = 0; slot < needed_; ++slot) {
      if (previous_slots_[slot]) previous_[slot] = numberOf(static_cast<int>(slot));
    }
  }

 private:
  void add(int slot) {
    if (database_.schema.fields[static_cast<std::size_t>(slot)].type != kCalculated) return;
    Calculation calculation{slot, decodeFormula(database_, slot, settings_.formats), {}};
    calculation.operands.resize(calculation.formula.tokens.size());
    needed_ = std::max(needed_, static_cast<std::size_t>(slot) + 1);
    for (const Formula::Token& token : calculation.formula.tokens) {
      const auto reference = fieldReference(token.value);
      if (token.token_class != kFieldToken || !reference) continue;
      const auto referred = static_cast<std::size_t>(reference->slot);
      needed_ = std::max(needed_, referred + 1);
      if (reference->previous) previous_slots_.set(referred);
    }
    uses_previous_ = previous_slots_.any();
    calculations_.push_back(std::move(calculation));
    new_values_.reserve(calculations_.size());  // views into it stay good
  }

  bool isMaskedSlot(std::size_t slot) const {
    return enciphered_ && database_.schema.fields[slot].encrypt_flag != 0;
  }

  double numberOf(int slot) const {
    const auto index = static_cast<std::size_t>(slot);
    const FieldDefinition& field = database_.schema.fields[index];
    if (isMaskedSlot(index)) return 0;
    if (field.type != kLookup) {
      return formulaNumber(field, database_.fields[index], values_[index], settings_.formats);
    }
    const LookupText* lookup = settings_.lookup;
    if (!lookup || !*lookup) return 0;
    return numberOfText((*lookup)(slot, record_), settings_.formats.choices.decimal_comma);
  }

  const Database& database_;
  const QuerySettings& settings_;
  std::vector<Calculation> calculations_;
  std::bitset<kFieldSlots> previous_slots_;
  std::size_t needed_ = 0;  // slots that a record is read to
  bool uses_previous_ = false;

  ByteView record_;
  bool enciphered_ = false;
  std::size_t present_ = 0;                     // slots of the packed record that were found
  std::array<ByteView, kFieldSlots> values_;    // empty where absent; new ones once worked out
  std::array<double, kFieldSlots> previous_{};  // of the previous record; 0 when there is none
  std::vector<NewValue> new_values_;
  std::string text_;
};

int Calculator::compute(std::uint32_t position, const CorruptFormula& corrupt) {
  new_values_.clear();
  int corrupt_count = 0;
  for (Calculation& calculation : calculations_) {
    const auto slot = static_cast<std::size_t>(calculation.slot);
    if (isMaskedSlot(slot)) continue;
    const Formula& formula = calculation.formula;
    for (std::size_t i = 0; i < formula.tokens.size(); ++i) {
      const Formula::Token& token = formula.tokens[i];
      if (token.token_class != kFieldToken) continue;
      const auto reference = fieldReference(token.value);
      if (!reference) continue;
      calculation.operands[i] = reference->previous
                                    ? previous_[static_cast<std::size_t>(reference->slot)]
                                    : numberOf(reference->slot);
    }
    const FormulaResult result = runFormula(formula, calculation.operands.data());
    if (result.corrupt) {
      ++corrupt_count;
      if (corrupt) corrupt(position, calculation.slot);
    }
    text_.clear();
    appendResultText(text_, result.value, formula.result_kind, settings_.formats);
    if (storedText(values_[slot]) == text_) continue;
    NewValue& value = new_values_.emplace_back();
    value.slot = calculation.slot;
    value.old = values_[slot];
    std::copy(text_.begin(), text_.end(), value.bytes.begin());
    value.size = text_.size() + 1;
    values_[slot] = value.view();
  }
  std::sort(new_values_.begin(), new_values_.end(),
            [](const NewValue& a, const NewValue& b) { return a.slot < b.slot; });
  for (const NewValue& value : new_values_) {
    values_[static_cast<std::size_t>(value.slot)] = value.view();
  }
  return corrupt_count;
}

bool Calculator::packChanged(Bytes& into) const {
  if (new_values_.empty()) return false;
  if (static_cast<std::size_t>(new_values_.back().slot) >= present_) {
    UnpackedRecord unpacked = unpackRecord(record_);
    for (const NewValue& value : new_values_) {
      const ByteView bytes = value.view();
      unpacked.slots[static_cast<std::size_t>(value.slot)].emplace(bytes.begin(), bytes.end());
    }
    return packRecord(unpacked, into);
  }
  // All slots are there: copy what lies between them.
  into.clear();
  ByteWriter writer(into);
  const std::uint8_t* at = record_.data();
  for (const NewValue& value : new_values_) {
    writer.putBytes({at, value.old.data() - 2});
    writer.putLe16(static_cast<std::uint32_t>(value.size));
    writer.putBytes(value.view());
    at = value.old.data() + value.old.size();
  }
  writer.putBytes({at, record_.data() + record_.size()});
  return into.size() <= kMaxRecordSize;
}

// Puts `packed`, the record at `position` with the new values in it, into the store.
void storeChanged(Database& database, std::uint32_t position, const Calculator& calculator,
                  ByteView packed) {
  if (!database.records.replace(position, packed)) return;
  for (const NewValue& value : calculator.newValues()) {
    database.selected.set(static_cast<std::size_t>(value.slot));
  }
  setDirty(database);
}

// Makes the nearest record before `position` that passes the filter the previous one.
void findPrevious(const Database& database, std::uint32_t position, const QuerySettings& settings,
                  Calculator& calculator) {
  if (!calculator.usesPreviousRecord()) return;
  const RecordFilter filter(database, settings);
  for (std::uint32_t before = std::min(position, database.records.count()); before > 0; --before) {
    const ByteView record = database.records[before - 1].bytes();
    if (!filter.passes(record)) continue;
    calculator.begin(record);
    calculator.keepAsPrevious();
    return;
  }
}

std::vector<int> slotsInDisplayOrder(const DatabaseRecord& schema) {
  std::vector<int> slots;
  std::bitset<kFieldSlots> seen;  // a file may name a slot twice or leave one out
  for (const std::uint8_t slot : schema.display_order) {
    if (slot >= kFieldSlots || seen[slot]) continue;
    seen.set(slot);
    slots.push_back(slot);
  }
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    if (!seen[static_cast<std::size_t>(slot)]) slots.push_back(slot);
  }
  return slots;
}

// Each calculated field behind those that it refers to; a circle is cut where it is entered.
std::vector<int> slotsInOrderOfUse(const DatabaseRecord& schema) {
  std::vector<int> slots;
  std::bitset<kFieldSlots> seen;
  const std::function<void(int)> visit = [&](int slot) {
    const auto index = static_cast<std::size_t>(slot);
    if (seen[index] || schema.fields[index].type != kCalculated) return;
    seen.set(index);
    for (const StoredFormula::Token& token : storedFormula(schema.fields[index]).tokens) {
      const auto reference = fieldReference(static_cast<std::int8_t>(token.value));
      if (token.type == kFieldToken && reference && !reference->previous) visit(reference->slot);
    }
    slots.push_back(slot);
  };
  for (const int slot : slotsInDisplayOrder(schema)) visit(slot);
  return slots;
}

bool isOfOtherFields(int type) {
  return type == kCalculated || type == kText254;
}

bool sortUsesOtherFields(const DatabaseRecord& schema) {
  return std::any_of(schema.sort.begin(), schema.sort.end(), [&](const SortKey& key) {
    return key.field < kFieldSlots && isOfOtherFields(schema.fields[key.field].type);
  });
}

enum class RecordsMeant : std::uint8_t { kAll, kWithinFilter };

// The records from `first` on.
RecomputeSummary recomputeFrom(Database& database, std::uint32_t first, RecordsMeant meant,
                               const QuerySettings& settings, const CorruptFormula& corrupt) {
  RecomputeSummary summary;
  Calculator calculator(database, slotsInOrderOfUse(database.schema), settings);
  if (calculator.isEmpty()) return summary;
  findPrevious(database, first, settings, calculator);
  const RecordFilter filter(database, settings);
  const bool filtered = !filter.passesEverything();
  const std::uint32_t count = database.records.count();
  Bytes packed;
  for (std::uint32_t position = first; position < count; ++position) {
    const ByteView record = database.records[position].bytes();
    bool passes = !filtered || filter.passes(record);
    if (!passes && meant == RecordsMeant::kWithinFilter) {
      ++summary.outside;
      continue;
    }
    calculator.begin(record);
    summary.corrupt += static_cast<std::uint64_t>(calculator.compute(position, corrupt));
    const bool changed = calculator.packChanged(packed);
    // A new value may put the record out of a filter that looks at it.
    if (changed && filtered) passes = filter.passes(packed);
    if (passes && calculator.usesPreviousRecord()) calculator.keepAsPrevious();
    if (!changed) continue;
    ++summary.records;
    summary.values += calculator.newValues().size();
    storeChanged(database, position, calculator, packed);
  }
  return summary;
}

}  // namespace

std::string resultText(double value, int result_kind, const FormatSettings& formats) {
  std::string text;
  appendResultText(text, value, result_kind, formats);
  return text;
}

int recomputeField(Database& database, int slot, std::uint32_t position,
                   const QuerySettings& settings, const CorruptFormula& corrupt) {
  if (position >= database.records.count()) return -1;
  if (slot < 0 || slot >= kFieldSlots) return 0;
  Calculator calculator(database, {slot}, settings);
  findPrevious(database, position, settings, calculator);
  calculator.begin(database.records[position].bytes());
  calculator.compute(position, corrupt);
  Bytes packed;
  if (calculator.packChanged(packed)) storeChanged(database, position, calculator, packed);
  return 0;
}

void recomputeRecord(const Database& database, UnpackedRecord& record, std::uint32_t position,
                     const QuerySettings& settings, const CorruptFormula& corrupt) {
  Calculator calculator(database, slotsInDisplayOrder(database.schema), settings);
  findPrevious(database, position, settings, calculator);
  Bytes packed;
  if (settings.lookup && !packRecord(record, packed)) packed.clear();
  calculator.begin(record, packed);
  calculator.compute(position, corrupt);
  for (const NewValue& value : calculator.newValues()) {
    const ByteView bytes = value.view();
    record.slots[static_cast<std::size_t>(value.slot)].emplace(bytes.begin(), bytes.end());
  }
}

RecomputeSummary recomputeAll(Database& database, const QuerySettings& settings,
                              const CorruptFormula& corrupt) {
  DatabaseRecord& schema = database.schema;
  if (std::none_of(schema.fields.begin(), schema.fields.end(),
                   [](const FieldDefinition& field) { return isOfOtherFields(field.type); })) {
    return {};
  }
  if (sortUsesOtherFields(schema)) {
    schema.sort_pending = 1;
  } else if (schema.sort_pending != 0) {
    sortRecords(database, settings.formats);
    schema.sort_pending = 0;
  }
  const RecomputeSummary summary =
      recomputeFrom(database, 0, RecordsMeant::kWithinFilter, settings, corrupt);
  if (schema.sort_pending != 0) {
    sortRecords(database, settings.formats);
    schema.sort_pending = 0;
  }
  return summary;
}

RecomputeSummary recomputeAdded(Database& database, std::uint32_t first,
                                const QuerySettings& settings, const CorruptFormula& corrupt) {
  return recomputeFrom(database, first, RecordsMeant::kAll, settings, corrupt);
}

}  // namespace tabelion
