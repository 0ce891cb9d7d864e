#include "security/plausible_values.h"

#include <algorithm>
#include <string_view>

#include "engine/packed_record.h"

namespace tabelion {
namespace {

// Bits that one byte speaks for a kind of text, against 1/256 for a byte of noise.
struct ByteWeights {
  double small_letter;  // of the first 128 characters
  double capital;
  double digit;  // or a blank
  double punctuation;
  double high;       // 0x80 to 0xBF
  double high_most;  // from 0xC0: letters, where a code page has them
};
constexpr ByteWeights kLatin{2.3, 1.3, 2.3, -0.7, -3, -3};
constexpr ByteWeights kOtherAlphabet{-1.5, -1.5, 1.5, -0.5, -1, 1.6};
constexpr ByteWeights kNumber{-8, -8, 4, -8, -8, -8};
constexpr double kNumberSign = 4;
constexpr double kUtf8Character = 4;  // of several bytes, and all in order
constexpr double kNeverTyped = -8;    // control characters
constexpr double kNulInside = -30;    // only texts up to their NUL are ever enciphered
constexpr double kMostOfOneText = 60;
constexpr double kChoiceOfKind = -1;

constexpr std::uint32_t kLastLikelyDay = 80000;  // in 2123
constexpr std::int32_t kLikelyInteger = 1 << 16;
constexpr std::int32_t kPossibleInteger = 1 << 24;
constexpr std::uint32_t kLikelyAutoNumber = 1u << 20;

double weightOf(std::uint8_t byte, const ByteWeights& weights) {
  if (byte == 0) return kNulInside;
  if (byte == '\t' || byte == '\n' || byte == '\r') return 0;
  if (byte < ' ' || byte == 0x7F) return kNeverTyped;
  if (byte >= 'a' && byte <= 'z') return weights.small_letter;
  if (byte >= 'A' && byte <= 'Z') return weights.capital;
  if ((byte >= '0' && byte <= '9') || byte == ' ') return weights.digit;
  if (byte < 0x80) return weights.punctuation;
  return byte < 0xC0 ? weights.high : weights.high_most;
}

double limited(double bits) {
  return std::clamp(bits, -kMostOfOneText, kMostOfOneText);
}

double ofBytes(ByteView text, const ByteWeights& weights) {
  double bits = 0;
  for (const std::uint8_t byte : text) bits += weightOf(byte, weights);
  return limited(bits);
}

// As UTF-8; what is none of it speaks against it.
double ofUtf8(ByteView text) {
  double bits = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::uint8_t byte = text[at++];
    if (byte < 0x80) {
      bits += weightOf(byte, kLatin);
      continue;
    }
    std::size_t more = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC2 ? 1 : 0;
    bool is_character = more > 0;
    for (; more > 0 && is_character; --more) {
      is_character = at < text.size() && (text[at++] & 0xC0) == 0x80;
    }
    bits += is_character ? kUtf8Character : kNeverTyped;
  }
  return limited(bits);
}

double ofText(ByteView text) {
  if (text.empty()) return 0;
  return kChoiceOfKind +
         std::max({ofBytes(text, kLatin), ofBytes(text, kOtherAlphabet), ofUtf8(text)});
}

double ofNumber(ByteView text) {
  double bits = 0;
  for (const std::uint8_t byte : text) {
    const bool is_sign = byte != 0 && std::string_view("+-.,eE").find(static_cast<char>(byte)) !=
                                          std::string_view::npos;
    bits += is_sign ? kNumberSign : weightOf(byte, kNumber);
  }
  return limited(bits);
}

// A deciphered text has one NUL behind it, a number zeros up to its size.
ByteView withoutEnd(ByteView value, bool all_zeros) {
  std::size_t size = value.size();
  do {
    if (size == 0 || value[size - 1] != 0) break;
    --size;
  } while (all_zeros);
  return value.first(size);
}

ByteView upToNul(ByteView value) {
  return value.first(
      static_cast<std::size_t>(std::find(value.begin(), value.end(), 0) - value.begin()));
}

bool isZero(ByteView value) {
  return std::all_of(value.begin(), value.end(), [](std::uint8_t byte) { return byte == 0; });
}

double ofDate(ByteView value) {
  if (value.size() < 4) return 0;
  return loadLe32(value.data()) <= kLastLikelyDay ? 14 : -8;
}

double ofTime(ByteView value) {
  if (value.size() < 4) return 0;
  if (value[2] == kNoTimeHour) return 7;
  const bool is_time = value[0] < 60 && value[1] < 60 && value[2] < 24;
  return (is_time ? 7 : -10) + (value[3] == 0 ? 6 : -3);
}

double ofInteger(ByteView value) {
  if (value.size() < 4) return 0;
  const auto number = static_cast<std::int32_t>(loadLe32(value.data()));
  if (number > -kLikelyInteger && number < kLikelyInteger) return 12;
  return number > -kPossibleInteger && number < kPossibleInteger ? 5 : -2;
}

double ofAutoNumber(ByteView value) {
  if (value.size() < 4) return 0;
  return loadLe32(value.data()) < kLikelyAutoNumber ? 10 : -4;
}

double ofPopup(const FieldRecord& field, ByteView value) {
  if (value.size() < kPopupKeySize) return 0;
  return isZero(value) || findItem(field, value) != nullptr ? 40 : -6;
}

double ofValue(FieldType type, const FieldRecord& field, ByteView value) {
  if (value.empty()) return 0;
  switch (type) {
    case FieldType::kText:
    case FieldType::kLongText:
    case FieldType::kTextVariant:
    case FieldType::kText254:
      return ofText(withoutEnd(value, false));
    case FieldType::kLinkField:
      return value.size() <= kLinkHeadSize
                 ? 0
                 : ofText(withoutEnd(value.subspan(kLinkHeadSize), false));
    case FieldType::kFloat:
    case FieldType::kCalculated:
      return ofNumber(withoutEnd(value, true));
    case FieldType::kNote:  // its first byte was never enciphered
      return value[0] == 0 ? 0 : ofText(upToNul(value).subspan(1));
    case FieldType::kDate:
      return ofDate(value);
    case FieldType::kTime:
      return ofTime(value);
    case FieldType::kInteger:
      return ofInteger(value);
    case FieldType::kAutoNumber:
    case FieldType::kLinkedField:
      return ofAutoNumber(value);
    case FieldType::kPopup:
      return ofPopup(field, value);
    case FieldType::kCheckBox:
      return value[0] <= 1 ? 7 : -8;
    case FieldType::kUnused:
    case FieldType::kSeparator:
    case FieldType::kLookup:
    case FieldType::kExternal:
      break;
  }
  return 0;
}

}  // namespace

double plausibility(const Database& database, ByteView record) {
  double bits = 0;
  SlotWalker walker(record);
  for (std::size_t slot = 0; slot < kFieldSlots; ++slot) {
    const auto value = walker.next();
    if (!value) break;
    const FieldDefinition& field = database.schema.fields[slot];
    if (field.encrypt_flag != 0) bits += ofValue(field.type, database.fields[slot], *value);
  }
  return bits;
}

}  // namespace tabelion
