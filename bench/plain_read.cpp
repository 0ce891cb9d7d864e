// The yardstick for opening: a program that reads a database file with one read() and walks the
// slots of its records, and does nothing else.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

std::uint32_t be32(const unsigned char* at) {
  return static_cast<std::uint32_t>(at[0]) << 24 | static_cast<std::uint32_t>(at[1]) << 16 |
         static_cast<std::uint32_t>(at[2]) << 8 | at[3];
}

// The number of slots in a record of `size` bytes.
long countSlots(const unsigned char* record, std::size_t size) {
  if (size == 0) return 0;
  long slots = 0;
  std::size_t at = record[0] == 1 ? 21 : record[0] + std::size_t{1};
  while (at + 2 <= size) {
    const std::size_t length = record[at] | record[at + 1] << 8;
    if (length == 0xFFFF || length > size - at - 2) break;
    at += 2 + length;
    ++slots;
  }
  return slots;
}

}  // namespace

int main(int argc, char** argv) {
  const int file = argc == 2 ? open(argv[1], O_RDONLY) : -1;
  struct stat status;
  if (file < 0 || fstat(file, &status) != 0) return 1;
  const auto size = static_cast<std::size_t>(status.st_size);
  auto* bytes = static_cast<unsigned char*>(std::malloc(size));
  if (!bytes || read(file, bytes, size) != status.st_size || size < 78) return 1;
  const int count = bytes[76] << 8 | bytes[77];
  long slots = 0;
  for (int i = 102; i < count; ++i) {
    const std::size_t begin = be32(&bytes[78 + 8 * i]);
    const std::size_t end = i + 1 < count ? be32(&bytes[78 + 8 * (i + 1)]) : size;
    if (begin > end || end > size) return 1;
    slots += countSlots(bytes + begin, end - begin);
  }
  std::printf("%d records, %ld slots\n", count - 102, slots);
  return 0;
}
