// A report on one field of every type that has one, with the values that make_records makes, and
// the same with its picture, worked out and painted.
#include "in_process.h"

#include "engine/schema_places.h"
#include "interchange/charts/report_chart.h"
#include "query/report_picture.h"

namespace tabelion {
namespace {

void report(benchmark::State& state, const Database& database, int slot,
            const QuerySettings& settings) {
  for (auto _ : state) {
    const std::string text = runReport(database, slot, settings);
    benchmark::DoNotOptimize(text.data());
  }
}

// Forgets what is painted.
class NoPainter final : public CanvasPainter {
 public:
  void fill(const Rect& area, Color) override { benchmark::DoNotOptimize(area.x); }
  void line(Point from, Point, Color, int) override { benchmark::DoNotOptimize(from.x); }
  void text(const Rect& area, const std::u16string&, Color, TextWeight, TextSide) override {
    benchmark::DoNotOptimize(area.x);
  }
  Scheme scheme() const override { return Scheme::kLight; }
};

void picturedReportOn(benchmark::State& state, const Database& database, int slot,
                      const QuerySettings& settings) {
  const TextEncoding encoding = databaseEncoding(database, {});
  const ChartTexts texts{settings.formats, encoding};
  const TextRoom room{[](const std::u16string& text) { return static_cast<int>(text.size()) * 7; },
                      15};
  NoPainter painter;
  for (auto _ : state) {
    const PicturedReport report = picturedReport(database, slot, settings);
    const std::string text = reportText(
        report.figures, database.schema.fields[static_cast<std::size_t>(slot)], settings.formats);
    benchmark::DoNotOptimize(text.data());
    paintReportPicture(painter, {590, 500}, report.picture, texts, room);
  }
}

void registerPictures(const Database& database, const QuerySettings& settings) {
  std::vector<int> slots = reportFields(database.schema);
  const std::vector<int> popups = popupFields(database.schema);
  slots.insert(slots.end(), popups.begin(), popups.end());
  for (const int slot : slots) {
    const std::string name = "report with its picture on " +
                             fieldName(database.schema.fields[static_cast<std::size_t>(slot)]);
    benchmark::RegisterBenchmark(name.c_str(), picturedReportOn, std::cref(database), slot,
                                 settings)
        ->Unit(benchmark::kMillisecond);
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
  registerPictures(database, settings);
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
