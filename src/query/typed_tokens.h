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

inline char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Whether `text` contains `word` (given in lower case) in any case of its ASCII letters.
inline bool containsAnyCase(std::string_view text, std::string_view word) {
  for (std::size_t at = 0; at + word.size() <= text.size(); ++at) {
    std::size_t equal = 0;
    while (equal < word.size() && lowerCase(text[at + equal]) == word[equal]) ++equal;
    if (equal == word.size()) return true;
  }
  return false;
}

// 1 to `most` digits and nothing else.
inline bool isDigits(std::string_view text, std::size_t most) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  return !text.empty() && text.size() <= most && std::all_of(text.begin(), text.end(), isDigit);
}

}  // namespace tabelion
