// How large the window was left, for each size of desktop that it was on.
#pragma once

#include <optional>

#include "platform/dialogs.h"
#include "platform/settings.h"

namespace tabelion {

struct WindowSize {
  Size screen;      // own pixels
  double zoom = 0;  // window pixels for each
  bool operator==(const WindowSize& other) const {
    return screen.width == other.screen.width && screen.height == other.screen.height &&
           zoom == other.zoom;
  }
};

std::optional<WindowSize> RememberedWindow(Settings& settings, const Size& desktop);
void RememberWindow(Settings& settings, const Size& desktop, const WindowSize& window);

// The window made to fit a desktop: first it is zoomed out, and where that is not enough, its
// screen loses some of its size.
WindowSize FittedWindow(WindowSize window, const Size& desktop);

}  // namespace tabelion
