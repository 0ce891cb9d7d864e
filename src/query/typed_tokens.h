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

// Whether `text` contains `word` (given in lower case) in any case of its ASCII letters.
inline bool containsAnyCase(std::string_view text, std::string_view word) {
  const auto equal = [](char a, char b) {
    return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
  };
  return std::search(text.begin(), text.end(), word.begin(), word.end(), equal) != text.end();
}

// 1 to `most` digits and nothing else.
inline bool isDigits(std::string_view text, std::size_t most) {
  return !text.empty() && text.size() <= most &&
         text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace tabelion
