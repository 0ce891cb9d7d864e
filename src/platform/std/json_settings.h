// Settings in JSON files that people can read.
//
//   { "Software\\Tabelion3":             { "AutoSaveSeconds": "60" },
//     "Software\\Tabelion3\\Alarms\\17": { "RecNum": "4", "Blob": {"binary": "00ff7f"} } }
//
// One object per key, under its whole path, so that a value and a sub-key may have one name. Values
// are texts, or {"binary": hexadecimal}; a text that is not UTF-8 is kept in the binary form too.
// Whole numbers and true/false typed by hand read as the texts they stand for.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/settings.h"

namespace tabelion {

struct JsonSettingsOptions {
  // Folder of "tabelion/settings.json", per user; empty: the user's configuration folder.
  std::string config_folder;
  // Folders of the machine-wide file, the first one that has a value wins; empty: the system's.
  std::vector<std::string> machine_folders;
  // Is told in a sentence, once for each state of a file, that it cannot be read or understood.
  std::function<void(const std::string&)> warn;
};

// Programs that run side by side see each other's writes: a file is read again when it changed,
// and a write locks, reads, changes and replaces the file in one step. The file is its owner's
// alone (0600). One that cannot be understood reads as empty; the first write renames it to
// "settings.json.damaged".
class JsonSettings : public Settings {
 public:
  explicit JsonSettings(const JsonSettingsOptions& options = {});
  ~JsonSettings() override;

  std::optional<std::string> readText(SettingsRoot root, const std::string& key,
                                      const std::string& name) override;
  Status writeText(const std::string& key, const std::string& name,
                   const std::string& text) override;
  Status writeTexts(const std::string& key,
                    const std::vector<std::pair<std::string, std::string>>& values) override;
  std::optional<std::vector<std::uint8_t>> readBinary(const std::string& key,
                                                      const std::string& name) override;
  Status writeBinary(const std::string& key, const std::string& name,
                     const std::vector<std::uint8_t>& bytes) override;
  std::vector<std::string> subKeys(const std::string& key) override;
  Status deleteKey(const std::string& key) override;

 private:
  struct Store;  // one file and what was in it when it was last read
  std::unique_ptr<Store> user_;
  std::vector<Store> machine_;
};

}  // namespace tabelion
