#include "services/recent_files.h"

#include <algorithm>

#include "services/file_names.h"
#include "services/setting_table.h"

namespace tabelion {

std::array<std::string, kRecentFiles> ReadRecentFiles(Application& app) {
  std::array<std::string, kRecentFiles> paths;
  for (unsigned i = 0; i < kRecentFiles; ++i) {
    paths[i] = ReadSetting(app.platform.settings, Setting::kLastFile, i).value_or("");
  }
  return paths;
}

void RememberRecentFile(Application& app, const std::string& path) {
  if (path.size() >= CapacityOf(Setting::kLastFile)) return;
  auto paths = ReadRecentFiles(app);
  auto at = std::find_if(paths.begin(), paths.end(), [&](const std::string& listed) {
    return EqualIgnoringCase(listed, path);
  });
  if (at == paths.end()) {
    --at;
    *at = path;
  }
  std::rotate(paths.begin(), at, at + 1);
  WriteNumberedSettings(app.platform.settings, Setting::kLastFile, paths);
}

}  // namespace tabelion
