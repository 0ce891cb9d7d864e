// The dialog in which the user changes the preferences.
#pragma once

#include <string>

#include "screens/kit/commands.h"
#include "services/application.h"

namespace tabelion {

inline constexpr CommandId kPreferencesCommand = 40033;

// Controls.
inline constexpr ControlId kSaveSeconds = 1034;
inline constexpr ControlId kSecondsLabel = 1043;
inline constexpr ControlId kSaveOnCloseBox = 1064;
inline constexpr ControlId kSaveByTimeBox = 1066;
inline constexpr ControlId kMinutesPreset = 1068;
inline constexpr ControlId kWeekStartChoice = 1078;
inline constexpr ControlId kAutoEncryptBox = 1088;
inline constexpr ControlId kAutoCloseBox = 1089;
inline constexpr ControlId kCloseMinutes = 1091;
inline constexpr ControlId kMinutesLabel = 1092;

class PreferencesScreen : public CommandScreen<PreferencesScreen> {
 public:
  explicit PreferencesScreen(Application& app) : app_(app) {}

  CommandTable<PreferencesScreen> Commands(Dialog& dialog);
  void onInit(Dialog& dialog) override;
  void onNotice(Dialog& dialog, ControlId control, Notice notice) override;
  bool acceptsCharacter(Dialog& dialog, ControlId control, char32_t character) override;
  void onResize(Dialog& dialog) override { Layout(dialog); }
  bool OnAutoClose(Dialog& dialog) override;

 private:
  void Layout(Dialog& dialog);
  void ShowSeconds(Dialog& dialog, bool shown);
  void ShowMinutes(Dialog& dialog, bool shown);
  void Done(Dialog& dialog);
  void Cancel(Dialog& dialog);
  void Back(Dialog& dialog);
  void Store(Dialog& dialog);
  void StoreSavePeriod(const std::string& seconds);

  Application& app_;
};

// kDialogDone, kDialogClosed when cancelled, or kDialogAutoClosed.
//
// Compat: Done changes all values in memory but stores only the seconds of automatic saving and the
// start of the week; the others are stored when everything closes by itself
// (PreferencesDialog.DoneStoresInTwoSteps).
int ShowPreferences(Application& app);

}  // namespace tabelion
