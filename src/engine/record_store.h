// The data records of an open database, in database order, each an opaque run of bytes.
//
// Records as read point into the one image of the file; a record that is added or changed gets an
// allocation of its own. 24 bytes a record beside its data.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "engine/bytes.h"
#include "engine/field_types.h"
#include "engine/uid_map.h"
#include "platform/files.h"

namespace tabelion {

class Record {
 public:
  Record() = default;
  // A record of at most 65535 bytes inside the file image, which outlives it.
  static Record borrowed(ByteView bytes) {
    Record record;
    record.bytes_ = bytes.data();
    record.length_ = static_cast<std::uint16_t>(bytes.size());
    return record;
  }
  // A record with bytes of its own: those of `front`, then those of `rest`.
  static Record copied(ByteView front, ByteView rest = {});

  Record(Record&& other) noexcept { swap(other); }
  Record& operator=(Record&& other) noexcept {
    Record taken(std::move(other));
    swap(taken);
    return *this;
  }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  ~Record() {
    if (owned_) delete[] bytes_;
  }

  ByteView bytes() const { return {bytes_, length_}; }
  // Takes over the bytes in place of its first ones, where the record has bytes of its own and that
  // many; false: nothing was done.
  bool overwrite(ByteView bytes) {
    if (!owned_ || bytes.size() > length_) return false;
    std::memmove(const_cast<std::uint8_t*>(bytes_), bytes.data(), bytes.size());
    return true;
  }
  std::uint32_t length() const { return length_; }
  // Bytes that this record holds in memory beside the image of the file.
  std::size_t ownSize() const { return owned_ ? length_ : 0; }

  std::uint32_t offset = 0;  // in the file, computed at the last save
  UniqueId unique_id{};
  std::uint8_t attributes = 0;
  bool is_current = false;  // a mark that goes where the record goes (nameCurrentRecord)

  void swap(Record& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(length_, other.length_);
    std::swap(owned_, other.owned_);
    std::swap(offset, other.offset);
    std::swap(unique_id, other.unique_id);
    std::swap(attributes, other.attributes);
    std::swap(is_current, other.is_current);
  }

 private:
  bool owned_ = false;
  std::uint16_t length_ = 0;  // at most 65535 by the format
  const std::uint8_t* bytes_ = nullptr;
};
static_assert(sizeof(Record) == 24);

inline constexpr std::uint32_t kNoPosition = 0xFFFFFFFFu;

// Is told of every change that a RecordStore makes, right after it, with what it takes to take the
// change back. Not told: what a file brings, and clear().
class RecordWatcher {
 public:
  virtual ~RecordWatcher() = default;
  virtual void onReplaced(std::uint32_t position, Record old) = 0;
  virtual void onInserted(std::uint32_t position) = 0;
  // By rising position, as they stood before the first was taken out.
  virtual void onRemoved(std::vector<std::uint32_t> positions, std::vector<Record> records) = 0;
  virtual void onMoved(std::uint32_t from, std::uint32_t to) = 0;
  // order[i]: where the record that stands at i now stood before.
  virtual void onRearranged(std::span<const std::uint32_t> order) = 0;
};

class RecordStore {
 public:
  static constexpr std::size_t kCacheLine = 64;
  static constexpr std::size_t kNearLines = 2;  // what a record begins with

  // At most one, which must outlive its watching; null for none.
  void setWatcher(RecordWatcher* watcher) { watcher_ = watcher; }
  RecordWatcher* watcher() const { return watcher_; }
  // Differs whenever records came, went or changed places since it was asked last: positions that
  // were noted then may mean other records now.
  std::uint64_t arrangement() const { return arrangement_; }

  std::uint32_t count() const { return static_cast<std::uint32_t>(records_.size()); }
  bool isFull() const { return records_.size() >= kMaxRecords; }
  const Record& operator[](std::uint32_t position) const { return records_[position]; }
  Record& operator[](std::uint32_t position) { return records_[position]; }
  auto begin() const { return records_.begin(); }
  auto end() const { return records_.end(); }

  // The image that borrowed records point into; kept until clear().
  void adopt(FileImage image, std::size_t expected_records);
  std::size_t imageSize() const { return image_.size; }
  void addBorrowed(Record record) { records_.push_back(std::move(record)); }

  // For a pass over all records that has come to `position`: asks the machine for the bytes of a
  // record that comes soon. The pass reads it up to `reach`, stepping over long values: so what is
  // asked for is where the record begins, and where the reach ends (slotEnd of any record tells
  // that well enough). Such passes wait for memory more than for anything else. Always inline: a
  // call that only fetches ahead has no effect in a compiler's eyes, and is left out.
  [[gnu::always_inline]] void fetchAhead(std::uint32_t position,
                                         std::size_t reach = kNearLines * kCacheLine) const {
    constexpr std::uint32_t kRecordsAhead = 8;
    if (position + kRecordsAhead >= records_.size()) return;
    const ByteView record = records_[position + kRecordsAhead].bytes();
    const std::uint8_t* const begin = record.data();
    const std::size_t end = std::min(record.size(), reach);
    __builtin_prefetch(begin);
    __builtin_prefetch(begin + kCacheLine);
    if (end <= kNearLines * kCacheLine) return;
    __builtin_prefetch(begin + 2 * kCacheLine);
    if (end <= (kNearLines + 1) * kCacheLine) return;
    for (std::size_t line = 1; line <= 3; ++line)
      __builtin_prefetch(begin + end - line * kCacheLine);
    __builtin_prefetch(begin + end);
  }

  // Insertion before `position` (count() appends). kNoPosition when the store is full or the
  // record is longer than 65535 bytes; nothing has changed then.
  std::uint32_t insert(std::uint32_t position, ByteView bytes, const UniqueId& unique_id);
  // Keeps attributes and unique ID. False when too long.
  [[nodiscard]] bool replace(std::uint32_t position, ByteView bytes) {
    return replaceFront(position, records_[position].length(), bytes);
  }
  // The same for the first `old_size` bytes of the record; those behind them stay.
  [[nodiscard]] bool replaceFront(std::uint32_t position, std::size_t old_size, ByteView bytes);
  // Takes the record out and puts it back so that it stands at `to`.
  void move(std::uint32_t from, std::uint32_t to);
  void remove(std::uint32_t position) { removeAll({position}); }
  // Removes the records at these positions: rising, each once.
  void removeAll(std::vector<std::uint32_t> positions);
  // Puts the records into another order: the one from position order[i] will stand at i. `order`
  // has every position once.
  void rearrange(std::span<const std::uint32_t> order);
  void clear();

  // The two halves of a removal that can be taken back; the watcher is not told of them. Positions
  // are rising, each once; in insertAll those where the records stand in the end, and the caller
  // knows that there is room.
  std::vector<Record> takeAll(std::span<const std::uint32_t> positions);
  void insertAll(std::span<const std::uint32_t> positions, std::vector<Record> records);

  // For numbering all records; their bytes and places are changed by the calls above alone.
  std::vector<Record>& records() { return records_; }

 private:
  std::vector<Record> records_;
  FileImage image_;
  RecordWatcher* watcher_ = nullptr;
  std::uint64_t arrangement_ = 0;
};

}  // namespace tabelion
