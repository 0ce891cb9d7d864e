#include "platform/std/atomic_replace.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <utility>
#include <vector>

namespace tabelion {
namespace {

constexpr const char* kAccessList = "system.posix_acl_access";

// Extended attributes, access lists among them, as far as the file system and our rights allow.
void copyExtendedAttributes(int from, int to) {
  // A folder's default access list must not add rights that the old file did not give.
  ::fremovexattr(to, kAccessList);
  const ssize_t names_size = ::flistxattr(from, nullptr, 0);
  if (names_size <= 0) return;
  std::string names(static_cast<std::size_t>(names_size), '\0');
  const ssize_t got = ::flistxattr(from, names.data(), names.size());
  if (got <= 0) return;
  names.resize(static_cast<std::size_t>(got));
  std::vector<char> value;
  for (std::size_t at = 0; at < names.size();) {
    const char* const name = names.c_str() + at;
    at += std::string_view(name).size() + 1;
    const ssize_t value_size = ::fgetxattr(from, name, nullptr, 0);
    if (value_size < 0) continue;
    value.resize(static_cast<std::size_t>(value_size));
    const ssize_t value_got = ::fgetxattr(from, name, value.data(), value.size());
    if (value_got >= 0) {
      ::fsetxattr(to, name, value.data(), static_cast<std::size_t>(value_got), 0);
    }
  }
}

// The pieces as the system takes them; neighbours that touch in memory become one.
std::vector<iovec> mergePieces(std::span<const BytePiece> pieces) {
  std::vector<iovec> merged;
  for (const BytePiece& piece : pieces) {
    if (piece.empty()) continue;
    auto* const start = const_cast<std::uint8_t*>(piece.data());  // writev only reads it
    if (!merged.empty() &&
        static_cast<std::uint8_t*>(merged.back().iov_base) + merged.back().iov_len == start) {
      merged.back().iov_len += piece.size();
    } else {
      merged.push_back({start, piece.size()});
    }
  }
  return merged;
}

// Writes everything, however little the system takes at a time. False with errno set.
bool writeFully(int fd, std::span<iovec> pieces) {
  while (!pieces.empty()) {
    const int count = static_cast<int>(std::min<std::size_t>(pieces.size(), IOV_MAX));
    const ssize_t written = retryInterrupted([&] { return ::writev(fd, pieces.data(), count); });
    if (written < 0) return false;
    if (written == 0) {
      errno = EIO;  // a file that takes nothing and says nothing would loop for ever
      return false;
    }
    auto left = static_cast<std::size_t>(written);
    while (!pieces.empty() && left >= pieces.front().iov_len) {
      left -= pieces.front().iov_len;
      pieces = pieces.subspan(1);
    }
    if (left > 0) {
      pieces.front().iov_base = static_cast<std::uint8_t*>(pieces.front().iov_base) + left;
      pieces.front().iov_len -= left;
    }
  }
  return true;
}

// A rename is on the disk once its folder is. `file` is what was renamed. False with errno set.
bool flushFolder(const std::string& path, int file) {
  const FileDescriptor folder(::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A folder that may be written but not read is flushed with everything else on its disk.
  if (!folder) return errno == EACCES && ::syncfs(file) == 0;
  if (retryInterrupted([&] { return ::fsync(folder.get()); }) == 0) return true;
  return errno == EINVAL || errno == ENOTSUP || errno == ENOSYS;  // no such thing on this disk
}

}  // namespace

bool renameNoReplace(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  // The file system cannot do it in one step.
  struct stat status {};
  if (::lstat(to.c_str(), &status) == 0) {
    errno = EEXIST;
    return false;
  }
  return ::rename(from.c_str(), to.c_str()) == 0;
}

Replacement::Replacement(std::string target, std::string sibling, Existing existing)
    : target_(std::move(target)), sibling_(std::move(sibling)), existing_(existing) {}

Replacement::~Replacement() {
  // While the descriptor is open nobody else touches the sibling, so it is certainly ours.
  if (file_) ::unlink(sibling_.c_str());
}

Error Replacement::failed(std::string_view step, int error_number) const {
  return systemError(ErrorKind::kCannotWrite, fmt::format("Could not write {}: {}", target_, step),
                     error_number);
}

Error Replacement::failed(std::string_view reason) const {
  return makeError(ErrorKind::kCannotWrite, fmt::format("Could not write {}: {}", target_, reason));
}

Error Replacement::failed(int error_number) const {
  return systemError(ErrorKind::kCannotWrite, fmt::format("Could not write {}", target_),
                     error_number);
}

Result<Replacement> Replacement::begin(const std::string& path, Existing existing) {
  Result<std::string> target = resolveTarget(path);
  if (!target) return target.error();
  Replacement replacement(*target, siblingPath(*target, "saving"), existing);

  struct stat old {};
  if (::lstat(target->c_str(), &old) != 0) {
    if (errno != ENOENT) return replacement.failed(errno);
    // The system applies the user's mask to a new file.
    if (Status made = replacement.createSibling(0666); !made) return made.error();
    return replacement;
  }
  if (existing == Existing::kRefuse) return replacement.failed(EEXIST);
  if (!S_ISREG(old.st_mode)) {
    return makeError(ErrorKind::kCannotWrite,
                     fmt::format("Could not write {}: it is not a file", *target));
  }
  // Replacing needs only rights on the folder; a file that is protected itself is refused here.
  const FileDescriptor old_file(
      retryInterrupted([&] { return ::open(target->c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC); }));
  if (!old_file && (errno == EACCES || errno == EPERM))
    return replacement.failed("the file is read-only");
  if (!old_file) return replacement.failed(errno);
  if (::fstat(old_file.get(), &old) != 0) return replacement.failed(errno);
  if (Status made = replacement.createSibling(0600); !made) return made.error();
  if (Status kept = replacement.keepAttributes(old_file.get(), old); !kept) return kept.error();
  return replacement;
}

Status Replacement::createSibling(mode_t mode) {
  constexpr int kFlags = O_WRONLY | O_NOFOLLOW | O_CLOEXEC;
  const char* const path = sibling_.c_str();
  for (int attempt = 0; attempt < 3; ++attempt) {
    FileDescriptor made(
        retryInterrupted([&] { return ::open(path, kFlags | O_CREAT | O_EXCL, mode); }));
    if (made) {
      // The lock says that this sibling is being written; a file system without locks goes
      // without.
      const bool busy = ::flock(made.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
      struct stat ours {};
      struct stat there {};
      const bool still_there =
          ::fstat(made.get(), &ours) == 0 && ::lstat(path, &there) == 0 && sameFile(ours, there);
      if (!busy && still_there) {
        file_ = std::move(made);
        return Done{};
      }
      continue;
    }
    if (errno == EACCES) return failed("its folder is read-only, and saving needs room beside it");
    if (errno != EEXIST) return failed(errno);
    const FileDescriptor left(::open(path, kFlags | O_NONBLOCK));
    if (left && ::flock(left.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) break;
    if (::unlink(path) != 0 && errno != ENOENT) {
      return failed(fmt::format("{} is in the way", sibling_), errno);
    }
  }
  return makeError(ErrorKind::kCannotWrite,
                   fmt::format("Could not write {}: another program is writing it", target_));
}

Status Replacement::keepAttributes(int old_fd, const struct stat& old) {
  struct stat fresh {};
  if (::fstat(file_.get(), &fresh) != 0) return failed(errno);
  const uid_t owner = old.st_uid == fresh.st_uid ? static_cast<uid_t>(-1) : old.st_uid;
  const gid_t group = old.st_gid == fresh.st_gid ? static_cast<gid_t>(-1) : old.st_gid;
  if (owner != static_cast<uid_t>(-1) || group != static_cast<gid_t>(-1)) {
    if (::fchown(file_.get(), owner, group) != 0) {
      return failed("its owner could not be kept", errno);
    }
  }
  copyExtendedAttributes(old_fd, file_.get());
  // Last, because a new owner takes bits away. A file system that knows no modes refuses, though
  // the new file has what all its files have.
  const mode_t mode = old.st_mode & 07777;
  if (::fchmod(file_.get(), mode) != 0) {
    const int error_number = errno;
    if (::fstat(file_.get(), &fresh) != 0 || (fresh.st_mode & 07777) != mode) {
      return failed("its mode could not be kept", error_number);
    }
  }
  return Done{};
}

Status Replacement::append(std::span<const BytePiece> pieces) {
  std::vector<iovec> merged = mergePieces(pieces);
  if (!writeFully(file_.get(), merged)) return failed(errno);
  return Done{};
}

Status Replacement::takeAttributes(const struct stat& status) {
  const timespec times[2] = {status.st_atim, status.st_mtim};
  if (::fchmod(file_.get(), status.st_mode & 07777) != 0 || ::futimens(file_.get(), times) != 0) {
    return failed(errno);
  }
  return Done{};
}

Status Replacement::commit() {
  if (retryInterrupted([&] { return ::fsync(file_.get()); }) != 0) return failed(errno);
  // Some file systems report a late write error only when a descriptor is closed. A second one is
  // closed for that; the first keeps the lock until the new file is in place.
  FileDescriptor second(::dup(file_.get()));
  if (!second || !second.close()) return failed(errno);
  const bool renamed = existing_ == Existing::kReplace
                           ? ::rename(sibling_.c_str(), target_.c_str()) == 0
                           : renameNoReplace(sibling_, target_);
  if (!renamed) return failed(errno);
  const FileDescriptor file = std::move(file_);
  if (flushFolder(target_, file.get())) return Done{};
  return systemError(ErrorKind::kWarning,
                     fmt::format("{} is written, but a power failure may still bring back what was "
                                 "there before",
                                 target_),
                     errno);
}

Status replaceFile(const std::string& path, std::span<const BytePiece> pieces) {
  Result<Replacement> replacement = Replacement::begin(path, Existing::kReplace);
  if (!replacement) return makeError(ErrorKind::kRefused, replacement.error().text);
  if (Status written = replacement->append(pieces); !written) return written;
  return replacement->commit();
}

}  // namespace tabelion
