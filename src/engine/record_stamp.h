// The 22-byte head block: the record stamp of data records, and the head of every schema record.
//
//   0  5  text "pdblb"          12  2  serial number, big-endian
//   5  2  random, little-endian 14  3  modification time, little-endian
//   7  1  random                17  3  zero
//   8  3  creation time         20  1  encryption checksum
//  11  1  flag byte             21  1  byte
//
// Times are minutes since 2000-01-01 00:00 local time, kept in 24 bits (they wrap late in 2031).
// The first 14 bytes identify a record across saves.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "engine/bytes.h"
#include "platform/clock.h"

namespace tabelion {

using HeadBlock = std::array<std::uint8_t, 22>;
// Numbers of which only low bits are used; need not be secret ones.
using RandomSource = std::function<std::uint32_t()>;

inline constexpr std::size_t kStampFlagOffset = 11;
inline constexpr std::size_t kStampChecksumOffset = 20;
inline constexpr std::size_t kStampIdentitySize = 14;

// Bits of the flag byte.
inline constexpr std::uint8_t kRecordEncrypted = 0x20;    // flagged fields are enciphered
inline constexpr std::uint8_t kClearByDatabase = 0x01;    // deciphered with the whole database
inline constexpr std::uint8_t kDatabaseEncrypted = 0x10;  // the database record's block alone

// A new stamp: created and modified at `local`, no flag set. Takes two numbers from `random`.
HeadBlock makeStamp(const CalendarTime& local, std::uint16_t serial, const RandomSource& random);

// Minutes as in the stamp, for stampTime.
inline std::uint32_t stampCreated(const HeadBlock& stamp) {
  return loadLe24(&stamp[8]);
}
inline std::uint16_t stampSerial(const HeadBlock& stamp) {
  return loadBe16(&stamp[12]);
}
inline std::uint32_t stampModified(const HeadBlock& stamp) {
  return loadLe24(&stamp[14]);
}

// The calendar time of a stamp time, taken in the 32-year window that ends a year after `now`.
CalendarTime stampTime(std::uint32_t minutes, const CalendarTime& now);

}  // namespace tabelion
