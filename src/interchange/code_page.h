// Code pages: which bytes are which characters, as iconv(3) knows them, and a character of its own
// for every byte that is none. TextEncoding is built on them.
#pragma once

#include <iconv.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "interchange/utf8.h"
#include "platform/result.h"

namespace tabelion {

inline constexpr char32_t kBytePlane = 0xF700;  // plus a byte: that byte, where it is no character

inline bool standsForByte(char32_t c) {
  return c >= kBytePlane + 0x80 && c <= kBytePlane + 0xFF;
}

// One direction of iconv(3), for short texts. Holds iconv's state: one for each use.
class Converter {
 public:
  Converter(const std::string& to, const std::string& from)
      : handle_(iconv_open(to.c_str(), from.c_str())) {}
  ~Converter() {
    if (known()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool known() const {
    return handle_ != reinterpret_cast<iconv_t>(-1);  // NOLINT: the library's own sign of failure
  }
  // All of a text, exactly; none when it is not wholly text of the page.
  std::optional<std::string> convert(std::string_view text) const;
  // Whether a character may begin with this byte and go on behind it.
  bool isLead(char byte) const;

 private:
  iconv_t handle_;
};

// Both directions between a page and UTF-8.
struct PageConverters {
  explicit PageConverters(const std::string& page)
      : decoder("UTF-8", page), encoder(page, "UTF-8") {}
  Converter decoder;
  Converter encoder;

  // The one character that these bytes are; kNoCharacter when they are none or several.
  char32_t decode(std::string_view bytes) const;
  std::optional<std::string> encode(char32_t character) const;

  // The character at the start of bytes that are not empty, in a page of several bytes a
  // character: the shortest sequence that comes back as it was; kNoCharacter when there is none.
  DecodedCharacter decodeFirst(std::string_view bytes) const;
};

enum class PageKind { kSingleByte, kUtf8, kMultiByte };

struct CodePage {
  PageKind kind = PageKind::kUtf8;
  std::string name = "UTF-8";

  // Single-byte pages: each byte's character, its UTF-8 form, and the way back.
  std::array<char32_t, 256> characters{};
  std::array<std::array<char, 4>, 256> utf8{};  // length in the last; no page leaves the BMP
  std::vector<std::pair<char32_t, std::uint8_t>> bytes;  // sorted; those from 128 on

  // The byte of a character from U+0080 on.
  std::optional<std::uint8_t> byteFor(char32_t character) const;
};

// By a name as users write it; see TextEncoding::open.
Result<std::shared_ptr<const CodePage>> openCodePage(std::string_view name);

}  // namespace tabelion
