#include "screens/records/quick_find.h"

#include <algorithm>

#include "query/field_text.h"
#include "query/list_columns.h"
#include "screens/records/list_columns.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

void foldCase(std::string& text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
}

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
  return character == U' ' || (character >= U'0' && character <= U'9') ||
         (character >= U'A' && character <= U'Z') || (character >= U'a' && character <= U'z');
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
  foldCase(*wanted);
  for (std::size_t row = 0; row < database.record_index.size(); ++row) {
    const ByteView record = database.records[database.record_index[row]].bytes();
    std::string text = fieldText(database, record, slot, app.level().formats).text;
    text.resize(std::min(text.size(), wanted->size()));
    foldCase(text);
    if (text == *wanted) return static_cast<int>(row);
  }
  return std::nullopt;
}

}  // namespace tabelion
