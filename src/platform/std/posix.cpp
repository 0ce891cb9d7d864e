#include "platform/std/posix.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

namespace tabelion {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  if (this != &other) {
    if (fd_ >= 0) ::close(fd_);
    fd_ = other.release();
  }
  return *this;
}

FileDescriptor::~FileDescriptor() {
  if (fd_ >= 0) ::close(fd_);
}

int FileDescriptor::release() {
  return std::exchange(fd_, -1);
}

bool FileDescriptor::close() {
  // After an interrupted close the descriptor is gone on Linux; a second close could hit another's.
  return ::close(release()) == 0 || errno == EINTR;
}

std::string reasonInWords(int error_number) {
  switch (error_number) {
    case ENOENT:
      return "there is no such file or folder";
    case EACCES:
      return "this user has no right to it";
    case EROFS:
      return "the disk is read-only";
    case ENOSPC:
      return "the disk is full";
    case EDQUOT:
      return "this user's share of the disk is used up";
    case EFBIG:
      return "it is larger than is possible here";
    case EIO:
      return "the disk reports an error";
    case ENOMEM:
      return "there is not enough memory";
    default:
      return std::system_category().message(error_number);
  }
}

Error systemError(ErrorKind kind, std::string_view what, int error_number) {
  return makeError(kind, fmt::format("{}: {}", what, reasonInWords(error_number)));
}

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string_view nameOf(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

namespace {

Error cannotReach(const std::string& path, int error_number) {
  return systemError(ErrorKind::kCannotWrite, fmt::format("Could not write {}", path),
                     error_number);
}

// What a symbolic link says, as a path that is usable from here.
std::string linkTarget(const std::string& link, std::string_view text) {
  if (text.starts_with('/')) return std::string(text);
  return folderOf(link) + "/" + std::string(text);
}

struct FreeDeleter {
  void operator()(char* text) const { std::free(text); }  // NOLINT: realpath() allocates so
};

}  // namespace

Result<std::string> resolveTarget(const std::string& path) {
  std::string at = path;
  for (int links = 0; links < 40; ++links) {  // the kernel's own bound
    struct stat status {};
    if (::lstat(at.c_str(), &status) != 0 && errno != ENOENT) return cannotReach(path, errno);
    char text[PATH_MAX];
    const ssize_t length = ::readlink(at.c_str(), text, sizeof text);
    if (length >= 0) {
      at = linkTarget(at, std::string_view(text, static_cast<std::size_t>(length)));
      continue;
    }
    const std::unique_ptr<char, FreeDeleter> folder(::realpath(folderOf(at).c_str(), nullptr));
    if (!folder) return cannotReach(path, errno);
    const std::string_view name = nameOf(at);
    if (name.empty() || name == "." || name == "..") return cannotReach(path, EISDIR);
    const std::string_view parent(folder.get());
    return fmt::format("{}/{}", parent == "/" ? "" : parent, name);
  }
  return cannotReach(path, ELOOP);
}

std::string siblingPath(const std::string& path, std::string_view suffix) {
  std::string name(nameOf(path));
  if (name.size() + kLongestSuffix + 2 > NAME_MAX) {
    // Two long names with one beginning must not share a sibling: a hash stands for the rest.
    std::uint32_t hash = 2166136261u;
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    name.resize(NAME_MAX - kLongestSuffix - 2 - 9);
    name += fmt::format("-{:08x}", hash);
  }
  return fmt::format("{}/.{}.{}", folderOf(path), name, suffix);
}

std::vector<std::string> namesOfFile(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || status.st_nlink < 2 || !S_ISREG(status.st_mode)) {
    return {path};
  }
  std::vector<std::string> names;
  std::error_code error;
  const std::string folder = folderOf(path);
  for (std::filesystem::directory_iterator at(folder, error), end; !error && at != end;
       at.increment(error)) {
    std::string name = folder + "/" + at->path().filename().string();
    struct stat other {};
    if (::lstat(name.c_str(), &other) == 0 && sameFile(status, other)) {
      names.push_back(std::move(name));
    }
  }
  if (names.empty()) return {path};
  std::sort(names.begin(), names.end());
  return names;
}

bool sameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

}  // namespace tabelion
