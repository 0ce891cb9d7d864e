// Whether a file is sound, and where it is not. Reads the bytes themselves, so it also says what
// is wrong with a file that does not open.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/bytes.h"
#include "engine/file_header.h"
#include "engine/uid_map.h"

namespace tabelion {

// An entry of the record list and what its record has in the file.
struct FileEntry {
  std::size_t list_offset = 0;  // of the entry itself
  std::uint32_t offset = 0;     // of the record, as the entry says
  std::uint8_t attributes = 0;
  UniqueId unique_id{};
  // From its offset to the next entry's, the last one to the end of the file, as far as the file
  // reaches; empty where the offsets run backwards.
  ByteView bytes;
};

// The entries that the file holds, at most as many as the header counts.
std::vector<FileEntry> fileEntries(ByteView file, const FileHeader& header);

struct Deviation {
  std::size_t offset = 0;  // in the file
  std::string text;        // what is there and what should be
};

// Every deviation from what this program would have written, in the order of the checks: header,
// record list, schema records, data records. A sound file has none.
std::vector<Deviation> checkFile(ByteView file);

}  // namespace tabelion
