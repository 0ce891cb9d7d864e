#include "interchange/text_encoding.h"

#include <fmt/format.h>
#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "query/text_cut.h"

namespace tabelion {
namespace {

constexpr std::size_t kLongestName = 40;
constexpr std::size_t kLongestSequence = 4;  // bytes of a character, in any page served
constexpr char32_t kNoCharacter = 0xFFFFFFFF;
constexpr char32_t kBytePlane = 0xF700;  // plus a byte: that byte, where it is no character
constexpr char32_t kLastC1 = 0x9F;

std::uint8_t byteOf(char c) {
  return static_cast<std::uint8_t>(c);
}

bool standsForByte(char32_t c) {
  return c >= kBytePlane + 0x80 && c <= kBytePlane + 0xFF;
}

bool isSurrogate(char32_t c) {
  return c >= 0xD800 && c <= 0xDFFF;
}

struct Decoded {
  char32_t character = kNoCharacter;
  std::size_t length = 1;
};

// The character at the start of a UTF-8 text; kNoCharacter for what is none: overlong, a
// surrogate, past U+10FFFF, cut short.
Decoded decodeUtf8(std::string_view text) {
  const std::uint8_t lead = byteOf(text[0]);
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return {};
  char32_t character = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const std::uint8_t next = byteOf(text[i]);
    if ((next & 0xC0) != 0x80) return {};
    character = character << 6 | (next & 0x3Fu);
  }
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < kLeast[length] || character > 0x10FFFF || isSurrogate(character)) return {};
  return {character, length};
}

