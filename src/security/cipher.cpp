#include "security/cipher.h"

#include <algorithm>
#include <cstring>

namespace tabelion {
namespace {

using Byte = std::uint8_t;

// Powers of 45 modulo 257 and their logarithms; 256, the 128th power, counts as 0.
struct Tables {
  std::array<Byte, 256> exponent{};
  std::array<Byte, 256> logarithm{};
};

constexpr Tables makeTables() {
  Tables tables;
  unsigned power = 1;
  for (unsigned i = 0; i < 256; ++i) {
    tables.exponent[i] = static_cast<Byte>(power);
    tables.logarithm[tables.exponent[i]] = static_cast<Byte>(i);
    power = power * 45 % 257;
  }
  return tables;
}

constexpr Tables kTables = makeTables();

Byte rotateLeft(Byte value, int bits) {
  return static_cast<Byte>(value << bits | value >> (8 - bits));
}

// A half of the key with its parity byte behind it.
using KeyRegister = std::array<Byte, kCipherBlockSize + 1>;

Byte roundKeyByte(const KeyRegister& half, std::size_t turn, std::size_t index, std::size_t bias) {
  const Byte addend = kTables.exponent[kTables.exponent[bias & 0xFF]];
  return static_cast<Byte>(half[(index + turn) % half.size()] + addend);
}

// The pseudo-Hadamard transform of two bytes.
void mix(Byte& a, Byte& b) {
  b = static_cast<Byte>(b + a);
  a = static_cast<Byte>(a + b);
}

Byte exponent(Byte value) {
  return kTables.exponent[value];
}
Byte logarithm(Byte value) {
  return kTables.logarithm[value];
}

Byte sum(Byte a, Byte b) {
  return static_cast<Byte>(a + b);
}

// Both directions: `cipherOf` says which of a byte's forms, before and after, is the cipher text,
// which goes on into the register.
template <typename CipherOf>
void runFeedback(std::span<Byte> bytes, const ExpandedKey& key, const CipherOf& cipherOf) {
  CipherBlock feedback;
  std::copy_n(key.bytes().begin(), feedback.size(), feedback.begin());
  for (std::size_t at = 0; at < bytes.size(); at += feedback.size()) {
    const std::size_t count = std::min(feedback.size(), bytes.size() - at);
    EncipherBlock(feedback, key);
    for (std::size_t i = 0; i < count; ++i) {
      const Byte before = bytes[at + i];
      bytes[at + i] ^= feedback[i];
      feedback[i] = cipherOf(before, bytes[at + i]);
    }
  }
  WipeBytes(feedback);
}

}  // namespace

void WipeBytes(std::span<std::uint8_t> bytes) {
  // Through a pointer that might be another function, so that no compiler leaves the call out.
  static void* (*const volatile fill)(void*, int, std::size_t) = std::memset;
  if (!bytes.empty()) fill(bytes.data(), 0, bytes.size());
}

void MakeKey(std::string_view password, ExpandedKey& key) {
  std::array<Byte, kKeyStringSize> text;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t at = i % (password.size() + 1);
    text[i] = at < password.size() ? static_cast<Byte>(password[at]) : Byte{' '};
  }
  KeyRegister first{};
  KeyRegister second{};
  Byte* out = key.bytes().data();
  *out++ = static_cast<Byte>(kCipherRounds);
  for (std::size_t i = 0; i < kCipherBlockSize; ++i) {
    first[i] = rotateLeft(text[i], 5);
    second[i] = text[kCipherBlockSize + i];
    first.back() ^= first[i];
    second.back() ^= second[i];
    *out++ = second[i];
  }
  for (std::size_t round = 1; round <= kCipherRounds; ++round) {
    for (Byte& byte : first) byte = rotateLeft(byte, 6);
    for (Byte& byte : second) byte = rotateLeft(byte, 6);
    for (std::size_t i = 0; i < kCipherBlockSize; ++i) {
      *out++ = roundKeyByte(first, 2 * round - 1, i, 18 * round + i + 1);
    }
    for (std::size_t i = 0; i < kCipherBlockSize; ++i) {
      *out++ = roundKeyByte(second, 2 * round, i, 18 * round + i + 10);
    }
  }
  WipeBytes(text);
  WipeBytes(first);
  WipeBytes(second);
}

void EncipherBlock(CipherBlock& block, const ExpandedKey& key) {
  auto [a, b, c, d, e, f, g, h] = block;
  const Byte* k = key.bytes().data() + 1;
  for (int round = 0; round < kCipherRounds; ++round, k += 2 * kCipherBlockSize) {
    a = sum(exponent(a ^ k[0]), k[8]);
    b = logarithm(sum(b, k[1])) ^ k[9];
    c = logarithm(sum(c, k[2])) ^ k[10];
    d = sum(exponent(d ^ k[3]), k[11]);
    e = sum(exponent(e ^ k[4]), k[12]);
    f = logarithm(sum(f, k[5])) ^ k[13];
    g = logarithm(sum(g, k[6])) ^ k[14];
    h = sum(exponent(h ^ k[7]), k[15]);
    mix(a, b), mix(c, d), mix(e, f), mix(g, h);
    mix(a, c), mix(e, g), mix(b, d), mix(f, h);
    mix(a, e), mix(b, f), mix(c, g), mix(d, h);
    const Byte old_b = b;
    b = e, e = c, c = old_b;
    const Byte old_d = d;
    d = f, f = g, g = old_d;
  }
  block = {static_cast<Byte>(a ^ k[0]), sum(b, k[1]), sum(c, k[2]), static_cast<Byte>(d ^ k[3]),
           static_cast<Byte>(e ^ k[4]), sum(f, k[5]), sum(g, k[6]), static_cast<Byte>(h ^ k[7])};
}

void EncipherBuffer(std::span<std::uint8_t> bytes, const ExpandedKey& key) {
  runFeedback(bytes, key, [](Byte, Byte after) { return after; });
}

void DecipherBuffer(std::span<std::uint8_t> bytes, const ExpandedKey& key) {
  runFeedback(bytes, key, [](Byte before, Byte) { return before; });
}

std::uint8_t ByteSum(std::span<const std::uint8_t> bytes) {
  Byte total = 0;
  for (const Byte byte : bytes) total = sum(total, byte);
  return total;
}

}  // namespace tabelion
