#include "query/popup_list.h"

#include <algorithm>
#include <utility>

#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "engine/stored_value.h"
#include "query/field_text.h"
#include "query/formula.h"
#include "query/recompute.h"
#include "query/sort.h"

namespace tabelion {
namespace {

// Whether every item of before is there with the text of before. A new one is no record's yet.
bool keepsTexts(const PopupItems& before, const PopupItems& after) {
  return std::all_of(before.begin(), before.end(), [&](const PopupItem& item) {
    return std::any_of(after.begin(), after.end(), [&](const PopupItem& other) {
      return popupKey(other.key) == popupKey(item.key) && other.text == item.text;
    });
  });
}

bool isSortedBy(const DatabaseRecord& schema, int slot) {
  return std::any_of(schema.sort.begin(), schema.sort.end(),
                     [&](const SortKey& key) { return key.field == slot; });
}

bool isReferredTo(const DatabaseRecord& schema, int slot) {
  const auto refers = [&](const StoredFormula::Token& token) {
    const auto reference = fieldReference(static_cast<std::int8_t>(token.value));
    return token.type == kFieldToken && reference && reference->slot == slot;
  };
  return std::any_of(schema.fields.begin(), schema.fields.end(), [&](const FieldDefinition& field) {
    if (field.type != FieldType::kCalculated) return false;
    const auto& tokens = storedFormula(field).tokens;
    return std::any_of(tokens.begin(), tokens.end(), refers);
  });
}

}  // namespace

PopupUses countUses(const Database& database, int slot, std::span<const PopupItem> items) {
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
  PopupUses uses;
  for (std::uint32_t i = 0; i < database.records.count(); ++i) {
    database.records.fetchAhead(i, kMaxRecordSize);
    const ByteView record = database.records[i].bytes();
    const auto value = slotValue(record, slot);
    if (!value) continue;
    if (isMasked(field, record)) {
      ++uses.hidden;
      continue;
    }
    const PopupKey key = popupKey(*value);
    if (std::any_of(items.begin(), items.end(),
                    [&](const PopupItem& item) { return popupKey(item.key) == key; })) {
      ++uses.records;
    }
  }
  return uses;
}

void replaceItems(Database& database, int slot, PopupItems items, const QuerySettings& settings,
                  std::uint32_t* followed) {
  FieldRecord& field = database.fields[static_cast<std::size_t>(slot)];
  const bool keeps_texts = keepsTexts(field.items, items);
  field.items = std::move(items);
  field.unread.reset();  // it has a list of its own from now on
  setDirty(database);
  if (keeps_texts) return;
  DatabaseRecord& schema = database.schema;
  if (isSortedBy(schema, slot)) schema.sort_pending = 1;
  if (isReferredTo(schema, slot)) recomputeAll(database, settings, {}, followed);
  if (schema.sort_pending == 0) return;
  sortRecords(database, settings.formats, followed);
  recomputeDependents(database, settings);
  schema.sort_pending = 0;
}

}  // namespace tabelion
