// A password in memory: in one place that is never copied behind our back, locked, and overwritten
// at its end.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "security/cipher.h"
#include "security/locked_memory.h"

namespace tabelion {

class Password {
 public:
  static constexpr std::size_t kMaxSize = 259;  // bytes; what is longer is cut

  Password() = default;
  explicit Password(std::string_view text) { assign(text); }
  Password(const Password& other) { assign(other.text()); }
  Password& operator=(const Password& other) {
    if (this != &other) assign(other.text());
    return *this;
  }

  // 8-bit text; an empty one is a password as well.
  void assign(std::string_view text) {
    clear();
    if (text.empty()) return;
    if (memory_.isNone()) memory_ = LockedMemory(kMaxSize);
    size_ = std::min(text.size(), kMaxSize);
    std::copy_n(text.begin(), size_, memory_.data());
  }
  void clear() {
    if (size_ > 0) wipeBytes({memory_.data(), size_});
    size_ = 0;
  }
  std::string_view text() const { return {reinterpret_cast<const char*>(memory_.data()), size_}; }

 private:
  LockedMemory memory_;
  std::size_t size_ = 0;
};

// For texts that a password passed through.
inline void wipeText(std::string& text) {
  wipeBytes({reinterpret_cast<std::uint8_t*>(text.data()), text.size()});
  text.clear();
}

}  // namespace tabelion
