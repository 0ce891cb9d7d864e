// Every setting that the program keeps: where it is stored and how much of it is read. No other
// file contains the name of a key or a value.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/settings.h"

namespace tabelion {

enum class Setting {
  kAutoSave,
  kAutoSaveSeconds,
  kAutoEncryption,
  kAutoCloseOption,
  kAutoCloseMinutes,
  kWeekStart,
  kHidePassword,
  kSampleDatabases,
  kDateFormat,
  kTimeFormat,
  kDecimalComma,
  kCodePage,
};

struct SettingRow {
  Setting setting;
  SettingsRoot root;
  const char* key;
  const char* name;
  std::size_t capacity;  // characters read, with the closing zero; a longer text reads as missing
};

inline constexpr char kProgramKey[] = "Software\\Tabelion3";

inline constexpr SettingRow kSettingTable[] = {
    // "0" or "1": save without asking when a database is closed
    {Setting::kAutoSave, SettingsRoot::kUser, kProgramKey, "AutoSave", 10},
    // seconds between two automatic saves, 0 = off
    {Setting::kAutoSaveSeconds, SettingsRoot::kUser, kProgramKey, "AutoSaveSeconds", 5},
    // "0" or "1": remember the password that deciphered a database
    {Setting::kAutoEncryption, SettingsRoot::kUser, kProgramKey, "AutoEncryption", 10},
    // "0" or "1": close everything after a while without activity
    {Setting::kAutoCloseOption, SettingsRoot::kUser, kProgramKey, "AutoCloseOption", 10},
    // that while, in milliseconds in spite of the name
    {Setting::kAutoCloseMinutes, SettingsRoot::kUser, kProgramKey, "AutoCloseMinutes", 10},
    // "0" = Sunday, "1" = Monday
    {Setting::kWeekStart, SettingsRoot::kUser, kProgramKey, "WeekStart", 10},
    // "0" or "1": the password dialog shows asterisks
    {Setting::kHidePassword, SettingsRoot::kUser, kProgramKey, "HidePassword", 10},
    // "1": never offer the sample databases
    {Setting::kSampleDatabases, SettingsRoot::kUser, kProgramKey, "SampleDBs", 10},
    // 0 to 6: order and separator of dates
    {Setting::kDateFormat, SettingsRoot::kUser, kProgramKey, "DateFormat", 10},
    // 0 to 4: separator and clock of times
    {Setting::kTimeFormat, SettingsRoot::kUser, kProgramKey, "TimeFormat", 10},
    // "0" or "1": numbers have a decimal comma
    {Setting::kDecimalComma, SettingsRoot::kUser, kProgramKey, "DecimalComma", 10},
    // name of the code page of databases that carry none of their own ("CP1252")
    {Setting::kCodePage, SettingsRoot::kUser, kProgramKey, "CodePage", 40},
};

std::optional<std::string> ReadSetting(Settings& settings, Setting setting);
// The stored text as a number: 0 for text that is not one, none when nothing is stored.
std::optional<int> ReadNumberSetting(Settings& settings, Setting setting);
// A write that fails is ignored: the program goes on with what it has in memory.
void WriteSetting(Settings& settings, Setting setting, const std::string& text);
void WriteNumberSetting(Settings& settings, Setting setting, int value);

// The number that a text starts with, 0 when it starts with none; clamped to the range of int.
int LeadingNumber(const std::string& text);

}  // namespace tabelion
