#include "cli/kit/secret.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <string_view>

#include "cli/kit/interruption.h"
#include "cli/kit/streams.h"
#include "engine/bytes.h"

namespace tabelion {
namespace {

std::string firstLine(ByteView bytes) {
  std::string line(bytes.begin(), bytes.end());
  const std::size_t end = line.find('\n');
  if (end != std::string::npos) line.resize(end);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

// The terminal without echo while it lives. Signals wait until it is back, so that Ctrl-C, which
// ends the question, leaves the echo on; a stop waits for the answer.
class QuietTerminal {
 public:
  QuietTerminal() : descriptor_(::open("/dev/tty", O_RDWR | O_CLOEXEC)) {
    if (descriptor_ < 0 || tcgetattr(descriptor_, &before_) != 0) return;
    sigset_t interrupts;
    sigemptyset(&interrupts);
    sigaddset(&interrupts, SIGTSTP);
    sigprocmask(SIG_BLOCK, &interrupts, &signals_);
    termios quiet = before_;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    is_quiet_ = tcsetattr(descriptor_, TCSAFLUSH, &quiet) == 0;
  }
  ~QuietTerminal() {
    if (is_quiet_) {
      tcsetattr(descriptor_, TCSAFLUSH, &before_);
      sigprocmask(SIG_SETMASK, &signals_, nullptr);
    }
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  QuietTerminal(const QuietTerminal&) = delete;
  QuietTerminal& operator=(const QuietTerminal&) = delete;

  bool isQuiet() const { return is_quiet_; }
  void write(std::string_view text) const { (void)DescriptorSink(descriptor_).write(text); }
  std::optional<std::string> readLine() const {
    std::string line;
    for (char c = 0; ::read(descriptor_, &c, 1) == 1;) {
      if (c == '\n') return line;
      line += c;
    }
    return std::nullopt;
  }

 private:
  InterruptionHold hold_;  // goes last
  int descriptor_;
  termios before_{};
  sigset_t signals_{};
  bool is_quiet_ = false;
};

}  // namespace

std::optional<std::string> askOnTerminal(const std::string& question) {
  const QuietTerminal terminal;
  if (!terminal.isQuiet()) return std::nullopt;
  terminal.write(question + ": ");
  auto line = terminal.readLine();
  terminal.write("\n");
  return line;
}

Result<std::string> readSecret(const SecretSource& source, Files& files, const SecretPrompt& prompt,
                               const std::string& question) {
  if (!source.file.empty()) {
    const auto image = files.read(source.file);
    if (!image.ok()) return image.error();
    return firstLine(image->span());
  }
  if (source.descriptor) {
    const auto image = readDescriptor(static_cast<int>(*source.descriptor));
    if (!image.ok()) {
      return makeError(ErrorKind::kCannotOpen,
                       "file descriptor " + std::to_string(*source.descriptor) + " cannot be read");
    }
    return firstLine(image->span());
  }
  if (prompt) {
    if (auto typed = prompt(question)) return std::move(*typed);
  }
  return makeError(ErrorKind::kRefused,
                   "a password is needed; --password-file names a file with it");
}

}  // namespace tabelion
