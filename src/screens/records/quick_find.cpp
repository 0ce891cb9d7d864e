#include "screens/records/quick_find.h"

#include <algorithm>

#include "engine/ascii.h"
#include "engine/packed_record.h"
#include "query/field_text.h"
#include "query/list_columns.h"
#include "query/text_case.h"
#include "screens/records/list_columns.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

// The field that records are looked up by: the one they are sorted by, else the first column.
int findSlot(const DatabaseRecord& schema) {
  const int sorted_by = schema.sort[0].field;
  if (sorted_by < kFieldSlots && isValidType(schema.fields[sorted_by].type)) return sorted_by;
  const std::vector<int> slots = listedSlots(schema);
  return slots.empty() ? -1 : slots.front();
}

}  // namespace

std::optional<int> FindListRow(Application& app, const std::u16string& typed) {
  const Database& database = CurrentDatabase(app);
  const int slot = findSlot(database.schema);
  Result<std::string> wanted = StoredText(app, typed);
  if (slot < 0 || !wanted.ok() || wanted->empty()) return std::nullopt;
  const std::string word = lowerCaseText(*wanted);
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
  const FieldRecord& items = database.fields[static_cast<std::size_t>(slot)];
  std::string text;
  ByteView before;  // in their order, records of the same value mostly follow each other
  for (std::size_t row = 0; row < database.record_index.size(); ++row) {
    const ByteView record = database.records[database.record_index[row]].bytes();
    const auto value = slotValue(record, slot);
    if (!value || isMasked(field, record) || std::ranges::equal(*value, before)) continue;
    before = *value;
    text.clear();
    appendValueText(text, field, items, *value, app.level().formats);
    if (startsWithAnyCase(text, word)) return static_cast<int>(row);
  }
  return std::nullopt;
}

}  // namespace tabelion
