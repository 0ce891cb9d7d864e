// The dialog that asks for the text of a pop-up item.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "services/application.h"

namespace tabelion {

inline constexpr ControlId kPopupTextBox = 1;
inline constexpr int kMostPopupCharacters = 79;

struct PopupTextQuestion {
  std::u16string title;
  std::u16string text;  // that stands in the box first
  // Whether another item has this text already.
  std::function<bool(const std::string& stored)> is_taken;
};

// The text as the database stores it: not empty, and no other's. None when there was no answer.
std::optional<std::string> AskPopupText(Application& app, const PopupTextQuestion& question);

}  // namespace tabelion
