// report: statistics over one field.

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/json_output.h"
#include "engine/schema_places.h"
#include "interchange/words/field_choice.h"
#include "query/number_text.h"
#include "query/report.h"

namespace tabelion {
namespace {

using Json = nlohmann::ordered_json;

struct ReportOptions {
  std::string file;
  std::string field;
  bool json = false;
};

Json dateJson(std::int64_t day) {
  if (day <= 0) return nullptr;
  const CalendarDate date = dateOfDayCount(static_cast<std::uint32_t>(day));
  return fmt::format("{:04}-{:02}-{:02}", date.year, date.month, date.day);
}

// `figure` makes of a number what is printed.
template <class Numbers, class Figure>
void putNumbers(Json& json, const Numbers& numbers, Figure figure) {
  json["minimum"] = figure(numbers.minimum);
  json["maximum"] = figure(numbers.maximum);
  json["sum"] = figure(numbers.sum);
  json["minimum_total"] = figure(numbers.least_total);
  json["maximum_total"] = figure(numbers.most_total);
  json["average"] = figure(numbers.average);
}

Json figuresJson(const ReportFigures& figures, const FieldDefinition& field,
                 const std::string& name) {
  Json json = versionedJson();
  json["field"] = name;
  json["reported_as"] = traitsOf(figures.type).name;
  json["records"] = figures.count;
  const ReportNumbers<std::int64_t>& whole = figures.whole;
  switch (traitsOf(figures.type).report) {
    case ReportKind::kWholeNumbers:
      putNumbers(json, whole, [](std::int64_t value) { return value; });
      break;
    case ReportKind::kNumbers:
      // As the report shows them: 0.3, not 0.30000000000000004.
      putNumbers(json, figures.real, [&](double value) {
        return numberOfText(numberText(value, reportDecimals(field), false), false);
      });
      break;
    case ReportKind::kChecks:
      json["checked"] = figures.checked;
      json["not_checked"] = figures.count - figures.checked;
      break;
    case ReportKind::kDates:
      json["minimum"] = dateJson(whole.minimum);
      json["maximum"] = dateJson(whole.maximum);
      json["days_spanned"] = figures.count == 0 ? 0 : whole.maximum - whole.minimum;
      break;
    case ReportKind::kTimes:
      json["minimum_seconds"] = whole.minimum;
      json["maximum_seconds"] = whole.maximum;
      json["average_seconds"] = whole.average;
      json["total_seconds"] = whole.sum;
      break;
    case ReportKind::kNone:
      break;
  }
  return json;
}

Error notReported(const Database& database, const TextEncoding& encoding, int slot) {
  const auto nameOf = [&](int of) {
    return encoding.toUtf8(fieldName(database.schema.fields[static_cast<std::size_t>(of)]));
  };
  std::vector<std::string> names;
  for (const int reported : reportFields(database.schema)) names.push_back(nameOf(reported));
  const FieldType type = database.schema.fields[static_cast<std::size_t>(slot)].type;
  return makeError(ErrorKind::kRefused,
                   fmt::format("\"{}\" is a field of type {}, of which there are no reports{}",
                               nameOf(slot), traitsOf(type).name,
                               names.empty() ? "" : "; there are of " + alternatives(names)));
}

// With the line ends of a terminal.
void putText(OutputBuffer& out, std::string text) {
  std::erase(text, '\r');
  out.put(text);
  if (!text.ends_with('\n')) out.put('\n');
}

ExitCode runReportCommand(const ReportOptions& options, CliContext& context) {
  ExitCode failure{};
  const auto database = context.open(options.file, failure);
  if (!database) return failure;
  const auto encoding = context.encodingOf(*database);
  if (!encoding.ok()) return context.fail(encoding.error());
  const auto slot = chooseField(*database, *encoding, options.field);
  if (!slot.ok()) {
    return context.fail({slot.error().kind, options.file + ": " + slot.error().text});
  }
  const QuerySettings settings = context.querySettings(*encoding);
  const ReportFigures figures = reportFigures(*database, *slot, settings);
  if (figures.type == FieldType::kUnused) {
    Error error = notReported(*database, *encoding, *slot);
    error.text = options.file + ": " + error.text;
    return context.fail(error);
  }
  const FieldDefinition& field = database->schema.fields[static_cast<std::size_t>(*slot)];
  if (options.json) {
    putJson(context.out, figuresJson(figures, field, encoding->toUtf8(fieldName(field))));
  } else {
    putText(context.out, encoding->toUtf8(reportText(figures, field, settings.formats)));
  }
  return context.finishOutput();
}

}  // namespace

CommandBody declareReport(OptionList list) {
  const auto options = std::make_shared<ReportOptions>();
  list.required("FILE", options->file, "The database");
  list.required("FIELD", options->field,
                "The field: an integer, float, check box, date, time or calculated one");
  list.flag("--json", options->json, "The figures as JSON");
  return [options](CliContext& context) { return runReportCommand(*options, context); };
}

}  // namespace tabelion
