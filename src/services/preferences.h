// The user's preferences in memory, and their way from and to the settings store.
#pragma once

#include <string>

#include "platform/platform.h"
#include "query/format_settings.h"

namespace tabelion {

struct Preferences {
  bool auto_save_on_close = false;
  int auto_save_period_ms = 0;  // below 1: off
  bool auto_encrypt = false;
  bool auto_close_enabled = false;
  int auto_close_period_ms = 0;  // below 1: off
  int week_starts_monday = 0;    // 0 or 1

  FormatChoices formats;             // how dates, times and numbers are typed
  std::string code_page = "CP1252";  // of databases that carry none

  bool autoCloses() const { return auto_close_enabled && auto_close_period_ms > 0; }
};

// How dates, times and numbers are typed: what is stored, and for what never was, the choice that
// matches the system's language settings.
FormatChoices ReadFormatChoices(Settings& settings, const LocaleInfo& locale);

// Reads what is stored; what is not keeps its present value. Formats that were never stored are
// chosen to match the system's language settings and stored, so that they stay the same when
// those change.
void LoadPreferences(Platform& platform, Preferences& preferences);

// Stores the four values that are written when everything closes by itself. The others are
// written where the user changes them.
void SavePreferences(Platform& platform, const Preferences& preferences);

// The first day of the week; stored as "0" or "1" when it was not there.
void LoadWeekStart(Platform& platform, Preferences& preferences);

}  // namespace tabelion
