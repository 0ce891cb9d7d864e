// A file system in memory, with faults on demand.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "platform/files.h"

namespace tabelion {

// Paths are compared as they are spelled; "/" and every folder made or written into exist.
class MemoryFiles : public Files {
 public:
  MemoryFiles() { nodes_["/"].is_folder = true; }

  // What a test puts there and looks at.
  void put(const std::string& path, std::vector<std::uint8_t> bytes);
  void put(const std::string& path, const std::string& bytes);
  bool exists(const std::string& path) const { return nodes_.count(path) != 0; }
  const std::vector<std::uint8_t>& bytes(const std::string& path) const;
  void setTimes(const std::string& path, std::int64_t created, std::int64_t modified);

  // Faults.
  std::optional<std::size_t> fail_replace_at;  // the disk is full after that many bytes
  std::set<std::string> read_only;             // cannot be replaced, moved or removed
  std::set<std::string> unreadable;
  std::map<std::string, std::string> locked_by;  // path: holder

  // Volumes; none when empty.
  std::string documents = "/documents";
  std::string card;

  // Calls that reached the files.
  int reads = 0;
  std::size_t bytes_read = 0;
  int replaces = 0;  // that succeeded

  Result<FileImage> read(const std::string& path) override;
  Result<std::vector<std::uint8_t>> readPart(const std::string& path, std::uint64_t offset,
                                             std::size_t limit) override;
  Status replace(const std::string& path, std::span<const BytePiece> pieces) override;
  Result<std::unique_ptr<FileLock>> lock(const std::string& path,
                                         const std::string& holder) override;
  Result<std::vector<FolderEntry>> list(const std::string& folder) override;
  Result<FileInfo> info(const std::string& path) override;
  Status copy(const std::string& from, const std::string& to, bool overwrite) override;
  Status move(const std::string& from, const std::string& to) override;
  Status remove(const std::string& path) override;
  Status makeFolder(const std::string& path) override;
  std::optional<std::string> documentsFolder(Volume volume) override;
  std::optional<std::string> stateFolder() override { return "/state"; }

 private:
  struct Node {
    bool is_folder = false;
    std::vector<std::uint8_t> bytes;
    std::int64_t created = 0;
    std::int64_t modified = 0;
    std::uint64_t version = 0;
  };

  std::optional<Error> refusal(const std::string& path) const;
  const Node* fileAt(const std::string& path) const;

  std::map<std::string, Node> nodes_;
  std::uint64_t writes_ = 0;
};

}  // namespace tabelion
