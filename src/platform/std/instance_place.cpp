#include "platform/std/instance_place.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tabelion {
namespace {

constexpr mode_t kEverybodyElse = S_IRWXG | S_IRWXO;

InstancePlace placeIn(const std::string& folder) {
  return {folder + "/tabelion.lock", folder + "/tabelion.socket"};
}

bool fitsSocketAddress(const InstancePlace& place) {
  return place.socket_path.size() < sizeof(sockaddr_un::sun_path);
}

// Links are not followed: in a folder that everybody may write to, one could lead anywhere.
bool isPrivateFolder(const std::string& path) {
  struct stat folder {};
  return ::lstat(path.c_str(), &folder) == 0 && S_ISDIR(folder.st_mode) &&
         folder.st_uid == ::geteuid() && (folder.st_mode & kEverybodyElse) == 0;
}

Error isRunning(int fd) {
  char text[16];
  const ssize_t got = ::pread(fd, text, sizeof text, 0);
  long process = 0;  // not written yet
  if (got > 0) std::from_chars(text, text + got, process);
  const std::string which = process > 0 ? fmt::format(" (process {})", process) : "";
  return makeError(ErrorKind::kLocked, fmt::format("Tabelion is running already{}", which));
}

}  // namespace

Result<InstancePlace> findInstancePlace() {
  const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && *runtime == '/' && isPrivateFolder(runtime)) {
    InstancePlace place = placeIn(runtime);
    if (fitsSocketAddress(place)) return place;
  }
  std::error_code error;
  const std::filesystem::path temporary = std::filesystem::temp_directory_path(error);
  if (error) return systemError(ErrorKind::kCannotWrite, "The temporary folder", error.value());
  const std::string folder = temporary / fmt::format("tabelion-{}", ::geteuid());
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    return systemError(ErrorKind::kCannotWrite, fmt::format("Could not make {}", folder), errno);
  }
  if (!isPrivateFolder(folder)) {
    return makeError(ErrorKind::kRefused,
                     fmt::format("{} is not a folder of this user alone", folder));
  }
  InstancePlace place = placeIn(folder);
  if (fitsSocketAddress(place)) return place;
  return makeError(ErrorKind::kRefused, fmt::format("The path of {} is too long", folder));
}

Result<FileDescriptor> takeInstanceLock(const std::string& lock_path) {
  FileDescriptor file(
      ::open(lock_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
  if (!file) {
    return systemError(ErrorKind::kCannotWrite, fmt::format("Could not open {}", lock_path), errno);
  }
  if (retryInterrupted([&] { return ::flock(file.get(), LOCK_EX | LOCK_NB); }) != 0) {
    if (errno == EWOULDBLOCK) return isRunning(file.get());
    return systemError(ErrorKind::kCannotWrite, fmt::format("Could not lock {}", lock_path), errno);
  }
  // For people only; the lock holds without it.
  const std::string process = fmt::format("{}\n", ::getpid());
  if (::ftruncate(file.get(), 0) == 0) {
    (void)!::pwrite(file.get(), process.data(), process.size(), 0);
  }
  return file;
}

}  // namespace tabelion
