// The one place that puts numbers into bytes and takes them out again. The byte order is in the
// name of every call; numbers in headers, record lists and schema records are big-endian (Be),
// values inside data records little-endian (Le). Nothing else in the house shifts bytes or lays a
// structure over them, so the program reads the same files on every machine.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tabelion {

// Bytes that are owned, and bytes that lie with somebody else: a view is good as long as its owner
// neither changes nor goes, which for a record's bytes means until the record is replaced.
using Bytes = std::vector<std::uint8_t>;
using ByteView = std::span<const std::uint8_t>;

// Loads and stores at a place whose room the caller has checked. What is too large for its bytes
// loses its high ones.
inline std::uint16_t loadLe16(const std::uint8_t* at) {
  return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}
inline std::uint32_t loadLe24(const std::uint8_t* at) {
  return static_cast<std::uint32_t>(at[0]) | static_cast<std::uint32_t>(at[1]) << 8 |
         static_cast<std::uint32_t>(at[2]) << 16;
}
inline std::uint32_t loadLe32(const std::uint8_t* at) {
  return loadLe24(at) | static_cast<std::uint32_t>(at[3]) << 24;
}
inline std::uint16_t loadBe16(const std::uint8_t* at) {
  return static_cast<std::uint16_t>(at[0] << 8 | at[1]);
}
inline std::uint32_t loadBe32(const std::uint8_t* at) {
  return static_cast<std::uint32_t>(loadBe16(at)) << 16 | loadBe16(at + 2);
}
inline void storeLe16(std::uint8_t* at, std::uint32_t value) {
  at[0] = static_cast<std::uint8_t>(value);
  at[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void storeLe24(std::uint8_t* at, std::uint32_t value) {
  storeLe16(at, value);
  at[2] = static_cast<std::uint8_t>(value >> 16);
}
inline void storeLe32(std::uint8_t* at, std::uint32_t value) {
  storeLe24(at, value);
  at[3] = static_cast<std::uint8_t>(value >> 24);
}
inline void storeBe16(std::uint8_t* at, std::uint32_t value) {
  at[0] = static_cast<std::uint8_t>(value >> 8);
  at[1] = static_cast<std::uint8_t>(value);
}

// Reads from a run of bytes, front to back. A read past the end gives zeros and is remembered:
// ok() is false from then on, so a caller may read a whole structure and ask once.
class ByteReader {
 public:
  explicit ByteReader(ByteView bytes) : bytes_(bytes) {}

  // False once a read asked for more than there was.
  bool ok() const { return ok_; }
  // How far it has come, in bytes from the front; after a failed read, the end.
  std::size_t position() const { return position_; }
  std::size_t remaining() const { return bytes_.size() - position_; }
  ByteView rest() const { return bytes_.subspan(position_); }

  std::uint8_t readByte() {
    const std::uint8_t* at = take(1);
    return at ? at[0] : std::uint8_t{0};
  }
  std::uint16_t readBe16() {
    const std::uint8_t* at = take(2);
    return at ? loadBe16(at) : std::uint16_t{0};
  }
  std::uint32_t readBe32() {
    const std::uint8_t* at = take(4);
    return at ? loadBe32(at) : 0;
  }
  std::uint16_t readLe16() {
    const std::uint8_t* at = take(2);
    return at ? loadLe16(at) : std::uint16_t{0};
  }
  // As many as `into` has; when there are fewer it keeps what it held.
  void readBytes(std::span<std::uint8_t> into) {
    if (const std::uint8_t* at = take(into.size()); at && !into.empty()) {
      std::memcpy(into.data(), at, into.size());
    }
  }

 private:
  const std::uint8_t* take(std::size_t count) {
    if (remaining() < count) {
      ok_ = false;
      position_ = bytes_.size();
      return nullptr;
    }
    const std::uint8_t* at = bytes_.data() + position_;
    position_ += count;
    return at;
  }

  ByteView bytes_;
  std::size_t position_ = 0;
  bool ok_ = true;
};

// Appends to a vector that the caller owns and that outlives the writer. A number is cut to the
// bytes that the call names; memory alone bounds how much can be put.
class ByteWriter {
 public:
  explicit ByteWriter(Bytes& into) : into_(into) {}

  void putByte(std::uint32_t value) { into_.push_back(static_cast<std::uint8_t>(value)); }
  void putBe16(std::uint32_t value) {
    putByte(value >> 8);
    putByte(value);
  }
  void putBe32(std::uint32_t value) {
    putBe16(value >> 16);
    putBe16(value);
  }
  void putLe16(std::uint32_t value) {
    putByte(value);
    putByte(value >> 8);
  }
  void putBytes(ByteView bytes) { into_.insert(into_.end(), bytes.begin(), bytes.end()); }
  void putZeros(std::size_t count) { into_.insert(into_.end(), count, std::uint8_t{0}); }

 private:
  Bytes& into_;
};

// The same bytes under the other name, nothing copied: they lie with whoever owns the argument.
inline ByteView asBytes(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}
inline std::string_view asText(ByteView bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
// The text in front of the first NUL; all of it where there is none.
inline std::string_view textUntilNul(ByteView bytes) {
  const std::string_view text = asText(bytes);
  return text.substr(0, text.find('\0'));
}

// A fixed-size area that holds text up to its first NUL (or to its end when there is none).
// Whatever lies behind the NUL is kept as read until a new text is set, which zeroes the rest.
template <std::size_t N>
using TextArea = std::array<std::uint8_t, N>;

// The text of an area, 8-bit in the database's code page, without what lies behind its NUL.
inline std::string areaText(ByteView area) {
  return std::string(textUntilNul(area));
}

// Puts the text and zeros behind it. False, and nothing changed, when the text and its NUL do not
// fit or when the text holds a NUL.
inline bool setAreaText(std::span<std::uint8_t> area, std::string_view text) {
  if (text.size() >= area.size() || text.find('\0') != std::string_view::npos) return false;
  std::memset(area.data(), 0, area.size());
  if (!text.empty()) std::memcpy(area.data(), text.data(), text.size());
  return true;
}

}  // namespace tabelion
