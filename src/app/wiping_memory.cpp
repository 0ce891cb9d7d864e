// Every block of memory is overwritten when it is given back, whoever allocated it: what a toolkit
// copies of a text on its way from the keyboard to the screen is nobody else's to find. So nothing
// of an enciphered database is left in the program once the database is closed.
//
// In place of the C library's own free and realloc; linked into the window alone, since the command
// line gives all of its memory back at once.
#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>

extern "C" {

void __libc_free(void* block);  // NOLINT(bugprone-reserved-identifier): the C library's own

void free(void* block) noexcept {
  if (block == nullptr) return;
  const int before = errno;
  // Not through a plain memset, which a compiler leaves out before the block is gone.
  static void* (*const volatile fill)(void*, int, std::size_t) = std::memset;
  fill(block, 0, malloc_usable_size(block));
  __libc_free(block);
  errno = before;
}

void* realloc(void* block, std::size_t size) noexcept {
  if (block == nullptr) return std::malloc(size);
  if (size == 0) {
    free(block);
    return nullptr;
  }
  const std::size_t room = malloc_usable_size(block);
  if (size <= room && size > room / 2) return block;
  void* larger = std::malloc(size);
  if (larger == nullptr) return nullptr;
  std::memcpy(larger, block, std::min(size, room));
  free(block);
  return larger;
}

}  // extern "C"
