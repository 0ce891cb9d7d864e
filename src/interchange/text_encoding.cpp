#include "interchange/text_encoding.h"

#include <fmt/format.h>

#include <utility>

#include "interchange/code_page.h"
#include "interchange/utf8.h"
#include "query/text_cut.h"

namespace tabelion {
namespace {

// How many bytes at the start are UTF-8 that means itself.
std::size_t validLength(std::string_view text) {
  std::size_t valid = 0;
  while (valid < text.size()) {
    if (byteOf(text[valid]) < 0x80) {
      valid += asciiLength(text.substr(valid));
      continue;
    }
    const DecodedCharacter next = decodeUtf8(text.substr(valid));
    if (next.character == kNoCharacter || standsForByte(next.character)) break;
    valid += next.length;
  }
  return valid;
}

// Calls `take` with every character of the bytes.
template <class Take>
void decodeEach(const CodePage& page, std::string_view bytes, Take take) {
  if (page.kind == PageKind::kSingleByte) {
    for (const char c : bytes) take(page.characters[byteOf(c)]);
    return;
  }
  std::optional<PageConverters> converters;
  if (page.kind == PageKind::kMultiByte) converters.emplace(page.name);
  while (!bytes.empty()) {
    const DecodedCharacter next = converters ? converters->decodeFirst(bytes) : decodeUtf8(bytes);
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
  Encoder(const CodePage& page, std::string& into) : page_(page), into_(into) {}

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
    if (!bytes || bytes->empty() || converters_->decodeFirst(*bytes).character != character) {
      return false;
    }
    into_ += *bytes;
    return true;
  }

  const CodePage& page_;
  std::string& into_;
  std::optional<PageConverters> converters_;
};

}  // namespace

TextEncoding TextEncoding::utf8() {
  return TextEncoding(std::make_shared<const CodePage>());
}

Result<TextEncoding> TextEncoding::open(std::string_view name) {
  auto page = openCodePage(name);
  if (!page) return page.error();
  return TextEncoding(std::move(*page));
}

const std::string& TextEncoding::name() const {
  return page_->name;
}

bool TextEncoding::isUtf8() const {
  return page_->kind == PageKind::kUtf8;
}

void TextEncoding::appendUtf8(std::string& into, std::string_view bytes) const {
  if (page_->kind == PageKind::kMultiByte) {
    decodeEach(*page_, bytes, [&](char32_t c) { appendUtf8Character(into, c); });
    return;
  }
  while (!bytes.empty()) {
    const std::size_t plain = isUtf8() ? validLength(bytes) : asciiLength(bytes);
    into.append(bytes.substr(0, plain));
    bytes.remove_prefix(plain);
    if (isUtf8() && !bytes.empty()) {
      appendUtf8Character(into, kBytePlane + byteOf(bytes[0]));
      bytes.remove_prefix(1);
    }
    while (!isUtf8() && !bytes.empty() && byteOf(bytes[0]) >= 0x80) {
      const auto& utf8 = page_->utf8[byteOf(bytes[0])];
      into.append(utf8.data(), static_cast<std::size_t>(utf8[3]));
      bytes.remove_prefix(1);
    }
  }
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
    if (const std::size_t plain = isUtf8() ? validLength(rest) : asciiLength(rest)) {
      encoded.bytes.append(rest.substr(0, plain));
      at += plain;
      continue;
    }
    const DecodedCharacter next = decodeUtf8(rest);
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
  const PageConverters converters(page_->name);
  std::size_t whole = 0;
  for (std::size_t at = 0; at <= max_bytes; at += converters.decodeFirst(bytes.substr(at)).length) {
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
