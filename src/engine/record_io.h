// Moves records between memory and a file, one after the other.
//
// `RecordIO` is the buffer and its byte writer; `RecordIOFile` binds it to the bytes of a file.
// A file is read in one go, so reading a record hands out a view of the file's bytes and copies
// nothing; writing collects records behind each other.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "engine/bytes.h"
#include "engine/uid_map.h"
#include "platform/files.h"

namespace tabelion {

class RecordIO {
 public:
  virtual ~RecordIO() = default;

  // Writing. Nothing is bounded here: a record that is longer than the format allows is refused
  // where it is stored (RecordStore), not cut. endRecord hands the buffered bytes to writeBuffered
  // and starts the next record.
  void putByte(std::uint32_t value) { ByteWriter(buffer_).putByte(value); }
  void putBytes(ByteView bytes) { ByteWriter(buffer_).putBytes(bytes); }
  void putBe16(std::uint32_t value) { ByteWriter(buffer_).putBe16(value); }
  void putBe32(std::uint32_t value) { ByteWriter(buffer_).putBe32(value); }
  void putLe16(std::uint32_t value) { ByteWriter(buffer_).putLe16(value); }
  // 1 when all of the record was written; 0 is the base class's answer, which writes nowhere.
  int endRecord(std::uint8_t attributes, const UniqueId& unique_id);

  // Reading. nextRecord makes the next record the current one, enters it into the attached map
  // under the running record counter, and returns 1; 0 when there is none or it cannot be read.
  int nextRecord(std::uint8_t& attributes, UniqueId& unique_id);
  // The current record's bytes: a view into the file, good until the next call of nextRecord.
  ByteView record() const { return record_; }
  std::int8_t getByte();  // of the current record; 0 past its end

  // `map` is not owned and must outlive the reading; null detaches it.
  void attachMap(UIDMap* map) { map_ = map; }
  int recordsRead() const { return counter_; }

 protected:
  virtual int writeBuffered() { return 0; }
  virtual int readNext() { return 0; }

  Bytes buffer_;
  ByteView record_;
  std::size_t position_ = 0;
  int counter_ = 0;
  UIDMap* map_ = nullptr;
  std::uint8_t attributes_ = 0;
  UniqueId unique_id_{};
};

class RecordIOFile : public RecordIO {
 public:
  // The record list of an image read from a file. False when it does not fit into the file. The
  // image must outlive this object.
  bool openForRead(const FileImage& image, int count, std::size_t list_offset);
  // Records are appended to `into`, which must outlive this object.
  void attachForWrite(Bytes& into) { into_ = &into; }

  int entryCount() const { return count_; }
  std::uint32_t entryOffset(int index) const;

 protected:
  int writeBuffered() override;
  // A record runs to the next one's offset, the last one to the end of the file, at most 65535
  // bytes. 0 when offsets run backwards, lie past the end, or are further apart than that.
  int readNext() override;

 private:
  ByteView file_;
  std::size_t list_offset_ = 0;
  int count_ = 0;
  int next_ = 0;
  Bytes* into_ = nullptr;
};

}  // namespace tabelion
