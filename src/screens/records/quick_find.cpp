#include "screens/records/quick_find.h"

#include <algorithm>

#include "engine/ascii.h"
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

bool IsFindCharacter(char32_t character) {
  if (character >= 0x80) return character >= 0xA0;
  return character == U' ' || isDigit(character) || isLetter(character);
}

void QuickFind::clear() {
  typed_.clear();
  in_use_ = false;
}

std::optional<int> QuickFind::type(Application& app, char32_t character) {
  if (typed_.size() >= kCapacity || character > 0xFFFF) return std::nullopt;
  in_use_ = true;
  typed_.push_back(static_cast<char16_t>(character));
  const std::optional<int> row = search(app);
  if (!row) typed_.pop_back();
  return row;
}

std::optional<int> QuickFind::erase(Application& app) {
  if (typed_.empty()) return std::nullopt;
  typed_.pop_back();
  return search(app);
}

std::optional<int> QuickFind::search(Application& app) const {
  const Database& database = CurrentDatabase(app);
  const int slot = findSlot(database.schema);
  Result<std::string> wanted = StoredText(app, typed_);
  if (slot < 0 || !wanted.ok() || wanted->empty()) return std::nullopt;
  const std::string word = lowerCaseText(*wanted);
  for (std::size_t row = 0; row < database.record_index.size(); ++row) {
    const ByteView record = database.records[database.record_index[row]].bytes();
    const FieldText text = fieldText(database, record, slot, app.level().formats);
    if (startsWithAnyCase(text.text, word)) return static_cast<int>(row);
  }
  return std::nullopt;
}

}  // namespace tabelion
