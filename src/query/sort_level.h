// One level of a sort, prepared: how its field's values compare, whatever way they are stored.
// Used by sort.cpp and sort_keys.cpp alone.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "engine/database.h"
#include "engine/packed_record.h"
#include "query/format_settings.h"
#include "query/sort_fields.h"

namespace tabelion {

enum class SortKind : std::uint8_t {
  kAlwaysEqual,
  kText,     // case folded
  kLink,     // no text comes first, then as kText
  kInteger,  // 32 bits, by a difference that wraps
  kNumber,   // exactly: leading integers, times, check boxes, ranks of pop-up items
  kReal,
};

// What a value compares by.
struct SortOperand {
  bool missing = false;     // the record has no such slot
  bool empty_link = false;  // kLink
  std::string_view text;    // kText, kLink: inside the record
  std::int64_t number = 0;  // kInteger, kNumber
  double real = 0;          // kReal
};

class SortLevel {
 public:
  SortLevel(const Database& database, int slot, bool forward, const FormatSettings& formats);

  int slot() const { return slot_; }
  bool forward() const { return forward_; }
  SortKind kind() const { return kind_; }
  // Bytes that hold every number of a kNumber level; fewer than 8 hold none below 0.
  std::size_t numberBytes() const { return number_bytes_; }

  // The text points into `value`.
  SortOperand operandOf(const std::optional<ByteView>& value) const;
  // -1, 0 or 1, with the direction in it.
  int compare(const SortOperand& a, const SortOperand& b) const;
  // The same against a value as it is stored, for one operand and many values: texts mostly differ
  // in their first bytes, so their ends are not looked for.
  int compareWithStored(const SortOperand& a, const std::optional<ByteView>& b) const;

 private:
  // An item of a pop-up and its place in the order of the texts; equal texts have equal ranks. Keys
  // are compared as words: that is most of the work of a sort by a pop-up.
  using KeyWords = std::array<std::uint64_t, 2>;
  struct Rank {
    KeyWords key{};
    std::int64_t rank = 0;
  };
  static KeyWords wordsOf(ByteView value);
  void rankItems(const FieldRecord& items);
  std::int64_t rankOf(ByteView value) const;

  int slot_;
  FieldType type_;
  bool forward_;
  bool decimal_comma_;
  SortKind kind_;
  std::size_t number_bytes_;
  std::vector<Rank> ranks_;
  std::int64_t rank_of_empty_ = 0;
  std::int64_t rank_of_unknown_ = 0;
};

// The levels in force, up to the first one without a field. A stored field past the last slot
// counts as none.
std::vector<SortLevel> sortLevels(const Database& database, const FormatSettings& formats);

// The values of the levels' slots in one walk over the record.
using SortValues = std::array<std::optional<ByteView>, kSortLevels>;
inline SortValues sortValues(ByteView record, const std::vector<SortLevel>& levels) {
  SortValues values;
  std::size_t found = 0;
  SlotWalker walker(record);
  for (int slot = 0; found < levels.size(); ++slot) {
    const auto value = walker.next();
    if (!value) break;
    for (std::size_t i = 0; i < levels.size(); ++i) {
      if (levels[i].slot() != slot) continue;
      values[i].emplace(value->data(), value->size());  // not copied by way of memory
      ++found;
    }
  }
  return values;
}

}  // namespace tabelion
