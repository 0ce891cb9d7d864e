// Pieces of what a user typed.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace tabelion {

// Three tokens at most; runs of separators count as one, a missing token is empty. Text behind the
// third token is left unread.
struct TypedTokens {
  std::array<std::string_view, 3> tokens;
  std::string_view rest;
};

inline TypedTokens splitTyped(std::string_view text, char separator) {
  TypedTokens typed;
  std::size_t position = 0;
  for (std::string_view& token : typed.tokens) {
    while (position < text.size() && text[position] == separator) ++position;
    const std::size_t end = std::min(text.find(separator, position), text.size());
    token = text.substr(position, end - position);
    position = end;
  }
  typed.rest = text.substr(position);
  return typed;
}

// Without the white space around it.
inline std::string_view withoutBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// 1 to `most` digits and nothing else.
inline bool isDigits(std::string_view text, std::size_t most) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return !text.empty() && text.size() <= most && std::all_of(text.begin(), text.end(), isDigit);
}

}  // namespace tabelion
