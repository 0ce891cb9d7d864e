// What a run of the program talks through; a test puts texts in their place.
#pragma once

#include <functional>

#include "interchange/output_buffer.h"
#include "platform/files.h"
#include "platform/result.h"

namespace tabelion {

struct Streams {
  TextSink& out;                                  // data, and nothing else
  TextSink& err;                                  // messages
  std::function<Result<FileImage>()> read_input;  // all of standard input
  TextSink* progress =
      nullptr;  // the terminal behind `err`, whose cursor is moved; none: no terminal
  // Asks a question on the terminal and waits for the answer; only "y" and "yes" mean yes. None
  // where nobody can answer.
  std::function<bool(std::string_view question)> confirm = {};
};

// Writes to a file descriptor that stays the caller's.
class DescriptorSink : public TextSink {
 public:
  explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {}
  bool write(std::string_view bytes) override;

 private:
  int descriptor_;
};

// Writes the question and reads a line of the descriptor.
bool confirmOnTerminal(int in, TextSink& out, std::string_view question);

// Reads a file descriptor to its end. One that has none would take all memory: beyond kLargestInput
// bytes it is refused.
inline constexpr std::size_t kLargestInput = std::size_t{1} << 30;
Result<FileImage> readDescriptor(int descriptor);

}  // namespace tabelion
