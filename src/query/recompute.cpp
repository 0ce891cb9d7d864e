#include "query/recompute.h"

#include <algorithm>
#include <bitset>
#include <vector>

#include "engine/schema_places.h"
#include "query/calculator.h"
#include "query/filter.h"
#include "query/formula.h"
#include "query/sort.h"

namespace tabelion {
namespace {

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
    if (seen[index] || schema.fields[index].type != FieldType::kCalculated) return;
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

// Of these, the ones whose values come from other records too.
std::vector<int> runningSlots(const Database& database) {
  std::vector<int> slots = slotsInOrderOfUse(database.schema);
  std::erase_if(slots, [&](int slot) { return !usesOtherRecords(database, slot); });
  return slots;
}

bool isOfOtherFields(FieldType type) {
  return type == FieldType::kCalculated || type == FieldType::kText254;
}

bool sortUsesOtherFields(const DatabaseRecord& schema) {
  return std::any_of(schema.sort.begin(), schema.sort.end(), [&](const SortKey& key) {
    return key.field < kFieldSlots && isOfOtherFields(schema.fields[key.field].type);
  });
}

enum class RecordsMeant : std::uint8_t { kAll, kWithinFilter };

// These fields of the records from `first` on.
RecomputeSummary recomputeFrom(Database& database, const std::vector<int>& slots,
                               std::uint32_t first, RecordsMeant meant,
                               const QuerySettings& settings, const CorruptFormula& corrupt) {
  RecomputeSummary summary;
  Calculator calculator(database, slots, settings);
  if (calculator.isEmpty()) return summary;
  findPrevious(database, first, settings, calculator);
  const RecordFilter filter(database, settings);
  const bool filtered = !filter.passesEverything();
  const std::uint32_t count = database.records.count();
  Bytes packed;
  for (std::uint32_t position = first; position < count; ++position) {
    database.records.fetchAhead(position, kMaxRecordSize);
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
                              const CorruptFormula& corrupt, std::uint32_t* followed) {
  DatabaseRecord& schema = database.schema;
  if (std::none_of(schema.fields.begin(), schema.fields.end(),
                   [](const FieldDefinition& field) { return isOfOtherFields(field.type); })) {
    return {};
  }
  if (sortUsesOtherFields(schema)) {
    schema.sort_pending = 1;
  } else if (schema.sort_pending != 0) {
    sortRecords(database, settings.formats, followed);
    schema.sort_pending = 0;
  }
  RecomputeSummary summary = recomputeFrom(database, slotsInOrderOfUse(schema), 0,
                                           RecordsMeant::kWithinFilter, settings, corrupt);
  if (schema.sort_pending != 0) {
    sortRecords(database, settings.formats, followed);
    schema.sort_pending = 0;
    // Totals belong to the order that stands.
    const RecomputeSummary again = recomputeDependents(database, settings);
    summary.records = std::max(summary.records, again.records);
    summary.values += again.values;
  }
  return summary;
}

RecomputeSummary recomputeDependents(Database& database, const QuerySettings& settings,
                                     const CorruptFormula& corrupt) {
  return recomputeFrom(database, runningSlots(database), 0, RecordsMeant::kWithinFilter, settings,
                       corrupt);
}

RecomputeSummary recomputeAdded(Database& database, std::uint32_t first,
                                const QuerySettings& settings, const CorruptFormula& corrupt) {
  return recomputeFrom(database, slotsInOrderOfUse(database.schema), first, RecordsMeant::kAll,
                       settings, corrupt);
}

}  // namespace tabelion
