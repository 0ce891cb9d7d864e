// Maps unique record IDs to record indexes while and after a file is read.
//
// IDs come from the file, where nothing keeps them unique: any number of records may have the same
// one, 0 above all, and the first that was added is the one that is found. An index is a place in
// the record list of the file as it was read (0 is the database record); it does not follow
// records that are inserted, moved or removed later.
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
  // Pairs take 8 bytes each; `reserve` makes room for that many without filling it.
  void clear() { pairs_.clear(); }
  void reserve(std::size_t count) { pairs_.reserve(count); }
  void add(const UniqueId& id, std::uint32_t index) {
    pairs_.push_back({uniqueIdNumber(id), index});
    sorted_ = false;
  }
  // The index that was added first for this ID, none when it was never added. Sorts the pairs when
  // any was added since, so the first call after a file was read costs as much as a sort.
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
