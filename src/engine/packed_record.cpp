#include "engine/packed_record.h"

#include <algorithm>

#include "engine/schema_places.h"

namespace tabelion {

std::optional<ByteView> slotValue(ByteView record, int slot) {
  const SlotPlace place = findSlot(record, slot);
  if (!place.present()) return std::nullopt;
  return record.subspan(static_cast<std::size_t>(place.offset), place.length);
}

std::optional<HeadBlock> recordStamp(ByteView record) {
  HeadBlock stamp;
  if (record.size() < 1 + stamp.size() || record[0] != kStampedPrefix) return std::nullopt;
  std::copy_n(record.begin() + 1, stamp.size(), stamp.begin());
  return stamp;
}

bool isRecordEncrypted(ByteView record) {
  return record.size() > kStampFlagOffset + 1 && record[0] == kStampedPrefix &&
         (record[1 + kStampFlagOffset] & kRecordEncrypted) != 0;
}

UnpackedRecord unpackRecord(ByteView record) {
  UnpackedRecord unpacked;
  if (record.empty()) return unpacked;
  const std::size_t prefix = std::min(prefixLength(record), record.size());
  unpacked.prefix.assign(record.begin(), record.begin() + prefix);
  SlotWalker walker(record);
  for (auto& slot : unpacked.slots) {
    const auto value = walker.next();
    if (!value) break;
    slot.emplace(value->begin(), value->end());
  }
  std::size_t rest = std::min(walker.position(), record.size());
  const bool has_end = record.size() - rest >= 2 && loadLe16(&record[rest]) == kEndOfRecord;
  if (has_end) rest += 2;
  unpacked.tail.assign(record.begin() + rest, record.end());
  return unpacked;
}

bool packRecord(const UnpackedRecord& record, Bytes& into) {
  into.clear();
  ByteWriter writer(into);
  writer.putBytes(record.prefix);
  std::size_t present = record.slots.size();
  while (present > 0 && !record.slots[present - 1]) --present;
  for (std::size_t slot = 0; slot < present; ++slot) {
    const auto& value = record.slots[slot];
    const std::size_t length = value ? value->size() : 0;
    if (length >= kEndOfRecord) return false;
    writer.putLe16(static_cast<std::uint32_t>(length));
    if (value) writer.putBytes(*value);
  }
  writer.putLe16(kEndOfRecord);
  writer.putBytes(record.tail);
  return into.size() <= kMaxRecordSize;
}

namespace {

bool isEnciphered(const FieldDefinition& field, const Bytes& prefix) {
  return field.encrypt_flag != 0 && isRecordEncrypted(prefix);
}

// The bytes that a value of this type has at least.
std::size_t leastSize(const FieldDefinition& field) {
  switch (traitsOf(field.type).form) {
    case ValueForm::kNone:
    case ValueForm::kText:
    case ValueForm::kLookup:
      return 0;
    case ValueForm::kLink:
      return kLinkHeadSize;
    case ValueForm::kNote:
    case ValueForm::kNumberText:
    case ValueForm::kResult:
    case ValueForm::kInteger:
    case ValueForm::kKey:
    case ValueForm::kPopupKey:
    case ValueForm::kFlag:
    case ValueForm::kDays:
    case ValueForm::kClock:
    case ValueForm::kBlock:
      break;
  }
  return fieldValueSize(field);
}

// A note up to its text's end, one zero for an empty one.
void shortenNotes(const DatabaseRecord& schema, UnpackedRecord& record) {
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    const FieldDefinition& field = schema.fields[slot];
    auto& value = record.slots[slot];
    if (field.type != FieldType::kNote || !value || isEnciphered(field, record.prefix)) continue;
    const auto end = std::find_if(value->rbegin(), value->rend(), [](auto byte) { return byte; });
    value->resize(static_cast<std::size_t>(value->rend() - end) + 1);
  }
}

}  // namespace

void fitValue(const FieldDefinition& field, Bytes& into, std::size_t begin) {
  if (field.type == FieldType::kTime && into.size() == begin)
    into.insert(into.end(), {0, 0, kNoTimeHour});
  into.resize(std::max(into.size(), begin + leastSize(field)));
}

void fitRecord(const DatabaseRecord& schema, UnpackedRecord& record) {
  std::size_t present = kFieldSlots;
  while (present > 0 && !record.slots[present - 1]) --present;
  for (std::size_t slot = 0; slot < present; ++slot) {
    const FieldDefinition& field = schema.fields[slot];
    auto& value = record.slots[slot];
    if (!value) value.emplace();
    if (!isEnciphered(field, record.prefix)) fitValue(field, *value);
  }
}

bool packFitted(const DatabaseRecord& schema, UnpackedRecord& record, Bytes& into) {
  fitRecord(schema, record);
  if (packRecord(record, into)) return true;
  shortenNotes(schema, record);
  return packRecord(record, into);
}

UnpackedRecord newRecord(const DatabaseRecord& schema) {
  UnpackedRecord record;
  record.prefix.assign(1 + sizeof(HeadBlock), 0);
  record.prefix[0] = kStampedPrefix;
  std::size_t count = kFieldSlots;
  while (count > 0 && !isValidType(schema.fields[count - 1].type)) --count;
  if (count > 0) record.slots[count - 1].emplace();
  Bytes packed;
  (void)packFitted(schema, record, packed);  // which shortens the notes of one that is too long
  return record;
}

Bytes unpackValue(const FieldDefinition& field, ByteView stored) {
  const std::size_t size = fieldValueSize(field);
  Bytes value(size, 0);
  std::size_t take = std::min(stored.size(), size);
  const ValueForm form = traitsOf(field.type).form;
  if (form == ValueForm::kLookup) return {};
  if (form == ValueForm::kNote && (stored.empty() || stored[0] == 0)) take = 0;
  if (form == ValueForm::kLink && stored.size() <= kLinkHeadSize) {
    take = std::min(take, kLinkHeadSize);
  }
  std::copy_n(stored.begin(), take, value.begin());
  return value;
}

}  // namespace tabelion
