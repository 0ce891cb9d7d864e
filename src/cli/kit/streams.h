// What a run of the program talks through; a test puts texts in their place.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "interchange/output_buffer.h"
#include "platform/files.h"
#include "platform/result.h"

namespace tabelion {

// What a picture made of characters is made for.
struct TerminalForm {
  int columns = 80;
  bool shows_blocks = true;  // U+2588 and its like, else ASCII alone
};

struct Streams {
  TextSink& out;                                  // data, and nothing else
  TextSink& err;                                  // messages
  std::function<Result<FileImage>()> read_input;  // all of standard input
  TextSink* progress =
      nullptr;  // the terminal behind `err`, whose cursor is moved; none: no terminal
  // Asks a question on the terminal and waits for the answer; only "y" and "yes" mean yes. None
  // where nobody can answer.
  std::function<bool(std::string_view question)> confirm = {};
  // Whether who read `out` has gone, so that nobody misses what cannot be written there.
  std::function<bool()> reader_is_gone = {};
  // The pipe at a path, read to its end; none for what is no pipe.
  std::function<std::optional<Result<FileImage>>(const std::string& path)> read_pipe = {};
  TerminalForm terminal = {};  // of `out`
  // While what this gives lives, nothing ends the program halfway (InterruptionHold).
  std::function<std::shared_ptr<void>()> hold_interruptions = {};
};

// Writes to a file descriptor that stays the caller's.
class DescriptorSink : public TextSink {
 public:
  explicit DescriptorSink(int descriptor) : descriptor_(descriptor) {}
  bool write(std::string_view bytes) override;
  // Whether a write found that nobody reads any more.
  bool isClosed() const { return is_closed_; }

 private:
  int descriptor_;
  bool is_closed_ = false;
};

// Of a terminal, or what stands for one: its columns, and the characters of the user's locale.
TerminalForm terminalFormOf(int descriptor);

// Writes the question and reads a line of the descriptor.
bool confirmOnTerminal(int in, TextSink& out, std::string_view question);

// Reads a file descriptor to its end. One that has none would take all memory: beyond kLargestInput
// bytes it is refused.
inline constexpr std::size_t kLargestInput = std::size_t{1} << 30;
Result<FileImage> readDescriptor(int descriptor);
// A pipe that has a path, such as a shell's <(…), to its end; none for anything else.
std::optional<Result<FileImage>> readPipeAt(const std::string& path);

}  // namespace tabelion
