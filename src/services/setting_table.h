// Every setting that the program keeps: where it is stored and how much of it is read. No other
// file contains the name of a key or a value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

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
  kSyncOverwrite,
  kSampleDatabases,
  kLastFile,
  kRescuedFile,
  kRescuedCopy,
  kAlarmDatabase,
  kLastRecord,
  kAlarmRecordId,
  kAlarmFile,
  kAlarmRecord,
  kAlarmTime,
  kPocketPrinterFolder,
  kPrinterFolder,
  kPrinterSecondFolder,
  kDateFormat,
  kTimeFormat,
  kDecimalComma,
  kCodePage,
  kNotStored,
  kWindowSizes,
};

struct SettingRow {
  Setting setting;
  SettingsRoot root;
  const char* key;
  const char* name;
  // Characters read, with the closing zero, or bytes of a binary value; what is longer reads as
  // missing.
  std::size_t capacity;
};

inline constexpr char kProgramKey[] = "Software\\Tabelion3";
inline constexpr char kAlarmsKey[] = "Software\\Tabelion3\\Alarms";  // a sub-key per alarm

// A key or a name that ends with "%" is one of many: a number stands in its place.

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
    // "1": do not ask about a copied file that is there already
    {Setting::kSyncOverwrite, SettingsRoot::kUser, kProgramKey, "SyncOverwrite", 10},
    // "1": never offer the sample databases
    {Setting::kSampleDatabases, SettingsRoot::kUser, kProgramKey, "SampleDBs", 10},
    // paths of the databases that were used last, 0 to 9, the last one first
    {Setting::kLastFile, SettingsRoot::kUser, kProgramKey, "LastFile%", 1024},
    // databases that could not be saved when the program had to end, and where they are instead,
    // from 0
    {Setting::kRescuedFile, SettingsRoot::kUser, kProgramKey, "RescuedFile%", 1024},
    {Setting::kRescuedCopy, SettingsRoot::kUser, kProgramKey, "RescuedCopy%", 1024},
    // database (path) and record (number) of the alarm last acted on
    {Setting::kAlarmDatabase, SettingsRoot::kUser, kProgramKey, "AlarmDatabase", 1020},
    {Setting::kLastRecord, SettingsRoot::kUser, kProgramKey, "LastRecord", 11},
    // of each alarm, by the number of its notification: identifier of the record (14 bytes), path
    // of the database, number of the record, time
    {Setting::kAlarmRecordId, SettingsRoot::kUser, "Software\\Tabelion3\\Alarms\\%", "GUID", 14},
    {Setting::kAlarmFile, SettingsRoot::kUser, "Software\\Tabelion3\\Alarms\\%", "DBPath", 1020},
    {Setting::kAlarmRecord, SettingsRoot::kUser, "Software\\Tabelion3\\Alarms\\%", "RecNum", 11},
    {Setting::kAlarmTime, SettingsRoot::kUser, "Software\\Tabelion3\\Alarms\\%", "AlarmTime", 11},
    // folders of printer drivers
    {Setting::kPocketPrinterFolder, SettingsRoot::kMachine,
     "Software\\Apps\\FieldSoftware PrintPocketCE", "InstallDir", 261},
    {Setting::kPrinterFolder, SettingsRoot::kMachine, "Software\\Apps\\Bachmann PrintBoy CE",
     "InstallDir", 261},
    {Setting::kPrinterSecondFolder, SettingsRoot::kMachine,
     "Software\\Apps\\Bachmann Software PrintBoy PocketPC", "InstallDir", 261},
    // 0 to 6: order and separator of dates
    {Setting::kDateFormat, SettingsRoot::kUser, kProgramKey, "DateFormat", 10},
    // 0 to 4: separator and clock of times
    {Setting::kTimeFormat, SettingsRoot::kUser, kProgramKey, "TimeFormat", 10},
    // "0" or "1": numbers have a decimal comma
    {Setting::kDecimalComma, SettingsRoot::kUser, kProgramKey, "DecimalComma", 10},
    // name of the code page of databases that carry none of their own ("CP1252")
    {Setting::kCodePage, SettingsRoot::kUser, kProgramKey, "CodePage", 40},
    // what was typed and not stored at the end of a session, a line each; told at the next start
    {Setting::kNotStored, SettingsRoot::kUser, kProgramKey, "NotStored", 4096},
    // size and zoom of the window for each size of desktop
    {Setting::kWindowSizes, SettingsRoot::kUser, kProgramKey, "WindowSizes", 400},
};

// `number` is that of a setting that is one of many.
std::optional<std::string> ReadSetting(Settings& settings, Setting setting, unsigned number = 0);
// The stored text as a number: 0 for text that is not one, none when nothing is stored.
std::optional<int> ReadNumberSetting(Settings& settings, Setting setting, unsigned number = 0);
std::optional<std::vector<std::uint8_t>> ReadBinarySetting(Settings& settings, Setting setting,
                                                           unsigned number = 0);

// A write that fails is ignored: the program goes on with what it has in memory.
void WriteSetting(Settings& settings, Setting setting, const std::string& text,
                  unsigned number = 0);
void WriteNumberSetting(Settings& settings, Setting setting, int value);
void WriteBinarySetting(Settings& settings, Setting setting, const std::vector<std::uint8_t>& bytes,
                        unsigned number = 0);
// The settings number 0 and up of one that is one of many, in one step.
void WriteNumberedSettings(Settings& settings, Setting setting, std::span<const std::string> texts);

std::size_t CapacityOf(Setting setting);

// The number that a text starts with, 0 when it starts with none; clamped to the range of int.
int LeadingNumber(const std::string& text);

}  // namespace tabelion
