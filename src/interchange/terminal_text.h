// What a person reads at a terminal, which obeys what it is shown: a name or a note must not move
// the cursor, change the window's title or turn the order of what stands beside it.
#pragma once

#include <string>
#include <string_view>

#include "interchange/output_buffer.h"

namespace tabelion {

// Hands UTF-8 on to a terminal. Control characters are shown by their pictures (U+2400 and up), but
// for the end of a line and the tabulator; characters that change the direction of what follows
// them, and bytes that are no text, become U+FFFD, so that columns keep their width. A character
// may be spread over several writes.
class TerminalSink : public TextSink {
 public:
  explicit TerminalSink(TextSink& terminal) : terminal_(terminal) {}
  bool write(std::string_view bytes) override;

 private:
  TextSink& terminal_;
  std::string rest_;  // the beginning of a character (or line end) whose rest is to come
};

}  // namespace tabelion
