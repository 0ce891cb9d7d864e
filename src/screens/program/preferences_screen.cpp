#include "screens/program/preferences_screen.h"

#include <algorithm>
#include <iterator>

#include "screens/kit/row_layout.h"
#include "screens/kit/screen_numbers.h"
#include "services/screen_text.h"
#include "services/setting_table.h"

namespace tabelion {
namespace {

constexpr ControlId kWeekStartsLabel = 1;
constexpr int kMillisecondsPerSecond = 1000;
constexpr int kMillisecondsPerMinute = 60000;
constexpr std::size_t kSecondsLength = 4;
constexpr int kMinutesLength = 3;
constexpr const char16_t* kPresetMinutes[] = {u"1", u"3", u"5", u"10", u"30"};
constexpr int kPresets = static_cast<int>(std::size(kPresetMinutes));
constexpr char16_t kAutoCloseOn[] = u"Auto Close All DBs after";
constexpr char16_t kAutoCloseOff[] =
    u"Auto Close All DBs after        ___________ Minute(s)       of no activity";

DialogTemplate preferencesTemplate() {
  DialogTemplate dialog;
  dialog.resource = kPreferencesScreen;
  dialog.title = u"Preferences";
  dialog.controls = {
      {.id = kSaveOnCloseBox,
       .kind = ControlKind::kCheckBox,
       .text = u"Auto Save Database When Closed"},
      {.id = kSaveByTimeBox,
       .kind = ControlKind::kCheckBox,
       .text = u"Auto Save  databases after:"},
      {.id = kSaveSeconds,
       .kind = ControlKind::kEdit,
       .accessible_name = u"Seconds between automatic saves",
       .right_aligned = true,
       .max_length = static_cast<int>(kSecondsLength)},
      {.id = kSecondsLabel, .kind = ControlKind::kLabel, .text = u" Seconds"},
      {.id = kAutoEncryptBox,
       .kind = ControlKind::kCheckBox,
       .text = u"When decrypting data, remember password  and  use to auto encrypt on close"},
      {.id = kAutoCloseBox, .kind = ControlKind::kCheckBox},
      {.id = kCloseMinutes,
       .kind = ControlKind::kEdit,
       .accessible_name = u"Minutes of no activity before all databases are closed",
       .right_aligned = true,
       .max_length = kMinutesLength},
      {.id = kMinutesPreset,
       .kind = ControlKind::kSpin,
       .accessible_name = u"Usual numbers of minutes",
       .minimum = 1,
       .maximum = kPresets},
      {.id = kMinutesLabel, .kind = ControlKind::kLabel, .text = u"Minute(s) of no activity"},
      {.id = kWeekStartsLabel, .kind = ControlKind::kLabel, .text = u"Week Starts"},
      {.id = kWeekStartChoice, .kind = ControlKind::kChoice, .accessible_name = u"Week Starts"},
  };
  return dialog;
}

std::u16string numberText(int number) {
  return FromUtf8(std::to_string(number));
}

// What a number box holds, which takes digits only.
std::string digitsOf(const std::u16string& text) {
  std::string digits;
  for (const char16_t digit : text) digits.push_back(static_cast<char>(digit));
  return digits;
}

}  // namespace

int ShowPreferences(Application& app) {
  PreferencesScreen screen(app);
  return RunModalDialog(app, preferencesTemplate(), screen);
}

CommandTable<PreferencesScreen> PreferencesScreen::Commands(Dialog&) {
  return {.resource = 143,
          .left = {kDoneCommand, u"Done", &PreferencesScreen::Done},
          .right = {kCancelCommand, u"Cancel", &PreferencesScreen::Cancel},
          .keys = {{kActionCommand, {}, &PreferencesScreen::Done},
                   {kBackCommand, {}, &PreferencesScreen::Back}}};
}

void PreferencesScreen::onInit(Dialog& dialog) {
  ShowCommands(dialog);
  const Preferences& now = app_.preferences;
  dialog.control(kSaveOnCloseBox).setChecked(now.auto_save_on_close);
  const bool saves_by_time = now.auto_save_period_ms >= 1;
  dialog.control(kSaveByTimeBox).setChecked(saves_by_time);
  ShowSeconds(dialog, saves_by_time);
  if (saves_by_time) {
    dialog.control(kSaveSeconds)
        .setText(numberText(now.auto_save_period_ms / kMillisecondsPerSecond));
  }
  dialog.control(kAutoEncryptBox).setChecked(now.auto_encrypt);
  dialog.control(kWeekStartChoice).setChoices({u"Sunday", u"Monday"});
  dialog.control(kWeekStartChoice).select(now.week_starts_monday != 0 ? 1 : 0);
  dialog.control(kAutoCloseBox).setChecked(now.auto_close_enabled);
  ShowMinutes(dialog, now.auto_close_enabled);
  if (now.auto_close_enabled) {
    const std::u16string minutes = numberText(now.auto_close_period_ms / kMillisecondsPerMinute);
    dialog.control(kCloseMinutes).setText(minutes);
    // A step of the spin goes on from what the box shows.
    const auto* preset = std::find(std::begin(kPresetMinutes), std::end(kPresetMinutes), minutes);
    if (preset != std::end(kPresetMinutes)) {
      dialog.control(kMinutesPreset).select(static_cast<int>(preset - kPresetMinutes) + 1);
    }
  }
  Layout(dialog);
}

// The number boxes stand within their sentences, while they are there.
void PreferencesScreen::Layout(Dialog& dialog) {
  std::vector<LayoutCell> saving{CheckCell(kSaveByTimeBox)};
  if (dialog.control(kSaveByTimeBox).checked()) {
    saving.insert(saving.end(), {BoxCell(kSaveSeconds, 46), Glued(TextCell(kSecondsLabel))});
  }
  std::vector<LayoutCell> closing{CheckCell(kAutoCloseBox)};
  if (dialog.control(kAutoCloseBox).checked()) {
    closing.insert(closing.end(), {BoxCell(kCloseMinutes, 34),
                                   Glued(BoxCell(kMinutesPreset, 28)),  // its arrows alone
                                   TextCell(kMinutesLabel)});
  }
  PlaceRows(dialog,
            {CheckRow(kSaveOnCloseBox), SentenceRow(saving), CheckRow(kAutoEncryptBox),
             SentenceRow(closing), LabeledRow(kWeekStartsLabel, {BoxCell(kWeekStartChoice, 110)})});
}

void PreferencesScreen::ShowSeconds(Dialog& dialog, bool shown) {
  dialog.control(kSaveSeconds).setVisible(shown);
  dialog.control(kSecondsLabel).setVisible(shown);
}

void PreferencesScreen::ShowMinutes(Dialog& dialog, bool shown) {
  dialog.control(kAutoCloseBox).setText(shown ? kAutoCloseOn : kAutoCloseOff);
  for (const ControlId id : {kCloseMinutes, kMinutesPreset, kMinutesLabel}) {
    dialog.control(id).setVisible(shown);
  }
}

void PreferencesScreen::onNotice(Dialog& dialog, ControlId control, Notice notice) {
  if (notice != Notice::kEdited) return;
  switch (control) {
    case kSaveByTimeBox: {
      const bool checked = dialog.control(kSaveByTimeBox).checked();
      if (checked) dialog.control(kSaveSeconds).setText(u"60");
      ShowSeconds(dialog, checked);
      return Layout(dialog);
    }
    case kAutoCloseBox:
      ShowMinutes(dialog, dialog.control(kAutoCloseBox).checked());
      return Layout(dialog);
    case kMinutesPreset: {
      const int preset = dialog.control(kMinutesPreset).selection();
      return dialog.control(kCloseMinutes)
          .setText(kPresetMinutes[std::clamp(preset, 1, kPresets) - 1]);
    }
    case kWeekStartChoice:
      // At once: it stays so even when the dialog is cancelled.
      app_.preferences.week_starts_monday = dialog.control(kWeekStartChoice).selection();
      return;
    default:
      return;
  }
}

bool PreferencesScreen::acceptsCharacter(Dialog&, ControlId, char32_t character) {
  return character >= U'0' && character <= U'9';
}

void PreferencesScreen::Done(Dialog& dialog) {
  Store(dialog);
  dialog.end(kDialogDone);
}

void PreferencesScreen::Cancel(Dialog& dialog) {
  dialog.end(kDialogClosed);
}

// In a number box the Back key takes a digit away.
void PreferencesScreen::Back(Dialog& dialog) {
  for (const ControlId id : {kSaveSeconds, kCloseMinutes}) {
    Control& box = dialog.control(id);
    if (!box.hasFocus()) continue;
    std::u16string digits = box.text();
    if (!digits.empty()) digits.pop_back();
    return box.setText(digits);
  }
  dialog.end(kDialogClosed);
}

bool PreferencesScreen::OnAutoClose(Dialog& dialog) {
  Store(dialog);
  return true;
}

void PreferencesScreen::Store(Dialog& dialog) {
  Preferences& now = app_.preferences;
  now.auto_save_on_close = dialog.control(kSaveOnCloseBox).checked();
  now.auto_encrypt = dialog.control(kAutoEncryptBox).checked();
  const std::string seconds =
      digitsOf(dialog.control(kSaveSeconds).text().substr(0, kSecondsLength));
  const bool saves = dialog.control(kSaveByTimeBox).checked() && !seconds.empty();
  StoreSavePeriod(saves ? seconds : "0");
  now.auto_close_enabled = dialog.control(kAutoCloseBox).checked();
  if (now.auto_close_enabled) {
    const int minutes = LeadingNumber(digitsOf(dialog.control(kCloseMinutes).text()));
    now.auto_close_enabled = minutes != 0;
    now.auto_close_period_ms = minutes * kMillisecondsPerMinute;
  }
  WriteNumberSetting(app_.platform.settings, Setting::kWeekStart, now.week_starts_monday);
}

void PreferencesScreen::StoreSavePeriod(const std::string& seconds) {
  const int period_ms = LeadingNumber(seconds) * kMillisecondsPerSecond;
  if (period_ms == app_.preferences.auto_save_period_ms) return;
  app_.preferences.auto_save_period_ms = period_ms;
  WriteSetting(app_.platform.settings, Setting::kAutoSaveSeconds, seconds);
  if (app_.restart_auto_save) app_.restart_auto_save();
}

}  // namespace tabelion
