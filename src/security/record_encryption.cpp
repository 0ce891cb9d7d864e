#include "security/record_encryption.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace tabelion {
namespace {

constexpr std::size_t kCheckedNoteBytes = kNoteSize - 1;  // the last of a note takes no part

// Bytes that stay in clear before the length of the text, and the width of that length.
std::size_t clearHead(CipherForm form) {
  return form == CipherForm::kLink ? kLinkHeadSize : 0;
}
std::size_t lengthWidth(CipherForm form) {
  return form == CipherForm::kLengthOfTwoBytes ? 2 : 1;
}

// Whether the value has no part that is enciphered.
bool staysAsItIs(CipherForm form, ByteView value) {
  switch (form) {
    case CipherForm::kAsIs:
      return true;
    case CipherForm::kNote:
      return value.empty() || value[0] == 0;
    case CipherForm::kLink:
      return value.size() <= kLinkHeadSize;
    default:
      return false;
  }
}

std::size_t textLength(ByteView text) {
  if (text.empty()) return 0;
  const void* end = std::memchr(text.data(), 0, text.size());
  return end ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(end) - text.data())
             : text.size();
}

// Appends the enciphered form of a value and adds its clear bytes to the checksum.
void putEnciphered(Bytes& into, CipherForm form, ByteView value, const ExpandedKey& key,
                   std::uint8_t& sum) {
  if (staysAsItIs(form, value)) {
    into.insert(into.end(), value.begin(), value.end());
    return;
  }
  const std::size_t begin = into.size();
  std::size_t first = begin;  // of the bytes to encipher
  std::size_t count = value.size();
  if (form == CipherForm::kWhole) {
    into.insert(into.end(), value.begin(), value.end());
  } else if (form == CipherForm::kNote) {
    into.insert(into.end(), value.begin(), value.end());
    into.resize(begin + std::max(value.size(), kNoteSize));
    sum = static_cast<std::uint8_t>(sum + value[0]);
    first += 1;
    count = kCheckedNoteBytes - 1;
  } else {
    const std::size_t head = clearHead(form);
    const ByteView rest = value.subspan(head);
    const ByteView text = rest.first(textLength(rest));
    into.insert(into.end(), value.begin(), value.begin() + head);
    into.push_back(static_cast<std::uint8_t>(text.size()));
    if (lengthWidth(form) == 2) into.push_back(static_cast<std::uint8_t>(text.size() >> 8));
    first = into.size();
    count = text.size();
    into.insert(into.end(), text.begin(), text.end());
  }
  const std::uint8_t added = EncipherBuffer(std::span(into).subspan(first, count), key);
  sum = static_cast<std::uint8_t>(sum + added);
}

// The text behind its length, still enciphered. A length of one byte that agrees with the number
// of bytes there are, modulo 256, means all of them.
ByteView textBehindLength(CipherForm form, ByteView value) {
  const std::size_t at = clearHead(form);
  const std::size_t width = lengthWidth(form);
  if (value.size() < at + width) return {};
  const ByteView rest = value.subspan(at + width);
  std::size_t length = value[at];
  if (width == 2) {
    length = loadLe16(&value[at]);
  } else if (static_cast<std::uint8_t>(rest.size()) == value[at]) {
    length = rest.size();
  }
  return rest.first(std::min(length, rest.size()));
}

// Behind a text its NUL; a number is as long as its area.
void closeText(Bytes& into, FieldType type, std::size_t length) {
  into.push_back(0);
  const bool is_number = type == FieldType::kFloat || type == FieldType::kCalculated;
  if (is_number && length + 1 < kNumberTextSize)
    into.resize(into.size() + kNumberTextSize - length - 1);
}

