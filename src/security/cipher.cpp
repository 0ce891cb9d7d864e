#include "security/cipher.h"

#include <algorithm>
#include <cstring>

#include "engine/bytes.h"

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

// A block as one number, its first byte lowest: it never leaves the registers between two blocks.
using Word = std::uint64_t;

Word loadWord(std::span<const Byte, kCipherBlockSize> bytes) {
  return loadLe32(&bytes[0]) | Word{loadLe32(&bytes[4])} << 32;
}
void storeWord(std::span<Byte, kCipherBlockSize> bytes, Word word) {
  storeLe32(&bytes[0], static_cast<std::uint32_t>(word));
  storeLe32(&bytes[4], static_cast<std::uint32_t>(word >> 32));
}

Byte byteOf(Word word, int index) {
  return static_cast<Byte>(word >> 8 * index);
}

// The block operation. The key by its bytes, whose place is looked up once for many blocks.
Word enciphered(Word block, const Byte* key) {
  Byte a = byteOf(block, 0), b = byteOf(block, 1), c = byteOf(block, 2), d = byteOf(block, 3);
  Byte e = byteOf(block, 4), f = byteOf(block, 5), g = byteOf(block, 6), h = byteOf(block, 7);
  const Byte* k = key + 1;
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
  a ^= k[0], b = sum(b, k[1]), c = sum(c, k[2]), d ^= k[3];
  e ^= k[4], f = sum(f, k[5]), g = sum(g, k[6]), h ^= k[7];
  // In pairs, which do not wait for each other.
  const Word ab = a | b << 8, cd = c | d << 8, ef = e | f << 8, gh = g | h << 8;
  return (ab | cd << 16) | (ef | gh << 16) << 32;
}

// The sum modulo 256 of eight bytes: of every second one in four lanes, then of the lanes, which
// the product has in its highest 16 bits.
Byte sumOfBytes(Word word) {
  constexpr Word kEverySecond = 0x00FF00FF00FF00FF;
  constexpr Word kAddLanes = 0x0001000100010001;
  return static_cast<Byte>(((word & kEverySecond) + (word >> 8 & kEverySecond)) * kAddLanes >> 48);
}

enum class Direction { kEncipher, kDecipher };

// The sum of the clear bytes is taken on the way: most texts are so short that a second loop over
// them would be felt. The register ends as cipher text, so there is nothing to wipe.
template <Direction kDirection>
Byte runFeedback(std::span<Byte> bytes, const ExpandedKey& key) {
  constexpr bool kEnciphers = kDirection == Direction::kEncipher;
  const Byte* const key_bytes = key.bytes().data();
  Word feedback = loadWord(key.bytes().first<kCipherBlockSize>());
  Byte total = 0;
  for (; bytes.size() >= kCipherBlockSize; bytes = bytes.subspan(kCipherBlockSize)) {
    const auto block = bytes.first<kCipherBlockSize>();
    const Word before = loadWord(block);
    const Word after = before ^ enciphered(feedback, key_bytes);
    storeWord(block, after);
    total = sum(total, sumOfBytes(kEnciphers ? before : after));
    feedback = kEnciphers ? after : before;
  }
  if (bytes.empty()) return total;
  feedback = enciphered(feedback, key_bytes);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const Byte before = bytes[i];
    bytes[i] ^= byteOf(feedback, static_cast<int>(i));
    total = sum(total, kEnciphers ? before : bytes[i]);
  }
  return total;
}

}  // namespace

void wipeBytes(std::span<std::uint8_t> bytes) {
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
  wipeBytes(text);
  wipeBytes(first);
  wipeBytes(second);
}

void encipherBlock(CipherBlock& block, const ExpandedKey& key) {
  storeWord(block, enciphered(loadWord(block), key.bytes().data()));
}

std::uint8_t EncipherBuffer(std::span<std::uint8_t> bytes, const ExpandedKey& key) {
  return runFeedback<Direction::kEncipher>(bytes, key);
}

std::uint8_t DecipherBuffer(std::span<std::uint8_t> bytes, const ExpandedKey& key) {
  return runFeedback<Direction::kDecipher>(bytes, key);
}

}  // namespace tabelion
