// The benchmarks of one process, one source for each topic. Each leaves the database as it was.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/database.h"

namespace tabelion {

// Slots of the data that make_records makes.
inline constexpr std::uint8_t kTitle = 0;
inline constexpr std::uint8_t kPlace = 1;
inline constexpr std::uint8_t kCount = 2;
inline constexpr std::uint8_t kWeight = 3;  // 0 to 100,000
inline constexpr std::uint8_t kKind = 4;    // one of 20 items
inline constexpr std::uint8_t kDay = 6;
inline constexpr std::uint8_t kNote = 8;
inline constexpr std::uint8_t kLongWords = 9;

// What the filters look for. A weight within the bounds has four in ten records; all three
// conditions together few.
inline constexpr std::size_t kItem = 6;
inline constexpr std::string_view kWord = "harbour";
inline constexpr std::string_view kLowest = "20000";
inline constexpr std::string_view kHighest = "60000";
inline constexpr std::string_view kHighestDeleted = "66000";  // about 30,000 records

void setCriterion(Database& database, std::size_t criterion, int slot, std::string_view value1,
                  std::string_view value2 = {});

void registerChanges(const std::string& path);
void registerCipher(const std::string& path);
void registerRecompute(const std::string& path);
void registerReport(const Database& database);
void registerSearch(Database& database);
void registerSort(Database& database);
void registerSqlite(const Database& database);

}  // namespace tabelion
