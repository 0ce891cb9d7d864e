#include "security/locked_memory.h"

#include <sys/mman.h>
#include <unistd.h>

#include <new>

#include "security/cipher.h"

// The one place below platform/ that asks the machine for something: passwords are plain values all
// over the program, and none of them could be handed an interface.
namespace tabelion {

LockedMemory::LockedMemory(std::size_t size) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  size_ = (size + page - 1) / page * page;
  void* pages = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) throw std::bad_alloc();
  bytes_ = static_cast<std::uint8_t*>(pages);
  (void)mlock(pages, size_);
  (void)madvise(pages, size_, MADV_DONTDUMP);
}

LockedMemory::~LockedMemory() {
  if (bytes_ == nullptr) return;
  wipeBytes({bytes_, size_});
  munmap(bytes_, size_);
}

}  // namespace tabelion
