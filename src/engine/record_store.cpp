#include "engine/record_store.h"

#include <algorithm>

#include "engine/packed_record.h"

namespace tabelion {

Record Record::copied(ByteView front, ByteView rest) {
  Record record;
  const std::size_t size = front.size() + rest.size();
  if (size == 0) return record;
  auto* own = new std::uint8_t[size];
  std::copy(rest.begin(), rest.end(), std::copy(front.begin(), front.end(), own));
  record.bytes_ = own;
  record.length_ = static_cast<std::uint16_t>(size);
  record.owned_ = true;
  return record;
}

void RecordStore::adopt(FileImage image, std::size_t expected_records) {
  image_ = std::move(image);
  records_.reserve(expected_records);
}

std::uint32_t RecordStore::insert(std::uint32_t position, ByteView bytes,
                                  const UniqueId& unique_id) {
  if (isFull() || bytes.size() > kMaxRecordSize || position > count()) return kNoPosition;
  Record record = Record::copied(bytes);
  record.unique_id = unique_id;
  records_.insert(records_.begin() + position, std::move(record));
  ++arrangement_;
  if (watcher_) watcher_->onInserted(position);
  return position;
}

bool RecordStore::replaceFront(std::uint32_t position, std::size_t old_size, ByteView bytes) {
  Record& old = records_[position];
  const ByteView rest = old.bytes().subspan(old_size);
  if (bytes.size() + rest.size() > kMaxRecordSize) return false;
  // Who watches is handed the old bytes, so they are not written over then.
  if (!watcher_ && bytes.size() == old_size && old.overwrite(bytes)) return true;
  Record record = Record::copied(bytes, rest);
  record.unique_id = old.unique_id;
  record.attributes = old.attributes;
  record.is_current = old.is_current;
  record.offset = old.offset;
  old.swap(record);
  if (watcher_) watcher_->onReplaced(position, std::move(record));
  return true;
}

void RecordStore::move(std::uint32_t from, std::uint32_t to) {
  if (from == to) return;
  const auto first = records_.begin();
  if (from < to) {
    std::rotate(first + from, first + from + 1, first + to + 1);
  } else {
    std::rotate(first + to, first + from, first + from + 1);
  }
  ++arrangement_;
  if (watcher_) watcher_->onMoved(from, to);
}

void RecordStore::removeAll(std::vector<std::uint32_t> positions) {
  std::vector<Record> removed = takeAll(positions);
  if (watcher_) watcher_->onRemoved(std::move(positions), std::move(removed));
}

std::vector<Record> RecordStore::takeAll(std::span<const std::uint32_t> positions) {
  std::vector<Record> taken;
  if (positions.empty()) return taken;
  taken.reserve(positions.size());
  std::uint32_t to = positions.front();
  for (std::uint32_t from = to; from < count(); ++from) {
    if (taken.size() < positions.size() && positions[taken.size()] == from) {
      taken.push_back(std::move(records_[from]));
    } else {
      records_[to++] = std::move(records_[from]);
    }
  }
  records_.resize(to);
  ++arrangement_;
  return taken;
}

void RecordStore::insertAll(std::span<const std::uint32_t> positions, std::vector<Record> records) {
  const std::uint32_t before = count();
  records_.resize(before + records.size());
  // From the end, so that each record moves once.
  std::size_t waiting = records.size();
  std::uint32_t from = before;
  for (std::uint32_t to = count(); waiting > 0;) {
    --to;
    if (positions[waiting - 1] == to) {
      records_[to] = std::move(records[--waiting]);
    } else {
      records_[to] = std::move(records_[--from]);
    }
  }
  ++arrangement_;
}

void RecordStore::rearrange(std::span<const std::uint32_t> order) {
  std::vector<Record> arranged;
  arranged.reserve(order.size());
  for (const std::uint32_t from : order) arranged.push_back(std::move(records_[from]));
  records_ = std::move(arranged);
  ++arrangement_;
  if (watcher_) watcher_->onRearranged(order);
}

void RecordStore::clear() {
  ++arrangement_;
  records_.clear();
  records_.shrink_to_fit();
  image_ = {};
}

}  // namespace tabelion
