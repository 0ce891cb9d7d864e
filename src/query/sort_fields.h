// Which fields a sort may use, and what the Sort dialog shows and stores.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/database.h"

namespace tabelion {

inline constexpr int kSortLevels = 3;
inline constexpr std::uint8_t kSortForward = 1;  // SortKey::order; any other is reverse

// The sentence that refuses this field, in the database's code page; empty when it can be sorted.
std::string sortRefusal(const Database& database, int slot);
inline bool isSortable(const Database& database, int slot) {
  return sortRefusal(database, slot).empty();
}

// The names that each of the three field lists offers after "No Field".
std::vector<std::string> sortFieldNames(const Database& database);

// The selections of the dialog: list position of the field (0 "No Field") and whether "Forward".
struct SortSelection {
  std::array<int, kSortLevels> field{};
  std::array<bool, kSortLevels> forward{};
  bool operator==(const SortSelection&) const = default;
};
// `view` -1: the database's own levels.
SortSelection sortSelection(const Database& database, int view = -1);

// The slot that a list position of a field means; -1 for "No Field".
inline constexpr int slotOfSortPosition(int position) {
  return position - 1;
}
// Which level of the database's sort a field is, from 1 on; 0 where it has no part in the order.
int sortLevelOf(const DatabaseRecord& schema, int slot);

// What OK does. The refusal of the first level that cannot be sorted, with nothing changed, or an
// empty text. Without `view` the levels go into the database, and into its current view when that
// has live update; with it into that view alone. Marks the database dirty; sorts nothing.
std::string storeSortSelection(Database& database, const SortSelection& selection, int view = -1);

}  // namespace tabelion
