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

std::string numbered(const char* pattern, unsigned number) {
  std::string text = pattern;
  if (text.ends_with('%')) text.replace(text.size() - 1, 1, std::to_string(number));
  return text;
}

}  // namespace

std::optional<std::string> ReadSetting(Settings& settings, Setting setting, unsigned number) {
  const SettingRow& row = rowOf(setting);
  auto text = settings.readText(row.root, numbered(row.key, number), numbered(row.name, number));
  if (text && text->size() >= row.capacity) return std::nullopt;
  return text;
}

std::optional<int> ReadNumberSetting(Settings& settings, Setting setting, unsigned number) {
  const auto text = ReadSetting(settings, setting, number);
  if (!text) return std::nullopt;
  return LeadingNumber(*text);
}

std::optional<std::vector<std::uint8_t>> ReadBinarySetting(Settings& settings, Setting setting,
                                                           unsigned number) {
  const SettingRow& row = rowOf(setting);
  auto bytes = settings.readBinary(numbered(row.key, number), numbered(row.name, number));
  if (bytes && bytes->size() > row.capacity) return std::nullopt;
  return bytes;
}

void WriteSetting(Settings& settings, Setting setting, const std::string& text, unsigned number) {
  const SettingRow& row = rowOf(setting);
  (void)settings.writeText(numbered(row.key, number), numbered(row.name, number), text);
}

void WriteNumberSetting(Settings& settings, Setting setting, int value) {
  WriteSetting(settings, setting, std::to_string(value));
}

void WriteBinarySetting(Settings& settings, Setting setting, const std::vector<std::uint8_t>& bytes,
                        unsigned number) {
  const SettingRow& row = rowOf(setting);
  (void)settings.writeBinary(numbered(row.key, number), numbered(row.name, number), bytes);
}

void WriteNumberedSettings(Settings& settings, Setting setting,
                           std::span<const std::string> texts) {
  const SettingRow& row = rowOf(setting);
  std::vector<std::pair<std::string, std::string>> values;
  for (const std::string& text : texts) {
    values.emplace_back(numbered(row.name, static_cast<unsigned>(values.size())), text);
  }
  (void)settings.writeTexts(row.key, values);
}

std::size_t CapacityOf(Setting setting) {
  return rowOf(setting).capacity;
}

int LeadingNumber(const std::string& text) {
  const long value = std::strtol(text.c_str(), nullptr, 10);
  return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

}  // namespace tabelion
