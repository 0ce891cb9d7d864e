#include "platform/std/file_lock.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/std/lock_note.h"
#include "platform/std/own_sibling.h"
#include "platform/std/posix.h"
#include "platform/std/process_mark.h"

namespace tabelion {
namespace {

constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
constexpr int kRounds = 20;  // while a holder is just going, or has not written its name yet

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

class ExistenceLock : public FileLock {
 public:
  ExistenceLock(const struct stat& made, std::string path) : made_(made), path_(std::move(path)) {}
  ~ExistenceLock() override {
    struct stat there {};
    if (::lstat(path_.c_str(), &there) == 0 && sameFile(made_, there)) ::unlink(path_.c_str());
  }

 private:
  struct stat made_;
  std::string path_;
};

// For places where no lock can be made: no save can succeed there either.
class NoLock : public FileLock {};

class LockOfAllNames : public FileLock {
 public:
  explicit LockOfAllNames(std::vector<std::unique_ptr<FileLock>> locks)
      : locks_(std::move(locks)) {}

 private:
  std::vector<std::unique_ptr<FileLock>> locks_;
};

// Renames without ever overwriting, or not at all. False with errno set.
bool renameNoReplaceAtOnce(const std::string& from, const std::string& to) {
  return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

// The same for disks that cannot, in the error that the attempt left.
bool linkInstead(const std::string& from, const std::string& to) {
  if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) return false;
  if (::link(from.c_str(), to.c_str()) != 0) return false;
  ::unlink(from.c_str());
  return true;
}

FileDescriptor openFile(const std::string& path, int flags) {
  return FileDescriptor(
      retryInterrupted([&] { return ::open(path.c_str(), flags | kFlags, 0666); }));
}

enum class KernelAnswer { kLocked, kBusy, kHasNone };

KernelAnswer askKernel(int fd) {
  if (retryInterrupted([&] { return ::flock(fd, LOCK_EX | LOCK_NB); }) == 0) {
    return KernelAnswer::kLocked;
  }
  return errno == EWOULDBLOCK ? KernelAnswer::kBusy : KernelAnswer::kHasNone;
}

// The last holder removes the file when it is done; a lock on a removed file guards nothing.
bool isStillThere(int fd, const std::string& path) {
  struct stat ours {};
  struct stat there {};
  return ::fstat(fd, &ours) == 0 && ::lstat(path.c_str(), &there) == 0 && sameFile(ours, there);
}

void waitForHolder() {
  const timespec ten_ms{0, 10'000'000};
  ::nanosleep(&ten_ms, nullptr);
}

// One file on its way to being locked.
class Attempt {
 public:
  Attempt(const std::string& shown_path, const std::string& target, const std::string& holder)
      : shown_path_(shown_path),
        holder_(holder),
        target_(target),
        lock_path_(siblingPath(target, "lock")),
        guard_path_(siblingPath(target, "lock-clearing")) {}

  Result<std::unique_ptr<FileLock>> run() {
    for (int round = 0; round < kRounds && !outcome_; ++round) {
      FileDescriptor file = openFile(lock_path_, O_RDWR);
      // Another user's lock file can be locked through a descriptor that only reads.
      if (!file && errno == EACCES) file = openFile(lock_path_, O_RDONLY);
      if (file) {
        takeExisting(std::move(file));
      } else if (errno == ENOENT) {
        make();
      } else {
        outcome_ = inTheWay(errno);
      }
    }
    return outcome_ ? std::move(*outcome_) : lockedBy({"another program", {}, true});
  }

 private:
  using Outcome = Result<std::unique_ptr<FileLock>>;

  Error lockedBy(const LockNote& note) const {
    std::string text =
        fmt::format("{} is open in {}; close it there first", shown_path_, note.holder);
    if (note.by_existing) {
      text += fmt::format(". If that program has ended, delete {}", lock_path_);
    }
    return makeError(ErrorKind::kLocked, text);
  }

  Error inTheWay(int error_number) const {
    const std::string what = fmt::format("Could not lock {}: {}", shown_path_, lock_path_);
    if (error_number == ELOOP) {
      return makeError(ErrorKind::kCannotWrite, what + " is in the way, and is a link");
    }
    if (error_number == EISDIR || error_number == ENXIO || error_number == 0) {
      return makeError(ErrorKind::kCannotWrite, what + " is in the way, and is not a file");
    }
    return systemError(ErrorKind::kCannotWrite, what, error_number);
  }

  // Nobody has a lock. Only one program can make the file.
  void make() {
    Placed placed = place(lock_path_);
    if (placed.file) {
      return placed.answer == KernelAnswer::kLocked ? keepKernelLock(std::move(placed.file))
                                                    : keepByExisting(std::move(placed.file));
    }
    const bool folder_is_protected =
        errno == EACCES || errno == EROFS || errno == EPERM || errno == ENOENT;
    if (folder_is_protected) {
      outcome_ = Outcome(std::make_unique<NoLock>());
    } else if (errno != EEXIST) {
      outcome_ = systemError(ErrorKind::kCannotWrite, fmt::format("Could not lock {}", shown_path_),
                             errno);
    }
  }

