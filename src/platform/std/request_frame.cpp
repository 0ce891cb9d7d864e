#include "platform/std/request_frame.h"

#include <cstdint>

namespace tabelion {
namespace {

constexpr std::string_view kStart{"TBLN\0\1", 6};  // with the version

void putBe32(std::string& into, std::size_t number) {
  for (int shift = 24; shift >= 0; shift -= 8) into += static_cast<char>(number >> shift & 0xFF);
}

void putText(std::string& into, const std::string& text) {
  putBe32(into, text.size());
  into += text;
}

// Takes a number, or a text with its length, off the front. False where there is less.
bool takeBe32(std::string_view& bytes, std::size_t& number) {
  if (bytes.size() < 4) return false;
  number = 0;
  for (const char c : bytes.substr(0, 4)) number = number << 8 | static_cast<unsigned char>(c);
  bytes.remove_prefix(4);
  return true;
}

bool takeText(std::string_view& bytes, std::string& text) {
  std::size_t size = 0;
  if (!takeBe32(bytes, size) || size > bytes.size()) return false;
  text = bytes.substr(0, size);
  bytes.remove_prefix(size);
  return true;
}

bool isKnown(std::uint8_t kind) {
  return kind == static_cast<std::uint8_t>(RequestKind::kCommandLine) ||
         kind == static_cast<std::uint8_t>(RequestKind::kOpenFile) ||
         kind == static_cast<std::uint8_t>(RequestKind::kActivate);
}

}  // namespace

std::optional<std::string> frameOf(const StartRequest& request) {
  std::string body(1, static_cast<char>(request.kind));
  putText(body, request.text);
  putText(body, request.activation_token);
  if (body.size() > kLargestRequest) return std::nullopt;
  std::string frame(kStart);
  putBe32(frame, body.size());
  return frame + body;
}

FrameReading readFrame(std::string_view bytes, StartRequest& request) {
  if (bytes.size() < kRequestHeader) return FrameReading::kNotAllThere;
  if (!bytes.starts_with(kStart)) return FrameReading::kJunk;
  bytes.remove_prefix(kStart.size());
  std::size_t size = 0;
  if (!takeBe32(bytes, size) || size == 0 || size > kLargestRequest) return FrameReading::kJunk;
  if (bytes.size() < size) return FrameReading::kNotAllThere;
  bytes = bytes.substr(0, size);
  const auto kind = static_cast<std::uint8_t>(bytes[0]);
  bytes.remove_prefix(1);
  StartRequest read;
  if (!isKnown(kind) || !takeText(bytes, read.text) || !takeText(bytes, read.activation_token) ||
      !bytes.empty()) {
    return FrameReading::kJunk;
  }
  read.kind = static_cast<RequestKind>(kind);
  request = std::move(read);
  return FrameReading::kWhole;
}

}  // namespace tabelion
