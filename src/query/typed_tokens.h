// What a user typed between the separators of a date or a time.
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

// 1 to `most` digits and nothing else.
inline bool isDigits(std::string_view text, std::size_t most) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return !text.empty() && text.size() <= most && std::all_of(text.begin(), text.end(), isDigit);
}

}  // namespace tabelion
