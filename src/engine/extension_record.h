// The extension record (record 101): a list of 16-byte entries.
//
//   1 type byte 22 · 22 head block · entry count (LE16) · entries of 16 bytes · bytes 0, 0, 1
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "engine/bytes.h"
#include "engine/record_io.h"
#include "engine/record_stamp.h"

namespace tabelion {

// Nothing here reads what an entry means: it is kept as it stands.
using ExtensionEntry = std::array<std::uint8_t, 16>;

struct ExtensionRecord {
  HeadBlock head{};
  std::vector<ExtensionEntry> entries;
  std::array<std::uint8_t, 3> closing{0, 0, 1};
  Bytes surplus;  // bytes behind the closing ones, written back as read
  // A record whose first byte is not 22 is ignored, and written back whole as long as nobody puts
  // entries into the list.
  Bytes ignored;

  std::uint8_t attributes = 0;
  std::array<std::uint8_t, 3> unique_id{};
  std::uint32_t offset = 0;
};

// In bytes, as written: 28 and 16 for each entry, and the surplus.
std::size_t extensionRecordLength(const ExtensionRecord& extension);
// Puts the record's bytes into the buffer; endRecord is the caller's.
void writeExtensionRecord(const ExtensionRecord& extension, RecordIO& to);
// False when the entry count does not fit the bytes; `extension` then has what came before the
// entries. A record of another type byte is true: its bytes are in `ignored`.
[[nodiscard]] bool readExtensionRecord(ByteView record, ExtensionRecord& extension);

}  // namespace tabelion
