#include "interchange/utf8.h"

#include "interchange/byte_block.h"

namespace tabelion {

DecodedCharacter decodeUtf8(std::string_view text) {
  const std::uint8_t lead = byteOf(text[0]);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};
  char32_t character = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const std::uint8_t next = byteOf(text[i]);
    if ((next & 0xC0) != 0x80) return {};
    character = character << 6 | (next & 0x3Fu);
  }
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < kLeast[length] || character > 0x10FFFF || isSurrogate(character)) return {};
  return {character, length};
}

void appendUtf8Character(std::string& into, char32_t c) {
  const auto tail = [](char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
  if (c < 0x80) {
    into += static_cast<char>(c);
  } else if (c < 0x800) {
    into += {static_cast<char>(0xC0 | c >> 6), tail(c)};
  } else if (c < 0x10000) {
    into += {static_cast<char>(0xE0 | c >> 12), tail(c >> 6), tail(c)};
  } else {
    into += {static_cast<char>(0xF0 | c >> 18), tail(c >> 12), tail(c >> 6), tail(c)};
  }
}

void appendUtf16Character(std::u16string& into, char32_t c) {
  if (c < 0x10000) {
    into += static_cast<char16_t>(c);
  } else {
    into += static_cast<char16_t>(0xD7C0 + (c >> 10));
    into += static_cast<char16_t>(0xDC00 | (c & 0x3FF));
  }
}

std::size_t asciiLength(std::string_view text) {
  std::size_t i = 0;
  for (; text.size() - i >= ByteBlock::kSize; i += ByteBlock::kSize) {
    const std::size_t ascii = ByteBlock(text.data() + i).firstNotAscii();
    if (ascii < ByteBlock::kSize) return i + ascii;
  }
  while (i < text.size() && byteOf(text[i]) < 0x80) ++i;
  return i;
}

}  // namespace tabelion
