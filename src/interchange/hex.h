// Bytes as pairs of hexadecimal digits, for everything that has no better text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/bytes.h"

namespace tabelion {

std::string toHex(ByteView bytes);  // lower-case digits, no separators

// None when the count of digits is odd or a character is no digit.
std::optional<Bytes> fromHex(std::string_view digits);

}  // namespace tabelion
