#include "cli/kit/piped_files.h"

#include <algorithm>

#include "cli/kit/interruption.h"

namespace tabelion {
namespace {

// A lock with which nothing ends the program before it is given back.
class HeldLock : public FileLock {
 public:
  HeldLock(std::shared_ptr<void> hold, std::unique_ptr<FileLock> lock)
      : hold_(std::move(hold)), lock_(std::move(lock)) {}

 private:
  std::shared_ptr<void> hold_;
  std::unique_ptr<FileLock> lock_;  // goes first
};

}  // namespace

// What comes out of a pipe comes once, and is kept for whoever asks again.
Result<FileImage> PipedFiles::readNamed(const std::string& path) {
  if (!isPipe(path)) return real_.read(path);
  return pipes_.at(path);
}

bool PipedFiles::isPipe(const std::string& path) {
  if (pipes_.contains(path)) return true;
  auto image = streams_.read_pipe ? streams_.read_pipe(path) : std::nullopt;
  if (image) pipes_.emplace(path, std::move(*image));
  return image.has_value();
}

Result<std::unique_ptr<FileLock>> PipedFiles::lockPatiently(const std::string& path,
                                                            const std::string& holder) {
  constexpr std::chrono::milliseconds kStep{100};
  auto lock = real_.lock(path, holder);
  for (auto left = patience_; left.count() > 0 && sleep_ && !isInterrupted(); left -= kStep) {
    if (lock.ok() || lock.error().kind != ErrorKind::kLocked) break;
    sleep_(kStep);
    lock = real_.lock(path, holder);
  }
  return lock;
}

Result<FileImage> PipedFiles::read(const std::string& path) {
  Result<FileImage> image = path == kPipe ? readInput() : readNamed(path);
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
  if (path != kPipe && !isPipe(path)) return real_.readPart(path, offset, limit);
  auto image = read(path);
  if (!image.ok()) return image.error();
  if (path == kPipe) started_ = *image;
  const auto rest = image->span().subspan(std::min<std::size_t>(offset, image->size));
  const auto bytes = rest.first(std::min(limit, rest.size()));
  return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

Status PipedFiles::replace(const std::string& path, std::span<const BytePiece> pieces) {
  if (path != kPipe) {
    if (isInterrupted()) {
      return makeError(ErrorKind::kCannotWrite, path + ": interrupted; it is as it was");
    }
    Status status = real_.replace(path, pieces);
    if (status.ok()) settleInterruptions();
    return status;
  }
  OutputBuffer buffer(streams_.out);
  for (const BytePiece& piece : pieces) {
    buffer.put({reinterpret_cast<const char*>(piece.data()), piece.size()});
  }
  if (buffer.flush()) return Done{};
  return makeError(ErrorKind::kCannotWrite, "standard output cannot be written");
}

Result<std::unique_ptr<FileLock>> PipedFiles::lock(const std::string& path,
                                                   const std::string& holder) {
  if (path == kPipe) return std::make_unique<FileLock>();
  auto hold = streams_.hold_interruptions ? streams_.hold_interruptions() : nullptr;
  auto lock = lockPatiently(path, holder);
  if (!lock.ok() || !hold) return lock;
  return std::unique_ptr<FileLock>(
      std::make_unique<HeldLock>(std::move(hold), std::move(lock).value()));
}

Result<FileInfo> PipedFiles::info(const std::string& path) {
  if (path != kPipe) return real_.info(path);
  return makeError(ErrorKind::kNotFound, "- is not a file");
}

}  // namespace tabelion
