#include "services/setting_table.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace tabelion {
namespace {

const SettingRow& rowOf(Setting setting) {
  return *std::find_if(std::begin(kSettingTable), std::end(kSettingTable),
                       [&](const SettingRow& row) { return row.setting == setting; });
}

}  // namespace

std::optional<std::string> ReadSetting(Settings& settings, Setting setting) {
  const SettingRow& row = rowOf(setting);
  auto text = settings.readText(row.root, row.key, row.name);
  if (text && text->size() >= row.capacity) return std::nullopt;
  return text;
}

std::optional<int> ReadNumberSetting(Settings& settings, Setting setting) {
  const auto text = ReadSetting(settings, setting);
  if (!text) return std::nullopt;
  return LeadingNumber(*text);
}

void WriteSetting(Settings& settings, Setting setting, const std::string& text) {
  const SettingRow& row = rowOf(setting);
  (void)settings.writeText(row.key, row.name, text);
}

void WriteNumberSetting(Settings& settings, Setting setting, int value) {
  WriteSetting(settings, setting, std::to_string(value));
}

int LeadingNumber(const std::string& text) {
  const long value = std::strtol(text.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

}  // namespace tabelion
