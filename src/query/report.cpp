#include "query/report.h"

#include <algorithm>

#include "engine/calendar.h"
#include "engine/schema_places.h"
#include "query/date_text.h"
#include "query/number_text.h"
#include "query/report_pass.h"
#include "query/time_text.h"

namespace tabelion {
namespace {

// Compat: what no value has passed shows as these (Report.ExtremesStartWhereTheyAlwaysDid).
constexpr std::int64_t kFirstMinimum = 2000000;
constexpr std::int64_t kFirstMaximum = -2000000;
constexpr std::int64_t kFirstDayMinimum = 50000;
constexpr std::int64_t kFirstSecondMinimum = 86400;

template <class Number>
class NumberTally {
 public:
  NumberTally() {
    numbers_.minimum = numbers_.least_total = static_cast<Number>(kFirstMinimum);
    numbers_.maximum = numbers_.most_total = static_cast<Number>(kFirstMaximum);
  }
  void add(Number value) {
    ++count_;
    numbers_.minimum = std::min(numbers_.minimum, value);
    numbers_.maximum = std::max(numbers_.maximum, value);
    numbers_.sum += value;
    numbers_.least_total = std::min(numbers_.least_total, numbers_.sum);
    numbers_.most_total = std::max(numbers_.most_total, numbers_.sum);
  }
  std::int64_t count() const { return count_; }
  const ReportNumbers<Number>& numbers() const { return numbers_; }

 private:
  std::int64_t count_ = 0;
  ReportNumbers<Number> numbers_;
};

// Keeps each value as it counted, for whoever wants them.
class CountedValue {
 public:
  explicit CountedValue(std::vector<double>* values) : values_(values) {}
  void operator()(double value) const {
    if (values_ != nullptr) values_->push_back(value);
  }

 private:
  std::vector<double>* values_;
};

// Compat: halves round up, and a negative sum towards zero (Report.IntegersAndTheirTotals).
std::int64_t roundedAverage(std::int64_t sum, std::int64_t count) {
  return sum / count + (sum % count * 2 >= count ? 1 : 0);
}

// The day that a stored date reads as.
class DayReader {
 public:
  DayReader(const Database& database, int slot, const FormatSettings& formats)
      : field_(database.schema.fields[static_cast<std::size_t>(slot)]),
        items_(database.fields[static_cast<std::size_t>(slot)]),
        formats_(formats),
        reads_back_(field_.type == FieldType::kDate && readsBack(formats)),
        known_(field_.type == FieldType::kDate && !reads_back_ ? kKnownDays : 0, kUnknown) {}

  std::int64_t operator()(ByteView value) {
    if (value.empty()) return 0;
    if (field_.type != FieldType::kDate) return readText(value);
    const std::uint32_t day = numberOfValue(value);
    if (reads_back_ && day <= kLastDay) return day;
    if (day >= known_.size()) return readText(value);
    if (known_[day] == kUnknown) known_[day] = readText(value);
    return known_[day];
  }

 private:
  static constexpr std::size_t kKnownDays = 65536;  // to 2083
  static constexpr std::int64_t kUnknown = -1;
  static constexpr std::uint32_t kLastDay = 2957003;  // 9999-12-31: four digits show every year

  // Whether what the pattern shows is read as the same date: a whole year, and the parts in the
  // order and with the separator that dates are read in.
  static bool readsBack(const FormatSettings& formats) {
    const TypedDateForm form = typedDateForm(formats.choices.date_format);
    const DatePattern& shown = formats.show_date;
    if (shown.separator.size() != 1 || shown.separator[0] != form.separator) return false;
    const bool year_first = form.order == DateOrder::kYearMonthDay;
    const bool day_first = form.order == DateOrder::kDayMonthYear;
    const DatePart year = shown.parts[year_first ? 0 : 2];
    const DatePart month = shown.parts[form.order == DateOrder::kMonthDayYear ? 0 : 1];
    const DatePart day = shown.parts[year_first ? 2 : day_first ? 0 : 1];
    return year == DatePart::kYear4 && (month == DatePart::kMonth || month == DatePart::kMonth2) &&
           (day == DatePart::kDay || day == DatePart::kDay2);
  }

