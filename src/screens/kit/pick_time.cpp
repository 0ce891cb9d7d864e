#include "screens/kit/pick_time.h"

#include "screens/kit/commands.h"
#include "screens/kit/moment_text.h"
#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"

namespace tabelion {
namespace {

constexpr ControlId kHourLabel = 5;
constexpr ControlId kMinuteLabel = 6;
constexpr ControlId kTimeLabel = 7;
constexpr int kStepperWidth = 80;

class TimeScreen : public CommandScreen<TimeScreen> {
 public:
  TimeScreen(Application& app, std::u16string name, const TimeValue& time)
      : app_(app),
        first_(time),
        box_(app, FieldType::kTime, kTimeBox, std::move(name), TimeBytes(time)) {}

  CommandTable<TimeScreen> Commands(Dialog&) {
    return {.left = {kActionCommand, u"Done", &TimeScreen::Done},
            .right = {kCancelCommand, u"Cancel", &TimeScreen::Cancel},
            .keys = {{kBackCommand, {}, &TimeScreen::Cancel}}};
  }
  void onInit(Dialog& dialog) override {
    ShowCommands(dialog);
    box_.Show(dialog, TimeBytes(first_));
    box_.Begin(dialog);
    ShowTyped(dialog);
    onResize(dialog);
    dialog.control(kHourBox).focus();
  }
  void onResize(Dialog& dialog) override {
    LayoutRow words{.cells = {AreaCell(kTimeWords, {0, 2 * dialog.textSize(u"X", 0).height})}};
    words.cells[0].grow = 1;
    PlaceRows(dialog,
              {LabeledRow(kHourLabel, {BoxCell(kHourBox, kStepperWidth)}),
               LabeledRow(kMinuteLabel, {BoxCell(kMinuteBox, kStepperWidth)}),
               Spaced(LabeledRow(kTimeLabel, {BoxCell(kTimeBox)})), words},
              {.margin = 8});
  }
  bool acceptsCharacter(Dialog&, ControlId, char32_t character) override {
    return CanStore(app_, character);
  }
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
  bool OnAutoClose(Dialog& dialog) override { return box_.OnAutoClose(dialog); }

  std::optional<TimeValue> picked() const {
    if (!box_.picked) return std::nullopt;
    return timeOfValue(*box_.picked);
  }

 private:
  void ShowTyped(Dialog& dialog);
  void Done(Dialog& dialog) { box_.Done(dialog); }
  void Cancel(Dialog& dialog) { dialog.end(kDialogClosed); }

  Application& app_;
  const TimeValue first_;
  MomentBox box_;
};

void TimeScreen::onNotice(Dialog& dialog, ControlId control, Notice notice) {
  if (notice != Notice::kEdited) return;
  if (control == kHourBox || control == kMinuteBox) {
    TimeValue time{.minute = static_cast<std::uint8_t>(dialog.control(kMinuteBox).selection()),
                   .hour = static_cast<std::uint8_t>(dialog.control(kHourBox).selection()),
                   .fourth = first_.fourth};
    if (time.hour == first_.hour && time.minute == first_.minute) time.second = first_.second;
    box_.Show(dialog, TimeBytes(time));
  }
  ShowTyped(dialog);
}

// Hour and minute follow what is typed as soon as that is a time.
void TimeScreen::ShowTyped(Dialog& dialog) {
  const Result<Bytes> typed = box_.Typed(dialog);
  if (!typed.ok()) {
    dialog.control(kTimeWords).setText(u"This " + FromUtf8(typed.error().text) + u".");
    return;
  }
  const TimeValue time = timeOfValue(*typed);
  dialog.control(kTimeWords).setText(ScreenText(app_, timeText(time, app_.level().formats)));
  if (time.isNone()) return;
  dialog.control(kHourBox).select(time.hour);
  dialog.control(kMinuteBox).select(time.minute);
}

}  // namespace

std::optional<TimeValue> PickTime(Application& app, const std::u16string& name,
                                  const TimeValue& time) {
  TimeValue first = time;
  if (first.isNone()) {
    const CalendarTime now = app.platform.clock.local();
    first = {.minute = static_cast<std::uint8_t>(now.minute),
             .hour = static_cast<std::uint8_t>(now.hour),
             .fourth = time.fourth};
  }
  DialogTemplate dialog;
  dialog.resource = kPickTimeScreen;
  dialog.title = name;
  dialog.controls = {
      {.id = kHourLabel, .kind = ControlKind::kLabel, .text = u"Hour:"},
      {.id = kHourBox, .kind = ControlKind::kSpin, .accessible_name = u"Hour", .maximum = 23},
      {.id = kMinuteLabel, .kind = ControlKind::kLabel, .text = u"Minute:"},
      {.id = kMinuteBox, .kind = ControlKind::kSpin, .accessible_name = u"Minute", .maximum = 59},
      {.id = kTimeLabel, .kind = ControlKind::kLabel, .text = u"Time:"},
      {.id = kTimeBox, .kind = ControlKind::kEdit, .accessible_name = u"Time"},
      {.id = kTimeWords, .kind = ControlKind::kLabel},
  };
  TimeScreen screen(app, name, first);
  RunModalDialog(app, dialog, screen);
  return screen.picked();
}

}  // namespace tabelion
