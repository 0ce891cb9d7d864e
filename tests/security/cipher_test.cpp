// Against an independent implementation of the same cipher.
#include "security/cipher.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <tomcrypt.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tabelion {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::string keyString(std::string password) {
  password += ' ';
  std::string text;
  while (text.size() < kKeyStringSize) text += password;
  return text.substr(0, kKeyStringSize);
}

symmetric_key otherKey(const std::string& password) {
  symmetric_key key;
  const std::string text = keyString(password);
  EXPECT_EQ(safer_sk128_setup(reinterpret_cast<const unsigned char*>(text.data()), 16,
                              kCipherRounds, &key),
            CRYPT_OK);
  return key;
}

// The feedback mode on the other implementation's block operation, written the other way round:
// block by block over a copy of the stream.
Bytes otherFeedback(const Bytes& data, const std::string& password, bool encipher) {
  symmetric_key key = otherKey(password);
  Bytes cipher(1, kCipherRounds);  // what the register saw: its start, then the cipher text
  const std::string text = keyString(password);
  cipher.insert(cipher.end(), text.begin() + 8, text.begin() + 15);
  Bytes out;
  for (std::size_t at = 0; at < data.size(); at += 8) {
    Bytes block(8);
    safer_ecb_encrypt(&cipher[at], block.data(), &key);
    for (std::size_t i = 0; i < 8 && at + i < data.size(); ++i) {
      out.push_back(data[at + i] ^ block[i]);
      cipher.push_back(encipher ? out.back() : data[at + i]);
    }
  }
  return out;
}

std::string hex(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const unsigned byte : bytes) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

std::string enciphered(std::string text, const std::string& password) {
  ExpandedKey key;
  MakeKey(password, key);
  Bytes bytes(text.begin(), text.end());
  EncipherBuffer(bytes, key);
  return hex(bytes);
}

RC_GTEST_PROP(Cipher, BlocksAndScheduleAgreeWithAnotherImplementation,
              (const std::string& password, const CipherBlock& text)) {
  ExpandedKey key;
  MakeKey(password, key);
  const symmetric_key other = otherKey(password);
  const std::size_t used = 1 + kCipherBlockSize * (1 + 2 * kCipherRounds);
  RC_ASSERT(std::equal(key.bytes().begin(), key.bytes().begin() + used, other.safer.key));
  CipherBlock block = text;
  encipherBlock(block, key);
  CipherBlock expected;
  symmetric_key scratch = other;
  safer_ecb_encrypt(text.data(), expected.data(), &scratch);
  RC_ASSERT(block == expected);
}

RC_GTEST_PROP(Cipher, FeedbackAgreesAndComesBack,
              (const std::string& password, const Bytes& text)) {
  ExpandedKey key;
  MakeKey(password, key);
  Bytes bytes = text;
  EncipherBuffer(bytes, key);
  RC_ASSERT(bytes == otherFeedback(text, password, true));
  DecipherBuffer(bytes, key);
  RC_ASSERT(bytes == text);
}

TEST(Cipher, KnownAnswers) {
  EXPECT_EQ(enciphered("", "abc"), "");
  EXPECT_EQ(enciphered("Tabelion keeps it.", "abc"), "c6e8aacef8b08ac996ad07dc673291544a65");
  EXPECT_EQ(enciphered("Tabelion", ""), "8ac687e093e85424");
}

TEST(Cipher, OnlySixteenBytesOfAPasswordCount) {
  EXPECT_EQ(enciphered("text", "sixteen bytes ab"), enciphered("text", "sixteen bytes abc"));
  EXPECT_NE(enciphered("text", "sixteen bytes a"), enciphered("text", "sixteen bytes ab"));
  EXPECT_EQ(enciphered("text", "abc"), enciphered("text", "abc abc"));
  EXPECT_EQ(enciphered("text", ""), enciphered("text", std::string(16, ' ')));
}

}  // namespace
}  // namespace tabelion
