#include "query/list_columns.h"

#include <bitset>

namespace tabelion {

std::vector<int> slotsInDisplayOrder(const DatabaseRecord& schema) {
  std::vector<int> slots;
  std::bitset<kFieldSlots> seen;
  for (const std::size_t slot : schema.display_order) {
    if (slot < kFieldSlots && isValidType(schema.fields[slot].type) && !seen[slot]) {
      slots.push_back(static_cast<int>(slot));
      seen.set(slot);
    }
  }
  return slots;
}

std::vector<int> listedSlots(const DatabaseRecord& schema) {
  std::vector<int> slots = slotsInDisplayOrder(schema);
  std::erase_if(slots, [&](int slot) {
    const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
    return field.column_width < 1 || !traitsOf(field.type).lists;
  });
  return slots;
}

}  // namespace tabelion
