// How records that were moved or changed are found again: by their stamps.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/packed_record.h"

namespace tabelion {

// What of a stamp tells one record from another and never changes: random bytes, creation time,
// serial number; not the flags, which say whether it is enciphered. 0 without a stamp.
inline std::uint64_t stampIdentity(ByteView record) {
  if (record.size() <= kStampIdentitySize || record[0] != kStampedPrefix) return 0;
  const std::uint8_t* stamp = record.data() + 1;
  return std::uint64_t{loadLe32(stamp + 5)} << 32 | std::uint64_t{loadLe16(stamp + 9)} << 16 |
         loadBe16(stamp + 12);
}

// Numbers by identity. Records mostly come in the order in which they were entered, so the place
// behind the last one found is looked at first.
class IdentityIndex {
 public:
  void add(std::uint64_t identity, std::uint32_t number) { entries_.push_back({identity, number}); }
  void sort() {
    if (!std::is_sorted(entries_.begin(), entries_.end())) {
      std::sort(entries_.begin(), entries_.end());
    }
  }
  // Calls `use` with the numbers of an identity until it returns true.
  template <typename Use>
  bool forEach(std::uint64_t identity, const Use& use) {
    auto at = last_ < entries_.size() && entries_[last_].first == identity
                  ? entries_.begin() + static_cast<std::ptrdiff_t>(last_)
                  : std::lower_bound(entries_.begin(), entries_.end(),
                                     std::pair(identity, std::uint32_t{0}));
    while (at != entries_.begin() && (at - 1)->first == identity) --at;
    for (; at != entries_.end() && at->first == identity; ++at) {
      last_ = static_cast<std::size_t>(at - entries_.begin()) + 1;
      if (use(at->second)) return true;
    }
    return false;
  }

 private:
  std::vector<std::pair<std::uint64_t, std::uint32_t>> entries_;
  std::size_t last_ = 0;
};

}  // namespace tabelion
