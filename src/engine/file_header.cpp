#include "engine/file_header.h"

#include <algorithm>

namespace tabelion {
namespace {

// A creation date later than the modification date is lowered to it, on reading and on writing.
void clampCreationDate(FileHeader& header) {
  if (header.modification_date < header.creation_date) {
    header.creation_date = header.modification_date;
  }
}

int probe(Files& files, const std::string& path, FileHeader& header, std::uint32_t creator) {
  auto start = files.readStart(path, kHeaderSize);
  if (!start.ok()) return kProbeCannotOpen;
  header = parseHeader(*start);
  return header.creator == creator ? kProbeAccepted : kProbeWrongCreator;
}

}  // namespace

FileHeader parseHeader(ByteView start) {
  // Bytes past the end of a short file read as the end-of-file value, 0xFF each.
  std::array<std::uint8_t, kHeaderSize> bytes;
  bytes.fill(0xFF);
  std::copy_n(start.begin(), std::min(start.size(), bytes.size()), bytes.begin());

  FileHeader header;
  ByteReader reader(bytes);
  reader.readBytes(header.name);
  header.attributes = reader.readBe16();
  header.version = reader.readBe16();
  header.creation_date = reader.readBe32();
  header.modification_date = reader.readBe32();
  clampCreationDate(header);
  header.backup_date = reader.readBe32();
  header.modification_number = reader.readBe32();
  header.info_offset = reader.readBe32();
  header.sort_info_offset = reader.readBe32();
  header.type = reader.readBe32();
  header.creator = reader.readBe32();
  header.unique_id_seed = reader.readBe32();
  header.next_record_list = reader.readBe32();
  header.record_count = reader.readBe16();
  return header;
}

int readHeader(Files& files, const std::string& path, FileHeader& header, FileHeader& last_probed) {
  const int result = probe(files, path, header, kCreator);
  if (result != kProbeCannotOpen) last_probed = header;
  return result;
}

int readLegacyHeader(Files& files, const std::string& path, FileHeader& header,
                     FileHeader& last_probed) {
  const int result = probe(files, path, header, kLegacyCreator);
  if (result != kProbeCannotOpen) last_probed = header;
  return result;
}

int readFormHeader(Files& files, const std::string& path, FileHeader& header) {
  return probe(files, path, header, kFormCreator);
}

int writeHeader(FileHeader& header, ByteWriter& to) {
  to.putBytes(header.name);
  to.putBe16(header.attributes);
  to.putBe16(header.version);
  clampCreationDate(header);
  for (const std::uint32_t number :
       {header.creation_date, header.modification_date, header.backup_date,
        header.modification_number, header.info_offset, header.sort_info_offset, header.type,
        header.creator, header.unique_id_seed, header.next_record_list}) {
    to.putBe32(number);
  }
  to.putBe16(header.record_count);
  return 1;
}

void writeRecordListEntry(std::uint32_t offset, std::uint8_t attributes,
                          const std::array<std::uint8_t, 3>& unique_id, ByteWriter& to) {
  to.putBe32(offset);
  to.putByte(attributes);
  to.putByte(unique_id[2]);
  to.putByte(unique_id[1]);
  to.putByte(unique_id[0]);
}

void initHeader(std::string_view name, FileHeader& header) {
  header = FileHeader{};
  setAreaText(header.name, name.substr(0, kNameSize - 1));
}

}  // namespace tabelion
