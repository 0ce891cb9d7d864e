#include "platform/std/documents_folder.h"

#include <dirent.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <vector>

namespace tabelion {
namespace {

std::string environment(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

// The account's entry in the user database; getpwuid's buffer is this thread's only for the call.
const passwd* account() {
  return ::getpwuid(::getuid());
}

std::string homeFolder() {
  std::string home = environment("HOME");
  if (home.empty()) {
    if (const passwd* const entry = account()) home = entry->pw_dir;
  }
  while (home.size() > 1 && home.back() == '/') home.pop_back();
  return home;
}

bool isFolder(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

// The value of a line `NAME="text"`, where a backslash protects the character after it.
std::string quotedValue(std::string_view line, std::string_view name) {
  const std::size_t first = line.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  line.remove_prefix(first);
  if (!line.starts_with(name)) return {};
  line.remove_prefix(name.size());
  if (!line.starts_with("=\"")) return {};
  line.remove_prefix(2);
  std::string value;
  for (std::size_t i = 0; i < line.size() && line[i] != '"'; ++i) {
    if (line[i] == '\\' && i + 1 < line.size()) ++i;
    value += line[i];
  }
  return value;
}

// The documents line of the desktop's list of folders; empty when there is none, or when it says
// that the home folder itself stands for it (which means "no such folder").
std::string listedDocumentsFolder(const std::string& home) {
  const std::optional<std::string> config = userConfigFolder();
  if (!config) return {};
  std::ifstream list(*config + "/user-dirs.dirs");
  std::string folder;
  for (std::string line; std::getline(list, line);) {
    if (std::string value = quotedValue(line, "XDG_DOCUMENTS_DIR"); !value.empty()) {
      folder = std::move(value);
    }
  }
  constexpr std::string_view kHome = "$HOME";
  if (folder.starts_with(kHome)) folder = home + folder.substr(kHome.size());
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder.starts_with('/') && folder != home ? folder : std::string();
}

// The folders in `root` where another file system is mounted, by name.
std::vector<std::string> mountedVolumes(const std::string& root) {
  std::vector<std::string> volumes;
  struct stat root_status {};
  DIR* const folder = ::opendir(root.c_str());
  if (!folder) return volumes;
  if (::fstat(::dirfd(folder), &root_status) == 0) {
    while (const dirent* const entry = ::readdir(folder)) {
      if (entry->d_name[0] == '.') continue;
      const std::string path = root + "/" + entry->d_name;
      struct stat status {};
      if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
          status.st_dev != root_status.st_dev) {
        volumes.push_back(path);
      }
    }
  }
  ::closedir(folder);
  std::sort(volumes.begin(), volumes.end());
  return volumes;
}

// The folder that a variable names, else one in the home folder.
std::optional<std::string> userFolder(const char* variable, const char* in_home) {
  std::string folder = environment(variable);
  if (folder.starts_with('/')) return folder;
  const std::string home = homeFolder();
  if (home.empty()) return std::nullopt;
  return home + in_home;
}

}  // namespace

std::optional<std::string> userConfigFolder() {
  return userFolder("XDG_CONFIG_HOME", "/.config");
}

std::optional<std::string> userStateFolder() {
  return userFolder("XDG_STATE_HOME", "/.local/state");
}

std::optional<std::string> userDocumentsFolder() {
  const std::string home = homeFolder();
  if (home.empty()) return std::nullopt;
  std::string listed = listedDocumentsFolder(home);
  return listed.empty() ? home + "/Documents" : listed;
}

std::optional<std::string> cardDocumentsFolder() {
  std::string user = environment("USER");
  if (user.empty()) {
    if (const passwd* const entry = account()) user = entry->pw_name;
  }
  if (user.empty()) return std::nullopt;
  for (const char* const root : {"/media/", "/run/media/"}) {
    for (const std::string& volume : mountedVolumes(root + user)) {
      const std::string documents = volume + "/Documents";
      return isFolder(documents) ? documents : volume;
    }
  }
  return std::nullopt;
}

}  // namespace tabelion
