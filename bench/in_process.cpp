// What the window feels like, without the window: opening, laying out and reading a database at the
// record limit, in this process. Usage: in_process FILE.PDB [--benchmark_…]
#include "in_process.h"

#include <cstdio>
#include <string>

#include "engine/packed_record.h"
#include "platform/std/std_clock.h"
#include "platform/std/std_files.h"
#include "query/field_text.h"

namespace tabelion {

namespace {

struct Machine {
  StdFiles files;
  StdClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
};

void openFile(benchmark::State& state, const std::string& path) {
  Machine machine;
  for (auto _ : state) {
    Database database;
    database.path = path;
    if (openDatabase(database, machine.engine) != 1) return state.SkipWithError("cannot be opened");
    benchmark::DoNotOptimize(database.records.count());
  }
}

// The layout that a save writes, after one record got bytes of its own.
void layOut(benchmark::State& state, Database& database) {
  for (auto _ : state) {
    FileLayout layout;
    if (!layOutDatabase(database, layout)) return state.SkipWithError("cannot be laid out");
    benchmark::DoNotOptimize(layout.pieces.data());
  }
}

// Every value of every record as the text that a list shows.
void allTexts(benchmark::State& state, const Database& database) {
  const FormatSettings settings = matchingSettings(LocaleInfo{});
  std::string text;
  for (auto _ : state) {
    for (const Record& record : database.records) {
      SlotWalker walker(record.bytes());
      for (std::size_t slot = 0;; ++slot) {
        const auto value = walker.next();
        if (!value) break;
        text.clear();
        appendValueText(text, database.schema.fields[slot], database.fields[slot], *value,
                        settings);
        benchmark::DoNotOptimize(text.data());
      }
    }
  }
}

// One record taken apart, changed, packed and put back. The database is one of its own: its records
// lie anywhere in memory then.
void changeRecord(benchmark::State& state, const std::string& path) {
  Machine machine;
  Database database;
  database.path = path;
  if (openDatabase(database, machine.engine) != 1) return state.SkipWithError("cannot be opened");
  std::uint32_t position = 0;
  Bytes packed;
  for (auto _ : state) {
    UnpackedRecord record = unpackRecord(database.records[position].bytes());
    record.slots[0] = Bytes{'x', 0};
    if (!packRecord(record, packed) || !database.records.replace(position, packed)) {
      return state.SkipWithError("too long");
    }
    position = (position + 1) % database.records.count();
  }
}

int run(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: in_process FILE.PDB [--benchmark_...]\n");
    return 2;
  }
  Machine machine;
  Database database;
  database.path = argv[1];
  if (openDatabase(database, machine.engine) != 1 || database.records.count() == 0) {
    std::fprintf(stderr, "in_process: %s has no records to work with\n", argv[1]);
    return 1;
  }
  const auto ms = benchmark::kMillisecond;
  benchmark::RegisterBenchmark("open", openFile, database.path)->Unit(ms);
  benchmark::RegisterBenchmark("text of every value", allTexts, std::ref(database))->Unit(ms);
  benchmark::RegisterBenchmark("change a record", changeRecord, database.path)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("lay out a save", layOut, std::ref(database))->Unit(ms);
  registerChanges(database.path);
  registerCipher(database.path);
  registerRecompute(database.path);
  registerReport(database);
  registerSearch(database);
  registerSort(database);
  registerSqlite(database);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace
}  // namespace tabelion

int main(int argc, char** argv) {
  return tabelion::run(argc, argv);
}
