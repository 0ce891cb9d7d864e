#include "support/memory_settings.h"

namespace tabelion {

std::optional<std::string> MemorySettings::readText(SettingsRoot root, const std::string& key,
                                                    const std::string& name) {
  const Values& values = root == SettingsRoot::kUser ? user : machine;
  const auto at = values.find({key, name});
  return at == values.end() ? std::nullopt : std::optional(at->second);
}

Status MemorySettings::writeText(const std::string& key, const std::string& name,
                                 const std::string& text) {
  if (fail_writes) return makeError(ErrorKind::kCannotWrite, "Could not write the settings");
  user[{key, name}] = text;
  ++writes;
  return Done{};
}

std::optional<std::vector<std::uint8_t>> MemorySettings::readBinary(const std::string& key,
                                                                    const std::string& name) {
  const auto bytes = readText(SettingsRoot::kUser, key, name);
  if (!bytes) return std::nullopt;
  return std::vector<std::uint8_t>(bytes->begin(), bytes->end());
}

Status MemorySettings::writeBinary(const std::string& key, const std::string& name,
                                   const std::vector<std::uint8_t>& bytes) {
  return writeText(key, name, std::string(bytes.begin(), bytes.end()));
}

std::vector<std::string> MemorySettings::subKeys(const std::string& key) {
  std::vector<std::string> names;
  const std::string prefix = key + "\\";
  for (const auto& [place, value] : user) {
    if (!place.first.starts_with(prefix)) continue;
    std::string name = place.first.substr(prefix.size());
    name.resize(std::min(name.find('\\'), name.size()));
    if (names.empty() || names.back() != name) names.push_back(std::move(name));
  }
  return names;
}

Status MemorySettings::deleteKey(const std::string& key) {
  if (fail_writes) return makeError(ErrorKind::kCannotWrite, "Could not write the settings");
  std::erase_if(user, [&](const auto& entry) {
    const std::string& name = entry.first.first;
    return name == key || name.starts_with(key + "\\");
  });
  return Done{};
}

}  // namespace tabelion
