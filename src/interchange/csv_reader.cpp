#include "interchange/csv_reader.h"

#include <cstring>

#include "interchange/byte_block.h"

namespace tabelion {

CsvReader::CsvReader(std::string_view text, char delimiter) : text_(text), delimiter_(delimiter) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text_.starts_with(kByteOrderMark)) at_ = kByteOrderMark.size();
}

std::string_view CsvReader::cellBehindQuotes(std::size_t begin, std::size_t end,
                                             std::size_t doubled) {
  const std::string_view raw = text_.substr(begin, end - begin);
  if (doubled == 0) return raw;
  if (unquoted_used_ == unquoted_.size()) unquoted_.emplace_back();
  std::string& cell = unquoted_[unquoted_used_++];
  cell.clear();
  cell.reserve(raw.size() - doubled);
  for (std::size_t i = 0; i < raw.size(); ++i) {
    cell += raw[i];
    if (raw[i] == '"') ++i;
  }
  return cell;
}

// Stands on the opening quote; ends behind the closing one.
bool CsvReader::readQuoted() {
  const std::size_t begin = ++at_;
  std::size_t doubled = 0;
  for (;;) {
    const void* quote =
        at_ < text_.size() ? std::memchr(text_.data() + at_, '"', text_.size() - at_) : nullptr;
    if (!quote) {
      problem_ = "a quote is opened and never closed";
      return false;
    }
    const auto place = static_cast<std::size_t>(static_cast<const char*>(quote) - text_.data());
    for (std::size_t i = at_; i < place; ++i) line_ += text_[i] == '\n';
    at_ = place + 1;
    if (at_ >= text_.size() || text_[at_] != '"') break;
    ++doubled;
    ++at_;
  }
  cells_.push_back(cellBehindQuotes(begin, at_ - 1, doubled));
  const bool at_line_end = at_ + 1 < text_.size() && text_[at_] == '\r' && text_[at_ + 1] == '\n';
  if (at_ < text_.size() && text_[at_] != delimiter_ && text_[at_] != '\n' && !at_line_end) {
    problem_ = "text follows a closing quote";
    return false;
  }
  return true;
}

void CsvReader::readPlain() {
  const std::size_t begin = at_;
  for (;;) {
    at_ += csvPlainLength(text_.substr(at_), delimiter_);
    if (at_ >= text_.size() || text_[at_] == delimiter_ || text_[at_] == '\n') break;
    // A quote inside, or a carriage return that ends no line, is text like any other.
    if (text_[at_] == '\r' && at_ + 1 < text_.size() && text_[at_ + 1] == '\n') break;
    ++at_;
  }
  cells_.push_back(text_.substr(begin, at_ - begin));
}

CsvReader::Row CsvReader::next() {
  cells_.clear();
  unquoted_used_ = 0;
  if (!problem_.empty()) return Row::kBroken;
  while (at_ < text_.size() && (text_[at_] == '\n' || text_.substr(at_, 2) == "\r\n")) {
    at_ += text_[at_] == '\n' ? 1 : 2;
    ++line_;
  }
  row_line_ = line_;
  if (at_ >= text_.size()) return Row::kEnd;
  for (;;) {
    if (at_ < text_.size() && text_[at_] == '"') {
      if (!readQuoted()) return Row::kBroken;
    } else {
      readPlain();
    }
    if (at_ >= text_.size()) return Row::kRead;
    const char separator = text_[at_++];
    if (separator == delimiter_) continue;
    if (separator == '\r') ++at_;
    ++line_;
    return Row::kRead;
  }
}

std::size_t csvPlainLength(std::string_view text, char delimiter) {
  std::size_t at = 0;
  for (; text.size() - at >= ByteBlock::kSize; at += ByteBlock::kSize) {
    const std::size_t plain = ByteBlock(text.data() + at).firstCsvSpecial(delimiter);
    if (plain < ByteBlock::kSize) return at + plain;
  }
  const auto isPlain = [delimiter](char c) {
    return c != delimiter && c != '"' && c != '\n' && c != '\r';
  };
  while (at < text.size() && isPlain(text[at])) ++at;
  return at;
}

}  // namespace tabelion