  struct Placed {
    FileDescriptor file;  // none, with errno set, when it could not be made: EEXIST, there is one
    KernelAnswer answer = KernelAnswer::kHasNone;
  };

  // Asks the kernel for a lock on a new file of ours, and writes into it who we are.
  bool sign(Placed& placed) const {
    ::fchmod(placed.file.get(), 0644);  // so that other users are told the holder
    placed.answer = askKernel(placed.file.get());
    const bool by_kernel = placed.answer == KernelAnswer::kLocked;
    // The kernel's lock holds without it; only its holder stays unnamed.
    return writeNote(placed.file.get(), holder_, by_kernel ? "kernel" : "file") || by_kernel;
  }

  // Makes a lock file that says who we are from its first moment on.
  Placed place(const std::string& path) const {
    OwnSibling made = makeOwnSibling(target_, "lock", 0644);
    Placed placed{std::move(made.file)};
    if (!placed.file) return placed;
    if (sign(placed) && (renameNoReplaceAtOnce(made.path, path) || linkInstead(made.path, path))) {
      return placed;
    }
    const int error_number = errno;
    ::unlink(made.path.c_str());
    placed.file = FileDescriptor();
    errno = error_number;
    const bool cannot_be_moved =
        errno == EPERM || errno == ENOTSUP || errno == ENOSYS || errno == EINVAL;
    return cannot_be_moved ? placeDirectly(path) : std::move(placed);
  }

  // Where a disk can neither rename without replacing nor link, the file is nameless for a moment.
  Placed placeDirectly(const std::string& path) const {
    Placed placed{openFile(path, O_RDWR | O_CREAT | O_EXCL)};
    if (!placed.file || sign(placed)) return placed;
    const int error_number = errno;
    ::unlink(path.c_str());
    placed.file = FileDescriptor();
    errno = error_number;
    return placed;
  }

  void keepKernelLock(FileDescriptor file) {
    if (!isStillThere(file.get(), lock_path_)) return;
    outcome_ = Outcome(std::make_unique<KernelLock>(std::move(file), lock_path_));
  }

  void keepByExisting(FileDescriptor file) {
    struct stat made {};
    if (::fstat(file.get(), &made) != 0 || !file.close()) {
      outcome_ = systemError(ErrorKind::kCannotWrite, fmt::format("Could not lock {}", shown_path_),
                             errno);
      ::unlink(lock_path_.c_str());
      return;
    }
    struct stat there {};
    if (::lstat(lock_path_.c_str(), &there) != 0 || !sameFile(made, there)) return;
    outcome_ = Outcome(std::make_unique<ExistenceLock>(made, lock_path_));
  }

  void takeExisting(FileDescriptor file) {
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
      outcome_ = inTheWay(0);
      return;
    }
    const KernelAnswer answer = askKernel(file.get());
    const LockNote note = readNote(file.get());
    if (answer == KernelAnswer::kLocked && (!note.by_existing || hasEnded(note.mark))) {
      (void)writeNote(file.get(), holder_, "kernel");  // best effort, as in sign()
      return keepKernelLock(std::move(file));
    }
    if (answer == KernelAnswer::kBusy && note.empty()) return waitForHolder();
    if (answer == KernelAnswer::kHasNone && (note.empty() || hasEnded(note.mark))) return clear();
    const bool lasts = answer != KernelAnswer::kBusy;  // longer than its program may
    outcome_ = lockedBy({note.holder, note.mark, lasts});
  }

  // Removes a lock file whose program has ended. Between seeing it and removing it another program
  // may have done so and made its own: only who has made the guard may remove one that is not its
  // own, and looks again before.
  void clear() {
    const Placed guard = place(guard_path_);
    if (!guard.file) {
      const FileDescriptor left = openFile(guard_path_, O_RDONLY);
      if (left && isAbandoned(left.get(), ::time(nullptr))) ::unlink(guard_path_.c_str());
      return waitForHolder();
    }
    const FileDescriptor lock = openFile(lock_path_, O_RDONLY);
    struct stat now {};  // by the disk's own clock
    const bool abandoned =
        lock && ::fstat(guard.file.get(), &now) == 0 && isAbandoned(lock.get(), now.st_mtim.tv_sec);
    if (abandoned) ::unlink(lock_path_.c_str());
    ::unlink(guard_path_.c_str());
    if (!abandoned) waitForHolder();
  }

  const std::string& shown_path_;
  const std::string& holder_;
  const std::string& target_;
  std::string lock_path_;
  std::string guard_path_;
  std::optional<Outcome> outcome_;
};

}  // namespace

Result<std::unique_ptr<FileLock>> lockFile(const std::string& path, const std::string& holder) {
  const Result<std::string> target = resolveTarget(path);
  if (!target) return target.error();
  std::vector<std::unique_ptr<FileLock>> locks;
  for (const std::string& name : namesOfFile(*target)) {
    auto lock = Attempt(path, name, holder).run();
    if (!lock) return lock;
    locks.push_back(std::move(*lock));
  }
  if (locks.size() == 1) return std::move(locks.front());
  return std::unique_ptr<FileLock>(std::make_unique<LockOfAllNames>(std::move(locks)));
}

}  // namespace tabelion
