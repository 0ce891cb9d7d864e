// Finding a record by typing the start of its text in the list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "services/application.h"

namespace tabelion {

class QuickFind {
 public:
  static constexpr std::size_t kCapacity = 29;  // characters

  void clear();
  bool empty() const { return typed_.empty(); }
  // Whether something was typed since the last clear.
  bool inUse() const { return in_use_; }

  // Takes a letter, digit or space; the row of the first record that begins with what was typed so
  // far. None, and the character is forgotten, when the buffer is full or no record matches.
  std::optional<int> type(Application& app, char32_t character);
  // Forgets the last character. None when there was none or nothing is left.
  std::optional<int> erase(Application& app);

 private:
  std::optional<int> search(Application& app) const;

  std::u16string typed_;
  bool in_use_ = false;
};

// Whether a key's character is one that quick find takes.
bool IsFindCharacter(char32_t character);

}  // namespace tabelion
