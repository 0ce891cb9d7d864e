#include "services/preferences.h"

#include "services/setting_table.h"

namespace tabelion {
namespace {

void storeIfMissing(Settings& settings, Setting setting, int value) {
  if (!ReadNumberSetting(settings, setting)) WriteNumberSetting(settings, setting, value);
}

void loadFormats(Platform& platform, FormatChoices& formats) {
  formats = ReadFormatChoices(platform.settings, platform.locale.info());
  storeIfMissing(platform.settings, Setting::kDateFormat, formats.date_format);
  storeIfMissing(platform.settings, Setting::kTimeFormat, formats.time_format);
  storeIfMissing(platform.settings, Setting::kDecimalComma, formats.decimal_comma ? 1 : 0);
}

}  // namespace

FormatChoices ReadFormatChoices(Settings& settings, const LocaleInfo& locale) {
  FormatChoices formats = matchingChoices(locale);
  const auto date = ReadNumberSetting(settings, Setting::kDateFormat);
  const auto time = ReadNumberSetting(settings, Setting::kTimeFormat);
  const auto comma = ReadNumberSetting(settings, Setting::kDecimalComma);
  if (date) formats.date_format = *date;
  if (time) formats.time_format = *time;
  if (comma) formats.decimal_comma = *comma != 0;
  return formats;
}

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
    preferences.week_starts_monday = *stored == 1 ? 1 : 0;  // anything else is Sunday
    return;
  }
  if (preferences.week_starts_monday != 0) preferences.week_starts_monday = 1;
  WriteNumberSetting(platform.settings, Setting::kWeekStart, preferences.week_starts_monday);
}

}  // namespace tabelion
