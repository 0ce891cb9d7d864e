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
