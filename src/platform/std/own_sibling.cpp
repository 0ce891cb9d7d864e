#include "platform/std/own_sibling.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>

#include "platform/std/process_mark.h"

namespace tabelion {
namespace {

void removeLeftovers(const std::string& path, const std::string& kind) {
  const std::string start = siblingPath(path, kind);
  std::error_code error;
  for (std::filesystem::directory_iterator at(folderOf(path), error), end; !error && at != end;
       at.increment(error)) {
    const std::string name = at->path().filename().string();
    if (!name.starts_with(nameOf(start))) continue;
    const std::string_view mark = std::string_view(name).substr(nameOf(start).size());
    if (hasEnded(mark.substr(0, mark.rfind('.')))) ::unlink(at->path().c_str());
  }
}

}  // namespace

OwnSibling makeOwnSibling(const std::string& path, std::string_view kind, mode_t mode) {
  const std::string start = fmt::format("{}-", kind);
  removeLeftovers(path, start);
  const std::string mark = processMark();
  OwnSibling sibling;
  // The number keeps apart what one process writes at a time.
  for (int number = 1; number < 100; ++number) {
    sibling.path = siblingPath(path, fmt::format("{}{}.{}", start, mark, number));
    sibling.file = FileDescriptor(retryInterrupted([&] {
      return ::open(sibling.path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | O_CREAT | O_EXCL, mode);
    }));
    if (sibling.file || errno != EEXIST) break;
  }
  return sibling;
}

}  // namespace tabelion
