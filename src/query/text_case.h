// Case in comparisons. Only the 26 ASCII letters fold, to lower case, in every code page; all other
// bytes compare as unsigned numbers.
#pragma once

#include <string>
#include <string_view>

#include "engine/ascii.h"

namespace tabelion {

// Whether `text` contains or starts with `word`, which is given in lower case, in any case of its
// ASCII letters. Every text contains the empty word.
bool containsAnyCase(std::string_view text, std::string_view word);
bool startsWithAnyCase(std::string_view text, std::string_view word);

// -1, 0 or 1: the order of two texts byte by byte after folding; a text comes before a longer one
// that starts with it.
int compareAnyCase(std::string_view a, std::string_view b);

}  // namespace tabelion