  std::int64_t readText(ByteView value) {
    text_.clear();
    appendValueText(text_, field_, items_, value, formats_, {.raw = true});
    const CalendarDate date = dateOfText(text_, formats_);
    return daysSince1904(date.month, date.day, date.year);
  }

  const FieldDefinition& field_;
  const FieldRecord& items_;
  const FormatSettings& formats_;
  bool reads_back_;
  std::vector<std::int64_t> known_;  // by stored day
  std::string text_;
};

// The seconds that a stored time reads as. Seconds themselves are not read, so every time of one
// minute is read once, unless the pattern shows the seconds where a minute or an hour is read.
class SecondsReader {
 public:
  SecondsReader(const Database& database, int slot, const FormatSettings& formats)
      : field_(database.schema.fields[static_cast<std::size_t>(slot)]),
        items_(database.fields[static_cast<std::size_t>(slot)]),
        formats_(formats),
        known_(
            field_.type == FieldType::kTime && minutesDecide(formats.show_time) ? kKnownMinutes : 0,
            kUnknown) {}

  std::int64_t operator()(ByteView value) {
    if (value.empty()) return 0;
    if (known_.empty()) return readText(value);
    const TimeValue time = timeOfValue(value);
    std::int64_t& known = known_[std::size_t{time.hour} << 8 | time.minute];
    if (known == kUnknown) known = readText(value);
    return known;
  }

 private:
  static constexpr std::size_t kKnownMinutes = 65536;
  static constexpr std::int64_t kUnknown = -1;

  static bool minutesDecide(const TimePattern& shown) {
    return shown.parts[0] != TimePart::kSecond && shown.parts[1] != TimePart::kSecond &&
           !shown.separator.empty() && (shown.separator[0] < '0' || shown.separator[0] > '9');
  }

  std::int64_t readText(ByteView value) {
    text_.clear();
    appendValueText(text_, field_, items_, value, formats_, {.raw = true});
    // Compat: no time reads as hour 255 and counts as 918000 seconds (Report.TimesAndTheirTotal).
    const TypedTime time = timeOfText(text_, formats_);
    return (time.hour * 60 + time.minute) * std::int64_t{60};
  }

