// A report on one field of every type that has one, with the values that make_records makes.
#include "in_process.h"

#include "engine/schema_places.h"
#include "query/report.h"

namespace tabelion {
namespace {

void report(benchmark::State& state, const Database& database, int slot,
            const QuerySettings& settings) {
  for (auto _ : state) {
    const std::string text = runReport(database, slot, settings);
    benchmark::DoNotOptimize(text.data());
  }
}

}  // namespace

void registerReport(const Database& database) {
  QuerySettings settings;
  settings.formats = matchingSettings(LocaleInfo{});
  for (const int slot : reportFields(database.schema)) {
    const std::string name =
        "report on " + fieldName(database.schema.fields[static_cast<std::size_t>(slot)]);
    benchmark::RegisterBenchmark(name.c_str(), report, std::cref(database), slot, settings)
        ->Unit(benchmark::kMillisecond);
  }
  // A locale whose two-digit years and 24-hour times do not read back as they are shown.
  LocaleInfo locale;
  locale.short_date_pattern = "dd/MM/yy";
  locale.time_pattern = "h:mm:ss";
  settings.formats = makeFormatSettings({}, locale);
  for (const int slot : reportFields(database.schema)) {
    const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
    if (field.type != FieldType::kDate && field.type != FieldType::kTime) continue;
    const std::string name = "report on " + fieldName(field) + ", read from its text";
    benchmark::RegisterBenchmark(name.c_str(), report, std::cref(database), slot, settings)
        ->Unit(benchmark::kMillisecond);
  }
}

}  // namespace tabelion
