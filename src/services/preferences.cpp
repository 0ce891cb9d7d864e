#include "services/preferences.h"

#include "services/setting_table.h"

namespace tabelion {
namespace {

// A format that was never stored is the one that reads what the system shows.
int formatSetting(Settings& settings, Setting setting, int matching) {
  if (const auto stored = ReadNumberSetting(settings, setting)) return *stored;
  WriteNumberSetting(settings, setting, matching);
  return matching;
}

void loadFormats(Platform& platform, FormatChoices& formats) {
  const FormatChoices matching = matchingChoices(platform.locale.info());
  Settings& settings = platform.settings;
  formats.date_format = formatSetting(settings, Setting::kDateFormat, matching.date_format);
  formats.time_format = formatSetting(settings, Setting::kTimeFormat, matching.time_format);
  formats.decimal_comma =
      formatSetting(settings, Setting::kDecimalComma, matching.decimal_comma ? 1 : 0) != 0;
}

}  // namespace

void LoadPreferences(Platform& platform, Preferences& preferences) {
  Settings& settings = platform.settings;
  if (const auto value = ReadNumberSetting(settings, Setting::kAutoSave)) {
    preferences.auto_save_on_close = *value != 0;
  }
  if (const auto value = ReadNumberSetting(settings, Setting::kAutoSaveSeconds)) {
    preferences.auto_save_period_ms = *value * 1000;  // at most four digits
  }
  if (const auto value = ReadNumberSetting(settings, Setting::kAutoEncryption)) {
    preferences.auto_encrypt = *value != 0;
  }
  if (const auto value = ReadNumberSetting(settings, Setting::kAutoCloseOption)) {
    preferences.auto_close_enabled = *value != 0;
  }
  if (const auto value = ReadNumberSetting(settings, Setting::kAutoCloseMinutes)) {
    preferences.auto_close_period_ms = *value;
  }
  loadFormats(platform, preferences.formats);
  if (const auto name = ReadSetting(settings, Setting::kCodePage); name && !name->empty()) {
    preferences.code_page = *name;
  }
}

void SavePreferences(Platform& platform, const Preferences& preferences) {
  Settings& settings = platform.settings;
  WriteNumberSetting(settings, Setting::kAutoSave, preferences.auto_save_on_close ? 1 : 0);
  WriteNumberSetting(settings, Setting::kAutoEncryption, preferences.auto_encrypt ? 1 : 0);
  WriteNumberSetting(settings, Setting::kAutoCloseOption, preferences.auto_close_enabled ? 1 : 0);
  WriteNumberSetting(settings, Setting::kAutoCloseMinutes, preferences.auto_close_period_ms);
}

void LoadWeekStart(Platform& platform, Preferences& preferences) {
  if (const auto stored = ReadNumberSetting(platform.settings, Setting::kWeekStart)) {
    preferences.week_starts_monday = *stored != 0 ? 1 : 0;
    return;
  }
  if (preferences.week_starts_monday != 0) preferences.week_starts_monday = 1;
  WriteNumberSetting(platform.settings, Setting::kWeekStart, preferences.week_starts_monday);
}

}  // namespace tabelion