// Appends the clear form of a value and adds it to the checksum.
void putDeciphered(Bytes& into, FieldType type, ByteView value, const ExpandedKey& key,
                   std::uint8_t& sum) {
  const CipherForm form = traitsOf(type).cipher;
  const std::size_t begin = into.size();
  if (staysAsItIs(form, value)) {
    into.insert(into.end(), value.begin(), value.end());
    return;
  }
  if (form == CipherForm::kWhole || form == CipherForm::kNote) {
    into.insert(into.end(), value.begin(), value.end());
    auto enciphered = std::span(into).subspan(begin);
    if (form == CipherForm::kNote) {
      sum = static_cast<std::uint8_t>(sum + value[0]);
      enciphered = enciphered.first(std::min(enciphered.size(), kCheckedNoteBytes)).subspan(1);
    }
    sum = static_cast<std::uint8_t>(sum + DecipherBuffer(enciphered, key));
    return;
  }
  const std::size_t head = clearHead(form);
  const ByteView text = textBehindLength(form, value);
  into.insert(into.end(), value.begin(), value.begin() + head);
  into.insert(into.end(), text.begin(), text.end());
  const auto enciphered = std::span(into).subspan(begin + head);
  sum = static_cast<std::uint8_t>(sum + DecipherBuffer(enciphered, key));
  closeText(into, type, text.size());
}

// Copies the front of a packed record, at least its prefix, with another form of its flagged
// values, which `put` appends; it is given the slot, too.
template <typename Put>
void copyWithFlaggedValues(const FlaggedFields& flagged, ByteView record, RecordFront& into,
                           const Put& put) {
  Bytes& bytes = into.bytes;
  bytes.clear();
  std::size_t copied = 0;
  const auto copyUpTo = [&](std::size_t end) {
    bytes.insert(bytes.end(), record.begin() + copied, record.begin() + end);
    copied = end;
  };
  SlotWalker walker(record);
  copyUpTo(std::min(walker.position(), record.size()));
  for (int slot = 0; slot < flagged.slots(); ++slot) {
    const std::size_t length_at = walker.position();
    const auto value = walker.next();
    if (!value) break;
    const FieldDefinition& field = flagged.schema().fields[static_cast<std::size_t>(slot)];
    if (field.encrypt_flag == 0) continue;
    copyUpTo(length_at);
    copied = walker.position();
    const std::size_t new_length_at = bytes.size();
    bytes.resize(new_length_at + 2);
    put(bytes, slot, *value);
    storeLe16(&bytes[new_length_at], static_cast<std::uint32_t>(bytes.size() - new_length_at - 2));
  }
  into.old_size = copied;
}

bool isTooLong(const RecordFront& front, ByteView record) {
  return front.bytes.size() + record.size() - front.old_size > kMaxRecordSize;
}

void appendRest(RecordFront& front, ByteView record) {
  const ByteView rest = record.subspan(front.old_size);
  front.bytes.insert(front.bytes.end(), rest.begin(), rest.end());
}

}  // namespace

bool isStamped(ByteView record) {
  return record.size() > sizeof(HeadBlock) && record[0] == kStampedPrefix;
}

void stampRecord(Bytes& record, const HeadBlock& stamp) {
  const std::size_t old_prefix = std::min(prefixLength(record), record.size());
  record.erase(record.begin(), record.begin() + static_cast<std::ptrdiff_t>(old_prefix));
  record.insert(record.begin(), stamp.begin(), stamp.end());
  record.insert(record.begin(), kStampedPrefix);
}

bool isWhole(const RecordFront& front, ByteView record, ByteView whole) {
  const ByteView rest = record.subspan(front.old_size);
  return front.bytes.size() + rest.size() == whole.size() &&
         std::equal(front.bytes.begin(), front.bytes.end(), whole.begin()) &&
         std::equal(rest.begin(), rest.end(), whole.begin() + std::ptrdiff_t(front.bytes.size()));
}

bool hasFlaggedFields(const DatabaseRecord& schema) {
  return FlaggedFields(schema).slots() > 0;
}

FlaggedFields::FlaggedFields(const DatabaseRecord& schema) : schema_(schema) {
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    if (schema.fields[static_cast<std::size_t>(slot)].encrypt_flag != 0) slots_ = slot + 1;
  }
}

bool encryptRecordFront(const FlaggedFields& flagged, ByteView record, const ExpandedKey& key,
                        const StampSource& new_stamp, RecordFront& into) {
  std::uint8_t sum = 0;
  copyWithFlaggedValues(flagged, record, into, [&](Bytes& to, int slot, ByteView value) {
    putEnciphered(to, traitsOf(flagged.typeOf(slot)).cipher, value, key, sum);
  });
  if (!isStamped(record)) stampRecord(into.bytes, new_stamp());
  if (isTooLong(into, record)) return false;
  std::uint8_t& flags = into.bytes[1 + kStampFlagOffset];
  flags &= static_cast<std::uint8_t>(~kClearByDatabase);
  flags |= kRecordEncrypted;
  into.bytes[1 + kStampChecksumOffset] = sum;
  return true;
}

