// What the bytes of a stored value say. A value may be shorter than its type: what is missing
// counts as zeros. Every function takes any bytes; numbers are little-endian.
#pragma once

#include <algorithm>
#include <array>

#include "engine/bytes.h"
#include "engine/field_types.h"

namespace tabelion {

// The text in a value: up to its NUL, or all of it where there is none. It lies in the value.
inline std::string_view storedText(ByteView value) {
  return textUntilNul(value);
}

// The first 32 bits.
inline std::uint32_t numberOfValue(ByteView value) {
  if (value.size() >= 4) return loadLe32(value.data());
  std::array<std::uint8_t, 4> padded{};
  std::copy(value.begin(), value.end(), padded.begin());
  return loadLe32(padded.data());
}

// The parts of a link field's value. One of no more bytes than its head has no text.
inline std::uint32_t linkKey(ByteView value) {
  return numberOfValue(value);
}
inline std::string_view linkText(ByteView value) {
  return value.size() > kLinkHeadSize ? storedText(value.subspan(kLinkHeadSize))
                                      : std::string_view();
}

// The key of a pop-up's item.
using PopupKey = std::array<std::uint8_t, kPopupKeySize>;
inline PopupKey popupKey(ByteView value) {
  PopupKey key{};
  std::copy_n(value.begin(), std::min(value.size(), key.size()), key.begin());
  return key;
}

}  // namespace tabelion
