// The words that pictures, their descriptions and bars of text have in common; all in UTF-8.
#pragma once

#include <string>

#include "interchange/charts/axis.h"
#include "interchange/charts/report_chart.h"

namespace tabelion {

inline constexpr char kRangesCaption[] = "Records by value";
inline constexpr char kTotalsCaption[] = "Running total";
inline constexpr char kHoursCaption[] = "Records by hour";
inline constexpr char kDaysCaption[] = "Records by day";
inline constexpr char kMonthsCaption[] = "Records by month";
inline constexpr char kYearsCaption[] = "Records by year";

// In what unit the bounds of the ranges are written.
NumberScale rangeScale(const Histogram& histogram, const ChartTexts& texts);

// The beginning of an hour of the day on the user's clock: "9 AM", "9:00"; 24 is midnight again.
std::string hourText(std::size_t hour, const ChartTexts& texts);
std::string dayText(std::uint32_t day, const ChartTexts& texts);
std::string monthName(int month);                                // "Jan"
std::string percentText(std::uint32_t count, std::uint32_t of);  // "33%", "<1%"

// What there is nothing of, when there is nothing to be painted: "No records"; else empty.
std::string nothingText(const ReportPicture& picture);

// The number of records in each year that has a day, as ranges of years.
Histogram yearsOf(const std::vector<DayCount>& days);

}  // namespace tabelion
