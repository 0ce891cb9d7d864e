#include "interchange/text_encoding.h"

#include <fmt/format.h>

#include <utility>

#include "interchange/byte_block.h"
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
template <class Into>
class Encoder {
 public:
  Encoder(const CodePage& page, Into& into) : page_(page), into_(into) {}

  bool put(char32_t character) {
    if (page_.kind == PageKind::kSingleByte || character < 0x80) {
      const auto byte = page_.byteFor(character);
      if (byte) into_.push_back(static_cast<typename Into::value_type>(*byte));
      return byte.has_value();
    }
    if (character > 0x10FFFF || isSurrogate(character)) return false;
    if (standsForByte(character)) {
      into_.push_back(static_cast<typename Into::value_type>(character - kBytePlane));
      return true;
    }
    if (page_.kind == PageKind::kMultiByte) return putMultiByte(character);
    std::string text;
    appendUtf8Character(text, character);
    putText(text);
    return true;
  }
  void putText(std::string_view text) { into_.insert(into_.end(), text.begin(), text.end()); }

 private:
  bool putMultiByte(char32_t character) {
    if (!converters_) converters_.emplace(page_.name);
    const auto bytes = converters_->encode(character);
    // What would come back as another character is not the same text.
    if (!bytes || bytes->empty() || converters_->decodeFirst(*bytes).character != character) {
      return false;
    }
    putText(*bytes);
    return true;
  }

  const CodePage& page_;
  Into& into_;
  std::optional<PageConverters> converters_;
};

template <class Into>
std::optional<EncodeFault> encodeInto(const CodePage& page, Into& into, std::string_view text) {
  Encoder<Into> encoder(page, into);
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view rest = text.substr(at);
    if (const std::size_t plain =
            page.kind == PageKind::kUtf8 ? validLength(rest) : asciiLength(rest)) {
      encoder.putText(rest.substr(0, plain));
      at += plain;
      continue;
    }
    const DecodedCharacter next = decodeUtf8(rest);
    if (next.character == kNoCharacter) return EncodeFault{at, byteOf(rest[0]), true};
    if (!encoder.put(next.character)) return EncodeFault{at, next.character, false};
    at += next.length;
  }
  return std::nullopt;
}

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
  if (page_->kind == PageKind::kSingleByte) {
    const std::size_t begin = into.size();
    into.resize(begin + roomForUtf8(bytes.size()));
    into.resize(static_cast<std::size_t>(writeUtf8(into.data() + begin, bytes) - into.data()));
    return;
  }
  if (page_->kind == PageKind::kMultiByte) {
    decodeEach(*page_, bytes, [&](char32_t c) { appendUtf8Character(into, c); });
    return;
  }
  while (!bytes.empty()) {
    const std::size_t valid = validLength(bytes);
    into.append(bytes.substr(0, valid));
    bytes.remove_prefix(valid);
    if (bytes.empty()) break;
    appendUtf8Character(into, kBytePlane + byteOf(bytes[0]));
    bytes.remove_prefix(1);
  }
}

char* TextEncoding::writeUtf8(char* into, std::string_view bytes) const {
  if (page_->kind != PageKind::kSingleByte) {
    const std::string text = toUtf8(bytes);
    return std::copy(text.begin(), text.end(), into);
  }
  const char* at = bytes.data();
  const char* const end = at + bytes.size();
  const auto putCharacter = [&] {
    const auto& utf8 = page_->utf8[byteOf(*at++)];
    std::memcpy(into, utf8.data(), utf8.size());
    into += utf8[3];
  };
  while (static_cast<std::size_t>(end - at) >= ByteBlock::kSize) {
    const ByteBlock block(at);
    block.store(into);
    const std::size_t ascii = block.firstNotAscii();
    at += ascii;
    into += ascii;
    if (ascii < ByteBlock::kSize) putCharacter();
  }
  while (at != end) putCharacter();
  return into;
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
  encoded.fault = encodeInto(*page_, encoded.bytes, text);
  return encoded;
}

std::optional<EncodeFault> TextEncoding::appendFromUtf8(Bytes& into, std::string_view text) const {
  return encodeInto(*page_, into, text);
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