int decryptRecordFront(const FlaggedFields& flagged, ByteView record, const ExpandedKey& key,
                       RecordFront& into) {
  into.bytes.clear();
  if (!isStamped(record)) return kHeaderUnreadable;
  std::uint8_t sum = 0;
  copyWithFlaggedValues(flagged, record, into, [&](Bytes& to, int slot, ByteView value) {
    putDeciphered(to, flagged.typeOf(slot), value, key, sum);
  });
  if (sum != record[1 + kStampChecksumOffset] || isTooLong(into, record)) {
    wipeBytes(into.bytes);
    into.bytes.clear();
    return kWrongPassword;
  }
  into.bytes[1 + kStampFlagOffset] &= static_cast<std::uint8_t>(~kRecordEncrypted);
  return kRecordDecrypted;
}

bool resealRecordFront(const FlaggedFields& flagged, ByteView record, ByteView sealed,
                       const ExpandedKey& key, RecordFront& into) {
  if (!isStamped(record) || !isStamped(sealed)) return false;
  std::uint8_t sum = 0;
  SlotWalker old_values(sealed);
  std::optional<ByteView> old_value;
  int old_slot = -1;
  Bytes before;
  copyWithFlaggedValues(flagged, record, into, [&](Bytes& to, int slot, ByteView value) {
    for (; old_slot < slot; ++old_slot) old_value = old_values.next();
    const FieldType type = flagged.typeOf(slot);
    std::uint8_t old_sum = 0;
    before.clear();
    if (old_value) putDeciphered(before, type, *old_value, key, old_sum);
    if (old_value && std::ranges::equal(before, value)) {
      to.insert(to.end(), old_value->begin(), old_value->end());
      sum = static_cast<std::uint8_t>(sum + old_sum);
    } else {
      putEnciphered(to, traitsOf(type).cipher, value, key, sum);
    }
  });
  wipeBytes(before);
  if (isTooLong(into, record)) return false;
  std::uint8_t& flags = into.bytes[1 + kStampFlagOffset];
  const std::uint8_t old_flags = sealed[1 + kStampFlagOffset];
  const bool same = ((flags ^ old_flags) & ~(kRecordEncrypted | kClearByDatabase)) == 0;
  flags =
      same ? old_flags : static_cast<std::uint8_t>((flags & ~kClearByDatabase) | kRecordEncrypted);
  into.bytes[1 + kStampChecksumOffset] = sum;
  return true;
}

bool EncryptRecordFields(const DatabaseRecord& schema, ByteView record, const ExpandedKey& key,
                         const StampSource& new_stamp, Bytes& into) {
  RecordFront front;
  const bool fits = encryptRecordFront(FlaggedFields(schema), record, key, new_stamp, front);
  if (fits) appendRest(front, record);
  into.swap(front.bytes);
  return fits;
}

int DecryptRecord(const DatabaseRecord& schema, ByteView record, const ExpandedKey& key,
                  Bytes& into) {
  RecordFront front;
  const int result = decryptRecordFront(FlaggedFields(schema), record, key, front);
  if (result == kRecordDecrypted) appendRest(front, record);
  into.swap(front.bytes);
  return result;
}

std::vector<OverlongValue> overlongValues(const DatabaseRecord& schema, ByteView record) {
  std::vector<OverlongValue> found;
  SlotWalker walker(record);
  for (int slot = 0;; ++slot) {
    const auto value = walker.next();
    if (!value) return found;
    const FieldDefinition& field = schema.fields[static_cast<std::size_t>(slot)];
    const CipherForm form = traitsOf(field.type).cipher;
    if (field.encrypt_flag == 0 || staysAsItIs(form, *value) ||
        (form != CipherForm::kLengthOfOneByte && form != CipherForm::kLink)) {
      continue;
    }
    const std::size_t length = textLength(value->subspan(clearHead(form)));
    if (length > 255) found.push_back({slot, length});
  }
}

}  // namespace tabelion
