#include "cli/kit/text_bars.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cli/kit/text_table.h"
#include "interchange/charts/chart_labels.h"
#include "query/number_text.h"

namespace tabelion {
namespace {

constexpr int kLeastBar = 10;
constexpr int kWidestLabel = 30;
constexpr std::size_t kMostTotalRows = 12;
constexpr int kMostDayRows = 31;
constexpr int kMostMonthRows = 36;
constexpr int kMonthsPerYear = 12;
constexpr int kEighths = 8;

struct TextBar {
  std::string label;
  double value = 0;
  std::string value_text;
};

int columnsOf(std::string_view text) {
  return static_cast<int>(terminalWidth(text));
}

class BarWriter {
 public:
  explicit BarWriter(const TerminalForm& terminal) : terminal_(terminal) {}

  void put(const std::string& caption, const std::vector<TextBar>& bars) {
    if (!text_.empty()) text_ += '\n';
    text_ += caption + '\n';
    int label_width = 0;
    int value_width = 0;
    double least = 0;
    double most = 0;
    for (const TextBar& bar : bars) {
      label_width = std::max(label_width, columnsOf(bar.label));
      value_width = std::max(value_width, columnsOf(bar.value_text));
      least = std::min(least, bar.value);
      most = std::max(most, bar.value);
    }
    label_width = std::min(label_width, kWidestLabel);
    const int room = std::max(kLeastBar, terminal_.columns - label_width - value_width - 4);
    for (const TextBar& bar : bars) putBar(bar, label_width, room, least, most);
  }
  void say(const std::string& line) { text_ += line + '\n'; }
  std::string take() { return std::move(text_); }

