// The databases that were used last.
#pragma once

#include <array>
#include <string>

#include "services/application.h"

namespace tabelion {

inline constexpr int kRecentFiles = 10;

// Paths (UTF-8), the last one first; empty where there are no more.
std::array<std::string, kRecentFiles> ReadRecentFiles(Application& app);

// Puts the path on top. One that is listed already, in whatever case, moves up; else the lowest
// one goes. A path that is too long to be read back (1,023 bytes) is not listed.
void RememberRecentFile(Application& app, const std::string& path);

}  // namespace tabelion
