// The wording of reports.
#include <algorithm>

#include <fmt/format.h>

#include "engine/schema_places.h"
#include "query/date_text.h"
#include "query/formula.h"
#include "query/number_text.h"
#include "query/report.h"
#include "query/time_text.h"

namespace tabelion {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

// The texts of both kinds of numbers; `number` makes a figure's text, with its line's tabs.
template <class Numbers, class Text>
std::string numberLines(std::int64_t count, const Numbers& numbers, const char* wide_tab,
                        Text number) {
  return fmt::format(
      "Number of Entries:\r\n\t{}\r\n"
      "Minimum Value:\r\n\t{}\r\n"
      "Maximum Value:\r\n\t{}\r\n"
      "Sum:\r\n{}{}\r\n"
      "Minimum Total:\r\n\t{}\r\n"
      "Maximum Total:\r\n\t{}\r\n"
      "Average:\r\n{}{}",
      count, number(numbers.minimum), number(numbers.maximum), wide_tab, number(numbers.sum),
      number(numbers.least_total), number(numbers.most_total), wide_tab, number(numbers.average));
}

std::string integerLines(const ReportFigures& figures) {
  return numberLines(figures.count, figures.whole, "\t\t",
                     [](std::int64_t value) { return value; });
}

std::string floatLines(const ReportFigures& figures, const FieldDefinition& field,
                       const FormatSettings& formats) {
  const int decimals = reportDecimals(field);
  return numberLines(figures.count, figures.real, "\t", [&](double value) {
    return numberText(value, decimals, formats.choices.decimal_comma);
  });
}

std::string checkLines(const ReportFigures& figures, const FormatSettings& formats) {
  const double part = figures.count == 0 ? 0
                                         : static_cast<double>(figures.checked) /
                                               static_cast<double>(figures.count) * 100.0;
  std::string percentages = fmt::format(
      "Percentage Checked:\r\n\t{:5.2f}\r\n"
      "Percentage Not-Checked:\r\n\t{:5.2f}\r\n",
      part, 100.0 - part);
  if (formats.choices.decimal_comma) std::replace(percentages.begin(), percentages.end(), '.', ',');
  return fmt::format(
             "Number of Entries:\r\n\t{}\r\n"
             "Items Checked:\r\n\t{}\r\n"
             "Items Not-Checked:\r\n\t{}\r\n",
             figures.count, figures.checked, figures.count - figures.checked) +
         percentages;
}

std::string dateLines(const ReportFigures& figures, const FormatSettings& formats) {
  const auto text = [&](std::int64_t day) {
    return dateText(static_cast<std::uint32_t>(day), formats);
  };
  const std::int64_t spanned =
      figures.count == 0 ? 0 : figures.whole.maximum - figures.whole.minimum;
  return fmt::format(
      "Number of Entries:\r\n\t{}\r\n"
      "Minimum Value:\r\n\t{}\r\n"
      "Maximum Value:\r\n\t{}\r\n"
      "Days Spanned:\r\n\t{}",
      figures.count, text(figures.whole.minimum), text(figures.whole.maximum), spanned);
}

std::string timeLines(const ReportFigures& figures, const FormatSettings& formats) {
  const auto text = [&](std::int64_t seconds) {
    const auto byte = [](std::int64_t value) { return static_cast<std::uint8_t>(value); };
    return timeText({byte(seconds % 60), byte(seconds / 60 % 60), byte(seconds / 3600), 0},
                    formats);
  };
  std::string lines = fmt::format(
      "Number of Entries:\r\n\t{}\r\n"
      "Minimum Value:\r\n\t{}\r\n"
      "Maximum Value:\r\n\t{}\r\n"
      "Average Time:\r\n\t{}\r\n",
      figures.count, text(figures.whole.minimum), text(figures.whole.maximum),
      text(figures.whole.average));
  const std::int64_t days = figures.whole.sum / kSecondsPerDay;
  // Compat: a total of less than a day stands on its label's line (Report.TimesAndTheirTotal).
  lines += days == 0 ? "Total Time:\t" : fmt::format("Total Time:\r\n\t{} Day(s), ", days);
  lines += text(figures.whole.sum % kSecondsPerDay);
  return lines;
}

}  // namespace

int reportDecimals(const FieldDefinition& field) {
  return field.type == FieldType::kCalculated ? resultDecimals(storedFormula(field).result_kind)
                                              : fieldDecimals(field);
}

std::string reportText(const ReportFigures& figures, const FieldDefinition& field,
                       const FormatSettings& formats) {
  const std::string title = fmt::format("Report for {}\r\n", fieldName(field));
  switch (traitsOf(figures.type).report) {
    case ReportKind::kWholeNumbers:
      return title + integerLines(figures);
    case ReportKind::kNumbers:
      return title + floatLines(figures, field, formats);
    case ReportKind::kChecks:
      return title + checkLines(figures, formats);
    case ReportKind::kDates:
      return title + dateLines(figures, formats);
    case ReportKind::kTimes:
      return title + timeLines(figures, formats);
    case ReportKind::kNone:
      break;
  }
  return {};
}

}  // namespace tabelion
