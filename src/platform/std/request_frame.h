// The bytes in which a start of the program hands its request to the copy that runs already.
//
// One frame a request; all numbers big-endian:
//   4 bytes "TBLN", 2 bytes version (1), 4 bytes length of what follows (at most 1 MiB),
//   1 byte kind, then text and activation token, each as a 4-byte length and that many bytes.
// The end of the session is no other program's to tell: that kind is not sent, and not understood.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/instance.h"

namespace tabelion {

inline constexpr std::size_t kRequestHeader = 10;
inline constexpr std::size_t kLargestRequest = 1 << 20;  // behind the header

// None when it is too long.
std::optional<std::string> frameOf(const StartRequest& request);

enum class FrameReading { kNotAllThere, kJunk, kWhole };
// Reads the frame at the front of `bytes`; what follows it is nobody's business.
FrameReading readFrame(std::string_view bytes, StartRequest& request);

}  // namespace tabelion
