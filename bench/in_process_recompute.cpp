// Working out two calculated fields of every record, beside the same sums over columns of numbers
// that are already there, written as text all the same.
#include <charconv>
#include <string>
#include <vector>

#include "engine/packed_record.h"
#include "engine/schema_places.h"
#include "in_process.h"
#include "platform/std/std_clock.h"
#include "platform/std/std_files.h"
#include "query/field_text.h"
#include "query/formula_text.h"
#include "query/number_text.h"
#include "query/recompute.h"

namespace tabelion {
namespace {

// Slots of the benchmark's data, and the two that are added to it.
constexpr int kWeight = 3;
constexpr int kAmount = 10;
constexpr std::size_t kGross = 12;
constexpr std::size_t kSum = 13;

struct Shop {
  StdFiles files;
  StdClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
  Database database;
  QuerySettings settings{.formats = isoSettings(), .now = {}, .lookup = nullptr};

  // A database of its own, since it gets fields. False when it cannot be opened.
  bool open(const std::string& path) {
    database.path = path;
    if (openDatabase(database, engine) != 1) return false;
    for (const std::size_t slot : {kGross, kSum})
      database.schema.fields[slot].type = FieldType::kCalculated;
    setFieldName(database.schema.fields[kGross], "Gross");
    setFieldName(database.schema.fields[kSum], "Sum");
    return true;
  }
  void setFormulas(const std::string& gross, const std::string& sum) {
    set(kGross, gross);
    set(kSum, sum);
  }

 private:
  void set(std::size_t slot, const std::string& text) {
    const auto formula = parseFormula(text, database.schema, 5);
    if (formula.ok()) setStoredFormula(database.schema.fields[slot], *formula);
  }
};

void recomputeUnchanged(benchmark::State& state, const std::string& path) {
  Shop shop;
  if (!shop.open(path)) return state.SkipWithError("cannot be opened");
  shop.setFormulas("Amount * Weight", "previous(Sum) + Amount");
  recomputeAll(shop.database, shop.settings);
  for (auto _ : state) {
    if (recomputeAll(shop.database, shop.settings).values != 0) state.SkipWithError("changed");
  }
}

void recomputeChanged(benchmark::State& state, const std::string& path) {
  Shop shop;
  if (!shop.open(path)) return state.SkipWithError("cannot be opened");
  bool first = false;
  for (auto _ : state) {
    first = !first;
    if (first) {
      shop.setFormulas("Amount * Weight + 1", "previous(Sum) + Amount");
    } else {
      shop.setFormulas("Amount * Weight + 2", "previous(Sum) - Amount");
    }
    if (recomputeAll(shop.database, shop.settings).records != shop.database.records.count()) {
      state.SkipWithError("some are unchanged");
    }
  }
}

// The numbers of a field.
std::vector<double> columnOf(const Database& database, int slot) {
  std::vector<double> column;
  for (const Record& record : database.records) {
    const auto value = slotValue(record.bytes(), slot);
    column.push_back(value ? numberOfText(storedText(*value), false) : 0);
  }
  return column;
}

void columnsOnly(benchmark::State& state, const std::string& path) {
  Shop shop;
  if (!shop.open(path)) return state.SkipWithError("cannot be opened");
  const std::vector<double> amounts = columnOf(shop.database, kAmount);
  const std::vector<double> weights = columnOf(shop.database, kWeight);
  std::vector<char> texts(amounts.size() * 2 * kNumberTextSize);
  const auto put = [](char* at, double value) {
    return std::to_chars(at, at + kNumberTextSize, value, std::chars_format::fixed, 2).ptr;
  };
  for (auto _ : state) {
    double sum = 0;
    char* at = texts.data();
    for (std::size_t i = 0; i < amounts.size(); ++i) {
      at = put(at, amounts[i] * weights[i]);
      at = put(at, sum += amounts[i]);
    }
    benchmark::DoNotOptimize(at);
    benchmark::ClobberMemory();
  }
}

}  // namespace

void registerRecompute(const std::string& path) {
  const auto ms = benchmark::kMillisecond;
  benchmark::RegisterBenchmark("recompute two fields that stay", recomputeUnchanged, path)
      ->Unit(ms);
  benchmark::RegisterBenchmark("recompute two fields that change", recomputeChanged, path)
      ->Unit(ms);
  benchmark::RegisterBenchmark("  two columns of numbers as text", columnsOnly, path)->Unit(ms);
}

}  // namespace tabelion
