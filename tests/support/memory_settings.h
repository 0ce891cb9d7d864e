// Settings in memory; a test reads and writes `user` and `machine` directly.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/settings.h"

namespace tabelion {

class MemorySettings : public Settings {
 public:
  using Values = std::map<std::pair<std::string, std::string>, std::string>;  // (key, name): bytes
  Values user;
  Values machine;
  bool fail_writes = false;
  int writes = 0;

  std::optional<std::string> readText(SettingsRoot root, const std::string& key,
                                      const std::string& name) override;
  Status writeText(const std::string& key, const std::string& name,
                   const std::string& text) override;
  std::optional<std::vector<std::uint8_t>> readBinary(const std::string& key,
                                                      const std::string& name) override;
  Status writeBinary(const std::string& key, const std::string& name,
                     const std::vector<std::uint8_t>& bytes) override;
  std::vector<std::string> subKeys(const std::string& key) override;
  Status deleteKey(const std::string& key) override;
};

}  // namespace tabelion
