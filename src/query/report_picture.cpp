#include "query/report_picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include "engine/schema_places.h"
#include "query/report_pass.h"

namespace tabelion {
namespace {

constexpr double kFewestRanges = 5;
constexpr double kMostRanges = 30;
// Values that lie closer together than this part of themselves are one value.
constexpr double kOneValue = 1e-9;
constexpr double kNearlyNothing = 1e-300;
// What a quotient of two decimals may miss a whole number by.
constexpr double kSlack = 1e-9;
constexpr std::uint32_t kDenseDays = 400000;
constexpr double kSecondsPerHour = 3600;

struct Extent {
  double least = 0;
  double most = 0;
  std::size_t count = 0;  // of numbers that have bounds
};

Extent extentOf(std::span<const double> values) {
  Extent extent;
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    if (extent.count++ == 0) extent.least = extent.most = value;
    extent.least = std::min(extent.least, value);
    extent.most = std::max(extent.most, value);
  }
  return extent;
}

// How many whole widths lie between; in halves, so that no difference is too large.
double widthsBetween(double from, double to, double width) {
  return std::floor((to / 2 - from / 2) / (width / 2) + kSlack);
}

// The ranges without their counts.
Histogram rangesOver(const Extent& extent, bool whole) {
  Histogram ranges;
  const double size = std::max(std::fabs(extent.least), std::fabs(extent.most));
  const double wanted = std::clamp(std::ceil(2 * std::sqrt(static_cast<double>(extent.count))),
                                   kFewestRanges, kMostRanges);
  const double raw = (extent.most / 2 - extent.least / 2) / wanted * 2;
  const bool is_one_value = raw <= size * kOneValue || size < kNearlyNothing;
  double beside = 0;  // ranges on both sides of what there is
  if (is_one_value) {
    ranges.width = size < kNearlyNothing ? 1 : roundStep(size / 20);
    beside = 2;
  } else {
    ranges.width = roundStep(raw);
  }
  if (whole) ranges.width = is_one_value ? 1 : std::max(1.0, ranges.width);
  ranges.centered = whole && ranges.width == 1;
  ranges.first = ranges.centered ? extent.least - 0.5
                                 : std::floor(extent.least / ranges.width + kSlack) * ranges.width;
  // A round bound may lie below all numbers that there are.
  if (!std::isfinite(ranges.first)) ranges.first = extent.least;
  const double count = widthsBetween(ranges.first, extent.most, ranges.width) + 1 + 2 * beside;
  ranges.first -= beside * ranges.width;
  ranges.counts.resize(static_cast<std::size_t>(count));
  return ranges;
}

std::vector<DayCount> countedDays(std::span<const double> values) {
  std::vector<std::uint32_t> days;
  days.reserve(values.size());
  for (const double value : values) {
    if (value > 0) days.push_back(static_cast<std::uint32_t>(value));
  }
  std::vector<DayCount> counted;
  if (days.empty()) return counted;
  const auto [least, most] = std::minmax_element(days.begin(), days.end());
  if (*most - *least < kDenseDays) {
    const std::uint32_t first = *least;
    std::vector<std::uint32_t> counts(*most - first + 1);
    for (const std::uint32_t day : days) ++counts[day - first];
    for (std::uint32_t i = 0; i < counts.size(); ++i) {
      if (counts[i] > 0) counted.push_back({first + i, counts[i]});
    }
    return counted;
  }
  std::sort(days.begin(), days.end());
  for (const std::uint32_t day : days) {
    if (counted.empty() || counted.back().day != day) counted.push_back({day, 0});
    ++counted.back().count;
  }
  return counted;
}

// Finds the item of a stored key: the first that has it.
class ItemFinder {
 public:
  explicit ItemFinder(const FieldRecord& field) {
    for (std::size_t i = 0; i < field.items.size(); ++i) {
      keys_.push_back({popupKey(field.items[i].valueKey()), i});
    }
    std::stable_sort(keys_.begin(), keys_.end(),
                     [](const Key& a, const Key& b) { return a.bytes < b.bytes; });
  }
  std::optional<std::size_t> operator()(ByteView value) const {
    const PopupKey key = popupKey(value);
    const auto found =
        std::lower_bound(keys_.begin(), keys_.end(), key,
                         [](const Key& a, const PopupKey& wanted) { return a.bytes < wanted; });
    if (found == keys_.end() || found->bytes != key) return std::nullopt;
    return found->item;
  }

 private:
  struct Key {
    PopupKey bytes{};
    std::size_t item = 0;
  };
  std::vector<Key> keys_;
};

ReportPicture itemPicture(const Database& database, int slot, const RecordFilter& filter) {
  ReportPicture picture;
  picture.kind = PictureKind::kItems;
  const FieldRecord& field = database.fields[static_cast<std::size_t>(slot)];
  const ItemFinder itemOf(field);
  std::vector<std::uint32_t> counts(field.items.size());
  std::uint32_t without = 0;
  std::uint32_t masked = 0;
  forEachReportValue(database, slot, filter, [&](ByteView value, bool is_masked) {
    ++picture.records;
    if (is_masked) {
      ++masked;
    } else if (const auto item = value.empty() ? std::nullopt : itemOf(value)) {
      ++counts[*item];
    } else {
      ++without;
    }
  });
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (counts[i] > 0) picture.items.push_back({field.items[i].text, counts[i]});
  }
  std::stable_sort(picture.items.begin(), picture.items.end(),
                   [](const ItemCount& a, const ItemCount& b) { return a.count > b.count; });
  if (without > 0) picture.items.push_back({std::string(kNoValueText), without});
  if (masked > 0) picture.items.push_back({"Enciphered", masked});
  return picture;
}

