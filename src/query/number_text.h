// Numbers as text and back, the same under every process locale.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tabelion {

// Fixed decimals without leading blanks ("3.50"); with `decimal_comma` every "." becomes ",".
// Negative decimals count as 6.
void appendNumber(std::string& into, double value, int decimals, bool decimal_comma);
std::string numberText(double value, int decimals, bool decimal_comma);

// The number at the start of a text, after blanks; 0 when there is none. With `decimal_comma`
// every "," is read as ".". What is too large gives infinity.
double numberOfText(std::string_view text, bool decimal_comma);

// The whole number at the start of a text, after blanks; 0 when there is none. Larger numbers than
// 64 bits hold give the nearest that they do.
std::int64_t leadingInteger(std::string_view text);

void appendInteger(std::string& into, std::int64_t value);
// At least `digits` digits, filled with zeros.
void appendPadded(std::string& into, int value, int digits);

}  // namespace tabelion
