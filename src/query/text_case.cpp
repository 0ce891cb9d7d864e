#include "query/text_case.h"

#include <algorithm>

namespace tabelion {

std::string lowerCaseText(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), lowerCase);
  return lower;
}

bool startsWithAnyCase(std::string_view text, std::string_view word) {
  return text.size() >= word.size() &&
         std::equal(word.begin(), word.end(), text.begin(),
                    [](char wanted, char c) { return lowerCase(c) == wanted; });
}

bool containsAnyCase(std::string_view text, std::string_view word) {
  for (std::size_t at = 0; at + word.size() <= text.size(); ++at) {
    if (startsWithAnyCase(text.substr(at), word)) return true;
  }
  return false;
}

int compareAnyCase(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    const auto left = static_cast<unsigned char>(lowerCase(a[i]));
    const auto right = static_cast<unsigned char>(lowerCase(b[i]));
    if (left != right) return left < right ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

}  // namespace tabelion
