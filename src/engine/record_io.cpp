#include "engine/record_io.h"

#include <algorithm>

#include "engine/file_header.h"
#include "engine/packed_record.h"

namespace tabelion {

int RecordIO::endRecord(std::uint8_t attributes, const UniqueId& unique_id) {
  attributes_ = attributes;
  unique_id_ = unique_id;
  const int result = writeBuffered();
  buffer_.clear();
  return result;
}

int RecordIO::nextRecord(std::uint8_t& attributes, UniqueId& unique_id) {
  const int result = readNext();
  attributes = attributes_;
  unique_id = unique_id_;
  position_ = 0;
  if (map_) map_->add(unique_id, static_cast<std::uint32_t>(counter_));
  ++counter_;
  return result;
}

std::int8_t RecordIO::getByte() {
  if (position_ >= record_.size()) return 0;
  return static_cast<std::int8_t>(record_[position_++]);
}

bool RecordIOFile::openForRead(const FileImage& image, int count, std::size_t list_offset) {
  file_ = image.span();
  list_offset_ = list_offset;
  count_ = count;
  next_ = 0;
  counter_ = 0;
  return file_.size() >= list_offset &&
         (file_.size() - list_offset) / kRecordListEntrySize >= static_cast<std::size_t>(count);
}

std::uint32_t RecordIOFile::entryOffset(int index) const {
  return loadBe32(&file_[list_offset_ + kRecordListEntrySize * static_cast<std::size_t>(index)]);
}

int RecordIOFile::writeBuffered() {
  if (!into_ || buffer_.size() > kMaxRecordSize) return 0;
  into_->insert(into_->end(), buffer_.begin(), buffer_.end());
  return 1;
}

int RecordIOFile::readNext() {
  if (next_ >= count_) return 0;
  const std::uint8_t* entry =
      &file_[list_offset_ + kRecordListEntrySize * static_cast<std::size_t>(next_)];
  attributes_ = entry[4];
  unique_id_ = {entry[7], entry[6], entry[5]};

  const std::size_t begin = loadBe32(entry);
  const bool last = next_ + 1 == count_;
  std::size_t end = last ? file_.size() : loadBe32(entry + kRecordListEntrySize);
  if (begin > end || end > file_.size()) return 0;
  if (last) end = std::min(end, begin + kMaxRecordSize);
  if (end - begin > kMaxRecordSize) return 0;
  record_ = file_.subspan(begin, end - begin);
  ++next_;
  return 1;
}

}  // namespace tabelion
