// Letters, digits and blanks. Only those of ASCII count, whatever the code page: bytes and
// characters from 128 on are none of them. For narrow and wide characters alike.
#pragma once

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace tabelion {

template <class Char>
constexpr bool isDigit(Char c) {
  return c >= Char{'0'} && c <= Char{'9'};
}
template <class Char>
constexpr bool isLetter(Char c) {
  return (c >= Char{'a'} && c <= Char{'z'}) || (c >= Char{'A'} && c <= Char{'Z'});
}
// The space, the tabulators, the line breaks and the form feed.
template <class Char>
constexpr bool isBlank(Char c) {
  return c == Char{' '} || (c >= Char{'\t'} && c <= Char{'\r'});
}
template <class Char>
constexpr Char lowerCase(Char c) {
  return c >= Char{'A'} && c <= Char{'Z'} ? static_cast<Char>(c - Char{'A'} + Char{'a'}) : c;
}

// Only A to Z change; the text keeps its length.
template <class Char>
std::basic_string<Char> lowerCaseText(std::basic_string<Char> text) {
  std::transform(text.begin(), text.end(), text.begin(), lowerCase<Char>);
  return text;
}
inline std::string lowerCaseText(std::string_view text) {
  return lowerCaseText(std::string(text));
}

// Without the blanks around it: a part of the same text, so it lives as long as that.
inline std::string_view withoutBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

// 1 to `most` digits and nothing else.
inline bool isDigits(std::string_view text, std::size_t most) {
  return !text.empty() && text.size() <= most &&
         std::all_of(text.begin(), text.end(), isDigit<char>);
}

// The whole number that the text is: digits, a minus sign before them where the type has one, and
// nothing else. None when it is anything else or does not fit the type.
template <class Number>
std::optional<Number> wholeNumber(std::string_view text) {
  Number number = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return number;
}

}  // namespace tabelion
