#include "platform/std/file_lock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <ctime>
#include <string_view>

#include "platform/std/posix.h"

namespace tabelion {
namespace {

class KernelLock : public FileLock {
 public:
  KernelLock(FileDescriptor file, std::string path)
      : file_(std::move(file)), path_(std::move(path)) {}
  ~KernelLock() override {
    // Still held, so nobody else can have taken this name for a file of theirs.
    ::unlink(path_.c_str());
  }

 private:
  FileDescriptor file_;
  std::string path_;
};

// For places where no lock can be made: no save can succeed there either.
class NoLock : public FileLock {};

enum class Outcome { kHeld, kBusy, kUnavailable, kGone };

Outcome tryLock(int fd, const std::string& lock_path) {
  if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
    return errno == EWOULDBLOCK ? Outcome::kBusy : Outcome::kUnavailable;
  }
  // The holder before us removes the file when it is done; a lock on a removed file guards nothing.
  struct stat ours {};
  struct stat there {};
  const bool same =
      ::fstat(fd, &ours) == 0 && ::lstat(lock_path.c_str(), &there) == 0 && sameFile(ours, there);
  return same ? Outcome::kHeld : Outcome::kGone;
}

FileDescriptor openLockFile(const std::string& path) {
  constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  FileDescriptor file(::open(path.c_str(), O_RDWR | O_CREAT | kFlags, 0666));
  // Another user's lock file can be locked through a descriptor that only reads.
  if (!file && errno == EACCES) file = FileDescriptor(::open(path.c_str(), O_RDONLY | kFlags));
  return file;
}

std::string hostName() {
  char name[HOST_NAME_MAX + 1] = {};
  return ::gethostname(name, sizeof name - 1) == 0 ? name : "this machine";
}

// Best effort: the lock holds without it, only its holder stays unnamed.
void writeHolder(int fd, const std::string& holder) {
  const std::string line = fmt::format("{}, process {} on {}\n", holder, ::getpid(), hostName());
  if (::ftruncate(fd, 0) == 0) (void)!::pwrite(fd, line.data(), line.size(), 0);
}

// "HOLDER (process PID on HOST)", or empty when nothing is written there (yet).
std::string readHolder(int fd) {
  char text[512];
  const ssize_t got = ::pread(fd, text, sizeof text, 0);
  std::string_view line(text, got > 0 ? static_cast<std::size_t>(got) : 0);
  line = line.substr(0, line.find('\n'));
  const std::size_t comma = line.rfind(", ");
  if (comma == std::string_view::npos) return std::string(line);
  return fmt::format("{} ({})", line.substr(0, comma), line.substr(comma + 2));
}

void waitForHolder() {
  const timespec ten_ms{0, 10'000'000};
  ::nanosleep(&ten_ms, nullptr);
}

}  // namespace

Result<std::unique_ptr<FileLock>> lockFile(const std::string& path, const std::string& holder) {
  const Result<std::string> target = resolveTarget(path);
  if (!target) return target.error();
  const std::string lock_path = siblingPath(*target, "lock");
  std::string other;
  // A few rounds, since a holder may just be going, or not have written its name yet.
  for (int round = 0; round < 20 && other.empty(); ++round) {
    FileDescriptor file = openLockFile(lock_path);
    if (!file) return std::unique_ptr<FileLock>(std::make_unique<NoLock>());
    switch (tryLock(file.get(), lock_path)) {
      case Outcome::kHeld:
        writeHolder(file.get(), holder);
        return std::unique_ptr<FileLock>(std::make_unique<KernelLock>(std::move(file), lock_path));
      case Outcome::kUnavailable:
        return std::unique_ptr<FileLock>(std::make_unique<NoLock>());
      case Outcome::kBusy:
        other = readHolder(file.get());
        if (other.empty()) waitForHolder();
        break;
      case Outcome::kGone:
        break;
    }
  }
  if (other.empty()) other = "another program";
  return makeError(ErrorKind::kLocked,
                   fmt::format("{} is open in {}; close it there first", path, other));
}

}  // namespace tabelion
