// A month as a grid of days: where they lie, how they are painted, and what a press hits. Below a
// line with the month's name, which has arrows to the months and years beside it, one row per week.
#pragma once

#include "engine/calendar.h"
#include "platform/painting.h"

namespace tabelion {

struct MonthGrid {
  int month = 1;
  int year = kFirstYear;
  int marked_day = 0;  // 0: none
  int today = 0;       // a day of this month, 0: none
  bool week_starts_monday = false;
  Size size;                // of the canvas
  bool short_name = false;  // the month's, where the long one has no room
};

enum class MonthPress { kNothing, kDay, kPreviousYear, kPreviousMonth, kNextMonth, kNextYear };
struct MonthHit {
  MonthPress press = MonthPress::kNothing;
  int day = 0;
  bool operator==(const MonthHit&) const = default;
};

inline constexpr int kMonthGridRows = 8;  // the name, the days' names and six weeks

// For the month's name and year, in bold.
int MonthNameRoom(Size canvas);

void PaintMonth(CanvasPainter& painter, const MonthGrid& grid);
MonthHit MonthHitAt(const MonthGrid& grid, Point at);

// 0 = Sunday … 6 = Saturday, as the world counts: it has no 29 February in 2100.
int WeekdayOf(const CalendarDate& date);
// "Friday, 9 May 2031".
std::u16string DateInWords(const CalendarDate& date);

}  // namespace tabelion
