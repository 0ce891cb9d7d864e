#include "query/sort.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "engine/packed_record.h"
#include "query/sort_algorithm.h"
#include "query/sort_keys.h"
#include "query/sort_level.h"

namespace tabelion {
namespace {

// As slotValue, in line: re-placing a record asks for little else.
std::optional<ByteView> valueAt(ByteView record, int slot) {
  SlotWalker walker(record);
  for (;; --slot) {
    const auto value = walker.next();
    if (!value || slot == 0) return value;
  }
}

int compareThroughLevels(const std::vector<SortLevel>& levels, ByteView a, ByteView b) {
  for (const SortLevel& level : levels) {
    const int result = level.compare(level.operandOf(valueAt(a, level.slot())),
                                     level.operandOf(valueAt(b, level.slot())));
    if (result != 0) return result;
  }
  return 0;
}

// The order of the values as they are, for those that have no keys.
class ValueOrder {
 public:
  ValueOrder(const RecordStore& records, const std::vector<SortLevel>& levels)
      : records_(records), levels_(levels) {}

  int operator()(const SortElement& a, const SortElement& b) const {
    return compareThroughLevels(levels_, bytesOf(a), bytesOf(b));
  }
  bool canContradict() const { return true; }
  bool lackTheSame(const SortElement& a, const SortElement& b) const {
    for (const SortLevel& level : levels_) {
      const SortOperand left = level.operandOf(valueAt(bytesOf(a), level.slot()));
      const SortOperand right = level.operandOf(valueAt(bytesOf(b), level.slot()));
      if (left.missing || right.missing) return left.missing && right.missing;
      if (level.compare(left, right) != 0) return false;
    }
    return false;
  }

 private:
  ByteView bytesOf(const SortElement& element) const { return records_[element.position].bytes(); }

  const RecordStore& records_;
  const std::vector<SortLevel>& levels_;
};

// Whether each element is before the next. Keys order everything one way, so then there is nothing
// to do and nothing that the algorithm would do: elements that differ have one order only. Not so
// where equal ones or contradictions are among them.
bool isStrictlyInOrder(const std::vector<SortElement>& elements, const SortKeys& keys) {
  if (keys.canContradict()) return false;
  return std::adjacent_find(elements.begin(), elements.end(),
                            [&](const SortElement& a, const SortElement& b) {
                              return keys(a, b) >= 0;
                            }) == elements.end();
}

std::vector<SortElement> elementsOf(const RecordStore& records) {
  std::vector<SortElement> elements(records.count());
  for (std::uint32_t i = 0; i < records.count(); ++i) elements[i].position = i;
  return elements;
}

// The elements' records in their order.
void arrange(RecordStore& records, const std::vector<SortElement>& elements) {
  std::vector<std::uint32_t> order;
  order.reserve(elements.size());
  for (const SortElement& element : elements) order.push_back(element.position);
  records.rearrange(order);
}

bool hasLevels(const DatabaseRecord& schema) {
  return std::any_of(schema.sort.begin(), schema.sort.end(),
                     [](const SortKey& key) { return key.field < kFieldSlots; });
}

// No record lies there: files end before it.
constexpr std::uint32_t kMarkOffset = 0xFFFFFFFFu;

// Keeps an eye on one record while all are sorted. What a record has beside its
// bytes stays with it, so that its offset in the file can be its mark meanwhile.
class FollowedRecord {
 public:
  FollowedRecord(RecordStore& records, std::uint32_t* position)
      : records_(records), position_(position && *position < records.count() ? position : nullptr) {
    if (position_) offset_ = std::exchange(records_[*position_].offset, kMarkOffset);
  }
  // Puts down where it stands now, and takes the mark off.
  void find() {
    if (!position_) return;
    const auto found = std::find_if(records_.begin(), records_.end(), [](const Record& record) {
      return record.offset == kMarkOffset;
    });
    *position_ = static_cast<std::uint32_t>(found - records_.begin());
    records_[*position_].offset = offset_;
  }

 private:
  RecordStore& records_;
  std::uint32_t* position_;
  std::uint32_t offset_ = 0;
};

void sortAll(Database& database, const FormatSettings& formats) {
  const std::vector<SortLevel> levels = sortLevels(database, formats);
  if (levels.empty() || database.records.count() < 2) return;
  setDirty(database);
  if (auto keys = SortKeys::make(database.records, levels)) {
    std::vector<SortElement> elements = keys->takeElements();
    if (isStrictlyInOrder(elements, *keys)) return;
    quickSort(elements, *keys);
    arrange(database.records, elements);
  } else {
    std::vector<SortElement> elements = elementsOf(database.records);
    quickSort(elements, ValueOrder(database.records, levels));
    arrange(database.records, elements);
  }
}

}  // namespace

int compareFieldValues(const Database& database, ByteView a, ByteView b, int slot, bool forward,
                       const FormatSettings& formats) {
  return compareThroughLevels({SortLevel(database, slot, forward, formats)}, a, b);
}

int compareRecords(const Database& database, std::uint32_t a, std::uint32_t b,
                   const FormatSettings& formats) {
  return compareThroughLevels(sortLevels(database, formats), database.records[a].bytes(),
                              database.records[b].bytes());
}

void sortRecords(Database& database, const FormatSettings& formats, std::uint32_t* followed) {
  FollowedRecord record(database.records, followed);
  sortAll(database, formats);
  record.find();
}

bool isInOrder(const Database& database, const FormatSettings& formats) {
  const std::vector<SortLevel> levels = sortLevels(database, formats);
  const RecordStore& records = database.records;
  for (std::uint32_t next = 1; next < records.count() && !levels.empty(); ++next) {
    const ByteView record = records[next - 1].bytes();
    if (compareThroughLevels(levels, record, records[next].bytes()) > 0) return false;
  }
  return true;
}

std::uint32_t replaceInOrder(Database& database, std::uint32_t position,
                             const FormatSettings& formats) {
  if (!hasLevels(database.schema)) return position;
  RecordStore& records = database.records;
  const std::vector<SortLevel> levels = sortLevels(database, formats);
  const SortValues values = sortValues(records[position].bytes(), levels);
  std::array<SortOperand, kSortLevels> saved;
  for (std::size_t i = 0; i < levels.size(); ++i) saved[i] = levels[i].operandOf(values[i]);

  const auto isBefore = [&](ByteView other) {
    for (std::size_t i = 0; i < levels.size(); ++i) {
      const int result = levels[i].compareWithStored(saved[i], valueAt(other, levels[i].slot()));
      if (result != 0) return result < 0;
    }
    return false;  // among equals it comes last
  };
  const std::uint32_t count = records.count();
  const std::size_t reach =
      levels.empty() ? 0 : slotEnd(records[position].bytes(), levels.front().slot());
  std::uint32_t to = 0;
  for (; to < count; ++to) {
    records.fetchAhead(to, reach);
    if (to != position && isBefore(records[to].bytes())) break;
  }
  if (to > position) --to;  // taking it out moves the others up; nobody before: the last place
  records.move(position, to);
  return to;
}

}  // namespace tabelion
