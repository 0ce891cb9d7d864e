// Cutting 8-bit text to a number of bytes.
#pragma once

#include <cstddef>
#include <string_view>

namespace tabelion {

// The longest length of at most `max_bytes` at which `text` may be cut. With `utf8` a character is
// kept whole or left out; bytes that are not UTF-8 are cut anywhere.
inline std::size_t cutLength(std::string_view text, std::size_t max_bytes, bool utf8) {
  if (text.size() <= max_bytes) return text.size();
  const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  if (!utf8 || (byteAt(max_bytes) & 0xC0) != 0x80) return max_bytes;
  for (std::size_t back = 1; back <= 3 && back <= max_bytes; ++back) {
    const unsigned lead = byteAt(max_bytes - back);
    if ((lead & 0xC0) == 0x80) continue;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
    return length > back ? max_bytes - back : max_bytes;
  }
  return max_bytes;
}

}  // namespace tabelion
