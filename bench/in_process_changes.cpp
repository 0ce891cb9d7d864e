// What it costs to be able to take a change back: the same change as a step of a history and
// without one, turn by turn, on records that lie anywhere in memory. Beside it, what the bytes that
// a step keeps cost in any case: taking memory for them and copying.
#include <ctime>
#include <memory>
#include <string>

#include "engine/packed_record.h"
#include "in_process.h"
#include "platform/std/std_clock.h"
#include "platform/std/std_files.h"
#include "services/changes/record_steps.h"

namespace tabelion {
namespace {

constexpr std::uint32_t kRecordsPerTurn = 256;

// Processor time, so that who else uses the machine does not count.
class Stopwatch {
 public:
  explicit Stopwatch(double& seconds) : seconds_(seconds) {}
  ~Stopwatch() { seconds_ += static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC; }

 private:
  double& seconds_;
  std::clock_t start_ = std::clock();
};

struct OpenedFile {
  explicit OpenedFile(const std::string& path) {
    database.path = path;
    opened = openDatabase(database, engine) == 1;
  }
  StdFiles files;
  StdClock clock;
  Engine engine{.files = files, .clock = clock, .random = [] { return 1u; }};
  Database database;
  bool opened = false;
};

void recordedStep(benchmark::State& state, const std::string& path) {
  const auto file = std::make_unique<OpenedFile>(path);
  if (!file->opened) return state.SkipWithError("cannot be opened");
  Database& database = file->database;
  RecordStore& records = database.records;
  History history;
  std::uint32_t current = 0;
  const ChangeTarget target{database, current};
  std::uint32_t at = 0;
  struct Planned {
    std::uint32_t position;
    Bytes bytes;
  };
  std::vector<Planned> turn;
  const auto plan = [&] {  // records far from each other, each a little changed
    turn.clear();
    for (std::uint32_t i = 0; i < kRecordsPerTurn; ++i) {
      at = (at + 7919) % records.count();
      const ByteView record = records[at].bytes();
      turn.push_back({at, Bytes(record.begin(), record.end())});
      turn.back().bytes[1] ^= 1;
    }
  };
  double plain = 0;
  double recorded = 0;
  double bytes_alone = 0;
  for (auto _ : state) {
    plan();
    {
      const Stopwatch time(plain);
      for (const Planned& change : turn) {
        if (records.replace(change.position, change.bytes)) setDirty(database);
      }
    }
    plan();
    {
      const Stopwatch time(recorded);
      for (const Planned& change : turn) {
        ReplaceRecord(history, target, "Edit of record", change.position, change.bytes);
      }
    }
    plan();
    const Stopwatch time(bytes_alone);
    for (const Planned& change : turn) benchmark::DoNotOptimize(Record::copied(change.bytes));
  }
  const double each = 1e9 / (static_cast<double>(state.iterations()) * kRecordsPerTurn);
  state.counters["unrecorded_ns"] = plain * each;
  state.counters["recorded_ns"] = recorded * each;
  state.counters["its_bytes_ns"] = bytes_alone * each;
  state.counters["more_ns"] = (recorded - plain - bytes_alone) * each;
}

// Four or five in ten of all records, in one step; taken back for the next turn.
void deleteWithinFilter(benchmark::State& state, const std::string& path) {
  const auto file = std::make_unique<OpenedFile>(path);
  if (!file->opened) return state.SkipWithError("cannot be opened");
  Database& database = file->database;
  QuerySettings settings;
  settings.formats = matchingSettings(LocaleInfo{});
  setCriterion(database, 0, kWeightSlot, kLowest, kHighestDeleted);
  History history;
  std::uint32_t current = 0;
  const ChangeTarget target{database, current};
  std::size_t deleted = 0;
  for (auto _ : state) {
    deleted = DeleteRecordGroup(history, target, RecordGroup::kWithinFilter, settings);
    rebuildFilterIndex(database, settings);
    state.PauseTiming();
    history.Undo(target);
    history.Clear();
    state.ResumeTiming();
  }
  state.counters["deleted"] = static_cast<double>(deleted);
}

}  // namespace

void registerChanges(const std::string& path) {
  benchmark::RegisterBenchmark("a recorded step, 256 times", recordedStep, path)
      ->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("delete within a filter", deleteWithinFilter, path)
      ->Unit(benchmark::kMillisecond);
}

}  // namespace tabelion
