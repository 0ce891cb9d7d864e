// Text sixteen bytes at a time, for passes over whole files.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tabelion {

class ByteBlock {
 public:
  static constexpr std::size_t kSize = 16;

  explicit ByteBlock(const char* from) { std::memcpy(&lanes_, from, kSize); }
  void store(char* to) const { std::memcpy(to, &lanes_, kSize); }

  // The first byte that is not ASCII; kSize when all are.
  std::size_t firstNotAscii() const { return firstSet((lanes_ & 0x80) != 0); }
  // The first byte that a CSV cell without quotes cannot have.
  std::size_t firstCsvSpecial(char delimiter) const {
    return firstSet((lanes_ == static_cast<std::uint8_t>(delimiter)) | (lanes_ == '"') |
                    (lanes_ == '\n') | (lanes_ == '\r'));
  }

 private:
  typedef std::uint8_t Lanes __attribute__((vector_size(kSize)));

  template <class Mask>  // all bits of a lane, or none
  static std::size_t firstSet(const Mask& mask) {
    std::uint64_t halves[2];
    std::memcpy(halves, &mask, kSize);
    if (halves[0] != 0) return firstByte(halves[0]);
    if (halves[1] != 0) return 8 + firstByte(halves[1]);
    return kSize;
  }
  static std::size_t firstByte(std::uint64_t bits) {
    const int zeros = std::endian::native == std::endian::little ? std::countr_zero(bits)
                                                                 : std::countl_zero(bits);
    return static_cast<std::size_t>(zeros) / 8;
  }

  Lanes lanes_;
};

}  // namespace tabelion
