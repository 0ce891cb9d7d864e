// The cipher of enciphered values: SAFER SK-128 with 10 rounds, in cipher feedback of 64 bits.
//
// A cipher of its time: 8-byte blocks, no stored initialisation vector and no authentication, so
// equal texts under one password have equal cipher texts. docs/security.md says what that is worth.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "security/locked_memory.h"

namespace tabelion {

inline constexpr std::size_t kCipherBlockSize = 8;
inline constexpr std::size_t kKeyStringSize = 16;
inline constexpr int kCipherRounds = 10;

using CipherBlock = std::array<std::uint8_t, kCipherBlockSize>;

// Overwrites bytes that were secret; the compiler may not leave it out.
void wipeBytes(std::span<std::uint8_t> bytes);

// A key ready for use, as the published reference schedule lays it out: the round count, the second
// half of the key, then two round keys for each round and one more (room for 13 rounds).
// In locked memory, overwritten at its end.
class ExpandedKey {
 public:
  static constexpr std::size_t kSize = 217;

  ExpandedKey() = default;
  ExpandedKey(const ExpandedKey&) = delete;
  ExpandedKey& operator=(const ExpandedKey&) = delete;

  std::span<std::uint8_t, kSize> bytes() {
    return std::span<std::uint8_t, kSize>(memory_.data(), kSize);
  }
  std::span<const std::uint8_t, kSize> bytes() const {
    return std::span<const std::uint8_t, kSize>(memory_.data(), kSize);
  }

 private:
  LockedMemory memory_{kSize};
};

// The key of a password (8-bit text). The 16 bytes of the key are the password and a space, over
// and over, cut wherever 16 are reached: only the first 16 bytes of a password count, and an empty
// one is 16 spaces.
void MakeKey(std::string_view password, ExpandedKey& key);

// One block operation.
void encipherBlock(CipherBlock& block, const ExpandedKey& key);

// In place. Every buffer starts afresh: the feedback register is the first 8 bytes of the expanded
// key. No bytes, no change. Both give the sum modulo 256 of the bytes in clear, by which a right
// password is told.
std::uint8_t EncipherBuffer(std::span<std::uint8_t> bytes, const ExpandedKey& key);
std::uint8_t DecipherBuffer(std::span<std::uint8_t> bytes, const ExpandedKey& key);

}  // namespace tabelion
