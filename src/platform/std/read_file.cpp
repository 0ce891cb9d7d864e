#include "platform/std/read_file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "platform/std/posix.h"

namespace tabelion {
namespace {

constexpr std::size_t kHugePage = 2u << 20;
constexpr std::size_t kWorthMapping = 256u << 10;  // below, a copy costs less

// Offsets in the files of this program have 32 bits. Anything larger is not one of them, and
// reading it would only take the machine's memory.
constexpr std::size_t kLargestFile = std::size_t{4} << 30;

Error cannotOpen(const std::string& path, int error_number) {
  const bool missing = error_number == ENOENT || error_number == ENOTDIR;
  return systemError(missing ? ErrorKind::kNotFound : ErrorKind::kCannotOpen,
                     fmt::format("Could not open {}", path), error_number);
}

struct OpenFile {
  FileDescriptor descriptor;
  std::size_t size = 0;
};

Result<OpenFile> openRegular(const std::string& path) {
  // Non-blocking, so that a pipe of that name cannot hang the program before it is refused.
  FileDescriptor fd(retryInterrupted(
      [&] { return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK); }));
  if (!fd) return cannotOpen(path, errno);
  struct stat status {};
  if (::fstat(fd.get(), &status) != 0) return cannotOpen(path, errno);
  if (S_ISDIR(status.st_mode)) {
    return makeError(ErrorKind::kCannotOpen,
                     fmt::format("Could not open {}: it is a folder", path));
  }
  if (!S_ISREG(status.st_mode)) {
    return makeError(ErrorKind::kCannotOpen,
                     fmt::format("Could not open {}: it is not a file", path));
  }
  return OpenFile{std::move(fd), static_cast<std::size_t>(status.st_size)};
}

// Fills the buffer from the file's current place. The number of bytes, less at the file's end, or
// -1 with errno set.
ssize_t readFully(int fd, std::uint8_t* buffer, std::size_t size) {
  std::size_t done = 0;
  while (done < size) {
    const ssize_t got = retryInterrupted([&] { return ::read(fd, buffer + done, size - done); });
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return static_cast<ssize_t>(done);
}

// Fresh memory for `size` bytes, not initialised by us. Most of the time that reading a large file
// takes is the system handing out memory page by page, so a large buffer is mapped at a huge-page
// boundary and asked for in huge pages; the last part, which would not fill one, stays in small
// pages, so that memory in use stays what the file needs. Null when there is no memory.
std::shared_ptr<std::uint8_t[]> allocateBuffer(std::size_t size) {
  if (size < kHugePage) {
    return std::shared_ptr<std::uint8_t[]>(new (std::nothrow) std::uint8_t[size]);
  }
  const std::size_t mapped = size + kHugePage;
  void* const base =
      ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (base == MAP_FAILED) return nullptr;
  const auto address = reinterpret_cast<std::uintptr_t>(base);
  const std::size_t skip = (kHugePage - address % kHugePage) % kHugePage;
  auto* const start = static_cast<std::uint8_t*>(base) + skip;
  // Both are hints: where the system has no huge pages the second still saves most of the faults.
  ::madvise(start, size / kHugePage * kHugePage, MADV_HUGEPAGE);
#ifdef MADV_POPULATE_WRITE
  ::madvise(start, size, MADV_POPULATE_WRITE);
#endif
  return std::shared_ptr<std::uint8_t[]>(start,
                                         [base, mapped](std::uint8_t*) { ::munmap(base, mapped); });
}

}  // namespace

namespace {

Result<OpenFile> openWhole(const std::string& path) {
  Result<OpenFile> file = openRegular(path);
  if (file && file->size > kLargestFile) return cannotOpen(path, EFBIG);
  return file;
}

Result<FileImage> readAll(const OpenFile& file, const std::string& path) {
  std::shared_ptr<std::uint8_t[]> buffer = allocateBuffer(file.size);
  if (!buffer) return cannotOpen(path, ENOMEM);
  const ssize_t got = readFully(file.descriptor.get(), buffer.get(), file.size);
  if (got < 0) return cannotOpen(path, errno);
  return FileImage{std::move(buffer), static_cast<std::size_t>(got)};
}

}  // namespace

Result<FileImage> readWholeFile(const std::string& path) {
  const Result<OpenFile> file = openWhole(path);
  if (!file) return file.error();
  return readAll(*file, path);
}

Result<FileImage> viewWholeFile(const std::string& path) {
  const Result<OpenFile> file = openWhole(path);
  if (!file) return file.error();
  if (file->size < kWorthMapping) return readAll(*file, path);
  void* const base = ::mmap(nullptr, file->size, PROT_READ, MAP_PRIVATE, file->descriptor.get(), 0);
  if (base == MAP_FAILED) return readAll(*file, path);
  const std::size_t size = file->size;
  return FileImage{
      std::shared_ptr<const std::uint8_t[]>(static_cast<const std::uint8_t*>(base),
                                            [base, size](auto*) { ::munmap(base, size); }),
      size};
}

Result<std::vector<std::uint8_t>> readFilePart(const std::string& path, std::uint64_t offset,
                                               std::size_t limit) {
  Result<OpenFile> file = openRegular(path);
  if (!file) return file.error();
  if (offset >= file->size) return std::vector<std::uint8_t>();
  std::vector<std::uint8_t> bytes(std::min<std::size_t>(limit, file->size - offset));
  if (::lseek(file->descriptor.get(), static_cast<off_t>(offset), SEEK_SET) < 0) {
    return cannotOpen(path, errno);
  }
  const ssize_t got = readFully(file->descriptor.get(), bytes.data(), bytes.size());
  if (got < 0) return cannotOpen(path, errno);
  bytes.resize(static_cast<std::size_t>(got));
  return bytes;
}

}  // namespace tabelion
