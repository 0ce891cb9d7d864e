#include "engine/uid_map.h"

#include <algorithm>

namespace tabelion {

std::optional<std::uint32_t> UIDMap::find(const UniqueId& id) {
  const auto by_id = [](const Pair& a, const Pair& b) { return a.id < b.id; };
  if (!sorted_) {
    std::stable_sort(pairs_.begin(), pairs_.end(), by_id);
    sorted_ = true;
  }
  const Pair wanted{uniqueIdNumber(id), 0};
  const auto found = std::lower_bound(pairs_.begin(), pairs_.end(), wanted, by_id);
  if (found == pairs_.end() || found->id != wanted.id) return std::nullopt;
  return found->index;
}

}  // namespace tabelion
