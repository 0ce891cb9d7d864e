// The keys of a full sort, worked out once for all records: two keys compare as their bytes do,
// eight at a time. What the sort moves about holds the first sixteen, so that it rarely has to look
// elsewhere. Used by sort.cpp alone.
//
// A key is its levels one after the other; a level in reverse has all its bits turned over:
//   text            folded, then 0
//   link            0 when empty, else 1 and a text
//   integer         4 bytes, big-endian, with the sign bit turned over
//   other number    as many bytes as its level needs; with 8 the sign bit is turned over
//   real number     8 bytes: negative ones with all bits turned over, others with the sign bit
// Where a record lacks the field of a level, every level has one more byte in front, never turned
// over: 1, or 0 for such a record, whose key ends there. No key is the start of another one.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "engine/record_store.h"
#include "query/sort_level.h"

namespace tabelion {

// What the sort moves about in place of a record.
struct SortElement {
  std::uint64_t first = 0;     // the key's first eight bytes
  std::uint64_t second = 0;    // and the next
  std::uint32_t rest = 0;      // where the others are
  std::uint32_t position = 0;  // of the record before the sort
};

class SortKeys {
 public:
  // None when the keys cannot stand for the values: integers more than 2^31 apart have no order.
  static std::optional<SortKeys> make(const RecordStore& records,
                                      const std::vector<SortLevel>& levels);

  // The records in their present order, to be sorted by these keys.
  std::vector<SortElement> takeElements() { return std::move(elements_); }

  // -1, 0 or 1. Equal keys that end with a missing field give -1: each is before the other.
  int operator()(const SortElement& a, const SortElement& b) const {
    if (a.first != b.first) return a.first < b.first ? -1 : 1;
    if (a.second != b.second) return a.second < b.second ? -1 : 1;
    return compareRest(a.rest, b.rest);
  }

  // Whether any key ends with a missing field.
  bool canContradict() const { return some_missing_; }
  // Whether the two records lack the same field and are equal in the levels before it.
  bool lackTheSame(const SortElement& a, const SortElement& b) const {
    return isMissing(a) && a.first == b.first && a.second == b.second &&
           compareRest(a.rest, b.rest) < 0 && compareRest(b.rest, a.rest) < 0;
  }

 private:
  // A run of words: how many follow, with kMissing when the key ends with a missing field.
  static constexpr std::uint64_t kMissing = std::uint64_t{1} << 63;

  bool isMissing(const SortElement& a) const { return (words_[a.rest] & kMissing) != 0; }
  int compareRest(std::uint32_t a, std::uint32_t b) const;

  std::vector<SortElement> elements_;
  std::vector<std::uint64_t> words_;
  bool some_missing_ = false;

  friend class SortKeyMaker;
};

}  // namespace tabelion
