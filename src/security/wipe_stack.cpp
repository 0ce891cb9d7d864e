#include "security/wipe_stack.h"

#include <array>
#include <cstdint>

#include "security/cipher.h"

namespace tabelion {

// As deep as dialogs, their handlers and the toolkit below them go.
[[gnu::noinline]] void wipeStack() {
  std::array<std::uint8_t, 512 * 1024> below;
  wipeBytes(below);
}

}  // namespace tabelion
