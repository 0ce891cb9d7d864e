#include "cli/piped_files.h"

#include <algorithm>

namespace tabelion {

Result<FileImage> PipedFiles::read(const std::string& path) {
  Result<FileImage> image = path == kPipe ? readInput() : real_.read(path);
  read_error_ = image.ok() ? std::nullopt : std::optional(image.error());
  return image;
}

Result<FileImage> PipedFiles::readInput() {
  if (started_) {
    FileImage image = std::move(*started_);
    started_.reset();
    return image;
  }
  if (input_used_) {
    return makeError(ErrorKind::kCannotOpen, "standard input (-) can stand for one file only");
  }
  input_used_ = true;
  return streams_.read_input();
}

Result<std::vector<std::uint8_t>> PipedFiles::readPart(const std::string& path,
                                                       std::uint64_t offset, std::size_t limit) {
  if (path != kPipe) return real_.readPart(path, offset, limit);
  auto image = read(path);
  if (!image.ok()) return image.error();
  started_ = *image;
  const auto rest = image->span().subspan(std::min<std::size_t>(offset, image->size));
  const auto bytes = rest.first(std::min(limit, rest.size()));
  return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

Status PipedFiles::replace(const std::string& path, std::span<const BytePiece> pieces) {
  if (path != kPipe) return real_.replace(path, pieces);
  OutputBuffer buffer(streams_.out);
  for (const BytePiece& piece : pieces) {
    buffer.put({reinterpret_cast<const char*>(piece.data()), piece.size()});
  }
  if (buffer.flush()) return Done{};
  return makeError(ErrorKind::kCannotWrite, "standard output cannot be written");
}

Result<std::unique_ptr<FileLock>> PipedFiles::lock(const std::string& path,
                                                   const std::string& holder) {
  if (path != kPipe) return real_.lock(path, holder);
  return std::make_unique<FileLock>();
}

Result<FileInfo> PipedFiles::info(const std::string& path) {
  if (path != kPipe) return real_.info(path);
  return makeError(ErrorKind::kNotFound, "- is not a file");
}

}  // namespace tabelion
