// A key/value store that outlives the program: one per user, one for the whole machine.
//
// A key is a path with backslashes ("Software\Tabelion3\Alarms"); each key holds named values
// (8-bit text, UTF-8, or binary) and further keys. Names compare exactly.
//
// A read that finds nothing, or a value of the other kind, gives none: callers have defaults for
// everything, and a store that is missing reads as empty. What is written is stored when the call
// returns; it is always the user's own: the machine's store is never written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/result.h"

namespace tabelion {

enum class SettingsRoot { kUser, kMachine };

class Settings {
 public:
  virtual ~Settings() = default;
  // Text has no NULs and may be empty, which is a value.
  virtual std::optional<std::string> readText(SettingsRoot root, const std::string& key,
                                              const std::string& name) = 0;
  virtual Status writeText(const std::string& key, const std::string& name,
                           const std::string& text) = 0;
  // Several values (name and text) of one key, in one step where the store can.
  virtual Status writeTexts(const std::string& key,
                            const std::vector<std::pair<std::string, std::string>>& values) {
    for (const auto& [name, text] : values) {
      if (Status written = writeText(key, name, text); !written) return written;
    }
    return Done{};
  }
  // Binary values of the user's store; any bytes, also none.
  virtual std::optional<std::vector<std::uint8_t>> readBinary(const std::string& key,
                                                              const std::string& name) = 0;
  virtual Status writeBinary(const std::string& key, const std::string& name,
                             const std::vector<std::uint8_t>& bytes) = 0;
  // The names, without path, of the keys right below this one, in any order.
  virtual std::vector<std::string> subKeys(const std::string& key) = 0;
  virtual Status deleteKey(const std::string& key) = 0;  // with everything below it
};

}  // namespace tabelion
