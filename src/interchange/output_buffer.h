// Text on its way out: collected in one buffer and handed on in large pieces.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace tabelion {

// Where output goes: a pipe, a terminal, a text in a test.
class TextSink {
 public:
  virtual ~TextSink() = default;
  // False when the bytes could not all be written (a closed pipe, a full disk).
  virtual bool write(std::string_view bytes) = 0;
};

class OutputBuffer {
 public:
  explicit OutputBuffer(TextSink& sink)
      : sink_(sink), buffer_(new char[kSize]), end_(buffer_.get()) {}
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;

  void put(char c) { *room(1) = c, ++end_; }
  void put(std::string_view text) {
    if (text.empty()) return;
    if (text.size() > kSize) {
      flush();
      if (ok_) ok_ = sink_.write(text);
      return;
    }
    std::memcpy(room(text.size()), text.data(), text.size());
    end_ += text.size();
  }
  // Room for `count` bytes, at most kLargestRoom, to be written in place; then `took` says how
  // many were.
  char* room(std::size_t count) {
    if (static_cast<std::size_t>(buffer_.get() + kSize - end_) < count) flush();
    return end_;
  }
  void took(std::size_t count) { end_ += count; }

  // Hands on what is there. False when anything since the beginning could not be written.
  bool flush() {
    const auto count = static_cast<std::size_t>(end_ - buffer_.get());
    if (ok_ && count > 0) ok_ = sink_.write({buffer_.get(), count});
    end_ = buffer_.get();
    return ok_;
  }
  bool ok() const { return ok_; }

  static constexpr std::size_t kSize = std::size_t{256} * 1024;
  static constexpr std::size_t kLargestRoom = kSize;

 private:
  TextSink& sink_;
  std::unique_ptr<char[]> buffer_;
  char* end_;
  bool ok_ = true;
};

}  // namespace tabelion
