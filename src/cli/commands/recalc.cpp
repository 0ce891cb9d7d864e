// recalc: every calculated field of every record anew.

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/commands/recompute_step.h"
#include "cli/kit/context.h"
#include "cli/kit/json_output.h"
#include "engine/schema_places.h"

namespace tabelion {
namespace {

struct RecalcOptions {
  std::string file;
  bool json = false;
};

// Records that are moved take their bytes along.
std::vector<const std::uint8_t*> orderOf(const Database& database) {
  std::vector<const std::uint8_t*> order;
  order.reserve(database.records.count());
  for (const Record& record : database.records) order.push_back(record.bytes().data());
  return order;
}

nlohmann::ordered_json figuresJson(const RecomputeOutcome& outcome, const Database& database,
                                   const TextEncoding& encoding) {
  nlohmann::ordered_json json = versionedJson();
  json["records_changed"] = outcome.summary.records;
  json["values_changed"] = outcome.summary.values;
  json["records_outside_filter"] = outcome.summary.outside;
  json["corrupt_formulas"] = nlohmann::ordered_json::array();
  for (const CorruptField& field : outcome.corrupt) {
    const auto slot = static_cast<std::size_t>(field.slot);
    json["corrupt_formulas"].push_back(
        {{"field", encoding.toUtf8(fieldName(database.schema.fields[slot]))},
         {"first_record", field.first_position + 1},
         {"records", field.values}});
  }
  return json;
}

std::string counted(std::uint64_t count, std::string_view what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string figuresText(const RecomputeSummary& summary) {
  std::string text = fmt::format("{} changed in {}", counted(summary.values, "value"),
                                 counted(summary.records, "record"));
  if (summary.outside > 0) {
    text +=
        fmt::format("; {} outside the filter left as they are", counted(summary.outside, "record"));
  }
  return text;
}

ExitCode runRecalc(const RecalcOptions& options, CliContext& context) {
  const bool piped = options.file == kPipe;
  if (piped && options.json) {
    return context.fail(
        {ErrorKind::kRefused, "-: the database goes to standard output, where --json would go"});
  }
  ExitCode failure{};
  const auto opened = context.openToChange(options.file, failure);
  if (!opened) return failure;
  Database& database = *opened->database;
  const TextEncoding& encoding = opened->encoding;

  const bool was_sorted = isDirty(database);  // when it was opened: its order was stale
  const auto order = orderOf(database);
  const RecomputeOutcome outcome = recomputeRecords(context, encoding, database);
  const bool changed = was_sorted || outcome.summary.records > 0 || order != orderOf(database);
  if (changed || piped) {
    const ExitCode saved = context.save(database);
    if (saved != ExitCode::kDone) return saved;
  }
  if (piped) {
    context.say(figuresText(outcome.summary));
  } else if (options.json) {
    putJson(context.out, figuresJson(outcome, database, encoding));
  } else {
    context.out.put(figuresText(outcome.summary) + "\n");
  }
  const ExitCode written = changed ? context.finishAfterSave(options.file) : context.finishOutput();
  sayCorrupt(context, options.file, encoding, database, outcome);
  return written == ExitCode::kDone && !outcome.corrupt.empty() ? ExitCode::kDamaged : written;
}

}  // namespace

CommandBody declareRecalc(OptionList list) {
  const auto options = std::make_shared<RecalcOptions>();
  list.required("FILE", options->file, "The database");
  list.flag("--json", options->json, "The figures as JSON");
  return [options](CliContext& context) { return runRecalc(*options, context); };
}

}  // namespace tabelion
