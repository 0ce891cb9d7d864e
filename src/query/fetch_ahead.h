// Passes over all records wait for memory more than for anything else.
#pragma once

#include <algorithm>
#include <cstddef>

#include "engine/bytes.h"

namespace tabelion {

// Asks for the first bytes of a record ahead of a pass: sorted records lie anywhere in memory.
inline void fetchAhead(ByteView record, std::size_t bytes) {
  constexpr std::size_t kLine = 64;
  constexpr std::size_t kMost = 8 * kLine;
  const std::size_t end = std::min({record.size(), bytes, kMost});
  for (std::size_t at = 0; at < end; at += kLine) __builtin_prefetch(record.data() + at);
}

}  // namespace tabelion
