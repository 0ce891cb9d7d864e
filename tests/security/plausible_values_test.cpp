// Values are told from noise by what they look like.
#include "security/plausible_values.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "engine/packed_record.h"

namespace tabelion {
namespace {

double plausibility(FieldType type, const Bytes& value, bool flagged = true) {
  static Database database;
  database.schema.fields[0].type = type;
  database.schema.fields[0].encrypt_flag = flagged ? 1 : 0;
  database.fields[0].items.assign(1, {});
  database.fields[0].items[0].key = {1, 2, 3};
  UnpackedRecord record;
  record.slots[0] = value;
  Bytes packed;
  EXPECT_TRUE(packRecord(record, packed));
  return plausibility(database, packed);
}

Bytes text(const std::string& text, std::size_t size = 0) {
  Bytes bytes(text.begin(), text.end());
  bytes.resize(std::max(size, text.size() + 1));
  return bytes;
}

TEST(Plausibility, ValuesSpeakForThemselvesAndOddOnesAgainst) {
  struct Row {
    FieldType type;
    Bytes value;
    bool likely;
  };
  const std::vector<Row> rows = {
      {FieldType::kText, text("Anna Maria, 2nd floor"), true},
      {FieldType::kText, text("\xCE\xE4\xE5\xF1\xF1\xE0 55"), true},             // Cyrillic, 1251
      {FieldType::kText, text("M\xC3\xBCller \xE6\x97\xA5\xE6\x9C\xAC"), true},  // UTF-8
      {FieldType::kText, text("\x03\x8F\x11\x9C\x1E"), false},
      {FieldType::kText, Bytes{'A', 'n', 'n', 0, 'a', 0}, false},  // a NUL inside
      {FieldType::kFloat, text("-12.50", kNumberTextSize), true},
      {FieldType::kFloat, text("12x?", kNumberTextSize), false},
      {FieldType::kNote, text("Bring the keys", kNoteSize), true},
      {FieldType::kLinkField, text(std::string(kLinkHeadSize, '\x01') + "Zoe Miller"), true},
      {FieldType::kLinkField, text(std::string(kLinkHeadSize, 'a') + "\x01\x02\x9F"), false},
      {FieldType::kDate, Bytes{0, 0, 0, 0}, true},
      {FieldType::kDate, Bytes{0x10, 0x90, 0, 0x44}, false},
      {FieldType::kTime, Bytes{0, 30, 17, 0}, true},
      {FieldType::kTime, Bytes{0, 0, kNoTimeHour, 9}, true},
      {FieldType::kTime, Bytes{0, 61, 17, 0}, false},
      {FieldType::kInteger, Bytes{0xFE, 0xFF, 0xFF, 0xFF}, true},
      {FieldType::kInteger, Bytes{1, 2, 3, 0x44}, false},
      {FieldType::kPopup, Bytes{1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, true},
      {FieldType::kPopup, Bytes(kPopupKeySize, 0), true},
      {FieldType::kPopup, Bytes(kPopupKeySize, 7), false},
      {FieldType::kCheckBox, Bytes{1}, true},
      {FieldType::kCheckBox, Bytes{2}, false},
  };
  for (const auto& [type, value, likely] : rows) {
    const double bits = plausibility(type, value);
    EXPECT_EQ(bits > 0, likely) << traitsOf(type).name << " " << bits;
    EXPECT_NE(bits, 0);
    EXPECT_EQ(plausibility(type, value, false), 0) << "not enciphered, so it says nothing";
  }
  EXPECT_EQ(plausibility(FieldType::kText, Bytes{0}), 0);
  EXPECT_EQ(plausibility(FieldType::kNote, Bytes(kNoteSize, 0)), 0);
}

// The bits are odds: of 256 values of noise hardly one may look like values with 8 bits.
TEST(Plausibility, NoiseSeldomLooksLikeValues) {
  std::minstd_rand random{1};
  const auto noise = [&](std::size_t size) {
    Bytes bytes(size);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 8);
    return bytes;
  };
  struct Kind {
    FieldType type;
    std::size_t size;
  };
  for (const auto& [type, size] : std::vector<Kind>{{FieldType::kText, 2},
                                                    {FieldType::kText, 6},
                                                    {FieldType::kText, 20},
                                                    {FieldType::kLongText, 60},
                                                    {FieldType::kFloat, 3},
                                                    {FieldType::kDate, 4},
                                                    {FieldType::kTime, 4},
                                                    {FieldType::kInteger, 4},
                                                    {FieldType::kAutoNumber, 4},
                                                    {FieldType::kPopup, 14},
                                                    {FieldType::kCheckBox, 1}}) {
    constexpr int kValues = 2000;
    int with_4_bits = 0;
    int with_8_bits = 0;
    for (int i = 0; i < kValues; ++i) {
      Bytes value = noise(size);
      if (traitsOf(type).form == ValueForm::kText) value.push_back(0);
      const double bits = plausibility(type, value);
      with_4_bits += bits >= 4;
      with_8_bits += bits >= 8;
    }
    EXPECT_LE(with_4_bits, 2 * kValues / 16) << traitsOf(type).name << " " << size;
    EXPECT_LE(with_8_bits, 2 * kValues / 256) << traitsOf(type).name << " " << size;
  }
}

}  // namespace
}  // namespace tabelion
