// Reads words that people write, front to back, and says at which character it went wrong.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace tabelion {

class WordReader {
 public:
  explicit WordReader(std::string_view text) : text_(text), end_(text.size()) {}

  std::string_view text() const { return text_; }
  std::size_t at() const { return at_; }
  void seek(std::size_t at) { at_ = at; }
  // Nothing behind this place is read.
  std::size_t end() const { return end_; }
  void endAt(std::size_t end) { end_ = end; }

  void skipBlanks();
  // Whether only blanks are left.
  bool isDone();
  // What is left, without blanks around it.
  std::string_view rest();

  // Words in any ASCII case, each ending where a blank, a bracket, a comparison or the text does;
  // nothing is read when they are not all there.
  bool readWords(std::string_view words);
  bool readSign(char sign);
  // Up to the next blank.
  std::string_view readToken();
  // A text in double quotes, in which a doubled one stands for itself.
  std::optional<std::string> readQuoted();

  // Keeps the first error alone: `"TEXT", character 5: WHAT`.
  void fail(std::size_t at, std::string_view what);
  // That something else stands here.
  void expected(std::string_view what);
  const std::optional<Error>& error() const { return error_; }

  // Whether a word can end before this place.
  bool isWordEnd(std::size_t at) const;

 private:
  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t end_;
  std::optional<Error> error_;
};

}  // namespace tabelion
