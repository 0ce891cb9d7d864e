#include "interchange/terminal_text.h"

#include <gtest/gtest.h>

namespace tabelion {
namespace {

class Text : public TextSink {
 public:
  bool write(std::string_view bytes) override {
    text += bytes;
    return true;
  }
  std::string text;
};

std::string shown(std::string_view text, std::size_t step) {
  Text terminal;
  TerminalSink sink(terminal);
  for (std::size_t at = 0; at < text.size(); at += step) sink.write(text.substr(at, step));
  return terminal.text;
}

TEST(TerminalText, NothingCommandsTheTerminal) {
  const struct {
    std::string_view text;
    std::string_view shown;
  } cases[] = {
      {"Ä\t€ 漢 \U0001F600 א\n", "Ä\t€ 漢 \U0001F600 א\n"},
      {"a\r\nb\rc", "a\r\nb␍c"},
      {"\x1b]0;title\x07", "␛]0;title␇"},
      {"\x7f\b", "␡␈"},
      {"a\u009b2Jb", "a�2Jb"},  // one character that begins a command
      {"a\x9b"
       "2Jb\xff",
       "a�2Jb�"},                                       // the same as a byte
      {"x\u202Egnp.exe\u2066y\u2069", "x�gnp.exe�y�"},  // turned around
      {"cut \xe2\x82 off \xf0\x9f!", "cut � off �!"},
  };
  for (const auto& [text, expected] : cases) {
    for (const std::size_t step : {std::size_t{1}, std::size_t{2}, text.size()}) {
      EXPECT_EQ(shown(text, step), expected) << step;
    }
  }
}

}  // namespace
}  // namespace tabelion
