#include "support/memory_files.h"

#include <algorithm>
#include <stdexcept>

namespace tabelion {
namespace {

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

Error notFound(const std::string& path) {
  return makeError(ErrorKind::kNotFound, "Could not open " + path + ": no such file");
}

// Takes its name out of the table of holders when it goes.
class MemoryLock : public FileLock {
 public:
  MemoryLock(std::map<std::string, std::string>& holders, std::string path)
      : holders_(holders), path_(std::move(path)) {}
  ~MemoryLock() override { holders_.erase(path_); }

 private:
  std::map<std::string, std::string>& holders_;
  std::string path_;
};

}  // namespace

void MemoryFiles::put(const std::string& path, std::vector<std::uint8_t> bytes) {
  (void)makeFolder(parentOf(path));
  nodes_[path].bytes = std::move(bytes);
  nodes_[path].version = ++writes_;
}

void MemoryFiles::put(const std::string& path, const std::string& bytes) {
  put(path, std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

const std::vector<std::uint8_t>& MemoryFiles::bytes(const std::string& path) const {
  const Node* const node = fileAt(path);
  if (!node) throw std::runtime_error("no file " + path);
  return node->bytes;
}

void MemoryFiles::setTimes(const std::string& path, std::int64_t created, std::int64_t modified) {
  nodes_.at(path).created = created;
  nodes_.at(path).modified = modified;
}

const MemoryFiles::Node* MemoryFiles::fileAt(const std::string& path) const {
  const auto at = nodes_.find(path);
  return at == nodes_.end() || at->second.is_folder ? nullptr : &at->second;
}

std::optional<Error> MemoryFiles::refusal(const std::string& path) const {
  const auto at = nodes_.find(path);
  const bool is_folder = at != nodes_.end() && at->second.is_folder;
  if (!is_folder && read_only.count(path) == 0 && nodes_.count(parentOf(path)) != 0) return {};
  return makeError(ErrorKind::kCannotWrite, "Could not write " + path + ": the file is read-only");
}

Result<FileImage> MemoryFiles::read(const std::string& path) {
  ++reads;
  const Node* const node = fileAt(path);
  if (!node) return notFound(path);
  if (unreadable.count(path) != 0) {
    return makeError(ErrorKind::kCannotOpen,
                     "Could not open " + path + ": this user has no right to it");
  }
  // A copy of the exact size, so that a read past the end is seen.
  bytes_read += node->bytes.size();
  auto copy = std::shared_ptr<std::uint8_t[]>(new std::uint8_t[node->bytes.size()]);
  std::copy(node->bytes.begin(), node->bytes.end(), copy.get());
  return FileImage{std::move(copy), node->bytes.size()};
}

Result<std::vector<std::uint8_t>> MemoryFiles::readPart(const std::string& path,
                                                        std::uint64_t offset, std::size_t limit) {
  const std::size_t before = bytes_read;
  const Result<FileImage> file = read(path);
  if (!file) return file.error();
  const auto rest = file->span().subspan(std::min<std::size_t>(offset, file->size));
  const auto bytes = rest.first(std::min(limit, rest.size()));
  bytes_read = before + bytes.size();
  return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

Status MemoryFiles::replace(const std::string& path, std::span<const BytePiece> pieces) {
  if (const auto refused = refusal(path)) return makeError(ErrorKind::kRefused, refused->text);
  std::vector<std::uint8_t> content;
  for (const BytePiece& piece : pieces) content.insert(content.end(), piece.begin(), piece.end());
  if (fail_replace_at && content.size() > *fail_replace_at) {
    return makeError(ErrorKind::kCannotWrite, "Could not write " + path + ": the disk is full");
  }
  nodes_[path].bytes = std::move(content);
  nodes_[path].version = ++writes_;
  ++replaces;
  return Done{};
}

Result<std::unique_ptr<FileLock>> MemoryFiles::lock(const std::string& path,
                                                    const std::string& holder) {
  const auto [at, taken] = locked_by.emplace(path, holder);
  if (!taken) {
    return makeError(ErrorKind::kLocked,
                     path + " is open in " + at->second + "; close it there first");
  }
  return std::unique_ptr<FileLock>(std::make_unique<MemoryLock>(locked_by, path));
}

Result<std::vector<FolderEntry>> MemoryFiles::list(const std::string& folder) {
  const auto at = nodes_.find(folder);
  if (at == nodes_.end() || !at->second.is_folder) return notFound(folder);
  std::vector<FolderEntry> entries;
  for (const auto& [path, node] : nodes_) {
    if (path != "/" && parentOf(path) == folder) {
      entries.push_back({path.substr(path.rfind('/') + 1), node.is_folder});
    }
  }
  return entries;
}

Result<FileInfo> MemoryFiles::info(const std::string& path) {
  const auto at = nodes_.find(path);
  if (at == nodes_.end()) return notFound(path);
  const Node& node = at->second;
  return FileInfo{node.bytes.size(), node.created, node.modified, !node.is_folder, node.version};
}

Status MemoryFiles::copy(const std::string& from, const std::string& to, bool overwrite) {
  const Result<FileImage> source = read(from);
  if (!source) return source.error();
  if (!overwrite && exists(to)) {
    return makeError(ErrorKind::kCannotWrite, "Could not write " + to + ": File exists");
  }
  const BytePiece piece = source->span();
  return replace(to, {&piece, 1});
}

Status MemoryFiles::move(const std::string& from, const std::string& to) {
  const auto at = nodes_.find(from);
  if (at == nodes_.end()) return notFound(from);
  for (const std::string& path : {from, to}) {
    if (const auto refused = refusal(path); refused && !at->second.is_folder) return *refused;
  }
  if (exists(to)) {
    return makeError(ErrorKind::kCannotWrite, "Could not write " + to + ": File exists");
  }
  std::map<std::string, Node> moved;  // a folder goes with everything below it
  for (const auto& [path, node] : nodes_) {
    if (path == from || path.starts_with(from + "/")) moved[path] = node;
  }
  for (auto& [path, node] : moved) {
    nodes_.erase(path);
    nodes_[to + path.substr(from.size())] = std::move(node);
  }
  return Done{};
}

Status MemoryFiles::remove(const std::string& path) {
  if (!exists(path)) return notFound(path);
  const auto children = nodes_.lower_bound(path + "/");
  const bool empty = children == nodes_.end() || !children->first.starts_with(path + "/");
  if (read_only.count(path) != 0 || !empty) {
    return makeError(ErrorKind::kCannotWrite, "Could not delete " + path);
  }
  nodes_.erase(path);
  return Done{};
}

Status MemoryFiles::makeFolder(const std::string& path) {
  if (fileAt(path)) {
    return makeError(ErrorKind::kCannotWrite, "Could not make the folder " + path);
  }
  if (!exists(path)) {
    if (Status parent = makeFolder(parentOf(path)); !parent) return parent;
  }
  nodes_[path].is_folder = true;
  return Done{};
}

std::optional<std::string> MemoryFiles::documentsFolder(Volume volume) {
  const std::string& folder = volume == Volume::kMain ? documents : card;
  return folder.empty() ? std::nullopt : std::optional(folder);
}

}  // namespace tabelion
