// What a fuzz target holds to be true of every input.
#pragma once

#include <cstdlib>

namespace tabelion {

inline void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace tabelion
