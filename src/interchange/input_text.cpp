#include "interchange/input_text.h"

#include <algorithm>
#include <optional>

#include <fmt/format.h>

#include "interchange/utf8.h"
#include "query/text_case.h"

namespace tabelion {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleMark = "\xFF\xFE";
constexpr std::string_view kBigMark = "\xFE\xFF";

bool isCalled(std::string_view name, std::string_view encoding) {
  return compareAnyCase(name, encoding) == 0;
}

std::size_t lineAt(std::string_view text, std::size_t at) {
  return 1 + static_cast<std::size_t>(
                 std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

// Where the text stops being UTF-8; its size when it never does.
std::size_t utf8Length(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (byteOf(text[at]) < 0x80) {
      at += asciiLength(text.substr(at));
      continue;
    }
    const DecodedCharacter next = decodeUtf8(text.substr(at));
    if (next.character == kNoCharacter) return at;
    at += next.length;
  }
  return at;
}

Result<std::string> textOfUtf16(std::string_view bytes, bool is_big) {
  const auto unitAt = [&](std::size_t at) -> char32_t {
    const char32_t first = byteOf(bytes[at]);
    const char32_t second = byteOf(bytes[at + 1]);
    return is_big ? first << 8 | second : second << 8 | first;
  };
  std::string text;
  text.reserve(bytes.size());
  std::size_t line = 1;
  for (std::size_t at = 0; at < bytes.size(); at += 2) {
    char32_t character = at + 1 < bytes.size() ? unitAt(at) : kNoCharacter;
    const bool is_high = character >= 0xD800 && character < 0xDC00;
    const char32_t low = is_high && at + 3 < bytes.size() ? unitAt(at + 2) : 0;
    if (is_high && low >= 0xDC00 && low <= 0xDFFF) {
      character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
      at += 2;
    }
    if (character == kNoCharacter || isSurrogate(character)) {
      return makeError(ErrorKind::kInvalid, fmt::format("line {}: is not UTF-16", line));
    }
    line += character == '\n';
    appendUtf8Character(text, character);
  }
  return text;
}

// The order of bytes that a name or a mark stands for; none for any other encoding.
std::optional<bool> isBigUtf16(std::string_view text, std::string_view name) {
  if (isCalled(name, "UTF-16BE") || (name.empty() && text.starts_with(kBigMark))) return true;
  if (isCalled(name, "UTF-16LE") || (name.empty() && text.starts_with(kLittleMark))) return false;
  if (isCalled(name, "UTF-16")) return !text.starts_with(kLittleMark);
  return std::nullopt;
}

}  // namespace

Result<InputText> InputText::read(ByteView bytes, std::string_view name,
                                  const TextEncoding& fallback) {
  std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  InputText input;
  if (const auto is_big = isBigUtf16(text, name)) {
    if (text.starts_with(*is_big ? kBigMark : kLittleMark)) text.remove_prefix(2);
    auto converted = textOfUtf16(text, *is_big);
    if (!converted.ok()) return converted.error();
    input.converted_ = std::move(converted).value();
    input.is_converted_ = true;
    input.encoding_ = *is_big ? "UTF-16BE" : "UTF-16LE";
    input.is_guess_ = name.empty();
    return input;
  }
  TextEncoding encoding = fallback;
  if (!name.empty()) {
    auto named = TextEncoding::open(name);
    if (!named.ok()) return named.error();
    encoding = std::move(named).value();
  }
  if (name.empty() || encoding.isUtf8()) {
    if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
    const std::size_t valid = utf8Length(text);
    input.as_it_is_ = text;
    if (valid == text.size()) return input;
    if (!name.empty()) {
      return makeError(ErrorKind::kInvalid, fmt::format("line {}: byte 0x{:02X} is not UTF-8",
                                                        lineAt(text, valid), byteOf(text[valid])));
    }
    if (encoding.isUtf8()) {
      auto usual = TextEncoding::open(kDefaultCodePage);
      if (!usual.ok()) return usual.error();
      encoding = std::move(usual).value();
    }
    input.is_guess_ = true;
  }
  input.converted_ = encoding.toUtf8(text);
  input.is_converted_ = true;
  input.encoding_ = encoding.name();
  return input;
}

}  // namespace tabelion