  const FieldDefinition& field_;
  const FieldRecord& items_;
  const FormatSettings& formats_;
  std::vector<std::int64_t> known_;  // by hour and minute
  std::string text_;
};

void tallyIntegers(const Database& database, int slot, const RecordFilter& filter,
                   ReportFigures& figures, const CountedValue& counted) {
  NumberTally<std::int64_t> tally;
  const bool is_text =
      database.schema.fields[static_cast<std::size_t>(slot)].type != FieldType::kInteger;
  forEachReportValue(database, slot, filter, [&](ByteView value, bool) {
    const std::int64_t number = is_text ? leadingInteger(storedText(value))
                                        : static_cast<std::int32_t>(numberOfValue(value));
    tally.add(number);
    counted(static_cast<double>(number));
  });
  figures.count = tally.count();
  figures.whole = tally.numbers();
  if (figures.count == 0) {
    figures.whole.minimum = figures.whole.maximum = 0;
  } else {
    figures.whole.average = roundedAverage(figures.whole.sum, figures.count);
  }
}

void tallyFloats(const Database& database, int slot, const RecordFilter& filter, bool decimal_comma,
                 ReportFigures& figures, const CountedValue& counted) {
  NumberTally<double> tally;
  forEachReportValue(database, slot, filter, [&](ByteView value, bool) {
    // Reading ends at the text's NUL anyway.
    const double number = numberOfText(asText(value), decimal_comma);
    tally.add(number);
    counted(number);
  });
  figures.count = tally.count();
  figures.real = tally.numbers();
  if (figures.count == 0) {
    figures.real.minimum = figures.real.maximum = 0;
  } else {
    figures.real.average = figures.real.sum / static_cast<double>(figures.count);
  }
}

void tallyChecks(const Database& database, int slot, const RecordFilter& filter,
                 ReportFigures& figures) {
  forEachReportValue(database, slot, filter, [&](ByteView value, bool) {
    ++figures.count;
    if (!value.empty() && value[0] != 0) ++figures.checked;
  });
}

void tallyDates(const Database& database, int slot, const RecordFilter& filter,
                const FormatSettings& formats, ReportFigures& figures,
                const CountedValue& counted) {
  DayReader read(database, slot, formats);
  ReportNumbers<std::int64_t>& days = figures.whole;
  days.minimum = kFirstDayMinimum;
  forEachReportValue(database, slot, filter, [&](ByteView value, bool) {
    ++figures.count;
    const std::int64_t day = read(value);
    counted(static_cast<double>(day));
    if (day <= 0) return;
    days.minimum = std::min(days.minimum, day);
    days.maximum = std::max(days.maximum, day);
    days.sum += day;
  });
}

void tallyTimes(const Database& database, int slot, const RecordFilter& filter,
                const FormatSettings& formats, ReportFigures& figures,
                const CountedValue& counted) {
  SecondsReader read(database, slot, formats);
  ReportNumbers<std::int64_t>& seconds = figures.whole;
  seconds.minimum = kFirstSecondMinimum;
  forEachReportValue(database, slot, filter, [&](ByteView value, bool) {
    ++figures.count;
    const std::int64_t time = read(value);
    counted(static_cast<double>(time));
    seconds.minimum = std::min(seconds.minimum, time);
    seconds.maximum = std::max(seconds.maximum, time);
    seconds.sum += time;
  });
  if (figures.count == 0) {
    seconds.minimum = 0;
  } else {
    seconds.average = roundedAverage(seconds.sum, figures.count);
  }
}

}  // namespace

std::vector<int> reportFields(const DatabaseRecord& schema) {
  std::vector<int> slots;
  for (int slot = 0; slot < kFieldSlots; ++slot) {
    const FieldType type = schema.fields[static_cast<std::size_t>(slot)].type;
    if (traitsOf(type).report != ReportKind::kNone || type == FieldType::kCalculated)
      slots.push_back(slot);
  }
  return slots;
}

ReportFigures reportFigures(const Database& database, int slot, const QuerySettings& settings,
                            const LinkFilter* link, std::vector<double>* values) {
  ReportFigures figures;
  if (slot < 0 || slot >= kFieldSlots) return figures;
  const FieldType type = effectiveType(database.schema.fields[static_cast<std::size_t>(slot)]);
  const ReportKind kind = traitsOf(type).report;
  if (kind == ReportKind::kNone) return figures;
  figures.type = type;
  const RecordFilter filter(database, settings, link);
  const FormatSettings& formats = settings.formats;
  const CountedValue counted(values);
  switch (kind) {
    case ReportKind::kWholeNumbers:
      tallyIntegers(database, slot, filter, figures, counted);
      break;
    case ReportKind::kNumbers:
      tallyFloats(database, slot, filter, formats.choices.decimal_comma, figures, counted);
      break;
    case ReportKind::kChecks:
      tallyChecks(database, slot, filter, figures);
      break;
    case ReportKind::kDates:
      tallyDates(database, slot, filter, formats, figures, counted);
      break;
    case ReportKind::kTimes:
      tallyTimes(database, slot, filter, formats, figures, counted);
      break;
    case ReportKind::kNone:
      break;
  }
  return figures;
}

std::string runReport(const Database& database, int slot, const QuerySettings& settings,
                      const LinkFilter* link) {
  const ReportFigures figures = reportFigures(database, slot, settings, link);
  if (figures.type == FieldType::kUnused) return {};
  return reportText(figures, database.schema.fields[static_cast<std::size_t>(slot)],
                    settings.formats);
}

}  // namespace tabelion
