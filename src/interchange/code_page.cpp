#include "interchange/code_page.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>

#include "engine/ascii.h"

namespace tabelion {
namespace {

constexpr std::size_t kLongestName = 40;
constexpr std::size_t kLongestSequence = 4;  // bytes of a character, in any page served
constexpr char32_t kLastC1 = 0x9F;

// Gives every byte that has no character of its own one that is free, and fills the tables.
void completeTables(CodePage& page) {
  const auto taken = [&](char32_t c) {
    return std::find(page.characters.begin(), page.characters.end(), c) != page.characters.end();
  };
  for (char32_t byte = 0x80; byte <= 0xFF; ++byte) {
    char32_t& character = page.characters[byte];
    const auto own_end = page.characters.begin() + byte;
    const bool twice = std::find(page.characters.begin(), own_end, character) != own_end;
    if (character != kNoCharacter && !twice) continue;
    char32_t stand_in = byte <= kLastC1 ? byte : kBytePlane + byte;
    if (taken(stand_in)) stand_in = kBytePlane + byte;
    while (taken(stand_in)) stand_in -= 0x100;
    character = stand_in;
  }
  for (std::size_t byte = 0; byte < page.characters.size(); ++byte) {
    const char32_t character = page.characters[byte];
    std::string text;
    appendUtf8Character(text, character);
    std::copy(text.begin(), text.end(), page.utf8[byte].begin());
    page.utf8[byte][3] = static_cast<char>(text.size());
    if (byte >= 0x80) page.bytes.emplace_back(character, static_cast<std::uint8_t>(byte));
  }
  std::sort(page.bytes.begin(), page.bytes.end());
}

std::string canonicalName(std::string_view name) {
  std::string canonical(name);
  for (char& c : canonical) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  for (const std::string_view prefix : {"WINDOWS-", "CP-", "CP"}) {
    if (canonical.starts_with(prefix)) {
      canonical.erase(0, prefix.size());
      break;
    }
  }
  const bool number =
      !canonical.empty() && canonical.find_first_not_of("0123456789") == std::string::npos;
  if (canonical == "65001" || canonical == "UTF8") return "UTF-8";
  if (number) return "CP" + canonical;
  if (canonical.size() != name.size()) return std::string(name);
  return canonical;
}

}  // namespace

std::optional<std::string> Converter::convert(std::string_view text) const {
  iconv(handle_, nullptr, nullptr, nullptr, nullptr);
  std::array<char, 32> output;
  char* in = const_cast<char*>(text.data());  // iconv's signature; it only reads
  char* out = output.data();
  std::size_t in_left = text.size();
  std::size_t out_left = output.size();
  const auto replaced = iconv(handle_, &in, &in_left, &out, &out_left);
  if (replaced != 0 || in_left != 0) return std::nullopt;
  // Some pages hold a letter back for an accent that may follow.
  if (iconv(handle_, nullptr, nullptr, &out, &out_left) == std::size_t(-1)) return std::nullopt;
  return std::string(output.data(), out);
}

bool Converter::isLead(char byte) const {
  iconv(handle_, nullptr, nullptr, nullptr, nullptr);
  std::array<char, 32> output;
  char* out = output.data();
  std::size_t in_left = 1;
  std::size_t out_left = output.size();
  char* in = &byte;
  return iconv(handle_, &in, &in_left, &out, &out_left) == std::size_t(-1) && errno == EINVAL;
}

char32_t PageConverters::decode(std::string_view bytes) const {
  const auto text = decoder.convert(bytes);
  if (!text || text->empty()) return kNoCharacter;
  const DecodedCharacter decoded = decodeUtf8(*text);
  return decoded.length == text->size() ? decoded.character : kNoCharacter;
}

std::optional<std::string> PageConverters::encode(char32_t character) const {
  std::string text;
  appendUtf8Character(text, character);
  return encoder.convert(text);
}

DecodedCharacter PageConverters::decodeFirst(std::string_view bytes) const {
  if (byteOf(bytes[0]) < 0x80) return {static_cast<char32_t>(bytes[0]), 1};
  for (std::size_t length = 1; length <= std::min(kLongestSequence, bytes.size()); ++length) {
    const std::string_view sequence = bytes.substr(0, length);
    const char32_t character = decode(sequence);
    if (character == kNoCharacter || standsForByte(character)) continue;
    if (encode(character) == sequence) return {character, length};
  }
  return {};
}

std::optional<std::uint8_t> CodePage::byteFor(char32_t character) const {
  if (character < 0x80) return static_cast<std::uint8_t>(character);
  if (character < characters.size() && characters[character] == character) {
    return static_cast<std::uint8_t>(character);  // most letters of the western pages
  }
  const auto at =
      std::lower_bound(bytes.begin(), bytes.end(), std::pair{character, std::uint8_t{0}});
  if (at == bytes.end() || at->first != character) return std::nullopt;
  return at->second;
}

Result<std::shared_ptr<const CodePage>> openCodePage(std::string_view name) {
  const auto isNameCharacter = [](char c) {
    return isLetter(c) || isDigit(c) || std::string_view("-_.:").find(c) != std::string_view::npos;
  };
  if (name.empty() || name.size() > kLongestName ||
      !std::all_of(name.begin(), name.end(), isNameCharacter)) {
    return makeError(ErrorKind::kInvalid,
                     "The name of a code page has letters, digits, \"-\", "
                     "\"_\", \".\" and \":\" only, at most 40");
  }
  auto page = std::make_shared<CodePage>();
  page->name = canonicalName(name);
  if (page->name == "UTF-8") return std::shared_ptr<const CodePage>(std::move(page));
  const PageConverters converters(page->name);
  if (!converters.decoder.known() || !converters.encoder.known()) {
    return makeError(ErrorKind::kInvalid, fmt::format("There is no code page \"{}\"", name));
  }
  page->kind = PageKind::kSingleByte;
  bool has_leads = false;
  for (std::size_t byte = 0; byte < page->characters.size(); ++byte) {
    const char text = static_cast<char>(byte);
    page->characters[byte] = converters.decode({&text, 1});
    has_leads = has_leads || converters.decoder.isLead(text);
    if (byte < 0x80 && page->characters[byte] != byte) {
      return makeError(ErrorKind::kInvalid,
                       fmt::format("The code page \"{}\" cannot be used: its first 128 characters "
                                   "are not ASCII",
                                   name));
    }
  }
  if (has_leads) {
    page->kind = PageKind::kMultiByte;
  } else {
    completeTables(*page);
  }
  return std::shared_ptr<const CodePage>(std::move(page));
}

}  // namespace tabelion
