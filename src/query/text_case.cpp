#include "query/text_case.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tabelion {
namespace {

// Eight places of a text are looked at in one number, whatever its byte order.
constexpr std::size_t kPlaces = sizeof(std::uint64_t);
constexpr std::uint64_t kEveryByte = 0x0101010101010101u;

// A character in every byte. Setting the bit makes both cases of a letter, and nothing else, equal
// to its lower case.
struct Wanted {
  std::uint64_t case_bit;
  std::uint64_t character;
};

Wanted wanted(char c) {
  const bool is_letter = c >= 'a' && c <= 'z';
  return {is_letter ? kEveryByte << 5 : 0, kEveryByte * static_cast<unsigned char>(c)};
}

// Zero in the bytes where the text has the character.
std::uint64_t difference(const char* at, const Wanted& wanted) {
  std::uint64_t bytes;
  std::memcpy(&bytes, at, sizeof bytes);
  return (bytes | wanted.case_bit) ^ wanted.character;
}

bool hasZeroByte(std::uint64_t bytes) {
  return ((bytes - kEveryByte) & ~bytes & kEveryByte << 7) != 0;
}

bool startsWithin(std::string_view text, std::size_t from, std::size_t places,
                  std::string_view word) {
  for (std::size_t at = from; at < from + places; ++at) {
    if (startsWithAnyCase(text.substr(at), word)) return true;
  }
  return false;
}

}  // namespace

bool startsWithAnyCase(std::string_view text, std::string_view word) {
  return text.size() >= word.size() &&
         std::equal(word.begin(), word.end(), text.begin(),
                    [](char wanted, char c) { return lowerCase(c) == wanted; });
}

// Only where both the first and the last character of the word stand is the rest compared.
bool containsAnyCase(std::string_view text, std::string_view word) {
  if (word.empty()) return true;
  if (text.size() < word.size()) return false;
  const std::size_t places = text.size() - word.size() + 1;
  if (places < kPlaces) return startsWithin(text, 0, places, word);
  const Wanted first = wanted(word.front());
  const Wanted last = wanted(word.back());
  for (std::size_t at = 0; at < places; at += kPlaces) {
    const std::size_t from = std::min(at, places - kPlaces);
    const char* const place = text.data() + from;
    const std::uint64_t differences =
        difference(place, first) | difference(place + word.size() - 1, last);
    if (hasZeroByte(differences) && startsWithin(text, from, kPlaces, word)) return true;
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
