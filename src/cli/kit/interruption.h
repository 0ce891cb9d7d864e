// Signals that end the program (Ctrl-C, a closed terminal, kill) while it holds a lock or a
// terminal without echo. They wait until that is given back: no lock file or temporary file stays
// behind, and a file is replaced wholly or not at all.
#pragma once

#include <csignal>

namespace tabelion {

// While one of these lives, the signals are only noted, and calls that wait for input end with
// EINTR. When the last is gone, the program ends as the signal that was noted would have ended it.
class InterruptionHold {
 public:
  InterruptionHold();
  ~InterruptionHold();
  InterruptionHold(const InterruptionHold&) = delete;
  InterruptionHold& operator=(const InterruptionHold&) = delete;

 private:
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  struct sigaction before_[3] = {};
};

// Whether a signal was noted, so that what was begun should be given up.
bool isInterrupted();

// What was to be done is done and saved: the program ends by itself and says so, and no signal that
// was held back makes a failure of it.
void settleInterruptions();

}  // namespace tabelion