 private:
  // Bars of negative values end where those of others begin.
  void putBar(const TextBar& bar, int label_width, int room, double least, double most) {
    const int least_room = least < 0 ? 1 : 0;
    const int zero =
        std::max(least_room, static_cast<int>(std::round(partOf(0, least, most) * room)));
    const int end = static_cast<int>(std::round(partOf(bar.value, least, most) * room * kEighths));
    const std::string label = cutToWidth(bar.label, static_cast<std::size_t>(label_width));
    text_ += "  ";
    text_.append(static_cast<std::size_t>(label_width - columnsOf(label)), ' ');
    text_ += label + ' ';
    const int whole = end / kEighths;
    if (bar.value < 0) {
      const int from = std::min(whole, zero - 1);
      text_.append(static_cast<std::size_t>(from), ' ');
      for (int i = from; i < zero; ++i) text_ += full();
    } else {
      text_.append(static_cast<std::size_t>(zero), ' ');
      for (int i = zero; i < whole; ++i) text_ += full();
      if (whole >= zero) text_ += part(end % kEighths, bar.value > 0 && whole == zero);
    }
    text_ += (bar.value == 0 ? "" : " ") + bar.value_text + '\n';
  }
  const char* full() const { return terminal_.shows_blocks ? "█" : "#"; }
  // Something is seen of whatever there is.
  std::string part(int eighths, bool is_all) const {
    constexpr const char* kParts[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
    if (!terminal_.shows_blocks) return eighths >= kEighths / 2 || is_all ? "#" : "";
    return kParts[is_all ? std::max(1, eighths) : eighths];
  }

  const TerminalForm& terminal_;
  std::string text_;
};

TextBar countBar(std::string label, std::uint32_t count) {
  return {std::move(label), static_cast<double>(count), std::to_string(count)};
}

std::vector<TextBar> rangeBars(const Histogram& histogram, const NumberScale& scale) {
  std::vector<TextBar> bars;
  for (std::size_t i = 0; i < histogram.counts.size(); ++i) {
    const double from = histogram.bound(i);
    const std::string label = histogram.centered
                                  ? scale.text(from + 0.5, 1)
                                  : scale.text(from, histogram.width) + " to " +
                                        scale.text(histogram.bound(i + 1), histogram.width);
    bars.push_back(countBar(label, histogram.counts[i]));
  }
  return bars;
}

void putNumbers(BarWriter& writer, const ReportPicture& picture, const ChartTexts& texts) {
  const NumberScale scale = rangeScale(picture.histogram, texts);
  writer.put(kRangesCaption + scale.unit(), rangeBars(picture.histogram, scale));
  const RunningTotals& totals = picture.totals;
  const std::size_t rows = std::min(kMostTotalRows, totals.stretches.size());
  std::vector<TextBar> bars;
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t stretch = (row + 1) * totals.stretches.size() / rows - 1;
    const double total = totals.stretches[stretch].last;
    bars.push_back({fmt::format("after {}", totals.recordsAt(stretch, picture.records)), total,
                    numberText(total, picture.decimals, texts.formats.choices.decimal_comma)});
  }
  if (rows > 0) writer.put(kTotalsCaption, bars);
}

void putDates(BarWriter& writer, const ReportPicture& picture, const ChartTexts& texts) {
  const std::uint32_t first = picture.days.front().day;
  const auto monthOf = [](std::uint32_t day) {
    const CalendarDate date = dateOfDayCount(day);
    return date.year * kMonthsPerYear + date.month - 1;
  };
  const int first_month = monthOf(first);
  const int months = monthOf(picture.days.back().day) - first_month + 1;
  const bool by_day = picture.days.back().day - first < static_cast<std::uint32_t>(kMostDayRows);
  if (!by_day && months > kMostMonthRows) {
    const Histogram years = yearsOf(picture.days);
    return writer.put(kYearsCaption, rangeBars(years, NumberScale{}));
  }
  std::vector<TextBar> bars;
  const std::uint32_t rows =
      by_day ? picture.days.back().day - first + 1 : static_cast<std::uint32_t>(months);
  std::vector<std::uint32_t> counts(rows);
  for (const DayCount& day : picture.days) {
    counts[by_day ? day.day - first : static_cast<std::uint32_t>(monthOf(day.day) - first_month)] +=
        day.count;
  }
  for (std::uint32_t i = 0; i < rows; ++i) {
    const int month = first_month + static_cast<int>(i);
    bars.push_back(countBar(by_day ? dayText(first + i, texts)
                                   : fmt::format("{} {}", monthName(month % kMonthsPerYear + 1),
                                                 month / kMonthsPerYear),
                            counts[i]));
  }
  writer.put(by_day ? kDaysCaption : kMonthsCaption, bars);
}

void putHours(BarWriter& writer, const ReportPicture& picture, const ChartTexts& texts) {
  std::vector<TextBar> bars;
  for (std::size_t hour = 0; hour < kHoursPerDay; ++hour) {
    bars.push_back(countBar(hourText(hour, texts), picture.hours[hour]));
  }
  writer.put(kHoursCaption, bars);
}

void putItems(BarWriter& writer, const ReportPicture& picture, const ChartTexts& texts) {
  std::vector<TextBar> bars;
  for (const ItemCount& item : picture.items) {
    bars.push_back({texts.encoding.toUtf8(item.text), static_cast<double>(item.count),
                    fmt::format("{} ({})", item.count, percentText(item.count, picture.records))});
  }
  writer.put("Records", bars);
}

}  // namespace

std::string reportPictureAsBars(const ReportPicture& picture, const ChartTexts& texts,
                                const TerminalForm& terminal) {
  if (const std::string nothing = nothingText(picture); !nothing.empty()) return nothing + '\n';
  BarWriter writer(terminal);
  switch (picture.kind) {
    case PictureKind::kNumbers:
      putNumbers(writer, picture, texts);
      break;
    case PictureKind::kDates:
      putDates(writer, picture, texts);
      break;
    case PictureKind::kTimes:
      putHours(writer, picture, texts);
      break;
    case PictureKind::kChecks:
    case PictureKind::kItems:
      putItems(writer, picture, texts);
      break;
    case PictureKind::kNone:
      break;
  }
  if (picture.kind == PictureKind::kDates && picture.without > 0) {
    writer.say(fmt::format("Without a date: {}", picture.without));
  } else if (picture.kind == PictureKind::kTimes && picture.without > 0) {
    writer.say(fmt::format("Without a time: {}", picture.without));
  }
  if (picture.histogram.boundless > 0) {
    writer.say(fmt::format("Too large to be drawn: {}", picture.histogram.boundless));
  }
  return writer.take();
}

}  // namespace tabelion
