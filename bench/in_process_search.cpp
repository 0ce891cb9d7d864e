// Filtering and finding, beside plain loops over columns that were decoded beforehand.
#include <algorithm>
#include <string>

#include "engine/packed_record.h"
#include "in_process.h"
#include "query/field_text.h"
#include "query/filter.h"
#include "query/find.h"
#include "query/number_text.h"
#include "query/sort.h"
#include "query/text_case.h"

namespace tabelion {
namespace {

constexpr std::string_view kOnlyInTheLast = "Amphora";

QuerySettings querySettings() {
  QuerySettings settings;
  settings.formats = matchingSettings(LocaleInfo{});
  return settings;
}

// Of one kind, with a weight in a range and a text with a word.
void chooseCriteria(Database& database) {
  const ByteView key = database.fields[kKindSlot].items[kItem].valueKey();
  setCriterion(database, 0, kKindSlot, {reinterpret_cast<const char*>(key.data()), key.size()});
  setCriterion(database, 1, kWeightSlot, kLowest, kHighest);
  setCriterion(database, 2, kLongWordsSlot, kWord);
}

void filterBy(benchmark::State& state, Database& database, bool weight_alone) {
  const QuerySettings settings = querySettings();
  chooseCriteria(database);
  if (weight_alone) database.schema.filters[0] = database.schema.filters[2] = {};
  for (auto _ : state) rebuildFilterIndex(database, settings);
  state.counters["passing"] = static_cast<double>(database.record_index.size());
  database.schema.filters = {};
}

// The records lie anywhere in memory once they were sorted; afterwards as the file has them.
void filterSorted(benchmark::State& state, Database& database) {
  database.schema.sort[0] = {kTitleSlot, 1};
  sortRecords(database, querySettings().formats);
  database.schema.sort[0] = {};
  filterBy(state, database, false);
  std::vector<Record>& records = database.records.records();
  std::sort(records.begin(), records.end(),
            [](const Record& a, const Record& b) { return a.bytes().data() < b.bytes().data(); });
}

struct Columns {
  std::vector<std::size_t> kind;
  std::vector<double> weight;
  std::vector<std::string> words;   // in lower case
  std::vector<std::string> titles;  // these two as well
  std::vector<std::string> places;
};

Columns decoded(const Database& database) {
  Columns columns;
  const FieldRecord& kinds = database.fields[kKindSlot];
  for (const Record& record : database.records) {
    const auto value = [&](int slot) { return *slotValue(record.bytes(), slot); };
    const PopupItem* item = findItem(kinds, value(kKindSlot));
    columns.kind.push_back(item ? static_cast<std::size_t>(item - kinds.items.data()) : SIZE_MAX);
    columns.weight.push_back(numberOfText(storedText(value(kWeightSlot)), false));
    columns.words.push_back(lowerCaseText(storedText(value(kLongWordsSlot))));
    columns.titles.push_back(lowerCaseText(storedText(value(kTitleSlot))));
    columns.places.push_back(lowerCaseText(storedText(value(kPlaceSlot))));
  }
  return columns;
}

void filterColumns(benchmark::State& state, Database& database) {
  const Columns columns = decoded(database);
  const double lowest = numberOfText(kLowest, false);
  const double highest = numberOfText(kHighest, false);
  std::vector<std::uint32_t> index;
  for (auto _ : state) {
    index.clear();
    for (std::uint32_t i = 0; i < columns.kind.size(); ++i) {
      if (columns.kind[i] == kItem && columns.weight[i] >= lowest && columns.weight[i] <= highest &&
          columns.words[i].find(kWord) != std::string::npos) {
        index.push_back(i);
      }
    }
    benchmark::DoNotOptimize(index.data());
  }
  state.counters["passing"] = static_cast<double>(index.size());
}

// A text that only the last record has, looked for in all fields.
class OnlyInTheLast {
 public:
  explicit OnlyInTheLast(Database& database)
      : database_(database), position_(database.records.count() - 1) {
    const ByteView bytes = database.records[position_].bytes();
    original_.assign(bytes.begin(), bytes.end());
    UnpackedRecord record = unpackRecord(bytes);
    Bytes& words = *record.slots[kLongWordsSlot];
    words.insert(words.begin(), kOnlyInTheLast.begin(), kOnlyInTheLast.end());
    Bytes packed;
    if (!packRecord(record, packed) || !database_.records.replace(position_, packed)) position_ = 0;
  }
  void restore() { (void)database_.records.replace(position_, original_); }
  std::uint32_t position() const { return position_; }

 private:
  Database& database_;
  std::uint32_t position_;
  Bytes original_;
};

void findInAllFields(benchmark::State& state, Database& database) {
  OnlyInTheLast last(database);
  const QuerySettings settings = querySettings();
  const SearchSettings search{-1, false, false, std::string(kOnlyInTheLast)};
  for (auto _ : state) {
    if (findFrom(database, search, 0, 0, settings).position != last.position()) {
      state.SkipWithError("not found there");
      break;
    }
  }
  last.restore();
}

// Digits can be in every number, date and time.
void findDigitsNowhere(benchmark::State& state, Database& database) {
  const QuerySettings settings = querySettings();
  const SearchSettings search{-1, false, false, "99999999"};
  for (auto _ : state) {
    if (findFrom(database, search, 0, 0, settings).slot >= 0) {
      state.SkipWithError("found");
      break;
    }
  }
}

void findInColumns(benchmark::State& state, Database& database) {
  OnlyInTheLast last(database);
  const Columns columns = decoded(database);
  const std::string word = lowerCaseText(kOnlyInTheLast);
  for (auto _ : state) {
    std::uint32_t i = 0;
    const auto has = [&](const std::string& text) { return text.find(word) != std::string::npos; };
    while (i <= last.position() && !has(columns.titles[i]) && !has(columns.places[i]) &&
           !has(columns.words[i])) {
      ++i;
    }
    if (i != last.position()) state.SkipWithError("not found there");
  }
  last.restore();
}

}  // namespace

void registerSearch(Database& database) {
  const auto ms = benchmark::kMillisecond;
  const auto add = [&](const char* name, auto&&... arguments) {
    benchmark::RegisterBenchmark(name, arguments...)->Unit(ms);
  };
  add("filter by three criteria", filterBy, std::ref(database), false);
  add("the same after a sort", filterSorted, std::ref(database));
  add("a loop over columns", filterColumns, std::ref(database));
  add("filter by a number alone", filterBy, std::ref(database), true);
  add("find in all fields", findInAllFields, std::ref(database));
  add("std::string::find in three columns", findInColumns, std::ref(database));
  add("find digits in all fields", findDigitsNowhere, std::ref(database));
}

}  // namespace tabelion
