// The text of a file that another program wrote, as UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "engine/bytes.h"
#include "interchange/text_encoding.h"
#include "platform/result.h"

namespace tabelion {

class InputText {
 public:
  // In the encoding of this name ("UTF-16", "UTF-16LE" and "UTF-16BE" among them). Without one: as
  // its byte-order mark says; else UTF-8 where all of it is that; else `fallback`, or 1252 where
  // that is UTF-8 as well. A mark is no part of the text. The error names what the text is not, and
  // the line. The bytes must outlive the result.
  static Result<InputText> read(ByteView bytes, std::string_view name,
                                const TextEncoding& fallback);

  std::string_view text() const { return is_converted_ ? std::string_view(converted_) : as_it_is_; }
  const std::string& encoding() const { return encoding_; }
  // It was found out and is not UTF-8, so that a person should know.
  bool isGuess() const { return is_guess_; }

 private:
  std::string_view as_it_is_;
  std::string converted_;
  bool is_converted_ = false;
  bool is_guess_ = false;
  std::string encoding_ = "UTF-8";
};

}  // namespace tabelion
