#include "cli/kit/interruption.h"

#include <iterator>

namespace tabelion {
namespace {

// Where a signal handler can reach it, and nothing else is kept so.
volatile std::sig_atomic_t noted_signal = 0;
volatile std::sig_atomic_t holds = 0;
volatile std::sig_atomic_t is_settled = 0;

void noteSignal(int signal) {
  noted_signal = signal;
}

}  // namespace

InterruptionHold::InterruptionHold() {
  holds = holds + 1;
  struct sigaction action {};
  action.sa_handler = noteSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = 0;  // no SA_RESTART: a call that waits is to end
  for (std::size_t i = 0; i < std::size(kSignals); ++i) {
    sigaction(kSignals[i], nullptr, &before_[i]);
    // What is ignored, as nohup has it, stays ignored.
    if (before_[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
  }
}

InterruptionHold::~InterruptionHold() {
  for (std::size_t i = 0; i < std::size(kSignals); ++i) {
    sigaction(kSignals[i], &before_[i], nullptr);
  }
  holds = holds - 1;
  if (holds == 0 && noted_signal != 0 && is_settled == 0) std::raise(noted_signal);
}

void settleInterruptions() {
  is_settled = 1;
}

bool isInterrupted() {
  return noted_signal != 0;
}

}  // namespace tabelion
