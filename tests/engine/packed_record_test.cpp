#include "engine/packed_record.h"

#include <gtest/gtest.h>

#include <random>

#include "engine/schema_places.h"

namespace tabelion {
namespace {

Bytes withPrefix(std::size_t length, std::uint8_t first, const Bytes& rest) {
  Bytes record(length, 9);
  record[0] = first;
  record.insert(record.end(), rest.begin(), rest.end());
  return record;
}

TEST(PackedRecords, PrefixLengthComesFromTheFirstByte) {
  const Bytes slots = {2, 0, 'h', 'i', 0xFF, 0xFF};
  for (const auto& [first, length] : {std::pair{0, 1}, {1, 21}, {2, 3}, {22, 23}, {255, 256}}) {
    const Bytes record =
        withPrefix(static_cast<std::size_t>(length), static_cast<std::uint8_t>(first), slots);
    const SlotPlace place = findSlot(record, 0);
    EXPECT_EQ(place.offset, length + 2) << first;
    EXPECT_EQ(place.length, 2) << first;
    EXPECT_FALSE(findSlot(record, 1).present()) << first;
  }
}

TEST(PackedRecords, AbsentEmptyAndOverlongSlotsAreToldApart) {
  const Bytes nothing = {0, 0xFF, 0xFF};
  EXPECT_FALSE(slotValue(nothing, 0));

  const Bytes empty_then_end = {0, 0, 0, 0xFF, 0xFF, 5, 0};
  ASSERT_TRUE(slotValue(empty_then_end, 0));
  EXPECT_TRUE(slotValue(empty_then_end, 0)->empty());
  EXPECT_FALSE(slotValue(empty_then_end, 1));

  const Bytes overlong = {0, 1, 0, 'a', 200, 0, 'b'};
  EXPECT_TRUE(slotValue(overlong, 0));
  EXPECT_FALSE(slotValue(overlong, 1)) << "claims more bytes than there are";
  for (const Bytes& stump : {Bytes{}, Bytes{22}, Bytes{1, 2, 3}, Bytes{0, 4}}) {
    EXPECT_FALSE(slotValue(stump, 0));
    EXPECT_FALSE(recordStamp(stump));
  }
}

TEST(PackedRecords, TakingApartAndPackingGivesTheSameBytes) {
  std::minstd_rand random(11);
  for (int round = 0; round < 300; ++round) {
    Bytes record = withPrefix(23, 22, {});
    const unsigned slots = random() % (kFieldSlots + 1);
    for (unsigned slot = 0; slot < slots; ++slot) {
      const unsigned length = random() % 4 == 0 ? random() % 300 : random() % 6;
      record.push_back(static_cast<std::uint8_t>(length));
      record.push_back(static_cast<std::uint8_t>(length >> 8));
      for (unsigned i = 0; i < length; ++i) record.push_back(static_cast<std::uint8_t>(random()));
    }
    record.insert(record.end(), {0xFF, 0xFF});
    if (round % 3 == 0) record.insert(record.end(), {1, 2, 3});  // bytes behind the end
    Bytes packed;
    ASSERT_TRUE(packRecord(unpackRecord(record), packed));
    ASSERT_EQ(packed, record) << "round " << round;
  }
}

TEST(PackedRecords, BytesThatMakeNoSlotAreKeptBehindTheEnd) {
  const Bytes damaged = {0, 1, 0, 'a', 200, 0, 'b'};
  UnpackedRecord record = unpackRecord(damaged);
  EXPECT_EQ(record.tail, (Bytes{200, 0, 'b'}));
  record.slots[1] = Bytes{'c'};
  Bytes packed;
  ASSERT_TRUE(packRecord(record, packed));
  EXPECT_EQ(packed, (Bytes{0, 1, 0, 'a', 1, 0, 'c', 0xFF, 0xFF, 200, 0, 'b'}));

  record.slots[2] = Bytes(65534, 'x');
  EXPECT_FALSE(packRecord(record, packed)) << "longer than a record can be";
}

// What a reader needs that takes a value's bytes by its type and not by its length.
std::size_t fixedSize(const FieldDefinition& field, ByteView value) {
  switch (traitsOf(field.type).form) {
    case ValueForm::kNone:
    case ValueForm::kText:
    case ValueForm::kLookup:
      return value.size();
    case ValueForm::kLink:
      return kLinkHeadSize;
    default:
      return fieldValueSize(field);
  }
}

TEST(PackedRecords, StoredRecordsHaveTheBytesOfEveryType) {
  DatabaseRecord schema;
  initSchema(schema);
  for (std::int32_t code = 1; code <= codeOf(kLastFieldType); ++code) {
    schema.fields[std::size_t(code)].type = FieldType{code};
  }
  std::minstd_rand random(3);
  for (int round = 0; round < 100; ++round) {
    UnpackedRecord record;
    if (round == 0) record = newRecord(schema);
    for (auto& slot : record.slots) {
      if (round > 0 && random() % 3 != 0) slot = Bytes(random() % 6, std::uint8_t(random()));
    }
    const UnpackedRecord before = record;
    Bytes packed;
    ASSERT_TRUE(packFitted(schema, record, packed));
    int last = -1;
    for (int slot = 0; slot < kFieldSlots; ++slot) {
      const SlotPlace place = findSlot(packed, slot);
      if (!place.present()) break;
      last = slot;
      const FieldDefinition& field = schema.fields[std::size_t(slot)];
      const ByteView value = *slotValue(packed, slot);
      const Bytes old = before.slots[std::size_t(slot)].value_or(Bytes());
      EXPECT_EQ(value.size(), std::max(fixedSize(field, value), old.size())) << codeOf(field.type);
      EXPECT_TRUE(std::equal(old.begin(), old.end(), value.begin())) << "nothing is cut";
    }
    EXPECT_TRUE(last == kFieldSlots - 1 || !before.slots[std::size_t(last) + 1]);
  }
  UnpackedRecord enciphered = newRecord(schema);
  enciphered.prefix[1 + kStampFlagOffset] = kRecordEncrypted;
  const std::size_t number = std::size_t(codeOf(FieldType::kFloat));
  schema.fields[number].encrypt_flag = 1;
  enciphered.slots[number] = Bytes{1, 9};
  fitRecord(schema, enciphered);
  EXPECT_EQ(*enciphered.slots[number], (Bytes{1, 9})) << "has a form of its own";
}

TEST(PackedRecords, ValuesUnpackByTheRuleOfTheirType) {
  FieldDefinition field;
  const auto unpacked = [&field](FieldType type, Bytes stored) {
    field.type = type;
    field.width = 5;
    return unpackValue(field, stored);
  };
  EXPECT_EQ(unpacked(FieldType::kText, {'a', 'b'}), (Bytes{'a', 'b', 0, 0, 0, 0}));
  EXPECT_EQ(unpacked(FieldType::kText, {}), Bytes(6, 0));
  EXPECT_EQ(unpacked(FieldType::kText, {'1', '2', '3', '4', '5', '6', '7'}).size(), 6u);
  EXPECT_EQ(unpacked(FieldType::kDate, {1, 2}), (Bytes{1, 2, 0, 0}))
      << "short values read as padded";
  EXPECT_EQ(unpacked(FieldType::kNote, {0, 'x', 'y'}), Bytes(2001, 0));
  EXPECT_EQ(unpacked(FieldType::kNote, {'x', 0, 'y'})[2], 'y');
  Bytes link(24, 7);
  EXPECT_EQ(unpacked(FieldType::kLinkField, link).size(), 280u);
  EXPECT_EQ(unpacked(FieldType::kLinkField, link)[24], 0);
  link.insert(link.end(), {'h', 'i', 0});
  EXPECT_EQ(unpacked(FieldType::kLinkField, link)[25], 'i');
  EXPECT_EQ(unpacked(FieldType::kExternal, {1, 2, 3, 4, 5, 6}), (Bytes{1, 2, 3, 4, 5}));
  for (const FieldType type : {FieldType::kUnused, FieldType::kSeparator, FieldType::kLookup})
    EXPECT_TRUE(unpacked(type, {1}).empty());
}

}  // namespace
}  // namespace tabelion
