#include "screens/kit/pick_date.h"

#include <algorithm>

#include "engine/stored_value.h"
#include "screens/kit/commands.h"
#include "screens/kit/moment_text.h"
#include "screens/kit/month_grid.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr ControlId kDateLabel = 4;
constexpr CommandId kToday = 40221;
constexpr CommandId kPreviousMonth = 40222;
constexpr CommandId kNextMonth = 40223;
constexpr CommandId kPreviousYear = 40224;
constexpr CommandId kNextYear = 40225;
constexpr int kMonthsPerYear = 12;
constexpr int kDaysPerWeek = 7;
constexpr int kCellMargin = 2;
constexpr std::uint32_t kFirstDay = 1;  // day 0 is no date

std::uint32_t lastDay() {
  return daysSince1904(12, 31, kLastYear);
}
std::uint32_t daysOf(const CalendarDate& date) {
  return daysSince1904(date.month, date.day, date.year);
}

class DateScreen : public CommandScreen<DateScreen> {
 public:
  DateScreen(Application& app, std::u16string name, std::uint32_t days)
      : app_(app),
        box_(app, FieldType::kDate, kDateBox, std::move(name), {}),
        days_(std::clamp(days, kFirstDay, lastDay())) {}

  CommandTable<DateScreen> Commands(Dialog&) {
    using Self = DateScreen;
    const auto months = [](int by) {
      return [by](Self& self, Dialog& on) { self.GoByMonths(on, by); };
    };
    return {.left = {kActionCommand, u"Done", &Self::Done},
            .right = {.text = u"Menu",
                      .rows = {{kToday, u"Today", &Self::GoToToday},
                               {kPreviousMonth, u"Previous Month", months(-1)},
                               {kNextMonth, u"Next Month", months(1)},
                               {kPreviousYear, u"Previous Year (-)", months(-kMonthsPerYear)},
                               {kNextYear, u"Next Year (+)", months(kMonthsPerYear)},
                               {kCancelCommand, u"Cancel", &Self::Cancel}}},
            .keys = {{kBackCommand, {}, &Self::Cancel}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    onResize(dialog);
    GoTo(dialog, days_);
    box_.Begin(dialog);
  }
  void onResize(Dialog& dialog) override {
    const int line = dialog.textSize(u"X", 0).height;
    LayoutRow words{.cells = {AreaCell(kDateWords, {0, 2 * line})}};
    words.cells[0].grow = 1;
    PlaceRows(dialog, {RestRow(kMonthCanvas, kMonthGridRows * (line + kCellMargin)),
                       LabeledRow(kDateLabel, {BoxCell(kDateBox)}), words});
  }
  void onPaintCanvas(Dialog& dialog, ControlId, CanvasPainter& painter) override {
    PaintMonth(painter, Grid(dialog));
  }
  std::u16string canvasText(Dialog& dialog, ControlId) override {
    return dialog.control(kDateWords).text();
  }
  void onCanvasPressed(Dialog& dialog, ControlId, Point at) override;
  bool onKey(Dialog& dialog, const KeyPress& key) override;
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return CanStore(app_, character);
  }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override {
    if (control == kDateBox && notice == Notice::kEdited) ShowTyped(dialog);
  }
  bool OnAutoClose(Dialog& dialog) override { return box_.OnAutoClose(dialog); }

  std::optional<std::uint32_t> picked() const {
    if (!box_.picked) return std::nullopt;
    return numberOfValue(*box_.picked);
  }

 private:
  MonthGrid Grid(Dialog& dialog) const;
  void GoTo(Dialog& dialog, std::int64_t days);
  void GoByMonths(Dialog& dialog, int months);
  void GoToToday(Dialog& dialog) { GoTo(dialog, Today(app_)); }
  void ShowTyped(Dialog& dialog);
  void Done(Dialog& dialog) { box_.Done(dialog); }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }

  Application& app_;
  MomentBox box_;
  std::uint32_t days_;  // on which the month stands
};

MonthGrid DateScreen::Grid(Dialog& dialog) const {
  const CalendarDate date = dateOfDayCount(days_);
  const CalendarTime now = app_.platform.clock.local();
  const bool is_now = now.month == date.month && now.year == date.year;
  const Rect place = dialog.control(kMonthCanvas).place();
  const int bold_width = dialog.textSize(u"September 2000", 0).width * 9 / 8;
  return {.month = date.month,
          .year = date.year,
          .marked_day = date.day,
          .today = is_now ? now.day : 0,
          .week_starts_monday = app_.preferences.week_starts_monday != 0,
          .size = {place.width, place.height},
          .short_name = bold_width > MonthNameRoom({place.width, place.height})};
}

