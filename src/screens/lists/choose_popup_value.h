// Choosing a value of a pop-up field from a menu that walks its tree.
#pragma once

#include <string>

#include "engine/stored_value.h"
#include "services/application.h"

namespace tabelion {

// Results of choosing.
inline constexpr int kPopupChosen = 0;
inline constexpr int kPopupDismissed = -1;
inline constexpr int kPopupNoValue = -2;
inline constexpr int kPopupEditList = -3;  // the caller opens the list's screen

struct PopupValue {
  PopupKey key{};  // before: where the menu opens
  std::u16string text;
};

struct PopupMenu {
  int slot = 0;
  bool allow_no_value = false;
  bool allow_edit = false;
  int menu_top = 0;  // on the screen
};

// One of the results above. kPopupChosen sets key and text: of an item that has none below it, or,
// from an empty list that cannot be edited, an empty value. kPopupNoValue clears the key and sets
// the text "No Value"; the others leave `value` alone. An item of the fifth level ends the choice.
int ChoosePopupValue(Application& app, const Database& database, const PopupMenu& menu,
                     PopupValue& value);

}  // namespace tabelion