void appendUtf8Character(std::string& into, char32_t c) {
  const auto tail = [](char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
  if (c < 0x80) {
    into += static_cast<char>(c);
  } else if (c < 0x800) {
    into += {static_cast<char>(0xC0 | c >> 6), tail(c)};
  } else if (c < 0x10000) {
    into += {static_cast<char>(0xE0 | c >> 12), tail(c >> 6), tail(c)};
  } else {
    into += {static_cast<char>(0xF0 | c >> 18), tail(c >> 12), tail(c >> 6), tail(c)};
  }
}

void appendUtf16Character(std::u16string& into, char32_t c) {
  if (c < 0x10000) {
    into += static_cast<char16_t>(c);
  } else {
    into += static_cast<char16_t>(0xD7C0 + (c >> 10));
    into += static_cast<char16_t>(0xDC00 | (c & 0x3FF));
  }
}

// How many bytes at the start of the text are ASCII.
std::size_t asciiLength(std::string_view text) {
  std::size_t i = 0;
  for (std::uint64_t eight = 0; text.size() - i >= sizeof eight; i += sizeof eight) {
    std::memcpy(&eight, text.data() + i, sizeof eight);
    if (eight & 0x8080808080808080u) break;
  }
  while (i < text.size() && byteOf(text[i]) < 0x80) ++i;
  return i;
}

// One direction of iconv(3).
class Converter {
 public:
  Converter(const std::string& to, const std::string& from)
      : handle_(iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (known()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool known() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // All of a short text, exactly; none when it is not wholly text of the page.
  std::optional<std::string> convert(std::string_view text) const {
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

  // Whether a character may begin with this byte and go on behind it.
  bool isLead(char byte) const {
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    std::array<char, 32> output;
    char* out = output.data();
    std::size_t in_left = 1;
    std::size_t out_left = output.size();
    char* in = &byte;
    return iconv(handle_, &in, &in_left, &out, &out_left) == std::size_t(-1) && errno == EINVAL;
  }

 private:
  iconv_t handle_;
};

// Both directions between a page and UTF-8, a character at a time.
struct Converters {
  explicit Converters(const std::string& page) : decoder("UTF-8", page), encoder(page, "UTF-8") {}
  Converter decoder;
  Converter encoder;

  char32_t decode(std::string_view bytes) const {
    const auto text = decoder.convert(bytes);
    if (!text || text->empty()) return kNoCharacter;
    const Decoded decoded = decodeUtf8(*text);
    return decoded.length == text->size() ? decoded.character : kNoCharacter;
  }
  std::optional<std::string> encode(char32_t character) const {
    std::string text;
    appendUtf8Character(text, character);
    return encoder.convert(text);
  }
};

enum class PageKind { kSingleByte, kUtf8, kMultiByte };

}  // namespace

struct TextEncoding::Page {
  PageKind kind = PageKind::kUtf8;
  std::string name = "UTF-8";

  // Single-byte pages: each byte's character, its UTF-8 form, and the way back.
  std::array<char32_t, 256> characters{};
  std::array<std::array<char, 4>, 256> utf8{};  // length in the last; no page leaves the BMP
  std::vector<std::pair<char32_t, std::uint8_t>> bytes;  // sorted; those from 128 on

  std::optional<std::uint8_t> byteFor(char32_t character) const {
    const auto at =
        std::lower_bound(bytes.begin(), bytes.end(), std::pair{character, std::uint8_t{0}});
    if (at == bytes.end() || at->first != character) return std::nullopt;
    return at->second;
  }
};

namespace {

using Page = TextEncoding::Page;

// Gives every byte that has no character of its own one that is free, and fills the tables.
void completeTables(Page& page) {
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

// The character at the start of bytes in a page of several bytes a character: the shortest
// sequence that comes back as it was.
Decoded decodeMultiByte(const Converters& page, std::string_view bytes) {
  if (byteOf(bytes[0]) < 0x80) return {static_cast<char32_t>(bytes[0]), 1};
  for (std::size_t length = 1; length <= std::min(kLongestSequence, bytes.size()); ++length) {
    const std::string_view sequence = bytes.substr(0, length);
    const char32_t character = page.decode(sequence);
    if (character == kNoCharacter || standsForByte(character)) continue;
    if (page.encode(character) == sequence) return {character, length};
  }
  return {};
}

// Calls `take` with every character of the bytes.
template <class Take>
void decodeEach(const Page& page, std::string_view bytes, Take take) {
  if (page.kind == PageKind::kSingleByte) {
    for (const char c : bytes) take(page.characters[byteOf(c)]);
    return;
  }
  std::optional<Converters> converters;
  if (page.kind == PageKind::kMultiByte) converters.emplace(page.name);
  while (!bytes.empty()) {
    const Decoded next = converters ? decodeMultiByte(*converters, bytes) : decodeUtf8(bytes);
    if (next.character == kNoCharacter || standsForByte(next.character)) {
      take(kBytePlane + byteOf(bytes[0]));
      bytes.remove_prefix(1);
    } else {
      take(next.character);
      bytes.remove_prefix(next.length);
    }
  }
}

// Puts characters into bytes, one after the other.
class Encoder {
 public:
  Encoder(const Page& page, std::string& into) : page_(page), into_(into) {}

  bool put(char32_t character) {
    if (character < 0x80) {
      into_ += static_cast<char>(character);
      return true;
    }
    if (page_.kind == PageKind::kSingleByte) {
      const auto byte = page_.byteFor(character);
      if (byte) into_ += static_cast<char>(*byte);
      return byte.has_value();
    }
    if (character > 0x10FFFF || isSurrogate(character)) return false;
    if (standsForByte(character)) {
      into_ += static_cast<char>(character - kBytePlane);
      return true;
    }
    if (page_.kind == PageKind::kUtf8) {
      appendUtf8Character(into_, character);
      return true;
    }
    return putMultiByte(character);
  }

 private:
  bool putMultiByte(char32_t character) {
    if (!converters_) converters_.emplace(page_.name);
    const auto bytes = converters_->encode(character);
    // What would come back as another character is not the same text.
    if (!bytes || bytes->empty() || decodeMultiByte(*converters_, *bytes).character != character) {
      return false;
    }
    into_ += *bytes;
    return true;
  }

  const Page& page_;
  std::string& into_;
  std::optional<Converters> converters_;
};

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

TextEncoding TextEncoding::utf8() {
  return TextEncoding(std::make_shared<const Page>());
}

Result<TextEncoding> TextEncoding::open(std::string_view name) {
  const auto isNameCharacter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("-_.:").find(c) != std::string_view::npos;
  };
  if (name.empty() || name.size() > kLongestName ||
      !std::all_of(name.begin(), name.end(), isNameCharacter)) {
    return makeError(ErrorKind::kInvalid,
                     "The name of a code page has letters, digits, \"-\", "
                     "\"_\", \".\" and \":\" only, at most 40");
  }
  auto page = std::make_shared<Page>();
  page->name = canonicalName(name);
  if (page->name == "UTF-8") return TextEncoding(std::move(page));
  const Converters converters(page->name);
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
  return TextEncoding(std::move(page));
}

const std::string& TextEncoding::name() const {
  return page_->name;
}

bool TextEncoding::isUtf8() const {
  return page_->kind == PageKind::kUtf8;
}

void TextEncoding::appendUtf8(std::string& into, std::string_view bytes) const {
  const std::size_t ascii = asciiLength(bytes);
  into.append(bytes.substr(0, ascii));
  bytes.remove_prefix(ascii);
  if (page_->kind == PageKind::kSingleByte) {
    for (const char c : bytes) {
      const auto& utf8 = page_->utf8[byteOf(c)];
      into.append(utf8.data(), static_cast<std::size_t>(utf8[3]));
    }
    return;
  }
  decodeEach(*page_, bytes, [&](char32_t c) { appendUtf8Character(into, c); });
}

std::string TextEncoding::toUtf8(std::string_view bytes) const {
  std::string text;
  text.reserve(bytes.size());
  appendUtf8(text, bytes);
  return text;
}

std::u16string TextEncoding::toUtf16(std::string_view bytes) const {
  std::u16string text;
  text.reserve(bytes.size());
  decodeEach(*page_, bytes, [&](char32_t c) { appendUtf16Character(text, c); });
  return text;
}

Encoded TextEncoding::fromUtf8(std::string_view text) const {
  Encoded encoded;
  encoded.bytes.reserve(text.size());
  Encoder encoder(*page_, encoded.bytes);
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view rest = text.substr(at);
    if (const std::size_t ascii = asciiLength(rest)) {
      encoded.bytes.append(rest.substr(0, ascii));
      at += ascii;
      continue;
    }
    const Decoded next = decodeUtf8(rest);
    if (next.character == kNoCharacter) {
      encoded.fault = EncodeFault{at, byteOf(rest[0]), true};
      break;
    }
    if (!encoder.put(next.character)) {
      encoded.fault = EncodeFault{at, next.character, false};
      break;
    }
    at += next.length;
  }
  return encoded;
}

Encoded TextEncoding::fromUtf16(std::u16string_view text) const {
  Encoded encoded;
  encoded.bytes.reserve(text.size());
  Encoder encoder(*page_, encoded.bytes);
  for (std::size_t at = 0; at < text.size();) {
    char32_t character = text[at];
    std::size_t length = 1;
    if (isSurrogate(character)) {
      const char32_t low = at + 1 < text.size() ? text[at + 1] : 0;
      if (character >= 0xDC00 || low < 0xDC00 || low > 0xDFFF) {
        encoded.fault = EncodeFault{at, character, true};
        break;
      }
      character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
      length = 2;
    }
    if (!encoder.put(character)) {
      encoded.fault = EncodeFault{at, character, false};
      break;
    }
    at += length;
  }
  return encoded;
}

bool TextEncoding::canEncode(char32_t character) const {
  std::string bytes;
  return Encoder(*page_, bytes).put(character);
}

std::string_view TextEncoding::cut(std::string_view bytes, std::size_t max_bytes) const {
  if (bytes.size() <= max_bytes || page_->kind != PageKind::kMultiByte) {
    return bytes.substr(0, cutLength(bytes, max_bytes, isUtf8()));
  }
  const Converters converters(page_->name);
  std::size_t whole = 0;
  for (std::size_t at = 0; at <= max_bytes;
       at += decodeMultiByte(converters, bytes.substr(at)).length) {
    whole = at;
  }
  return bytes.substr(0, whole);
}

TextEncoding databaseEncoding(const Database& database, std::string_view users_page) {
  for (const std::string& name : {databaseCodePage(database), std::string(users_page)}) {
    if (name.empty()) continue;
    if (auto encoding = TextEncoding::open(name)) return std::move(*encoding);
  }
  auto encoding = TextEncoding::open(kDefaultCodePage);
  // A system whose iconv lacks even this page still has every byte to show.
  return encoding ? std::move(*encoding) : TextEncoding::utf8();
}

std::string describeFault(const EncodeFault& fault, const TextEncoding& encoding) {
  const auto number = static_cast<std::uint32_t>(fault.character);
  if (fault.malformed) {
    return number <= 0xFF ? fmt::format("byte 0x{:02X} is not UTF-8", number)
                          : fmt::format("unit 0x{:04X} is not UTF-16", number);
  }
  std::string character;
  appendUtf8Character(character, fault.character);
  return fmt::format("\"{}\" (U+{:04X}) is not in {}", character, number, encoding.name());
}

}  // namespace tabelion
