// Finding a row of a list by typing the start of its text. What was typed stands in the screen's
// title until a pause, after which the next character begins anew.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/dialogs.h"

namespace tabelion {

inline constexpr int kFindTimer = 11;
inline constexpr int kFindPauseMs = 2000;

class TypeToFind {
 public:
  static constexpr std::size_t kCapacity = 29;  // characters

  // The first row that begins with what was typed.
  using Search = std::function<std::optional<int>(const std::u16string& typed)>;

  explicit TypeToFind(std::u16string title) : title_(std::move(title)) {}

  struct Taken {
    bool taken = false;      // the key was one for it, and is used up
    std::optional<int> row;  // to select
  };
  // Takes letters, digits and spaces; one that finds no row is forgotten. Back erases the last;
  // when all of it is gone, one press too many must not leave the screen, so until the pause it
  // does nothing.
  Taken onKey(Dialog& dialog, const KeyPress& key, const Search& search);
  void onTimer(Dialog& dialog, int timer);
  void clear(Dialog& dialog);
  // The screen's title from now on.
  void setTitle(Dialog& dialog, std::u16string title);

 private:
  void show(Dialog& dialog);

  std::u16string title_;  // of the screen while nothing is typed
  std::u16string typed_;
  bool in_use_ = false;  // something was typed since the last clear
};

}  // namespace tabelion
