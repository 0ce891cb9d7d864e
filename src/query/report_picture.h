// What the picture beside a report shows: the values that the report counted, by ranges, days,
// hours or items, and their running totals. How it looks is not decided here.
//
// Pop-up fields have a picture as well, though no report.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "query/report.h"

namespace tabelion {

// Numbers by equal ranges, one behind the other, whose bounds are round. A range holds its lower
// bound.
struct Histogram {
  double first = 0;       // where the first range begins
  double width = 1;       // of each: 1, 2 or 5 times a power of ten
  bool centered = false;  // whole numbers, each in the middle of a range of its own
  std::vector<std::uint32_t> counts;
  std::uint32_t boundless = 0;  // values in no range: too large to be numbers

  double bound(std::size_t range) const { return first + width * static_cast<double>(range); }
};
Histogram histogramOf(std::span<const double> values, bool whole);

// The smallest of 1, 2 and 5 times a power of ten that is not below this number above 0.
double roundStep(double least);

// The running sum over a stretch of records: its bounds, and where it stands at the end.
struct TotalsStretch {
  double least = 0;
  double most = 0;
  double last = 0;
};
inline constexpr std::size_t kMostTotals = 240;
struct RunningTotals {
  // As many as there are records, but at most kMostTotals, of equal length; fewer when a sum became
  // too large to be a number.
  std::vector<TotalsStretch> stretches;
  std::size_t planned = 0;  // with those that are missing

  std::size_t recordsAt(std::size_t stretch, std::size_t records) const {
    return (stretch + 1) * records / planned;
  }
};
RunningTotals runningTotalsOf(std::span<const double> values);

struct DayCount {
  std::uint32_t day = 0;  // from 1904-01-01
  std::uint32_t count = 0;
};

struct ItemCount {
  std::string text;  // in the database's code page
  std::uint32_t count = 0;
};

enum class PictureKind { kNone, kNumbers, kChecks, kDates, kTimes, kItems };
inline constexpr std::size_t kHoursPerDay = 24;

struct ReportPicture {
  PictureKind kind = PictureKind::kNone;
  std::uint32_t records = 0;  // that pass the filter
  int decimals = 0;           // of the field's numbers
  Histogram histogram;        // kNumbers
  RunningTotals totals;
  std::vector<DayCount> days;                       // kDates: those with a record, ascending
  std::array<std::uint32_t, kHoursPerDay> hours{};  // kTimes
  std::uint32_t without = 0;                        // kDates, kTimes: records that have none
  // kItems: those with a record, the most frequent first; then records without a choice, and those
  // whose choice is enciphered. kChecks: checked, and not.
  std::vector<ItemCount> items;
};

// The figures and the picture of one walk over the records. A pop-up field has no figures
// (FieldType::kUnused), any other without a report neither.
struct PicturedReport {
  ReportFigures figures;
  ReportPicture picture;
};
PicturedReport picturedReport(const Database& database, int slot, const QuerySettings& settings,
                              const LinkFilter* link = nullptr);

// The slots of pop-up fields, in field order.
std::vector<int> popupFields(const DatabaseRecord& schema);

}  // namespace tabelion
