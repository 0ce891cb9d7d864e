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
  return position;
}

bool RecordStore::replaceFront(std::uint32_t position, std::size_t old_size, ByteView bytes) {
  Record& old = records_[position];
  const ByteView rest = old.bytes().subspan(old_size);
  if (bytes.size() + rest.size() > kMaxRecordSize) return false;
  if (bytes.size() == old_size && old.overwrite(bytes)) return true;
  Record record = Record::copied(bytes, rest);
  record.unique_id = old.unique_id;
  record.attributes = old.attributes;
  record.is_current = old.is_current;
  record.offset = old.offset;
  old = std::move(record);
  return true;
}

void RecordStore::move(std::uint32_t from, std::uint32_t to) {
  const auto first = records_.begin();
  if (from < to) {
    std::rotate(first + from, first + from + 1, first + to + 1);
  } else {
    std::rotate(first + to, first + from, first + from + 1);
  }
}

void RecordStore::remove(std::uint32_t position) {
  records_.erase(records_.begin() + position);
}

void RecordStore::removeMarked(const std::vector<bool>& marks) {
  std::size_t index = 0;
  std::erase_if(records_, [&](const Record&) { return marks[index++]; });
}

void RecordStore::clear() {
  records_.clear();
  records_.shrink_to_fit();
  image_ = {};
}

}  // namespace tabelion
