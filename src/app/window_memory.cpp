#include "app/window_memory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "services/setting_table.h"

namespace tabelion {

namespace {

constexpr std::size_t kMostDesktops = 8;
constexpr int kSmallestSide = 120;
constexpr double kSmallestZoom = 0.5;

// "1920x1080=240x320@200": the zoom in hundredths, so that no locale has a say in it.
struct Entry {
  Size desktop;
  WindowSize window;
};

std::vector<Entry> readEntries(Settings& settings) {
  std::vector<Entry> entries;
  std::string text = ReadSetting(settings, Setting::kWindowSizes).value_or("");
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    Entry entry;
    Size& screen = entry.window.screen;
    int hundredths = 0;
    if (std::sscanf(text.substr(0, end).c_str(), "%5dx%5d=%5dx%5d@%5d", &entry.desktop.width,
                    &entry.desktop.height, &screen.width, &screen.height, &hundredths) == 5 &&
        screen.width >= kSmallestSide && screen.height >= kSmallestSide &&
        hundredths >= kSmallestZoom * 100) {
      entry.window.zoom = hundredths / 100.0;
      entries.push_back(entry);
    }
    text.erase(0, end + 1);
  }
  return entries;
}

auto isOn(const Size& desktop) {
  return [desktop](const Entry& entry) {
    return entry.desktop.width == desktop.width && entry.desktop.height == desktop.height;
  };
}

}  // namespace

std::optional<WindowSize> RememberedWindow(Settings& settings, const Size& desktop) {
  const std::vector<Entry> entries = readEntries(settings);
  const auto found = std::find_if(entries.begin(), entries.end(), isOn(desktop));
  if (found == entries.end()) return std::nullopt;
  return FittedWindow(found->window, desktop);
}

void RememberWindow(Settings& settings, const Size& desktop, const WindowSize& window) {
  std::vector<Entry> entries = readEntries(settings);
  std::erase_if(entries, isOn(desktop));
  entries.insert(entries.begin(), {desktop, window});
  entries.resize(std::min(entries.size(), kMostDesktops));
  std::string text;
  for (const auto& [on, size] : entries) {
    text += fmt::format("{}{}x{}={}x{}@{:.0f}", text.empty() ? "" : " ", on.width, on.height,
                        size.screen.width, size.screen.height, size.zoom * 100);
  }
  WriteSetting(settings, Setting::kWindowSizes, text);
}

WindowSize FittedWindow(WindowSize window, const Size& desktop) {
  const double fits = std::min(double(desktop.width) / window.screen.width,
                               double(desktop.height) / window.screen.height);
  window.zoom = std::max(kSmallestZoom, std::min(window.zoom, fits));
  window.screen.width =
      std::min(window.screen.width, static_cast<int>(desktop.width / window.zoom));
  window.screen.height =
      std::min(window.screen.height, static_cast<int>(desktop.height / window.zoom));
  return window;
}

}  // namespace tabelion
