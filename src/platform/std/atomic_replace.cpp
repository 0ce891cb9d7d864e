#include "platform/std/atomic_replace.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <utility>
#include <vector>

#include "platform/std/keep_attributes.h"
#include "platform/std/own_sibling.h"

namespace tabelion {
namespace {

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

// Looks at every page. A piece may lie in a view of a file, pages of which nobody has looked at so
// far; when the system meets such a one while it writes, it goes on page by page from there: that
// takes twice as long, and so the new file lies in memory, six times slower to map.
void touchPages(std::span<const iovec> pieces) {
  constexpr std::size_t kPage = 4096;
  for (const iovec& piece : pieces) {
    const auto* const bytes = static_cast<const volatile std::uint8_t*>(piece.iov_base);
    for (std::size_t at = 0; at < piece.iov_len; at += kPage) (void)bytes[at];
    if (piece.iov_len > 0) (void)bytes[piece.iov_len - 1];
  }
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
  const FileDescriptor folder(retryInterrupted(
      [&] { return ::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
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

Replacement::Replacement(std::string target, Existing existing)
    : target_(std::move(target)), existing_(existing) {}

Replacement::~Replacement() {
  if (file_) ::unlink(sibling_.c_str());
}

Error Replacement::failed(std::string_view reason) const {
  return makeError(ErrorKind::kCannotWrite, fmt::format("Could not write {}: {}", target_, reason));
}

Error Replacement::failed(int error_number) const {
  return failed(reasonInWords(error_number));
}

Result<Replacement> Replacement::begin(const std::string& path, Existing existing,
                                       Privacy privacy) {
  Result<std::string> target = resolveTarget(path);
  if (!target) return target.error();
  Replacement replacement(*target, existing);

  struct stat old {};
  if (::lstat(target->c_str(), &old) != 0) {
    if (errno != ENOENT) return replacement.failed(errno);
    // The system applies the user's mask to a new file.
    if (Status made = replacement.createSibling(privacy == Privacy::kOwnerOnly ? 0600 : 0666);
        !made)
      return made.error();
    return replacement;
  }
  if (existing == Existing::kRefuse) return replacement.failed(EEXIST);
  if (!S_ISREG(old.st_mode)) return replacement.failed("it is not a file");
  // Replacing needs only rights on the folder; a file that is protected itself is refused here.
  const FileDescriptor old_file(
      retryInterrupted([&] { return ::open(target->c_str(), O_WRONLY | O_NOFOLLOW | O_CLOEXEC); }));
  if (!old_file && (errno == EACCES || errno == EPERM)) {
    return replacement.failed("the file is read-only");
  }
  if (!old_file) return replacement.failed(errno);
  if (::fstat(old_file.get(), &old) != 0) return replacement.failed(errno);
  if (Status found = replacement.findOtherNames(old); !found) return found.error();
  if (Status made = replacement.createSibling(0600); !made) return made.error();
  const Status kept = keepAttributes(old_file.get(), old, replacement.file_.get());
  if (!kept.ok()) return replacement.failed(kept.error().text);
  if (privacy == Privacy::kOwnerOnly && ::fchmod(replacement.file_.get(), 0600) != 0) {
    return replacement.failed(errno);
  }
  return replacement;
}

Status Replacement::findOtherNames(const struct stat& old) {
  if (old.st_nlink < 2) return Done{};
  other_names_ = namesOfFile(target_);
  std::erase(other_names_, target_);
  if (other_names_.size() + 1 >= old.st_nlink) return Done{};
  const std::size_t elsewhere = old.st_nlink - 1 - other_names_.size();
  return failed(
      fmt::format("it is known by another name in another folder ({} of its {} hard links), which "
                  "would keep the old content; save it under a name of its own",
                  elsewhere, old.st_nlink));
}

Status Replacement::createSibling(mode_t mode) {
  OwnSibling made = makeOwnSibling(target_, "saving", mode);
  if (!made.file && errno == EACCES) {
    return failed("its folder is read-only, and saving needs room beside it");
  }
  if (!made.file) return failed(errno);
  file_ = std::move(made.file);
  sibling_ = std::move(made.path);
  return Done{};
}

Status Replacement::append(std::span<const BytePiece> pieces) {
  std::vector<iovec> merged = mergePieces(pieces);
  touchPages(merged);
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

// Gives the file's other names the new content, each in one step.
Status Replacement::takeOtherNames() const {
  for (const std::string& name : other_names_) {
    if (::link(target_.c_str(), sibling_.c_str()) == 0) {
      if (::rename(sibling_.c_str(), name.c_str()) == 0) continue;
      const int error_number = errno;
      ::unlink(sibling_.c_str());
      errno = error_number;
    }
    return systemError(
        ErrorKind::kWarning,
        fmt::format("{} is written, but its other name {} keeps the old content", target_, name),
        errno);
  }
  return Done{};
}

Status Replacement::commit() {
  if (retryInterrupted([&] { return ::fsync(file_.get()); }) != 0) return failed(errno);
  // Some file systems report a late write error only when a descriptor is closed. A second one is
  // closed for that, since the first is still needed.
  FileDescriptor second(::dup(file_.get()));
  if (!second || !second.close()) return failed(errno);
  const bool renamed = existing_ == Existing::kReplace
                           ? ::rename(sibling_.c_str(), target_.c_str()) == 0
                           : renameNoReplace(sibling_, target_);
  if (!renamed) return failed(errno);
  const FileDescriptor file = std::move(file_);
  Status others = takeOtherNames();
  if (flushFolder(target_, file.get())) return others;
  return systemError(ErrorKind::kWarning,
                     fmt::format("{} is written, but a power failure may still bring back what was "
                                 "there before",
                                 target_),
                     errno);
}

Status replaceFile(const std::string& path, std::span<const BytePiece> pieces, Privacy privacy) {
  Result<Replacement> replacement = Replacement::begin(path, Existing::kReplace, privacy);
  if (!replacement) return makeError(ErrorKind::kRefused, replacement.error().text);
  if (Status written = replacement->append(pieces); !written) return written;
  return replacement->commit();
}

}  // namespace tabelion