// The box says the same as the month.
void DateScreen::GoTo(Dialog& dialog, std::int64_t days) {
  days_ = static_cast<std::uint32_t>(std::clamp<std::int64_t>(days, kFirstDay, lastDay()));
  box_.Show(dialog, DateBytes(days_));
  ShowTyped(dialog);
}

void DateScreen::GoByMonths(Dialog& dialog, int months) {
  CalendarDate date = dateOfDayCount(days_);
  const int count = date.year * kMonthsPerYear + date.month - 1 + months;
  date.year = count / kMonthsPerYear;
  date.month = count % kMonthsPerYear + 1;
  if (date.year < kFirstYear) return GoTo(dialog, kFirstDay);
  date.day = std::min(date.day, monthLength(date.month, date.year));
  GoTo(dialog, daysOf(date));
}

// The month follows what is typed as soon as that is a date.
void DateScreen::ShowTyped(Dialog& dialog) {
  const Result<Bytes> typed = box_.Typed(dialog);
  std::u16string words = u"No Date";
  if (!typed.ok()) {
    words = u"This " + FromUtf8(typed.error().text) + u".";
  } else if (const std::uint32_t days = numberOfValue(*typed); days != 0) {
    days_ = days;
    words = DateInWords(dateOfDayCount(days));
    if (days == Today(app_)) words += u", today";
  }
  dialog.control(kDateWords).setText(words);
  dialog.control(kMonthCanvas).repaint();
}

bool DateScreen::onKey(Dialog& dialog, const KeyPress& key) {
  if (key.control != kMonthCanvas) return false;
  const std::int64_t day = days_;
  const CalendarDate date = dateOfDayCount(days_);
  switch (key.key) {
    case Key::kLeft:
      GoTo(dialog, day - 1);
      return true;
    case Key::kRight:
      GoTo(dialog, day + 1);
      return true;
    case Key::kUp:
      GoTo(dialog, day - kDaysPerWeek);
      return true;
    case Key::kDown:
      GoTo(dialog, day + kDaysPerWeek);
      return true;
    case Key::kPageUp:
      GoByMonths(dialog, -1);
      return true;
    case Key::kPageDown:
      GoByMonths(dialog, 1);
      return true;
    case Key::kHome:
      GoTo(dialog, day - date.day + 1);
      return true;
    case Key::kEnd:
      GoTo(dialog, day - date.day + monthLength(date.month, date.year));
      return true;
    case Key::kCharacter:
      break;
    default:
      return false;
  }
  if (key.character == U'-' || key.character == U'+') {
    GoByMonths(dialog, key.character == U'+' ? kMonthsPerYear : -kMonthsPerYear);
  } else if (key.character >= U'0' && key.character <= U'9') {
    Control& box = dialog.control(kDateBox);
    box.focus();
    box.setText(std::u16string(1, static_cast<char16_t>(key.character)));
    ShowTyped(dialog);
  }
  return true;
}

// A press on the marked day takes it.
void DateScreen::onCanvasPressed(Dialog& dialog, ControlId, Point at) {
  const CalendarDate date = dateOfDayCount(days_);
  const MonthHit hit = MonthHitAt(Grid(dialog), at);
  switch (hit.press) {
    case MonthPress::kNothing:
      return;
    case MonthPress::kDay:
      if (hit.day == date.day) return Done(dialog);
      return GoTo(dialog, std::int64_t{days_} - date.day + hit.day);
    case MonthPress::kPreviousYear:
      return GoByMonths(dialog, -kMonthsPerYear);
    case MonthPress::kPreviousMonth:
      return GoByMonths(dialog, -1);
    case MonthPress::kNextMonth:
      return GoByMonths(dialog, 1);
    case MonthPress::kNextYear:
      return GoByMonths(dialog, kMonthsPerYear);
  }
}

}  // namespace

std::optional<std::uint32_t> PickDate(Application& app, const std::u16string& name,
                                      std::uint32_t days) {
  if (days == 0) days = Today(app);
  DialogTemplate dialog;
  dialog.resource = kPickDateScreen;
  dialog.title = name;
  dialog.controls = {
      {.id = kMonthCanvas,
       .kind = ControlKind::kCanvas,
       .accessible_name = u"Calendar",
       .takes_focus = true},
      {.id = kDateLabel, .kind = ControlKind::kLabel, .text = u"Date:"},
      {.id = kDateBox, .kind = ControlKind::kEdit, .accessible_name = u"Date"},
      {.id = kDateWords, .kind = ControlKind::kLabel},
  };
  DateScreen screen(app, name, days);
  RunModalDialog(app, dialog, screen);
  return screen.picked();
}

}  // namespace tabelion
