#include "engine/field_record.h"

#include <algorithm>

#include "engine/stored_value.h"

namespace tabelion {
namespace {

constexpr std::size_t kFixedPart = 1 + sizeof(HeadBlock) + 2 + 2;  // up to the first item key
constexpr std::size_t kClosingZeros = 4;
static_assert(kFixedPart + kClosingZeros == 31);

// A text present counts with its NUL; an absent one takes no room.
std::size_t storedTextSize(const PopupItem& item) {
  return item.text.empty() ? 0 : item.text.size() + 1;
}

// Reads the text of item `index`. An item whose text is absent shares its offset with the next
// text or with the closing zeros, so it has one only when its offset differs from the next
// item's and does not lie on a NUL. False when the offset or the text leaves the record.
bool readItemText(ByteView record, std::size_t texts_begin, std::size_t index,
                  std::vector<PopupItem>& items) {
  const std::size_t offset = loadBe16(&items[index].key[kItemTextOffset]);
  if (offset < texts_begin || offset >= record.size()) return false;
  if (index + 1 < items.size() && loadBe16(&items[index + 1].key[kItemTextOffset]) == offset) {
    return true;
  }
  const ByteView from = record.subspan(offset);
  const auto end = std::find(from.begin(), from.end(), std::uint8_t{0});
  if (end == from.end()) return false;
  items[index].text.assign(from.begin(), end);
  return true;
}

}  // namespace

std::size_t fieldRecordLength(const FieldRecord& field) {
  if (field.unread) return field.unread->bytes.size();
  std::size_t length = kFixedPart + kItemKeySize * field.items.size() +
                       kRangeSize * field.ranges.size() + kClosingZeros + field.surplus.size();
  for (const PopupItem& item : field.items) length += storedTextSize(item);
  return length;
}

void writeFieldRecord(const FieldRecord& field, RecordIO& to) {
  if (field.unread) return to.putBytes(field.unread->bytes);
  to.putByte(field.record_type);
  to.putBytes(field.head);
  to.putLe16(static_cast<std::uint32_t>(field.items.size()));
  to.putLe16(static_cast<std::uint32_t>(field.ranges.size()));
  std::size_t text_offset =
      kFixedPart + kItemKeySize * field.items.size() + kRangeSize * field.ranges.size();
  for (const PopupItem& item : field.items) {
    ItemKey key = item.key;
    storeBe16(&key[kItemTextOffset], static_cast<std::uint32_t>(text_offset));
    to.putBytes(key);
    text_offset += storedTextSize(item);
  }
  for (const Range& range : field.ranges) to.putBytes(range);
  for (const PopupItem& item : field.items) {
    if (item.text.empty()) continue;
    to.putBytes(asBytes(item.text));
    to.putByte(0);
  }
  to.putBe32(0);
  to.putBytes(field.surplus);
}

int readFieldRecord(ByteView record, FieldRecord& field) {
  if (record.empty()) return kFieldRecordNoData;
  ByteReader reader(record);
  field.record_type = reader.readByte();
  reader.readBytes(field.head);
  const std::size_t items = reader.readLe16();
  const std::size_t ranges = reader.readLe16();
  if (!reader.ok() || items > kMaxItems ||
      reader.remaining() < items * kItemKeySize + ranges * kRangeSize + kClosingZeros) {
    return kFieldRecordDamaged;
  }
  field.items.assign(items, {});
  for (PopupItem& item : field.items) reader.readBytes(item.key);
  field.ranges.assign(ranges, {});
  for (Range& range : field.ranges) reader.readBytes(range);
  const std::size_t texts_begin = reader.position();
  for (std::size_t i = 0; i < items; ++i) {
    if (!readItemText(record, texts_begin, i, field.items)) return kFieldRecordDamaged;
  }
  // What lies behind the closing zeros belongs to a program that knew more. It can only be told
  // apart where the texts stand as this program writes them.
  field.surplus.clear();
  const std::size_t length = fieldRecordLength(field);
  if (record.size() > length) field.surplus.assign(record.begin() + length, record.end());
  return kFieldRecordRead;
}

const PopupItem* findItem(const FieldRecord& field, ByteView value) {
  const PopupKey key = popupKey(value);
  for (const PopupItem& item : field.items) {
    if (std::memcmp(item.key.data(), key.data(), key.size()) == 0) return &item;
  }
  return nullptr;
}

}  // namespace tabelion
