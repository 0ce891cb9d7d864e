#include "services/file_names.h"

#include <algorithm>

#include "engine/ascii.h"

namespace tabelion {
std::string FileNameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(slash, 1));
}

std::string BaseNameOf(const std::string& path) {
  const std::string name = FileNameOf(path);
  return name.substr(0, name.rfind('.'));
}

bool EqualIgnoringCase(const std::string& a, const std::string& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

std::string PathIn(Files& files, const std::string& folder, const std::string& name) {
  std::string found = name;
  if (const auto entries = files.list(folder); entries.ok()) {
    for (const FolderEntry& entry : *entries) {
      if (entry.name == name) return folder + "/" + name;
      if (EqualIgnoringCase(entry.name, name)) found = entry.name;
    }
  }
  return folder + "/" + found;
}

int FirstFreeNumber(Files& files, const std::string& folder, const std::string& stem, int first) {
  int number = first;
  while (files.info(PathIn(files, folder, FileNameOf(NumberedPath(folder, stem, number)))).ok()) {
    ++number;
  }
  return number;
}

std::string NumberedPath(const std::string& folder, const std::string& stem, int number) {
  return folder + "/" + stem + std::to_string(number) + ".PDB";
}

}  // namespace tabelion
