#include "interchange/words/word_reader.h"

#include <algorithm>

#include <fmt/format.h>

#include "query/text_case.h"

namespace tabelion {
namespace {

constexpr std::string_view kComparisons = "<>=!";

bool isComparison(char c) {
  return kComparisons.find(c) != std::string_view::npos;
}

}  // namespace

void WordReader::skipBlanks() {
  while (at_ < end_ && text_[at_] == ' ') ++at_;
}

bool WordReader::isDone() {
  skipBlanks();
  return at_ >= end_;
}

std::string_view WordReader::rest() {
  skipBlanks();
  std::size_t end = end_;
  while (end > at_ && text_[end - 1] == ' ') --end;
  return text_.substr(at_, end - at_);
}

bool WordReader::isWordEnd(std::size_t at) const {
  return at >= end_ || text_[at] == ' ' || text_[at] == '(' || text_[at] == ')' ||
         isComparison(text_[at]);
}

bool WordReader::readWords(std::string_view words) {
  const std::size_t before = at_;
  while (!words.empty()) {
    const std::string_view word = words.substr(0, words.find(' '));
    words.remove_prefix(std::min(words.size(), word.size() + 1));
    skipBlanks();
    const bool is_there = at_ + word.size() <= end_ &&
                          compareAnyCase(text_.substr(at_, word.size()), word) == 0 &&
                          (isComparison(word.front()) || isWordEnd(at_ + word.size()));
    if (!is_there) {
      at_ = before;
      return false;
    }
    at_ += word.size();
  }
  return true;
}

bool WordReader::readSign(char sign) {
  skipBlanks();
  if (at_ >= end_ || text_[at_] != sign) return false;
  ++at_;
  return true;
}

std::string_view WordReader::readToken() {
  skipBlanks();
  const std::size_t end = std::min(text_.find(' ', at_), end_);
  const std::string_view token = text_.substr(at_, end - at_);
  at_ = end;
  return token;
}

std::optional<std::string> WordReader::readQuoted() {
  skipBlanks();
  if (at_ >= end_ || text_[at_] != '"') return std::nullopt;
  std::string quoted;
  for (std::size_t at = at_ + 1; at < end_; ++at) {
    if (text_[at] == '"') {
      if (at + 1 >= end_ || text_[at + 1] != '"') {
        at_ = at + 1;
        return quoted;
      }
      ++at;
    }
    quoted += text_[at];
  }
  fail(at_, "the text in quotes has no end");
  at_ = end_;
  return quoted;
}

void WordReader::fail(std::size_t at, std::string_view what) {
  if (error_) return;
  const auto starts_character = [](char c) { return (c & 0xC0) != 0x80; };
  const auto before = std::count_if(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at),
                                    starts_character);
  error_ = makeError(ErrorKind::kInvalid,
                     fmt::format("\"{}\", character {}: {}", text_, before + 1, what));
}

void WordReader::expected(std::string_view what) {
  const std::string_view found = rest();
  fail(at_, found.empty() ? fmt::format("{} is expected", what)
                          : fmt::format("{} is expected, not \"{}\"", what, found));
}

}  // namespace tabelion
