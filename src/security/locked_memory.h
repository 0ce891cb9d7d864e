// Memory for what is secret: pages of its own that the system does not write into its swap space or
// a core dump, as far as it lets us, and that are overwritten before they are given back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace tabelion {

class LockedMemory {
 public:
  LockedMemory() = default;  // none
  // Zeros. A program that may lock no more pages goes on with pages that are not locked.
  explicit LockedMemory(std::size_t size);
  ~LockedMemory();
  LockedMemory(LockedMemory&& other) noexcept { swap(other); }
  LockedMemory& operator=(LockedMemory&& other) noexcept {
    swap(other);
    return *this;
  }
  LockedMemory(const LockedMemory&) = delete;
  LockedMemory& operator=(const LockedMemory&) = delete;

  bool isNone() const { return bytes_ == nullptr; }
  std::uint8_t* data() { return bytes_; }
  const std::uint8_t* data() const { return bytes_; }

 private:
  void swap(LockedMemory& other) noexcept {
    std::swap(bytes_, other.bytes_);
    std::swap(size_, other.size_);
  }

  std::uint8_t* bytes_ = nullptr;
  std::size_t size_ = 0;  // of whole pages
};

}  // namespace tabelion
