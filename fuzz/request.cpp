// What another program may send to the copy that runs. A frame that is understood is the one that
// its request makes, and every start of it is waited for.
#include "platform/std/request_frame.h"

#include <cstdint>

#include "require.h"

namespace tabelion {
namespace {

void tryFrame(std::string_view bytes) {
  StartRequest request;
  if (readFrame(bytes, request) != FrameReading::kWhole) return;
  require(request.kind != RequestKind::kQuit);
  const auto frame = frameOf(request);
  require(frame && bytes.starts_with(*frame));
  for (std::size_t size = 0; size < frame->size(); size += 1 + size / 8) {
    require(readFrame(bytes.substr(0, size), request) == FrameReading::kNotAllThere);
  }
}

}  // namespace
}  // namespace tabelion

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tabelion::tryFrame({reinterpret_cast<const char*>(data), size});
  return 0;
}
