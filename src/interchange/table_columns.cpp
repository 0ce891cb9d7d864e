#include "interchange/table_columns.h"

#include <algorithm>
#include <cstring>
#include <map>

#include <fmt/format.h>

#include "engine/ascii.h"
#include "engine/schema_places.h"

namespace tabelion {
namespace {

bool holdsAValue(FieldType type) {
  return isValidType(type) && type != FieldType::kSeparator;
}

// "Fruit > Apple": the texts of the nearest items above, one for each level, and the item's own.
std::string pathOf(const FieldRecord& field, std::size_t index,
                   const std::vector<std::string>& texts) {
  std::string path = texts[index];
  int level = field.items[index].level();
  for (std::size_t i = index; i-- > 0 && level > 0;) {
    if (field.items[i].level() >= level) continue;
    path.insert(0, texts[i] + " > ");
    level = field.items[i].level();
  }
  return path;
}

}  // namespace

std::vector<TableColumn> tableColumns(const DatabaseRecord& schema, const TextEncoding& encoding) {
  std::vector<TableColumn> columns;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
    if (!holdsAValue(field.type)) continue;
    const std::string name = encoding.toUtf8(fieldName(field));
    columns.push_back({name, slot, field.type, false});
    if (field.type == FieldType::kLinkField)
      columns.push_back({name + ".key", slot, field.type, true});
  }
  std::map<std::string, int> uses;
  for (const TableColumn& column : columns) ++uses[lowerCaseText(column.name)];
  for (TableColumn& column : columns) {
    if (uses[lowerCaseText(column.name)] > 1) column.name += fmt::format(" #{}", column.slot);
  }
  return columns;
}

PopupNames::PopupNames(const FieldRecord& field, const TextEncoding& encoding) {
  std::vector<std::string> texts;
  std::map<std::string, int> uses;
  for (const PopupItem& item : field.items) {
    texts.push_back(encoding.toUtf8(item.text));
    ++uses[texts.back()];
  }
  std::vector<std::string> names = texts;
  std::map<std::string, int> path_uses;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (uses[texts[i]] > 1 || texts[i].empty()) names[i] = pathOf(field, i, texts);
    ++path_uses[names[i]];
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (path_uses[names[i]] > 1 || names[i].empty()) names[i] += fmt::format(" #{}", i + 1);
    items_.push_back({field.items[i].key, std::move(names[i])});
  }
}

const std::string* PopupNames::nameOf(ByteView value) const {
  if (value.size() < kPopupKeySize) return nullptr;
  for (const Item& item : items_) {
    if (std::memcmp(item.key.data(), value.data(), kPopupKeySize) == 0) return &item.name;
  }
  return nullptr;
}

const ItemKey* PopupNames::keyOf(std::string_view name) const {
  for (const Item& item : items_) {
    if (item.name == name) return &item.key;
  }
  return nullptr;
}

}  // namespace tabelion
