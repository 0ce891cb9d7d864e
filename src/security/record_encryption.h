// Enciphering and deciphering the flagged fields of one record (FieldDefinition::encrypt_flag).
//
// What is enciphered of a value, and how it is stored then, by field type:
//   1, 3, 14, 15, 17  the text to its NUL; one length byte (modulo 256), then the cipher text
//   12                the same behind a length of two bytes, little-endian
//   11                24 bytes in clear, one length byte, then the text behind them, enciphered; a
//                     value of at most 24 bytes stays as it is
//   7                 2001 bytes: the first in clear, 1999 enciphered, the last in clear; a note
//                     whose first byte is 0 stays as it is
//   16                nothing: the value stays as it is
//   others            all bytes, without a length
//
// The checksum of a record is the sum modulo 256 of the bytes that were enciphered, in clear (of a
// note its first 2000), and tells a right password from most wrong ones.
//
// A record that was enciphered and deciphered with one password has the same bytes again, with
// these exceptions, where the stored form says less than the clear one:
//   - texts come back with exactly one NUL behind them, empty ones too
//   - numbers and calculated values come back with their 17 bytes
//   - a note stored in fewer than 2001 bytes comes back with zeros up to there
//   - the stamp's checksum byte keeps the last checksum
//   - a record without a stamp has one from then on
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "engine/database_record.h"
#include "engine/packed_record.h"
#include "security/cipher.h"

namespace tabelion {

bool hasFlaggedFields(const DatabaseRecord& schema);

// A new stamp for a record that has none.
using StampSource = std::function<HeadBlock()>;

// Enciphers the flagged values of a packed record in clear. `into`, which is not where `record` is,
// gets the result; false when it would be longer than a record can be.
[[nodiscard]] bool EncryptRecordFields(const DatabaseRecord& schema, ByteView record,
                                       const ExpandedKey& key, const StampSource& new_stamp,
                                       Bytes& into);

inline constexpr int kRecordDecrypted = 1;
inline constexpr int kWrongPassword = 0;
inline constexpr int kHeaderUnreadable = -1;  // the record has no stamp
// One of these; `into`, which is not where `record` is, has the record in clear when it was
// deciphered, and is empty otherwise.
[[nodiscard]] int DecryptRecord(const DatabaseRecord& schema, ByteView record,
                                const ExpandedKey& key, Bytes& into);

// The same for runs over many records: only the front of a record is written, up to its last
// flagged value, which in a long record is much less to move than the whole.
class FlaggedFields {
 public:
  // The schema outlives it, and keeps its flags.
  explicit FlaggedFields(const DatabaseRecord& schema);
  const DatabaseRecord& schema() const { return schema_; }
  int slots() const { return slots_; }  // up to the last flagged one
  FieldType typeOf(int slot) const { return schema_.fields[static_cast<std::size_t>(slot)].type; }

 private:
  const DatabaseRecord& schema_;
  int slots_ = 0;
};
// `bytes` stand in place of the first `old_size` bytes of the record; those behind them stay.
struct RecordFront {
  Bytes bytes;
  std::size_t old_size = 0;
};
// Makes a stamp the record's prefix; what stood there before has no room beside it.
void stampRecord(Bytes& record, const HeadBlock& stamp);
bool isStamped(ByteView record);
// Whether the record with this front is, as a whole, these bytes.
bool isWhole(const RecordFront& front, ByteView record, ByteView whole);
[[nodiscard]] bool encryptRecordFront(const FlaggedFields& flagged, ByteView record,
                                      const ExpandedKey& key, const StampSource& new_stamp,
                                      RecordFront& into);
[[nodiscard]] int decryptRecordFront(const FlaggedFields& flagged, ByteView record,
                                     const ExpandedKey& key, RecordFront& into);

// Enciphers a record that `key` deciphered from `sealed`, also when the key only passed for the
// right one: values that are still what the key made of them get the bytes that they had, so a
// record that nobody changed becomes `sealed` again. Others are enciphered. False when it would be
// too long.
[[nodiscard]] bool resealRecordFront(const FlaggedFields& flagged, ByteView record, ByteView sealed,
                                     const ExpandedKey& key, RecordFront& into);

// A value that its enciphered form holds with a length that says too little: a text longer than 255
// bytes behind a length of one byte. This system finds the whole text again by the length of the
// value as a whole; others that share the file take the record for one with a wrong password.
struct OverlongValue {
  int slot = 0;
  std::size_t length = 0;  // of the text, in bytes
};
std::vector<OverlongValue> overlongValues(const DatabaseRecord& schema, ByteView record);

}  // namespace tabelion
