#include "engine/check.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "engine/check_records.h"
#include "engine/database_record.h"
#include "engine/packed_record.h"

namespace tabelion {
namespace {

class FileCheck {
 public:
  explicit FileCheck(ByteView file) : file_(file), header_(parseHeader(file)) {}

  std::vector<Deviation> run() {
    if (file_.size() < kHeaderSize) {
      report(0, fmt::format("the file has {} bytes, fewer than its header", file_.size()));
      return std::move(found_);
    }
    checkHeader();
    entries_ = fileEntries(file_, header_);
    checkRecordList();
    checkInfoBlock();
    if (!entries_.empty()) checkDatabaseRecordAt(entries_[0]);
    for (std::size_t i = 1; i < entries_.size() && i <= kFieldSlots; ++i) {
      checkFieldRecord(entries_[i].bytes, i - 1, entries_[i].offset, found_);
    }
    const std::size_t extension = kFieldSlots + 1;
    if (entries_.size() > extension) {
      checkExtensionRecord(entries_[extension].bytes, entries_[extension].offset, found_);
    }
    for (std::size_t i = kSchemaRecords; i < entries_.size(); ++i) {
      checkDataRecord(schema_, entries_[i].bytes, i - kSchemaRecords, entries_[i].offset, found_);
    }
    return std::move(found_);
  }

 private:
  void report(std::size_t offset, std::string text) { found_.push_back({offset, std::move(text)}); }

  void checkHeader() {
    const ByteView name(header_.name);
    if (std::find(name.begin(), name.end(), 0) == name.end()) {
      report(0, "the database's name has no NUL");
    }
    if (header_.creator != kCreator) report(64, "the creator is not \"Tbln\"");
    if (header_.type != kCreator) report(60, "the type is not \"Tbln\"");
    if (loadBe32(&file_[36]) > loadBe32(&file_[40])) {
      report(36, "the file was created after it was changed");
    }
    if (header_.sort_info_offset != 0) report(56, "the sort-info offset is not 0");
    if (header_.unique_id_seed != 0) report(68, "the unique-ID seed is not 0");
    if (header_.next_record_list != 0) report(72, "there is a next record list");
    if (header_.record_count < kSchemaRecords) {
      report(76, fmt::format("{} records do not hold the {} of the schema", header_.record_count,
                             kSchemaRecords));
    }
    if (header_.record_count > kMaxRecords + kSchemaRecords) {
      report(76, fmt::format("{} data records; {} is the limit",
                             header_.record_count - kSchemaRecords, kMaxRecords));
    }
  }

  void checkRecordList() {
    if (entries_.size() < header_.record_count) {
      report(file_.size(), fmt::format("the file ends in its record list, after {} of {} entries",
                                       entries_.size(), header_.record_count));
    }
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      const FileEntry& entry = entries_[i];
      if (entry.offset > file_.size()) {
        report(entry.list_offset,
               fmt::format("record {} lies at {}, behind the end of the file", i, entry.offset));
      }
      if (i + 1 == entries_.size()) {
        checkLastRecord(entry);
        break;
      }
      const std::uint32_t next = entries_[i + 1].offset;
      if (next < entry.offset) {
        report(entries_[i + 1].list_offset,
               fmt::format("record {} lies at {}, before record {} at {}", i + 1, next, i,
                           entry.offset));
      } else if (next - entry.offset > kMaxRecordSize) {
        report(entry.list_offset, fmt::format("record {} takes {} bytes; {} is the limit", i,
                                              next - entry.offset, kMaxRecordSize));
      }
    }
  }

  void checkLastRecord(const FileEntry& entry) {
    if (entry.offset > file_.size() || file_.size() - entry.offset <= kMaxRecordSize) return;
    report(entry.offset + kMaxRecordSize,
           fmt::format("{} bytes follow the last record",
                       file_.size() - entry.offset - kMaxRecordSize));
  }

  void checkInfoBlock() {
    const std::size_t list_end = kHeaderSize + kRecordListEntrySize * header_.record_count;
    const std::size_t info = list_end + kGapSize;
    if (header_.info_offset != info) {
      report(52, fmt::format("the info block is said to lie at {}; it belongs at {}",
                             header_.info_offset, info));
    }
    checkZeros(list_end, kGapSize, "the gap behind the record list");
    checkZeros(info, kInfoBlockSize, "the info block");
    if (!entries_.empty() && entries_[0].offset != info + kInfoBlockSize) {
      report(entries_[0].list_offset, fmt::format("the first record lies at {}; it belongs at {}",
                                                  entries_[0].offset, info + kInfoBlockSize));
    }
  }

  void checkZeros(std::size_t offset, std::size_t size, std::string_view what) {
    if (offset > file_.size() || file_.size() - offset < size) {
      report(file_.size(), fmt::format("the file ends in {}", what));
      return;
    }
    for (std::size_t i = offset; i < offset + size; ++i) {
      if (file_[i] != 0) {
        report(i, fmt::format("{} is not all zeros", what));
        return;
      }
    }
  }

  void checkDatabaseRecordAt(const FileEntry& entry) {
    initSchema(schema_);
    if (!readDatabaseRecord(entry.bytes, schema_)) {
      report(entry.offset, fmt::format("the database record has {} bytes; it takes {}",
                                       entry.bytes.size(), kDatabaseRecordSize));
      return;
    }
    if (entry.bytes.size() > kDatabaseRecordSize) {
      report(entry.offset + kDatabaseRecordSize,
             fmt::format("{} bytes follow the database record",
                         entry.bytes.size() - kDatabaseRecordSize));
    }
    checkSchema(schema_, entry.offset, header_.record_count, found_);
  }

  ByteView file_;
  FileHeader header_;
  std::vector<FileEntry> entries_;
  DatabaseRecord schema_;
  std::vector<Deviation> found_;
};

}  // namespace

std::vector<FileEntry> fileEntries(ByteView file, const FileHeader& header) {
  std::vector<FileEntry> entries;
  const std::size_t room =
      file.size() < kHeaderSize ? 0 : (file.size() - kHeaderSize) / kRecordListEntrySize;
  entries.resize(std::min<std::size_t>(header.record_count, room));
  for (std::size_t i = 0; i < entries.size(); ++i) {
    FileEntry& entry = entries[i];
    entry.list_offset = kHeaderSize + kRecordListEntrySize * i;
    const std::uint8_t* at = &file[entry.list_offset];
    entry.offset = loadBe32(at);
    entry.attributes = at[4];
    entry.unique_id = {at[7], at[6], at[5]};
  }
  for (std::size_t i = 0; i < entries.size(); ++i) {
    FileEntry& entry = entries[i];
    const std::size_t begin = std::min<std::size_t>(entry.offset, file.size());
    const bool is_last = i + 1 == entries.size();
    std::size_t end =
        is_last ? file.size() : std::min<std::size_t>(entries[i + 1].offset, file.size());
    end = std::min(end, begin + kMaxRecordSize);
    if (end > begin) entry.bytes = file.subspan(begin, end - begin);
  }
  return entries;
}

std::vector<Deviation> checkFile(ByteView file) {
  return FileCheck(file).run();
}

}  // namespace tabelion
