// Files as the program needs them: whole reads, one-step replacement, locks, folders.
//
// Paths are 8-bit strings in the encoding of the file system (UTF-8 on today's machines); screens
// convert them at the boundary. Every call reports failure as a value.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/result.h"

namespace tabelion {

// The bytes of a file as read in one go. Shared, so that records can point into it.
struct FileImage {
  std::shared_ptr<const std::uint8_t[]> bytes;
  std::size_t size = 0;

  std::span<const std::uint8_t> span() const { return {bytes.get(), size}; }
};

// A run of bytes to be written; a file is written as a sequence of them.
using BytePiece = std::span<const std::uint8_t>;

struct FolderEntry {
  std::string name;  // without the folder
  bool is_folder = false;
};

struct FileInfo {
  std::uint64_t size = 0;
  std::int64_t created = 0;   // seconds since 1970-01-01 UTC; the modification time where unknown
  std::int64_t modified = 0;  // seconds since 1970-01-01 UTC
  bool is_regular = true;
  // Another number after every write and every replacement, so that a program can see that a file
  // is no longer the one it read. Means nothing across machines.
  std::uint64_t version = 0;
};

// Which volume's documents folder is meant.
enum class Volume { kMain, kCard };

// An advisory lock on a file, held until destroyed.
class FileLock {
 public:
  virtual ~FileLock() = default;
};

class Files {
 public:
  virtual ~Files() = default;

  // Reads the whole file. kNotFound or kCannotOpen.
  virtual Result<FileImage> read(const std::string& path) = 0;
  // Reads at most `limit` bytes, from `offset` on; a shorter file gives what it has there.
  virtual Result<std::vector<std::uint8_t>> readPart(const std::string& path, std::uint64_t offset,
                                                     std::size_t limit) = 0;
  Result<std::vector<std::uint8_t>> readStart(const std::string& path, std::size_t limit) {
    return readPart(path, 0, limit);
  }
  // Writes the pieces, in order, as the new content of `path`, in one step: whatever happens in
  // between, the file is wholly the old one or wholly the new one, flushed to the disk when this
  // returns. An error means that the old file (or its absence) is still in place, but for
  // kWarning: then the new one is, but may be lost in a power failure. Mode, owner and
  // a symbolic link at `path` are kept. Devices, and targets that could not be opened for writing
  // or have no room for a sibling, are refused with kRefused before anything is written;
  // whatever fails later is kCannotWrite. The text says in a person's words what is in the way: a
  // file or folder that is read-only, a full disk, an owner that cannot be kept.
  virtual Status replace(const std::string& path, std::span<const BytePiece> pieces) = 0;
  // Takes the advisory lock that every writing program takes before it opens `path` for changing.
  // `holder` is what the next one is told ("tabelion"); process and machine are added. kLocked
  // names who holds it. A folder that cannot be written gives a lock that guards nothing, since
  // no save can succeed there either.
  virtual Result<std::unique_ptr<FileLock>> lock(const std::string& path,
                                                 const std::string& holder) = 0;

  virtual Result<std::vector<FolderEntry>> list(const std::string& folder) = 0;  // sorted by name
  virtual Result<FileInfo> info(const std::string& path) = 0;
  // Never goes through a symbolic link at `to`.
  virtual Status copy(const std::string& from, const std::string& to, bool overwrite) = 0;
  virtual Status move(const std::string& from, const std::string& to) = 0;  // never overwrites
  virtual Status remove(const std::string& path) = 0;      // a file or an empty folder
  virtual Status makeFolder(const std::string& path) = 0;  // and its parents
  // The user's documents folder of the volume, without a trailing separator; none when the volume
  // is not there.
  virtual std::optional<std::string> documentsFolder(Volume volume) = 0;
  // The user's folder for what this program leaves behind, where the documents cannot take it; it
  // need not exist yet. None where there is no such place.
  virtual std::optional<std::string> stateFolder() { return std::nullopt; }
};

}  // namespace tabelion
