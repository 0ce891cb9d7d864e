#include "platform/std/std_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "platform/std/atomic_replace.h"
#include "platform/std/documents_folder.h"
#include "platform/std/file_lock.h"
#include "platform/std/posix.h"
#include "platform/std/read_file.h"

namespace tabelion {
namespace {

Error failedAt(std::string_view action, const std::string& path, int error_number,
               ErrorKind otherwise) {
  const bool missing = error_number == ENOENT || error_number == ENOTDIR;
  return systemError(missing ? ErrorKind::kNotFound : otherwise,
                     fmt::format("Could not {} {}", action, path), error_number);
}

// Two files of one name and size within the same second still differ in one of these.
std::uint64_t versionOf(const struct statx& status) {
  std::uint64_t version = status.stx_ino;
  for (const std::uint64_t part :
       {std::uint64_t{status.stx_size}, static_cast<std::uint64_t>(status.stx_mtime.tv_sec),
        std::uint64_t{status.stx_mtime.tv_nsec}}) {
    version = (version ^ part) * 0x9E3779B97F4A7C15;  // spreads every bit over the whole number
    version ^= version >> 29;
  }
  return version;
}

bool entryIsFolder(int folder_fd, const dirent& entry) {
  if (entry.d_type == DT_DIR) return true;
  if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return false;
  struct stat status {};
  return ::fstatat(folder_fd, entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

// Copies a file's bytes; `keep` also gives the copy the mode and times of the original.
Status copyFile(const std::string& from, const std::string& to, Existing existing, bool keep) {
  const FileDescriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  struct stat status {};
  if (!source || ::fstat(source.get(), &status) != 0) {
    return failedAt("open", from, errno, ErrorKind::kCannotOpen);
  }
  if (!S_ISREG(status.st_mode)) {
    return makeError(ErrorKind::kCannotOpen,
                     fmt::format("Could not copy {}: it is not a file", from));
  }
  // Saving goes through a link, which is where the user's file is. A copy goes to a place that is
  // chosen by its name: a link there, on a card from elsewhere, would lead it to any file at all.
  struct stat there {};
  if (::lstat(to.c_str(), &there) == 0 && S_ISLNK(there.st_mode)) {
    return makeError(ErrorKind::kCannotWrite,
                     fmt::format("Could not write {}: it is a link, which no copy follows", to));
  }
  Result<Replacement> copy = Replacement::begin(to, existing);
  if (!copy) return copy.error();
  std::vector<std::uint8_t> buffer(std::size_t{256} << 10);
  for (;;) {
    const ssize_t got =
        retryInterrupted([&] { return ::read(source.get(), buffer.data(), buffer.size()); });
    if (got < 0) return failedAt("read", from, errno, ErrorKind::kCannotOpen);
    if (got == 0) break;
    const BytePiece piece(buffer.data(), static_cast<std::size_t>(got));
    if (Status written = copy->append({&piece, 1}); !written) return written;
  }
  if (keep) {
    if (Status kept = copy->takeAttributes(status); !kept) return kept;
  }
  return copy->commit();
}

}  // namespace

Result<FileImage> StdFiles::read(const std::string& path) {
  return options_.views_files ? viewWholeFile(path) : readWholeFile(path);
}

Result<std::vector<std::uint8_t>> StdFiles::readPart(const std::string& path, std::uint64_t offset,
                                                     std::size_t limit) {
  return readFilePart(path, offset, limit);
}

Status StdFiles::replace(const std::string& path, std::span<const BytePiece> pieces) {
  return replaceFile(path, pieces);
}

Result<std::unique_ptr<FileLock>> StdFiles::lock(const std::string& path,
                                                 const std::string& holder) {
  return lockFile(path, holder);
}

Result<std::vector<FolderEntry>> StdFiles::list(const std::string& folder) {
  DIR* const open_folder = ::opendir(folder.c_str());
  if (!open_folder) return failedAt("list", folder, errno, ErrorKind::kCannotOpen);
  std::vector<FolderEntry> entries;
  errno = 0;
  while (const dirent* const entry = ::readdir(open_folder)) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") {
      entries.push_back({std::string(name), entryIsFolder(::dirfd(open_folder), *entry)});
    }
    errno = 0;
  }
  const int error_number = errno;
  ::closedir(open_folder);
  if (error_number != 0) return failedAt("list", folder, error_number, ErrorKind::kCannotOpen);
  std::sort(entries.begin(), entries.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return entries;
}

Result<FileInfo> StdFiles::info(const std::string& path) {
  struct statx status {};
  if (::statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0) {
    return failedAt("find", path, errno, ErrorKind::kCannotOpen);
  }
  FileInfo info;
  info.size = status.stx_size;
  info.modified = status.stx_mtime.tv_sec;
  info.created = (status.stx_mask & STATX_BTIME) ? status.stx_btime.tv_sec : info.modified;
  info.is_regular = S_ISREG(status.stx_mode);
  info.version = versionOf(status);
  return info;
}

Status StdFiles::copy(const std::string& from, const std::string& to, bool overwrite) {
  return copyFile(from, to, overwrite ? Existing::kReplace : Existing::kRefuse, false);
}

Status StdFiles::move(const std::string& from, const std::string& to) {
  if (renameNoReplace(from, to)) return Done{};
  if (errno != EXDEV) {
    return systemError(errno == ENOENT ? ErrorKind::kNotFound : ErrorKind::kCannotWrite,
                       fmt::format("Could not move {} to {}", from, to), errno);
  }
  if (Status copied = copyFile(from, to, Existing::kRefuse, true); !copied) return copied;
  return remove(from);
}

Status StdFiles::remove(const std::string& path) {
  if (std::remove(path.c_str()) == 0) return Done{};
  return failedAt("delete", path, errno, ErrorKind::kCannotWrite);
}

Status StdFiles::makeFolder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (!error) return Done{};
  return systemError(ErrorKind::kCannotWrite, fmt::format("Could not make the folder {}", path),
                     error.value());
}

std::optional<std::string> StdFiles::documentsFolder(Volume volume) {
  const bool card = volume == Volume::kCard;
  const std::string& chosen = card ? options_.card_folder : options_.documents_folder;
  if (chosen.empty()) return card ? cardDocumentsFolder() : userDocumentsFolder();
  const std::size_t end = chosen.find_last_not_of('/');
  return end == std::string::npos ? std::string("/") : chosen.substr(0, end + 1);
}

std::optional<std::string> StdFiles::stateFolder() {
  const auto folder = userStateFolder();
  if (!folder) return std::nullopt;
  return *folder + "/tabelion";
}

}  // namespace tabelion
