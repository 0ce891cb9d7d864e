// Sorting by three levels, beside std::sort over keys prepared the same way, and putting one saved
// record back into its place.
#include <algorithm>
#include <tuple>

#include "engine/packed_record.h"
#include "in_process.h"
#include "query/field_text.h"
#include "query/sort.h"
#include "query/sort_fields.h"
#include "query/text_case.h"

namespace tabelion {
namespace {

// Slots of the benchmark's data.
constexpr std::uint8_t kTitle = 0;
constexpr std::uint8_t kCount = 2;
constexpr std::uint8_t kDay = 6;

void chooseLevels(Database& database) {
  database.schema.sort = {SortKey{kTitle, kSortForward}, SortKey{kCount, 0},
                          SortKey{kDay, kSortForward}};
}

// The order that the file has.
void unsort(Database& database) {
  std::vector<Record>& records = database.records.records();
  std::sort(records.begin(), records.end(),
            [](const Record& a, const Record& b) { return a.bytes().data() < b.bytes().data(); });
}

void sortThreeLevels(benchmark::State& state, Database& database) {
  const FormatSettings formats = matchingSettings(LocaleInfo{});
  chooseLevels(database);
  for (auto _ : state) {
    state.PauseTiming();
    unsort(database);
    state.ResumeTiming();
    sortRecords(database, formats);
  }
  unsort(database);
}

// What there is to do when the records are in order.
void sortAgain(benchmark::State& state, Database& database) {
  const FormatSettings formats = matchingSettings(LocaleInfo{});
  chooseLevels(database);
  sortRecords(database, formats);
  for (auto _ : state) sortRecords(database, formats);
  unsort(database);
}

struct PeerKey {
  std::string title;
  std::int32_t count = 0;
  std::int32_t day = 0;
  std::uint32_t position = 0;
};

PeerKey peerKey(const Record& record, std::uint32_t position) {
  PeerKey key;
  key.position = position;
  SlotWalker walker(record.bytes());
  for (int slot = 0; slot <= kDay; ++slot) {
    const auto value = walker.next();
    if (!value) break;
    if (slot == kTitle) key.title = lowerCaseText(storedText(*value));
    if (slot == kCount) key.count = static_cast<std::int32_t>(numberOfValue(*value));
    if (slot == kDay) key.day = static_cast<std::int32_t>(numberOfValue(*value));
  }
  return key;
}

// The keys made, sorted by the standard library, and the records arranged by them.
void sortWithStdSort(benchmark::State& state, Database& database) {
  for (auto _ : state) {
    state.PauseTiming();
    unsort(database);
    state.ResumeTiming();
    std::vector<PeerKey> keys;
    keys.reserve(database.records.count());
    for (const Record& record : database.records) {
      keys.push_back(peerKey(record, static_cast<std::uint32_t>(keys.size())));
    }
    std::sort(keys.begin(), keys.end(), [](const PeerKey& a, const PeerKey& b) {
      return std::tie(a.title, b.count, a.day) < std::tie(b.title, a.count, b.day);
    });
    std::vector<Record> arranged;
    arranged.reserve(keys.size());
    for (const PeerKey& key : keys) {
      arranged.push_back(std::move(database.records[key.position]));
    }
    database.records.records() = std::move(arranged);
  }
  unsort(database);
}

// The record that belongs last, which has to be compared with every other.
void replaceLast(benchmark::State& state, Database& database) {
  const FormatSettings formats = matchingSettings(LocaleInfo{});
  chooseLevels(database);
  sortRecords(database, formats);
  const std::uint32_t last = database.records.count() - 1;
  for (auto _ : state) {
    if (replaceInOrder(database, last, formats) != last) return state.SkipWithError("moved");
  }
  unsort(database);
}

}  // namespace

void registerSort(Database& database) {
  const auto ms = benchmark::kMillisecond;
  benchmark::RegisterBenchmark("sort by three levels", sortThreeLevels, std::ref(database))
      ->Unit(ms);
  benchmark::RegisterBenchmark("std::sort by the same", sortWithStdSort, std::ref(database))
      ->Unit(ms);
  benchmark::RegisterBenchmark("sort what is in order", sortAgain, std::ref(database))->Unit(ms);
  benchmark::RegisterBenchmark("re-place the last record", replaceLast, std::ref(database))
      ->Unit(ms);
}

}  // namespace tabelion
