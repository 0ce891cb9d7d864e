// report: statistics over one field, and a picture of its values.

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cli/command.h"
#include "cli/kit/context.h"
#include "cli/kit/json_output.h"
#include "cli/kit/text_bars.h"
#include "engine/ascii.h"
#include "engine/schema_places.h"
#include "interchange/charts/report_chart.h"
#include "interchange/words/field_choice.h"
#include "query/number_text.h"
#include "query/report_picture.h"

namespace tabelion {
namespace {

using Json = nlohmann::ordered_json;

struct ReportOptions {
  std::string file;
  std::string field;
  std::optional<std::string> chart;  // a file, or kPipe
  bool json = false;
  bool force = false;
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
  return makeError(
      ErrorKind::kRefused,
      fmt::format("\"{}\" is a field of type {}, of which there are no reports{}{}", nameOf(slot),
                  traitsOf(type).name, type == FieldType::kPopup ? ", only pictures (--chart)" : "",
                  names.empty() ? "" : "; there are of " + alternatives(names)));
}

// With the line ends of a terminal.
void putText(OutputBuffer& out, std::string text) {
  std::erase(text, '\r');
  out.put(text);
  if (!text.ends_with('\n')) out.put('\n');
}

// What cannot be asked for: said before anything is opened.
std::string faultOf(const ReportOptions& options) {
  if (!options.chart) return {};
  const std::string& name = *options.chart;
  if (name == kPipe) {
    return options.json ? "--chart - prints bars, which cannot stand in the JSON; name a file" : "";
  }
  constexpr std::string_view kExtension = ".svg";
  const bool is_svg = name.size() > kExtension.size() &&
                      lowerCaseText(name.substr(name.size() - kExtension.size())) == kExtension;
  return is_svg ? ""
                : fmt::format(
                      "\"{}\": the picture is written as SVG; give a name that ends in "
                      ".svg, or - for bars in the terminal",
                      name);
}

Status writeChart(const std::string& path, const std::string& svg, bool force,
                  CliContext& context) {
  if (!force && context.files.info(path).ok()) {
    return makeError(ErrorKind::kRefused, path + ": is already there; --force replaces it");
  }
  const BytePiece piece(reinterpret_cast<const std::uint8_t*>(svg.data()), svg.size());
  const Status written = context.files.replace(path, {&piece, 1});
  if (written.ok()) return written;
  if (written.error().kind != ErrorKind::kWarning) {
    return makeError(ErrorKind::kCannotWrite, written.error().text);
  }
  context.say(written.error().text);
  return Done{};
}

ExitCode runReportCommand(const ReportOptions& options, CliContext& context) {
  if (const std::string fault = faultOf(options); !fault.empty()) {
    context.say(fault);
    return ExitCode::kUsage;
  }
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
  const auto [figures, picture] = picturedReport(*database, *slot, settings);
  const bool has_text = figures.type != FieldType::kUnused;
  const bool has_picture = picture.kind != PictureKind::kNone && options.chart.has_value();
  if (!has_text && (!has_picture || options.json)) {
    Error error = notReported(*database, *encoding, *slot);
    error.text = options.file + ": " + error.text;
    return context.fail(error);
  }
  const FieldDefinition& field = database->schema.fields[static_cast<std::size_t>(*slot)];
  const std::string name = encoding->toUtf8(fieldName(field));
  const ChartTexts texts{settings.formats, *encoding, settings.week_starts_monday};
  if (has_picture && options.chart != kPipe) {
    const std::string title = encoding->toUtf8(areaText(database->header.name)) + ": " + name;
    const Status written = writeChart(*options.chart, reportPictureAsSvg(picture, texts, title),
                                      options.force, context);
    if (!written.ok()) return context.fail(written.error());
  }
  if (options.json) {
    putJson(context.out, figuresJson(figures, field, name));
  } else if (has_text) {
    putText(context.out, encoding->toUtf8(reportText(figures, field, settings.formats)));
  }
  if (options.chart == kPipe) {
    if (has_text) context.out.put('\n');
    context.out.put(reportPictureAsBars(picture, texts, context.streams.terminal));
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
  list.optional("--chart OUT", options->chart,
                "A picture of the values as an SVG file, or - for bars in the terminal");
  list.flag("--force", options->force, "Replace a picture that is there");
  return [options](CliContext& context) { return runReportCommand(*options, context); };
}

}  // namespace tabelion
