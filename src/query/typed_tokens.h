// Pieces of what a user typed.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "engine/ascii.h"

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

}  // namespace tabelion
