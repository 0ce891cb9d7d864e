// Sorting by three levels, beside std::sort over keys prepared the same way, and putting one saved
// record back into its place.
#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "engine/packed_record.h"
#include "in_process.h"
#include "query/field_text.h"
#include "query/sort.h"
#include "query/sort_fields.h"
#include "query/text_case.h"

namespace tabelion {
namespace {

// Puts the levels into force, and everything back in the end.
class SortedDatabase {
 public:
  explicit SortedDatabase(Database& database) : database_(database), levels_(database.schema.sort) {
    for (const Record& record : database.records) {
      places_.emplace(record.bytes().data(), places_.size());
    }
    database.schema.sort = {SortKey{kTitleSlot, kSortForward}, SortKey{kCountSlot, 0},
                            SortKey{kDaySlot, kSortForward}};
  }
  ~SortedDatabase() {
    unsort();
    database_.schema.sort = levels_;
  }
  SortedDatabase(const SortedDatabase&) = delete;
  SortedDatabase& operator=(const SortedDatabase&) = delete;

  // Back to the order of before; sorting does not touch the bytes of records.
  void unsort() {
    std::vector<Record> ordered(places_.size());
    for (Record& record : database_.records.records()) {
      ordered[places_.at(record.bytes().data())] = std::move(record);
    }
    database_.records.records() = std::move(ordered);
  }

 private:
  Database& database_;
  std::array<SortKey, kSortLevels> levels_;
  std::unordered_map<const std::uint8_t*, std::size_t> places_;
};

void sortThreeLevels(benchmark::State& state, Database& database) {
  const FormatSettings formats = matchingSettings(LocaleInfo{});
  SortedDatabase sorted(database);
  for (auto _ : state) {
    state.PauseTiming();
    sorted.unsort();
    state.ResumeTiming();
    sortRecords(database, formats);
  }
}

// What there is to do when the records are in order.
void sortAgain(benchmark::State& state, Database& database) {
  const FormatSettings formats = matchingSettings(LocaleInfo{});
  SortedDatabase sorted(database);
  sortRecords(database, formats);
  for (auto _ : state) sortRecords(database, formats);
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
  for (int slot = 0; slot <= kDaySlot; ++slot) {
    const auto value = walker.next();
    if (!value) break;
    if (slot == kTitleSlot) key.title = lowerCaseText(storedText(*value));
    if (slot == kCountSlot) key.count = static_cast<std::int32_t>(numberOfValue(*value));
    if (slot == kDaySlot) key.day = static_cast<std::int32_t>(numberOfValue(*value));
  }
  return key;
}

// The keys made, sorted by the standard library, and the records arranged by them.
void sortWithStdSort(benchmark::State& state, Database& database) {
  SortedDatabase sorted(database);
  for (auto _ : state) {
    state.PauseTiming();
    sorted.unsort();
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
}

// The record that belongs last, which has to be compared with every other.
void replaceLast(benchmark::State& state, Database& database) {
  const FormatSettings formats = matchingSettings(LocaleInfo{});
  SortedDatabase sorted(database);
  sortRecords(database, formats);
  const std::uint32_t last = database.records.count() - 1;
  for (auto _ : state) {
    if (replaceInOrder(database, last, formats) != last) return state.SkipWithError("moved");
  }
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
