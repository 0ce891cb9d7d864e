#include "cli/streams.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <vector>

namespace tabelion {

bool DescriptorSink::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

Result<FileImage> readDescriptor(int descriptor) {
  constexpr std::size_t kStep = std::size_t{256} * 1024;
  std::vector<std::uint8_t> bytes;
  for (;;) {
    const std::size_t size = bytes.size();
    bytes.resize(size + std::max(kStep, size / 2));
    const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
    const bool interrupted = count < 0 && errno == EINTR;
    bytes.resize(size + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count == 0) break;
    if (count < 0 && !interrupted) {
      return makeError(ErrorKind::kCannotOpen, "standard input cannot be read");
    }
  }
  auto owner = std::make_shared<std::vector<std::uint8_t>>(std::move(bytes));
  FileImage image;
  image.size = owner->size();
  const std::uint8_t* data = owner->data();
  image.bytes = std::shared_ptr<const std::uint8_t[]>(std::move(owner), data);
  return image;
}

}  // namespace tabelion
