// A walk through everything that a screen's soft keys and menus offer: each entry is chosen once,
// in a run of its own; what it opens is left again by the Back key, and every question gets a No.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/fake_phone.h"

namespace tabelion {

using MenuPath = std::vector<std::u16string>;

struct MenuWalk {
  int screen = 0;
  std::function<void()> program;        // that the screen is part of
  std::function<void()> enter = [] {};  // the script from the program to the screen
  std::function<void(const MenuPath&)> after = [](const MenuPath&) {};  // looks at what is left
};

// The entries that were chosen. The test fails where one of them does not come back.
std::vector<MenuPath> walkMenus(FakePhone& phone, const MenuWalk& walk);

}  // namespace tabelion
