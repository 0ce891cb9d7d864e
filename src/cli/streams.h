// What a run of the program talks through; a test puts texts in their place.
#pragma once

#include <functional>

#include "interchange/output_buffer.h"
#include "platform/files.h"
#include "platform/result.h"

namespace tabelion {

struct Streams {
  TextSink& out;                                  // data, and nothing else
  TextSink& err;                                  // messages and progress
  std::function<Result<FileImage>()> read_input;  // all of standard input
  bool err_is_terminal = false;
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

// Writes the question to one descriptor and reads a line of the other.
bool confirmOnTerminal(int in, int out, std::string_view question);

// Reads a file descriptor to its end.
Result<FileImage> readDescriptor(int descriptor);

}  // namespace tabelion
