// Maps unique record IDs to record indexes while and after a file is read.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace tabelion {

using UniqueId = std::array<std::uint8_t, 3>;  // least significant byte first

inline std::uint32_t uniqueIdNumber(const UniqueId& id) {
  return static_cast<std::uint32_t>(id[0]) | static_cast<std::uint32_t>(id[1]) << 8 |
         static_cast<std::uint32_t>(id[2]) << 16;
}

class UIDMap {
 public:
  void clear() { pairs_.clear(); }
  void reserve(std::size_t count) { pairs_.reserve(count); }
  void add(const UniqueId& id, std::uint32_t index) {
    pairs_.push_back({uniqueIdNumber(id), index});
    sorted_ = false;
  }
  // The index that was added first for this ID. Sorts the pairs when any was added since.
  std::optional<std::uint32_t> find(const UniqueId& id);
  std::size_t size() const { return pairs_.size(); }

 private:
  struct Pair {
    std::uint32_t id = 0;
    std::uint32_t index = 0;
  };
  std::vector<Pair> pairs_;
  bool sorted_ = false;
};

}  // namespace tabelion
