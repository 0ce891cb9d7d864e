// What pictures show, said in sentences.
#include <fmt/format.h>

#include <algorithm>

#include "interchange/charts/chart_labels.h"
#include "query/number_text.h"

namespace tabelion {
namespace {

constexpr std::size_t kMostNamed = 12;  // items, before the rest is summed up

std::string recordsText(std::uint64_t count) {
  return fmt::format("{} {}", count, count == 1 ? "record" : "records");
}

std::string rangeText(const Histogram& histogram, std::size_t range, const ChartTexts& texts) {
  const NumberScale scale = rangeScale(histogram, texts);
  const double from = histogram.bound(range);
  if (histogram.centered) return scale.text(from + 0.5, 1) + scale.unit();
  return scale.text(from, histogram.width) + " to " +
         scale.text(histogram.bound(range + 1), histogram.width) + scale.unit();
}

std::string numberWords(const ReportPicture& picture, const ChartTexts& texts) {
  const Histogram& histogram = picture.histogram;
  const auto number = [&](double value) {
    return numberText(value, picture.decimals, texts.formats.choices.decimal_comma);
  };
  const auto most = std::max_element(histogram.counts.begin(), histogram.counts.end());
  const auto range = static_cast<std::size_t>(most - histogram.counts.begin());
  std::string words = fmt::format("{} by value; most often {}: {}.", recordsText(picture.records),
                                  rangeText(histogram, range, texts), *most);
  if (histogram.boundless > 0) {
    words += fmt::format(" {} too large to be drawn.", recordsText(histogram.boundless));
  }
  const RunningTotals& totals = picture.totals;
  if (totals.stretches.empty()) return words;
  double least = totals.stretches.front().least;
  double largest = totals.stretches.front().most;
  for (const TotalsStretch& stretch : totals.stretches) {
    least = std::min(least, stretch.least);
    largest = std::max(largest, stretch.most);
  }
  return words + fmt::format(" The running total lies between {} and {} and ends at {}.",
                             number(least), number(largest), number(totals.stretches.back().last));
}

std::string dateWords(const ReportPicture& picture, const ChartTexts& texts) {
  const auto most =
      std::max_element(picture.days.begin(), picture.days.end(),
                       [](const DayCount& a, const DayCount& b) { return a.count < b.count; });
  std::string words = fmt::format(
      "{} from {} to {}; most on {}: {}.", recordsText(picture.records - picture.without),
      dayText(picture.days.front().day, texts), dayText(picture.days.back().day, texts),
      dayText(most->day, texts), most->count);
  if (picture.without > 0) {
    words += fmt::format(" {} without a date.", recordsText(picture.without));
  }
  return words;
}

std::string timeWords(const ReportPicture& picture, const ChartTexts& texts) {
  const auto most = std::max_element(picture.hours.begin(), picture.hours.end());
  const auto hour = static_cast<std::size_t>(most - picture.hours.begin());
  std::string words = fmt::format("{} by hour; most from {} to {}: {}.",
                                  recordsText(picture.records - picture.without),
                                  hourText(hour, texts), hourText(hour + 1, texts), *most);
  if (picture.without > 0) {
    words += fmt::format(" {} without a time.", recordsText(picture.without));
  }
  return words;
}

std::string itemWords(const ReportPicture& picture, const ChartTexts& texts) {
  std::string words = recordsText(picture.records) + ".";
  std::uint64_t rest = 0;
  for (std::size_t i = 0; i < picture.items.size(); ++i) {
    const ItemCount& item = picture.items[i];
    if (i >= kMostNamed) {
      rest += item.count;
      continue;
    }
    words += fmt::format(" {}: {}, {}.", texts.encoding.toUtf8(item.text), item.count,
                         percentText(item.count, picture.records));
  }
  if (rest > 0) {
    words += fmt::format(" {} more: {}.", picture.items.size() - kMostNamed, rest);
  }
  return words;
}

}  // namespace

std::string reportPictureInWords(const ReportPicture& picture, const ChartTexts& texts) {
  if (const std::string nothing = nothingText(picture); !nothing.empty()) return nothing + ".";
  switch (picture.kind) {
    case PictureKind::kNumbers:
      return numberWords(picture, texts);
    case PictureKind::kDates:
      return dateWords(picture, texts);
    case PictureKind::kTimes:
      return timeWords(picture, texts);
    case PictureKind::kChecks:
    case PictureKind::kItems:
      return itemWords(picture, texts);
    case PictureKind::kNone:
      break;
  }
  return {};
}

}  // namespace tabelion
