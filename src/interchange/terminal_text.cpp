#include "interchange/terminal_text.h"

#include <cstdint>

namespace tabelion {
namespace {

constexpr std::string_view kNoText = "\xEF\xBF\xBD";  // U+FFFD

// How many bytes the character at the front of `text` has, by its first byte; 0: it begins none.
std::size_t lengthOf(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  if (first >= 0xF0 && first <= 0xF4) return 4;
  return 0;
}

// How many bytes at the front of `text` may belong to one character of `length` bytes.
std::size_t soundLength(std::string_view text, std::size_t length) {
  std::size_t sound = 1;  // also of a byte that begins none
  while (sound < length && sound < text.size() &&
         (static_cast<unsigned char>(text[sound]) & 0xC0) == 0x80) {
    ++sound;
  }
  return sound;
}

std::uint32_t valueOf(std::string_view character) {
  constexpr unsigned kFirstBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  std::uint32_t value = static_cast<unsigned char>(character[0]) & kFirstBits[character.size()];
  for (const char c : character.substr(1)) value = value << 6 | (c & 0x3F);
  return value;
}

bool turnsDirection(std::uint32_t c) {
  return (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool endsLine(std::uint32_t c) {
  return c == 0x2028 || c == 0x2029;
}

void putCharacter(std::string& shown, std::string_view character) {
  const std::uint32_t c = valueOf(character);
  if (c == '\n' || c == '\t' || (c >= 0x20 && c < 0x7F)) {
    shown += character;
  } else if (c <= 0x7F) {
    const std::uint32_t picture = c == 0x7F ? 0x21 : c;  // U+2400 and up
    shown += "\xE2\x90";
    shown += static_cast<char>(0x80 + picture);
  } else {
    const bool harmless = c >= 0xA0 && !turnsDirection(c) && !endsLine(c);
    shown += harmless ? character : kNoText;
  }
}

}  // namespace

bool TerminalSink::write(std::string_view bytes) {
  std::string joined;
  if (!rest_.empty()) {
    joined = rest_ + std::string(bytes);
    rest_.clear();
    bytes = joined;
  }
  std::string shown;
  shown.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = lengthOf(static_cast<unsigned char>(bytes[0]));
    const std::size_t sound = soundLength(bytes, length);
    if (sound < length && sound == bytes.size()) break;  // the rest may come
    if (bytes == "\r") break;
    if (bytes.starts_with("\r\n")) {
      shown += "\r";
    } else if (sound == length) {
      putCharacter(shown, bytes.substr(0, length));
    } else {
      shown += kNoText;
    }
    bytes.remove_prefix(sound);
  }
  rest_ = bytes;
  return shown.empty() || terminal_.write(shown);
}

}  // namespace tabelion
