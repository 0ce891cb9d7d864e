// The data that make_records makes, for the benchmarks that work on it.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/database.h"

namespace tabelion {

// Slots of the data that make_records makes.
inline constexpr std::uint8_t kTitleSlot = 0;
inline constexpr std::uint8_t kPlaceSlot = 1;
inline constexpr std::uint8_t kCountSlot = 2;
inline constexpr std::uint8_t kWeightSlot = 3;  // 0 to 100,000
inline constexpr std::uint8_t kKindSlot = 4;    // one of 20 items
inline constexpr std::uint8_t kDaySlot = 6;
inline constexpr std::uint8_t kNoteSlot = 8;
inline constexpr std::uint8_t kLongWordsSlot = 9;

// What the filters look for. A weight within the bounds has four in ten records; all three
// conditions together few.
inline constexpr std::size_t kItem = 6;
inline constexpr std::string_view kWord = "harbour";
inline constexpr std::string_view kLowest = "20000";
inline constexpr std::string_view kHighest = "60000";
inline constexpr std::string_view kHighestDeleted = "66000";  // about 30,000 records

void setCriterion(Database& database, std::size_t criterion, int slot, std::string_view value1,
                  std::string_view value2 = {});

}  // namespace tabelion
