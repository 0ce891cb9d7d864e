// The field records (records 1 to 100): per field slot the item list of a pop-up and the ranges.
//
//   1 type byte 22 · 22 head block · k (LE16) · m (LE16) · k × 20 item keys · m × 16 ranges ·
//   the item texts with their NULs, in item order · 4 zero bytes
//
// An item key: 8 + 3 + 1 bytes, a 16-bit number, 3 bytes, 1 byte level, and the big-endian 16-bit
// offset of the item's text from the start of the record. The first 14 bytes are the value that a
// data record stores.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/bytes.h"
#include "engine/field_types.h"
#include "engine/file_header.h"
#include "engine/record_io.h"
#include "engine/record_stamp.h"

namespace tabelion {

inline constexpr std::uint8_t kSchemaRecordType = 22;
inline constexpr std::size_t kItemKeySize = 20;
inline constexpr std::size_t kRangeSize = 16;
inline constexpr std::size_t kItemLevelOffset = 17;
inline constexpr std::size_t kItemTextOffset = 18;

using ItemKey = std::array<std::uint8_t, kItemKeySize>;
using Range = std::array<std::uint8_t, kRangeSize>;

struct PopupItem {
  ItemKey key{};     // its text offset is computed when written; other records find it by the rest
  std::string text;  // 8-bit; empty = absent, an empty text is never stored

  // How deep it stands in the tree of items: 0 for the outermost.
  int level() const { return key[kItemLevelOffset]; }
  ByteView valueKey() const { return ByteView(key).first(kPopupKeySize); }
};

struct FieldRecord {
  std::uint8_t record_type = kSchemaRecordType;
  HeadBlock head{};
  std::vector<PopupItem> items;  // at most kMaxItems
  std::vector<Range> ranges;
  Bytes surplus;  // bytes behind the closing zeros, written back as read

  // A record that was not read, since one in front of it is empty, and that one itself: its bytes,
  // attributes and unique ID, written back as long as the field has no items of its own.
  struct Unread {
    Bytes bytes;
    std::uint8_t attributes = 0;
    std::array<std::uint8_t, 3> unique_id{};
  };
  std::optional<Unread> unread;

  std::uint8_t attributes = kAttributeDirty;
  std::array<std::uint8_t, 3> unique_id{};
  std::uint32_t offset = 0;  // in the file, computed at the last save
};

// In bytes, as written: 31 + 20 × k + 16 × m + the texts present with their NULs (+ the surplus);
// of a record that was not read what it has in the file.
std::size_t fieldRecordLength(const FieldRecord& field);
// Puts the record's bytes into the buffer. One of more than 65535, which text offsets could not
// express either, is refused by RecordIO::endRecord.
void writeFieldRecord(const FieldRecord& field, RecordIO& to);

inline constexpr int kFieldRecordRead = 0;
inline constexpr int kFieldRecordNoData = -1;   // an empty record
inline constexpr int kFieldRecordDamaged = -2;  // counts or offsets that the bytes do not bear out
// One of the results above. Attributes, unique ID and offset are not touched.
[[nodiscard]] int readFieldRecord(ByteView record, FieldRecord& field);

// The item whose value key equals the first 14 bytes of `value`, what is missing of them taken as
// zeros; none gives nullptr. It lies in `field`. Of several with one key it is the first.
const PopupItem* findItem(const FieldRecord& field, ByteView value);

}  // namespace tabelion
