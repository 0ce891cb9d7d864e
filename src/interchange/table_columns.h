// A database as a table: which columns its records have in CSV, JSON and SQL, and what their
// pop-up items are called there.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/database.h"
#include "interchange/text_encoding.h"

namespace tabelion {

// One column. A link field has two, its text and, as "NAME.key", the number of the record that it
// points to; every other field that holds a value has one.
struct TableColumn {
  std::string name;  // UTF-8, unique in the table also where case does not count
  int slot = 0;
  FieldType type = FieldType::kUnused;  // a field type code
  bool is_link_key = false;
};

// In slot order. Names are the fields'; where two would be equal, " #SLOT" makes them different.
std::vector<TableColumn> tableColumns(const DatabaseRecord& schema, const TextEncoding& encoding);

// The items of a pop-up under names that are unique: the item's text; where several items share
// it, the texts on the way to it ("Fruit > Apple"), and where even these are equal, a number.
class PopupNames {
 public:
  PopupNames() = default;
  PopupNames(const FieldRecord& field, const TextEncoding& encoding);

  // None for a value that no item has, also for "no value".
  const std::string* nameOf(ByteView value) const;
  // The stored value, 14 bytes; none when no item has the name.
  const ItemKey* keyOf(std::string_view name) const;

 private:
  struct Item {
    ItemKey key;
    std::string name;
  };
  std::vector<Item> items_;
};

}  // namespace tabelion