void putChecks(ReportPicture& picture, const ReportFigures& figures) {
  picture.kind = PictureKind::kChecks;
  picture.items = {{"Checked", static_cast<std::uint32_t>(figures.checked)},
                   {"Not Checked", static_cast<std::uint32_t>(figures.count - figures.checked)}};
}

void putNumbers(ReportPicture& picture, std::span<const double> values, bool whole, int decimals) {
  picture.kind = PictureKind::kNumbers;
  picture.decimals = decimals;
  picture.histogram = histogramOf(values, whole);
  picture.totals = runningTotalsOf(values);
}

void putDays(ReportPicture& picture, std::span<const double> values) {
  picture.kind = PictureKind::kDates;
  picture.days = countedDays(values);
  picture.without = picture.records;
  for (const DayCount& day : picture.days) picture.without -= day.count;
}

void putHours(ReportPicture& picture, std::span<const double> values) {
  picture.kind = PictureKind::kTimes;
  for (const double seconds : values) {
    const double hour = seconds / kSecondsPerHour;
    if (hour >= 0 && hour < static_cast<double>(kHoursPerDay)) {
      ++picture.hours[static_cast<std::size_t>(hour)];
    } else {
      ++picture.without;
    }
  }
}

}  // namespace

double roundStep(double least) {
  const double exponent = std::floor(std::log10(least));
  for (const double digit : {1.0, 2.0, 5.0, 10.0}) {
    // A negative power is a divisor, so that 0.3 is the nearest number to three tenths.
    const double step =
        exponent < 0 ? digit / std::pow(10, -exponent) : digit * std::pow(10, exponent);
    if (step >= least * (1 - kSlack) && std::isfinite(step) && step > 0) return step;
  }
  return least;
}

Histogram histogramOf(std::span<const double> values, bool whole) {
  Histogram histogram;
  const Extent extent = extentOf(values);
  if (extent.count > 0) histogram = rangesOver(extent, whole);
  histogram.boundless = static_cast<std::uint32_t>(values.size() - extent.count);
  const double last = static_cast<double>(histogram.counts.size()) - 1;
  for (const double value : values) {
    if (!std::isfinite(value)) continue;
    const double range = widthsBetween(histogram.first, value, histogram.width);
    ++histogram.counts[static_cast<std::size_t>(std::clamp(range, 0.0, last))];
  }
  return histogram;
}

RunningTotals runningTotalsOf(std::span<const double> values) {
  RunningTotals totals;
  totals.planned = std::min(values.size(), kMostTotals);
  double sum = 0;
  std::size_t record = 0;
  for (std::size_t i = 0; i < totals.planned; ++i) {
    const std::size_t end = totals.recordsAt(i, values.size());
    sum += values[record++];
    if (!std::isfinite(sum)) return totals;
    TotalsStretch stretch{sum, sum, sum};
    for (; record < end; ++record) {
      sum += values[record];
      if (!std::isfinite(sum)) break;
      stretch.least = std::min(stretch.least, sum);
      stretch.most = std::max(stretch.most, sum);
      stretch.last = sum;
    }
    totals.stretches.push_back(stretch);
    if (!std::isfinite(sum)) return totals;
  }
  return totals;
}

PicturedReport picturedReport(const Database& database, int slot, const QuerySettings& settings,
                              const LinkFilter* link) {
  PicturedReport report;
  if (!isSlot(slot)) return report;
  const FieldDefinition& field = database.schema.fields[static_cast<std::size_t>(slot)];
  if (field.type == FieldType::kPopup) {
    report.picture = itemPicture(database, slot, RecordFilter(database, settings, link));
    return report;
  }
  std::vector<double> values;
  values.reserve(database.records.count());
  report.figures = reportFigures(database, slot, settings, link, &values);
  ReportPicture& picture = report.picture;
  picture.records = static_cast<std::uint32_t>(report.figures.count);
  switch (traitsOf(report.figures.type).report) {
    case ReportKind::kWholeNumbers:
      putNumbers(picture, values, true, 0);
      break;
    case ReportKind::kNumbers:
      putNumbers(picture, values, false, reportDecimals(field));
      break;
    case ReportKind::kChecks:
      putChecks(picture, report.figures);
      break;
    case ReportKind::kDates:
      putDays(picture, values);
      break;
    case ReportKind::kTimes:
      putHours(picture, values);
      break;
    case ReportKind::kNone:
      break;
  }
  return report;
}

std::vector<int> popupFields(const DatabaseRecord& schema) {
  std::vector<int> slots;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    if (schema.fields[static_cast<std::size_t>(slot)].type == FieldType::kPopup)
      slots.push_back(slot);
  }
  return slots;
}

}  // namespace tabelion
