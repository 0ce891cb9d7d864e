#include "interchange/popup_keys.h"

#include <algorithm>
#include <string_view>

namespace tabelion {

ItemKey describedItemKey(int slot, std::size_t index, int level) {
  constexpr std::string_view kMark = "pdblb";
  ItemKey key{};
  std::copy(kMark.begin(), kMark.end(), key.begin());
  storeLe16(&key[5], static_cast<std::uint32_t>(index + 1));
  key[7] = static_cast<std::uint8_t>(slot + 1);
  key[kItemLevelOffset] = static_cast<std::uint8_t>(level);
  return key;
}

}  // namespace tabelion
