// Files on POSIX.
#pragma once

#include <string>

#include "platform/files.h"

namespace tabelion {

struct StdFilesOptions {
  std::string documents_folder{};  // instead of the user's own; empty: the user's own
  std::string card_folder{};       // instead of a mounted volume's
  bool views_files = false;        // read() gives a view of a large file (viewWholeFile)
};

class StdFiles : public Files {
 public:
  StdFiles() = default;
  explicit StdFiles(StdFilesOptions options) : options_(std::move(options)) {}

  Result<FileImage> read(const std::string& path) override;
  Result<std::vector<std::uint8_t>> readPart(const std::string& path, std::uint64_t offset,
                                             std::size_t limit) override;
  Status replace(const std::string& path, std::span<const BytePiece> pieces) override;
  Result<std::unique_ptr<FileLock>> lock(const std::string& path,
                                         const std::string& holder) override;
  Result<std::vector<FolderEntry>> list(const std::string& folder) override;
  Result<FileInfo> info(const std::string& path) override;
  // The copy is written beside its place and put there in one step, as replace() does. It gets the
  // mode of a new file, so that a copy of a read-only file can be changed.
  Status copy(const std::string& from, const std::string& to, bool overwrite) override;
  // Across file systems: a flushed copy with the old mode and times, then the old file is removed.
  // Folders move within their file system only.
  Status move(const std::string& from, const std::string& to) override;
  Status remove(const std::string& path) override;
  Status makeFolder(const std::string& path) override;
  std::optional<std::string> documentsFolder(Volume volume) override;
  std::optional<std::string> stateFolder() override;  // "tabelion" in userStateFolder()

 private:
  StdFilesOptions options_;
};

}  // namespace tabelion
