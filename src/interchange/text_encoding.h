// The one place where the 8-bit text of the core becomes UTF-8 or UTF-16 and comes back.
//
// A database's texts are bytes in some code page: its own mark, the user's setting, or 1252.
// Decoding never fails and never loses anything: a byte that the page does not define becomes a
// character that nothing else uses, and that character becomes the byte again.
//
//   pages of one byte a character   U+0080 to U+009F where the page leaves it free, else U+F700
//                                   plus the byte
//   UTF-8 and pages of several      U+F700 plus the byte (U+F780 to U+F7FF); bytes that spell one
//                                   of these characters are decoded one by one as well
//
// So bytes to text and back gives the same bytes, whatever they are. Encoding is strict: a
// character that the page lacks is named, never replaced.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/database.h"
#include "platform/result.h"

namespace tabelion {

struct CodePage;

inline constexpr std::string_view kDefaultCodePage = "CP1252";

// The first character that could not be encoded.
struct EncodeFault {
  std::size_t position = 0;  // in the input: bytes of UTF-8, units of UTF-16
  char32_t character = 0;
  bool malformed = false;  // the input is not UTF-8 (UTF-16) there; `character` is its byte (unit)
};

struct Encoded {
  std::string bytes;  // all of the text, or what stands before the fault
  std::optional<EncodeFault> fault;
  bool ok() const { return !fault; }
};

// A code page at work. Cheap to copy, free of state, safe to share between threads.
class TextEncoding {
 public:
  // A name as users and databases write it: "1252", "CP1252", "windows-1252", "UTF-8",
  // "ISO-8859-15", in any case. Refused, with a sentence: what the system does not know, and pages
  // in which the bytes 0 to 127 are not ASCII.
  static Result<TextEncoding> open(std::string_view name);
  static TextEncoding utf8();

  // "UTF-8", "CP" and a number, or the name given, in capitals.
  const std::string& name() const;
  bool isUtf8() const;

  std::string toUtf8(std::string_view bytes) const;
  void appendUtf8(std::string& into, std::string_view bytes) const;
  // The same to where there is room for it; returns the end of what was written.
  static constexpr std::size_t roomForUtf8(std::size_t bytes) { return 3 * bytes + 16; }
  char* writeUtf8(char* into, std::string_view bytes) const;
  std::u16string toUtf16(std::string_view bytes) const;

  Encoded fromUtf8(std::string_view text) const;
  // Appended; what stands before a fault is.
  std::optional<EncodeFault> appendFromUtf8(Bytes& into, std::string_view text) const;
  Encoded fromUtf16(std::u16string_view text) const;
  bool canEncode(char32_t character) const;

  // The longest start of `bytes` of at most `max_bytes` that splits no character.
  std::string_view cut(std::string_view bytes, std::size_t max_bytes) const;

 private:
  explicit TextEncoding(std::shared_ptr<const CodePage> page) : page_(std::move(page)) {}
  std::shared_ptr<const CodePage> page_;
};

// The database's own page where its mark names a usable one, else the user's, else 1252.
TextEncoding databaseEncoding(const Database& database, std::string_view users_page);

// For messages, in UTF-8: `"Ж" (U+0416) is not in CP1252`, `byte 0xE9 is not UTF-8`.
std::string describeFault(const EncodeFault& fault, const TextEncoding& encoding);

}  // namespace tabelion
