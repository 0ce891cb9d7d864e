// Changing the items of a pop-up, with all that is made of their texts in the records.
#pragma once

#include <cstdint>
#include <span>

#include "query/popup_tree.h"
#include "query/query_settings.h"

namespace tabelion {

// The records that have one of these items as their value, and those of which nobody can tell,
// because the field is enciphered in them.
struct PopupUses {
  std::uint32_t records = 0;
  std::uint32_t hidden = 0;
};
PopupUses countUses(const Database& database, int slot, std::span<const PopupItem> items);

// Marks the database dirty. Where a text is another one or went, calculated fields that take
// their number from it are worked out again, and records that are sorted by it put into order.
// `followed`, when given, is a record's position and stays that record's. The list of records shown
// is the caller's to refresh.
void replaceItems(Database& database, int slot, PopupItems items, const QuerySettings& settings,
                  std::uint32_t* followed = nullptr);

}  // namespace tabelion
