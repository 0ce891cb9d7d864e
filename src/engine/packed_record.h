// The byte form of a data record: a prefix, then per field slot from 0 upward a length (LE16) and
// that many value bytes; the length 65535 ends the record.
//
//   prefix: first byte 0: that byte alone; 1: 21 bytes; any other b: b + 1 bytes
//   first byte 22: the 22-byte record stamp follows
//
// A slot at or behind the end marker is absent; a slot of length 0 is present and empty. Records
// come from files, so every length is checked against what remains: a slot that claims more bytes
// than there are counts as absent, with everything behind it. A record without an end marker is
// accepted; packing always writes one.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "engine/bytes.h"
#include "engine/database_record.h"
#include "engine/field_types.h"
#include "engine/record_stamp.h"

namespace tabelion {

inline constexpr std::size_t kMaxRecordSize = 65535;
inline constexpr std::uint16_t kEndOfRecord = 0xFFFF;
inline constexpr std::uint8_t kStampedPrefix = 22;

// Length of the prefix that a record's first byte asks for; an empty record has none.
inline std::size_t prefixLength(ByteView record) {
  if (record.empty()) return 0;
  return record[0] == 0 ? 1 : record[0] == 1 ? 21 : record[0] + std::size_t{1};
}

// A slot's place in a packed record.
struct SlotPlace {
  int offset = -1;  // of the value, 2 bytes after its length; -1 = absent
  std::uint16_t length = 0;
  bool present() const { return offset >= 0; }
};

// Walks the slots of a record once, in order; cheaper than findSlot for every slot. Inline, as
// findSlot is: every query spends its time here.
class SlotWalker {
 public:
  explicit SlotWalker(ByteView record) : record_(record), next_(prefixLength(record)) {}
  // The next slot's value; none at the end marker, after slot 99, or where the bytes run out.
  std::optional<ByteView> next();
  // Where the walk stopped: on the end marker, or on the bytes that do not make a slot.
  std::size_t position() const { return next_; }

 private:
  ByteView record_;
  std::size_t next_ = 0;
  int slot_ = 0;
};

inline std::optional<ByteView> SlotWalker::next() {
  if (slot_ >= kFieldSlots || record_.size() < next_ + 2) return std::nullopt;
  const std::size_t length = loadLe16(&record_[next_]);
  if (length == kEndOfRecord || record_.size() - next_ - 2 < length) return std::nullopt;
  const ByteView value = record_.subspan(next_ + 2, length);
  next_ += 2 + length;
  ++slot_;
  return value;
}

inline SlotPlace findSlot(ByteView record, int slot) {
  std::size_t at = prefixLength(record);
  if (at > record.size() || slot >= kFieldSlots) return {};
  std::size_t remaining = record.size() - at;
  for (int i = 0; remaining >= 2; ++i) {
    const std::uint16_t length = loadLe16(record.data() + at);
    if (length > remaining - 2 || length == kEndOfRecord) return {};
    if (i == slot) return {static_cast<int>(at + 2), length};
    at += std::size_t{2} + length;
    remaining -= std::size_t{2} + length;
  }
  return {};
}

// Where the slot's value ends in the record; 0 when it is absent.
inline std::size_t slotEnd(ByteView record, int slot) {
  const SlotPlace place = findSlot(record, slot);
  return place.present() ? static_cast<std::size_t>(place.offset) + place.length : 0;
}

// The value bytes as stored; none when absent.
std::optional<ByteView> slotValue(ByteView record, int slot);

// The record stamp; none when the record's prefix is not 22 or the record is too short.
std::optional<HeadBlock> recordStamp(ByteView record);
// Whether the stamp says that the flagged fields are enciphered.
bool isRecordEncrypted(ByteView record);

// A record taken apart for changing. Everything is kept as stored, so taking apart and packing
// again gives the same bytes (plus an end marker where there was none).
struct UnpackedRecord {
  Bytes prefix{0};
  std::array<std::optional<Bytes>, kFieldSlots> slots;
  Bytes tail;  // bytes behind the end marker, or that could not be read as slots
};
UnpackedRecord unpackRecord(ByteView record);
// Slots behind the last present one are left out; absent ones before it become empty ones, which
// is how the form can say "no value" in the middle. False when longer than kMaxRecordSize.
[[nodiscard]] bool packRecord(const UnpackedRecord& record, Bytes& into);

// How a value is written: with as many bytes as its type has, so that a reader that takes them
// without looking at the length finds its own value and no other. What is missing at the end of
// `into`, where the value begins at `begin`, is added as zeros; nothing is cut.
//   2, 4, 5, 6, 8, 9, 10   their 4, 14 or 1 bytes; no bytes at all mean no time in a 9
//   3, 15                  17 bytes
//   7                      2001 bytes
//   11                     at least its 24-byte head
//   18                     the field's width
//   others                 as they are: their length is read
void fitValue(const FieldDefinition& field, Bytes& into, std::size_t begin = 0);
// The same for every value of a record in clear or enciphered, whose enciphered values stay. Slots
// that are absent before one that is present get the value that a new record has there.
void fitRecord(const DatabaseRecord& schema, UnpackedRecord& record);
// Fits and packs a record that is to be stored. Notes take no more room than they need in one that
// would be longer than kMaxRecordSize otherwise (33 notes are). False when it is all the same.
[[nodiscard]] bool packFitted(const DatabaseRecord& schema, UnpackedRecord& record, Bytes& into);

// An empty record of the schema: a 23-byte prefix with room for a stamp, and for every slot of the
// database an empty or zero value (dates and check boxes 0, times "no time", texts empty), fitted.
UnpackedRecord newRecord(const DatabaseRecord& schema);

// A value in its area of fieldValueSize bytes, by the rule of its type:
//   texts and fixed blocks  what is stored, at most the area; shorter ones padded with zeros
//   2, 6, 8, 9, 10, 4, 5    the type's bytes
//   3, 15                   17 bytes, zeros when empty
//   7                       2001 zeros when the first byte is 0
//   11                      the 24-byte head alone when 24 bytes or fewer are stored
//   13, 16, 0               nothing
Bytes unpackValue(const FieldDefinition& field, ByteView stored);

}  // namespace tabelion
