// UTF-8 and UTF-16 as such, a character at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tabelion {

inline constexpr char32_t kNoCharacter = 0xFFFFFFFF;

inline std::uint8_t byteOf(char c) {
  return static_cast<std::uint8_t>(c);
}

inline bool isSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDFFF;
}

struct DecodedCharacter {
  char32_t character = kNoCharacter;
  std::size_t length = 1;
};

// The character at the start of a text that is not empty; kNoCharacter for what is none: overlong,
// a surrogate, past U+10FFFF, cut short.
DecodedCharacter decodeUtf8(std::string_view text);

// `c` is a character: no surrogate, at most U+10FFFF.
void appendUtf8Character(std::string& into, char32_t c);
void appendUtf16Character(std::u16string& into, char32_t c);

// How many bytes at the start of the text are ASCII.
std::size_t asciiLength(std::string_view text);

}  // namespace tabelion
